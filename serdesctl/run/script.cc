// Reading and checking scripts.
#include "serdesctl/run/script.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/text.h"
#include "shell/command_reader.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 64U << 20;
constexpr std::string_view kDirective = "#:";
constexpr double kLongestPause = 86400;

template <typename Number>
std::optional<Number> numberOf(std::string_view text) {
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Reads one script line by line.
class Reader {
 public:
  explicit Reader(const std::string& file) : file_(file) {}

  Script read(std::string_view text) {
    while (!text.empty()) {
      const std::size_t end = text.find('\n');
      ++line_;
      readLine(text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    if (awaited_) refuse("no command follows #: expect");
    return std::move(script_);
  }

 private:
  void refuse(const std::string& reason) {
    Step step = newStep();
    step.fault = reason;
    script_.push_back(step);
  }

  Step newStep() const {
    Step step;
    step.file = file_;
    step.line = line_;
    return step;
  }

  void readLine(std::string_view line) {
    if (line.size() > kMostCommandLength) {
      return refuse("longer than " + std::to_string(kMostCommandLength) + " characters");
    }
    if (line.find('\0') != std::string_view::npos) return refuse("a NUL character");
    Step step = newStep();
    step.words = splitWords(std::string(line));
    const std::string command = step.command();
    if (std::any_of(command.begin(), command.end(), isControlCharacter)) return refuse("a control character");
    if (step.words.size() > static_cast<std::size_t>(kMaxWords)) {
      return refuse("more than " + std::to_string(kMaxWords) + " words");
    }
    const bool isCommand = !step.words.empty();
    if (isCommand && awaited_) {
      step.expected = *awaited_;
      awaited_.reset();
    }
    if (isCommand) script_.push_back(step);
    const std::size_t comment = line.find('#');
    if (comment != std::string_view::npos && line.substr(comment).starts_with(kDirective)) {
      readDirective(splitWords(std::string(line.substr(comment + kDirective.size()))), isCommand);
    }
  }

  void readDirective(const Words& words, bool behindCommand) {
    if (words.size() == 2 && words[0] == "wait") return readWait(words[1]);
    if (words.size() == 2 && words[0] == "expect") return readExpectation(words[1], behindCommand);
    refuse("#: is followed by 'wait SECONDSs' or 'expect STATUS'");
  }

  void readWait(const std::string& word) {
    const bool inSeconds = word.ends_with('s');
    const auto seconds = numberOf<double>(std::string_view(word).substr(0, word.size() - (inSeconds ? 1 : 0)));
    if (!seconds || !(*seconds >= 0 && *seconds <= kLongestPause)) {
      return refuse("'" + word + "' is no time from 0s to 86400s");
    }
    Step step = newStep();
    step.pause = Seconds(*seconds);
    script_.push_back(step);
  }

  void readExpectation(const std::string& word, bool behindCommand) {
    const auto number = numberOf<int>(word);
    if (!number || *number < CMD_OK || *number > CMD_EXEC_ERROR) {
      return refuse("'" + word + "' is no status from 0 to 10");
    }
    if (awaited_) return refuse("no command follows the #: expect before");
    const auto status = static_cast<CmdStatus>(*number);
    if (behindCommand) {
      script_.back().expected = status;
    } else {
      awaited_ = status;
    }
  }

  std::string file_;
  Script script_;
  std::size_t line_ = 0;
  std::optional<CmdStatus> awaited_;  // by a line of its own, for the next command
};

// What a status that came from the words alone means for this command.
std::string explained(CmdStatus status, const Words& words) {
  const CmdTableEntry* const row = findCommand(words[0]);
  if (status == CMD_UNKNOWN || row == nullptr) return "unknown command '" + words[0] + "'";
  const std::string arguments = row->argHelp;
  const bool aboutWords = status == CMD_TOO_FEW_ARGS || status == CMD_TOO_MANY_ARGS || status == CMD_BAD_PARAM;
  const std::string synopsis = "; " + std::string(row->name) + " takes " + (arguments.empty() ? "no words" : arguments);
  return statusMessage(status) + (aboutWords ? synopsis : "");
}

// Why a step cannot be run, empty when it can. Whether the hardware refuses is not known beforehand.
std::string refusal(const Step& step, const Forecast& forecast) {
  const bool hardwareDecides = forecast.status == CMD_OK || forecast.status == CMD_EXEC_ERROR;
  const bool hardwareExpected = step.expected == CMD_OK || step.expected == CMD_EXEC_ERROR;
  if (hardwareDecides && hardwareExpected) {
    return step.expected == CMD_OK && !forecast.missing.empty() ? "no " + forecast.missing : "";
  }
  if (forecast.status == step.expected) return "";
  if (forecast.status == CMD_EXIT && step.expected == CMD_OK) return "";
  if (step.expected == CMD_OK) return explained(forecast.status, innermostCommand(step.words));
  const std::string expected = "status " + std::to_string(step.expected) + " is expected, and ";
  if (hardwareDecides) return expected + "the command would not be refused";
  if (forecast.status == CMD_EXIT) return expected + "the command ends the script";
  return expected + "it would be " + std::to_string(forecast.status) + " (" + statusMessage(forecast.status) + ")";
}

// A change is told by the journal together with the ASIC that was selected for it.
void journalSelections(Script& steps) {
  if (std::none_of(steps.begin(), steps.end(), [](const Step& step) { return step.changes; })) return;
  for (Step& step : steps) {
    if (!step.words.empty() && selectedAsic(step.words)) step.changes = true;
  }
}

}  // namespace

std::string Step::command() const {
  return joinedWords(words);
}

std::string Step::place() const {
  return line == 0 ? file : file + ":" + std::to_string(line);
}

Script readScript(const std::string& file) {
  try {
    return Reader(file).read(readFile(file, kMostBytes));
  } catch (const UsageError& error) {
    Step step;
    step.file = file;
    step.fault = std::string(error.what()).substr(file.size() + 2);
    return {step};
  }
}

std::set<std::uint32_t> selectedAsics(const std::vector<Script>& scripts) {
  std::set<std::uint32_t> asics;
  for (const Script& script : scripts) {
    for (const Step& step : script) {
      if (step.words.empty()) continue;
      if (const auto asic = selectedAsic(step.words)) asics.insert(*asic);
    }
  }
  return asics;
}

CheckedScripts checkScripts(const std::vector<Script>& scripts, Rehearsal& rehearsal) {
  CheckedScripts checked;
  for (const Script& script : scripts) {
    for (const Step& step : script) {
      if (!step.fault.empty()) checked.problems.push_back(step.place() + ": " + step.fault);
      if (step.words.empty()) {
        if (step.fault.empty()) checked.steps.push_back(step);
        continue;
      }
      const Forecast forecast = rehearsal.judge(step.words);
      const std::string reason = refusal(step, forecast);
      if (!reason.empty()) checked.problems.push_back(step.place() + ": " + reason);
      if (forecast.status == CMD_EXIT) break;
      checked.steps.push_back(step);
      checked.steps.back().changes = forecast.changes;
    }
  }
  journalSelections(checked.steps);
  return checked;
}

}  // namespace serdesctl
