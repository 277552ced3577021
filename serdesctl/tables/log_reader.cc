// Logs, read from left to right. The only thing that is tried and taken back is whether a prompt is followed by an
// echoed command or, on a pipe, by the answer itself.
#include "serdesctl/tables/log_reader.h"

#include <optional>
#include <utility>

#include "serdesctl/base/tool_facts.h"
#include "serdesctl/tables/config_text.h"

namespace serdesctl {
namespace {

constexpr std::string_view kFailedStart = "openSerdes: serdes err ";
constexpr std::string_view kFailedEnd = "main()->closeSerdes(): serdes err ";
constexpr std::string_view kPass = "That is ";
constexpr std::string_view kAnswerEnd = "\n\n";

class LogReader {
 public:
  LogReader(std::string_view text, const std::string& name) : text_(text, name) {}

  std::vector<LogItem> read(const std::string& command) {
    if (text_.atEnd()) text_.fail("an answer of the tool");
    if (!command.empty()) {
      answer(command);
      text_.expectEnd();
    }
    while (!text_.atEnd())
      item();
    return std::move(items_);
  }

 private:
  void item() {
    if (text_.startsWith(kStartBegin) || text_.startsWith(kFailedStart)) {
      start();
    } else if (text_.skip(kFailedEnd)) {
      (void)text_.number();
      text_.expect("\n");
    } else if (!text_.skip(kPrompt)) {
      answer("");
    } else if (!text_.atEnd()) {  // else the session was still open
      promptedAnswer();
    }
  }

  LogItem& add(const std::string& command) {
    LogItem& item = items_.emplace_back();
    item.command = command;
    item.words = innermostCommand(splitWords(command));
    item.place = text_.place();
    return item;
  }

  void start() {
    LogItem& item = add("");
    StartText start;
    if (text_.startsWith(kStartBegin)) {
      start.hardware = readSwitch(text_);
      start.discovery = readDiscovery(text_);
    }
    if (start.discovery.complete) {
      item.answer.records = std::move(start);
    } else {
      item.status = CMD_EXEC_ERROR;
      item.answer.complaint = readAnswerText(text_, {}).complaint;
      item.answer.records = std::move(start.discovery);
    }
    (void)text_.skip("\n");  // missing where the start alone was saved
  }

  // On a terminal the prompt's line holds the command. On a pipe the answer begins there, with a word that is never a
  // command's.
  void promptedAnswer() {
    const std::size_t mark = text_.mark();
    const std::size_t known = items_.size();
    const std::string line(text_.rest().substr(0, text_.rest().find('\n')));
    const Words words = splitWords(line);
    if (words.empty() || findCommand(words[0]) == nullptr) {
      try {
        answer("");
        if (text_.atEnd() || text_.startsWith(kPrompt) || text_.startsWith(kStartBegin) ||
            text_.startsWith(kFailedEnd)) {
          return;
        }
      } catch (const ParseError&) {
        if (line.empty()) throw;
      }
      items_.resize(known);
      text_.backTo(mark);
    }
    (void)text_.line();
    answer(line);
  }

  void answer(const std::string& command) {
    for (bool more = true; more;) {
      LogItem& item = add(command);
      const std::size_t begin = text_.mark();
      item.answer = readAnswerText(text_, item.words);
      more = passes();
      if (more) continue;
      // The message belongs to what was printed last; after a loop's last pass nothing was.
      items_.back().status = status(begin);
    }
    check(items_.back());
  }

  // Reads the lines that follow a pass of a loop; true when another pass follows.
  bool passes() {
    while (text_.skip(kPass)) {
      (void)text_.number();
      text_.expect(" passes.");
      (void)text_.skip(" To stop looping, enter <cr>.");
      text_.expect("\n");
      check(items_.back());
      if (text_.startsWith(kPass)) continue;
      if (loopEnds()) return false;
      if (text_.skip("\n")) return true;
    }
    return false;
  }

  // After a pass either the loop's empty status message and an empty line follow, or the next pass after an empty line.
  bool loopEnds() {
    if (text_.atEnd()) return true;
    if (!text_.startsWith(kAnswerEnd)) return false;
    TextCursor next = text_;
    next.expect("\n");
    if (atTableHead(next) || beginsHelp(next)) return false;
    // The newline that ended the loop may have been echoed.
    if (text_.startsWith("\n\n\n") && (next.rest().substr(2).empty() || next.rest().substr(2).starts_with(kPrompt))) {
      text_.expect("\n");
    }
    return true;
  }

  static bool beginsHelp(TextCursor text) {
    try {
      return std::holds_alternative<std::vector<CommandHelp>>(readAnswerText(text, {}).records);
    } catch (const ParseError&) {
      return false;
    }
  }

  // The status message and the empty line behind it. A bare output ends without them.
  CmdStatus status(std::size_t begin) {
    if (text_.atEnd() && text_.mark() != begin) return silentStatus();
    for (int status = CMD_TOO_LONG; status <= CMD_EXEC_ERROR; ++status) {
      const auto value = static_cast<CmdStatus>(status);
      if (text_.skip(std::string(statusMessage(value)) + std::string(kAnswerEnd))) return value;
    }
    if (!items_.back().answer.complaint.empty()) text_.fail("'" + std::string(statusMessage(CMD_EXEC_ERROR)) + "'");
    text_.expect(kAnswerEnd);
    return CMD_OK;
  }

  CmdStatus silentStatus() const {
    return items_.back().answer.complaint.empty() ? CMD_OK : CMD_EXEC_ERROR;
  }

  void check(LogItem& item) const {
    if (item.status == CMD_OK && !item.words.empty()) requireOutputOf(item.words, text_, item.answer);
  }

  TextCursor text_;
  std::vector<LogItem> items_;
};

}  // namespace

std::vector<LogItem> readLog(std::string_view text, const std::string& name, const std::string& command) {
  return LogReader(text, name).read(command);
}

}  // namespace serdesctl
