// The conversation with the tool at its prompt.
//
// With every command goes an empty line, whose answer is known: only where both answers end together is the command's
// answer complete. A table that looks like a prompt, or a prompt that comes late, cannot be taken for the end.
#include "serdesctl/session/conversation.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "serdesctl/base/command_words.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/text.h"
#include "serdesctl/base/tool_facts.h"
#include "shell/help_and_loop.h"
#include "shell/session.h"

namespace serdesctl {
namespace {

constexpr std::string_view kAnswerEnd = "\n\nserdes: ";
constexpr std::string_view kBothAnswersEnd = "\n\nserdes: \n\nserdes: ";
constexpr std::string_view kStartEnd = "\ncurrent asicNum:";
constexpr std::string_view kCommandList = "\n\ncommand  ";

constexpr std::size_t kMostAnswer = 8U << 20;  // the longest table has some 100 kB
constexpr std::size_t kMostComplaints = 2000;
constexpr Seconds kPatienceAfterSignal{2};

Child startTool(const Target& target) {
  Start start = prepareStart(target);
  return {start.command, std::move(start.lock)};
}

std::string_view withoutBlankEnds(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \r\n");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \r\n") + 1 - first);
}

// On one line, as part of a message.
std::string onOneLine(std::string_view text) {
  std::string line(withoutBlankEnds(text));
  for (std::size_t at = line.find('\n'); at != std::string::npos; at = line.find('\n', at))
    line.replace(at, 1, "; ");
  return line;
}

bool holdsPrompt(std::string_view output) {
  return output.starts_with(kPrompt) || output.find("\nserdes: ") != std::string_view::npos;
}

// The status that has this message; nothing for a text that no tool prints there.
std::optional<CmdStatus> statusOf(std::string_view message) {
  for (int status = CMD_TOO_LONG; status <= CMD_EXEC_ERROR; ++status) {
    if (message == statusMessage(static_cast<CmdStatus>(status))) return static_cast<CmdStatus>(status);
  }
  return std::nullopt;
}

// A line that the tool reads as one command and answers before the next. It answers neither loop, which outlives both
// ends of its pipe, nor exit; their help it does.
void refuseUnlessSendable(const std::string& command) {
  if (command.size() > kMostCommandLength || std::any_of(command.begin(), command.end(), isControlCharacter)) {
    throw UsageError("'" + command.substr(0, kMostCommandLength) + "' is not one line of the tool's");
  }
  const Words words = splitWords(command);
  const CmdTableEntry* const row = words.empty() ? nullptr : findCommand(words[0]);
  const bool unanswered = row != nullptr && (row->handler == loopCmdHandler || row->handler == exitCmdHandler);
  if (words.empty() || (unanswered && !asksForHelp(words))) throw UsageError("'" + command + "' cannot be asked");
}

}  // namespace

std::string Answer::text() const {
  return output + statusMessage(status) + "\n\n";
}

// Commands end what they print with a newline, so the message stands on a line of its own.
std::optional<Answer> readAnswer(std::string_view text) {
  if (!text.ends_with("\n\n")) return std::nullopt;
  text.remove_suffix(2);
  const std::size_t lineStart = text.rfind('\n') + 1;  // 0 where there is none
  const std::string_view output = text.substr(0, lineStart);
  const std::string_view message = text.substr(lineStart);
  if (holdsPrompt(output)) return std::nullopt;
  if (message.empty()) return Answer{.status = CMD_OK, .output = std::string(output)};
  const auto status = statusOf(message);
  if (!status) return std::nullopt;
  return Answer{.status = *status, .output = std::string(output)};
}

Conversation::Conversation(const Target& target, Seconds timeout)
    : name_(target.name), timeout_(timeout), tool_(startTool(target)) {
  readStart(receiveTo(kAnswerEnd, "start", after(timeout_ + (target.reach.empty() ? Seconds(0) : target.waitForLock))));
  started_ = true;
}

Answer Conversation::ask(const std::string& command) {
  refuseUnlessSendable(command);
  throwIfInterrupted();
  broken_ = true;
  refuseStrayText();
  const TimePoint start = Clock::now();
  const TimePoint deadline = after(timeout_);
  const std::string what = "answer to '" + command + "'";
  send(command + "\n\n", what, deadline);
  std::string text = receiveTo(kBothAnswersEnd, what, deadline);
  text.resize(text.size() - kAnswerEnd.size() - kPrompt.size());
  auto answer = readAnswer(text);
  if (!answer) throw AnswerError(said("the " + what + " is not as the tool answers"));
  answer->elapsed = Clock::now() - start;
  broken_ = false;
  return *answer;
}

