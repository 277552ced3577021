// serdesctl show: the tool's answer as data.
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "commands/dfe_stats.h"
#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/formats/reports.h"
#include "serdesctl/rehearsal/learning.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/tables/answer_text.h"
#include "serdesctl/tables/parse.h"

namespace serdesctl {
namespace {

bool isControl(char c) {
  return (c >= '\0' && c < ' ') || c == '\x7f';
}

// The command's words, if it is one that shows something.
Words wordsToShow(const std::vector<std::string>& given) {
  const std::string line = joinedWords(given);
  if (std::any_of(line.begin(), line.end(), isControl)) throw UsageError("the command has a control character");
  const Words words = splitWords(line);
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  if (row == nullptr) throw UsageError("unknown command '" + line + "'");
  const bool changes = row->isSetCmd != 0 && !asksForHelp(words);
  if (changes || !printsRecords(words)) throw UsageError(words[0] + " shows nothing: see serdesctl run");
  if (joinedWords(words).size() > kMostCommandLength) {
    throw UsageError("the command is longer than " + std::to_string(kMostCommandLength) + " characters");
  }
  return words;
}

// Asking, and what came of it.
class Show {
 public:
  Show(Conversation& tool, std::uint32_t asic) : tool_(tool) {
    if (asic != 0) (void)askToSucceed("setAsicNum " + std::to_string(asic));
    config_ = parseConfig(askToSucceed("showConfig").output);
  }

  ParsedAnswer ask(const Words& words) {
    ParsedAnswer answer;
    answer.command = joinedWords(words);
    answer.asic = config_.asic;
    const CmdTableEntry* const row = findCommand(words[0]);
    const bool stats = row->handler == showDFEStatsCmdHandler && !asksForHelp(words);
    if (!stats || !askByType(words, answer)) {
      const Answer given = askToSucceed(answer.command);
      answer.records = parseOutput(answer.command, given.output, config_);
    }
    return answer;
  }

  // As the tool printed it.
  const std::string& text() const {
    return text_;
  }

 private:
  Answer askToSucceed(const std::string& command) {
    Answer answer = tool_.ask(command);
    text_ = answer.output;
    if (answer.status != CMD_OK) refuse(command, answer);
    return answer;
  }

  [[noreturn]] static void refuse(const std::string& command, const Answer& answer) {
    const std::string complaint = answer.output.substr(0, answer.output.find('\n'));
    throw Error(kFailed,
                command + ": " + statusMessage(answer.status) + (complaint.empty() ? "" : " (" + complaint + ")"));
  }

  // Statistics end at the first SerDes type that the tool cannot lay out, so each type is asked for by itself. False
  // when the list is of one type, or is the tool's to refuse.
  bool askByType(const Words& words, ParsedAnswer& answer) {
    const auto ports = namedPorts(words, &config_);
    if (!ports) return false;
    const std::vector<std::uint32_t> lists = portsByType(*ports);
    if (lists.size() < 2) return false;
    std::string text;
    std::vector<DfeStats> all;
    for (const std::uint32_t list : lists) {
      std::vector<DfeStats> records = askForStats(listOf(list));
      std::move(records.begin(), records.end(), std::back_inserter(all));
      text += text_;
    }
    text_ = text;
    answer.records = std::move(all);
    return true;
  }

  // A type without a layout gives its head alone and fails.
  std::vector<DfeStats> askForStats(const std::string& list) {
    const std::string command = "showDFEStats " + list;
    const Answer answer = tool_.ask(command);
    text_ = answer.output;
    if (answer.status != CMD_OK && !(answer.status == CMD_EXEC_ERROR && answer.output.starts_with('\n'))) {
      refuse(command, answer);
    }
    return std::get<std::vector<DfeStats>>(parseOutput(command, answer.output, config_));
  }

  // The ports of each type; each port by itself where types share a name.
  std::vector<std::uint32_t> portsByType(std::uint32_t ports) const {
    std::vector<std::uint32_t> lists;
    std::vector<std::string> names;
    for (const ConfigType& type : config_.types)
      names.push_back(type.name);
    std::sort(names.begin(), names.end());
    const bool unique = std::adjacent_find(names.begin(), names.end()) == names.end();
    for (const ConfigType& type : config_.types) {
      std::uint32_t list = 0;
      for (const ConfigPort& port : config_.ports) {
        const std::uint32_t bit = std::uint32_t{1} << port.port;
        if ((ports & bit) == 0) continue;
        if (unique && port.rx.serDesType == type.name) list |= bit;
        if (!unique && &type == &config_.types.front()) lists.push_back(bit);
      }
      if (list != 0) lists.push_back(list);
    }
    return lists;
  }

  // "0-3 5"
  static std::string listOf(std::uint32_t ports) {
    std::string list;
    for (std::uint32_t port = 0; port < 32; ++port) {
      if ((ports >> port & 1) == 0) continue;
      const std::uint32_t first = port;
      while (port < 31 && (ports >> (port + 1) & 1) != 0)
        ++port;
      list += (list.empty() ? "" : " ") + std::to_string(first);
      if (port != first) list += "-" + std::to_string(port);
    }
    return list;
  }

  Conversation& tool_;
  ConfigText config_;
  std::string text_;
};

std::string formatted(const ShowOptions& options, const ParsedAnswer& answer, const Origin& origin,
                      const std::string& text) {
  const bool asText = options.text || (!options.json && !options.csv && ::isatty(STDOUT_FILENO) != 0);
  if (asText) return text;
  return options.csv ? csvReport({&answer, 1}) : jsonReport(answer, origin);
}

}  // namespace

int performShow(const Options& options) {
  const Words words = wordsToShow(options.show.command);
  const Target target = chosenTarget(options.common);
  Conversation tool(target, Seconds(options.common.timeout));
  Show show(tool, options.show.asic);
  const ParsedAnswer answer = show.ask(words);
  const Origin origin = {.target = target.name, .time = utcTime(std::time(nullptr))};
  Output output(STDOUT_FILENO);
  output.write(formatted(options.show, answer, origin, show.text()));
  output.flush();
  // Nothing was changed: what the tool says of its end does not matter.
  std::string lastWords;
  (void)tool.close(lastWords);
  return kDone;
}

}  // namespace serdesctl