ProcessEnd Conversation::close(std::string& lastWords) {
  refuseStrayText();
  const TimePoint deadline = after(timeout_);
  tool_.closeInput();
  std::string text;
  for (bool open = true; open;) {
    pollfd output = {.fd = tool_.output(), .events = POLLIN, .revents = 0};
    if (waitThroughSignals({&output}, deadline) == Wakeup::kDeadline) failLate("end");
    open = take(tool_.output(), text);
    if (text.size() > kMostAnswer) throw AnswerError(said("endless output in the end"));
  }
  takeComplaints();
  if (holdsPrompt(text)) throw AnswerError(said("a prompt too many: " + onOneLine(text)));
  const auto end = tool_.waitForEnd(deadline);
  if (!end) failLate("end");
  lastWords = onOneLine(text + complaints_);
  return *end;
}

// Between answers the tool is silent.
void Conversation::refuseStrayText() {
  std::string text;
  if (!take(tool_.output(), text)) failEnded("between commands");
  if (!text.empty()) throw AnswerError(said("the tool printed without a command: " + onOneLine(text.substr(0, 200))));
}

void Conversation::send(std::string_view text, const std::string& what, TimePoint deadline) {
  while (!text.empty()) {
    const ssize_t count = ::write(tool_.input(), text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      pollfd input = {.fd = tool_.input(), .events = POLLOUT, .revents = 0};
      if (waitThroughSignals({&input}, deadline) == Wakeup::kDeadline) failLate(what);
    } else if (errno != EINTR) {
      failEnded("in the " + what);
    }
  }
}

std::string Conversation::receiveTo(std::string_view end, const std::string& what, TimePoint deadline) {
  std::string text;
  patience_.reset();
  while (!text.ends_with(end)) {
    pollfd output = {.fd = tool_.output(), .events = POLLIN, .revents = 0};
    pollfd errors = {.fd = complaintsOpen_ ? tool_.errors() : -1, .events = POLLIN, .revents = 0};
    waitForText(output, errors, what, deadline);
    if (errors.revents != 0) takeComplaints();
    if (output.revents != 0 && !take(tool_.output(), text)) failEnded("in the " + what);
    if (text.size() > kMostAnswer) throw AnswerError(said("endless output in the " + what));
  }
  return text;
}

// A signal ends a start at once; an answer under way is given some time, since what it did is to be known.
void Conversation::waitForText(pollfd& output, pollfd& errors, const std::string& what, TimePoint deadline) {
  Wakeup wakeup = Wakeup::kSignal;
  if (!patience_) {
    wakeup = waitUntil({&output, &errors}, deadline);
    if (wakeup != Wakeup::kSignal) {
      if (wakeup == Wakeup::kDeadline) failLate(what);
      return;
    }
    if (!started_) throwIfInterrupted();
    patience_ = after(kPatienceAfterSignal);
  }
  if (waitThroughSignals({&output, &errors}, std::min(deadline, *patience_)) == Wakeup::kDeadline) throwIfInterrupted();
}

// Appends what there is; false at the end of the stream.
bool Conversation::take(int descriptor, std::string& text) {
  std::array<char, 65536> block;
  const ssize_t count = ::read(descriptor, block.data(), block.size());
  if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

void Conversation::takeComplaints() {
  for (std::size_t before = 0; complaintsOpen_; before = complaints_.size()) {
    complaintsOpen_ = take(tool_.errors(), complaints_);
    if (complaints_.size() == before) break;
    if (complaints_.size() > kMostComplaints) complaints_.erase(0, complaints_.size() - kMostComplaints);
  }
}

void Conversation::readStart(const std::string& text) {
  const std::size_t begin = text.find(kStartBegin);
  const std::size_t end = begin == std::string::npos ? begin : text.find(kStartEnd, begin);
  if (end == std::string::npos) {
    takeComplaints();
    throw ConnectionError(
        said("the switch could not be opened: " + onOneLine(text.substr(0, text.find(kCommandList)))));
  }
  startText_ = text.substr(begin, text.find('\n', end + 1) + 1 - begin);
}

void Conversation::failEnded(const std::string& what) {
  const auto end = tool_.waitForEnd(after(Seconds(1)));
  takeComplaints();
  const std::size_t locked = complaints_.find(kLockedElsewhere);
  if (locked != std::string::npos) {
    const std::string_view holder =
        std::string_view(complaints_).substr(locked + std::string_view("serdesctl: ").size());
    throw LockedError(name_ + ": " + std::string(holder.substr(0, holder.find('\n'))));
  }
  throw ConnectionError(said("the tool ended " + (end ? end->text() + " " : "") + what));
}

void Conversation::failLate(const std::string& what) {
  takeComplaints();
  std::array<char, 32> seconds;
  std::snprintf(seconds.data(), seconds.size(), "%g", timeout_.count());
  throw TimeoutError(said("no " + what + " in " + seconds.data() + " s"));
}

std::string Conversation::said(const std::string& message) const {
  const std::string complaints = onOneLine(complaints_);
  return name_ + ": " + message + (complaints.empty() ? "" : ": " + complaints);
}

}  // namespace serdesctl
