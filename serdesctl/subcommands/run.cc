// serdesctl run: the strict runner.
#include <unistd.h>

#include <memory>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/journal/journal.h"
#include "serdesctl/run/runner.h"
#include "serdesctl/run/script.h"
#include "serdesctl/subcommands/status_names.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {
namespace {

// "FILE:LINE: what", which editors know.
void tellProblem(const std::string& line) {
  (void)writeAll(STDERR_FILENO, line + "\n");
}

// What went wrong with a command that was run.
std::string failure(const Step& step, const StepResult& result) {
  const std::string expected = "status " + std::to_string(step.expected) + " was expected";
  std::string what = statusMessage(result.status);
  if (result.status == CMD_OK) {
    what = "done, and " + expected;
  } else if (step.expected != CMD_OK) {
    what += ", and " + expected;
  }
  return step.place() + ": " + step.command() + ": " + what;
}

// The tool's own text.
class TextReport : public RunObserver {
 public:
  TextReport(Output& output, bool echo) : output_(output), echo_(echo) {}

  void starting(const Step& step) override {
    if (echo_) output_.write("serdes: " + step.command() + "\n");
  }
  void printed(std::string_view text) override {
    output_.write(text);
    output_.flush();
  }
  void ended(const Step& step, const StepResult& result) override {
    output_.write(std::string(statusMessage(result.status)) + "\n\n");
    output_.flush();
    if (!result.asExpected) tellProblem(failure(step, result));
  }

 private:
  Output& output_;
  bool echo_;
};

// An object a line for each command.
class JsonReport : public RunObserver {
 public:
  explicit JsonReport(Output& output) : output_(output) {}

  void starting(const Step&) override {}
  void printed(std::string_view) override {}
  void ended(const Step& step, const StepResult& result) override {
    nlohmann::ordered_json object = {{"file", step.file},
                                     {"line", step.line},
                                     {"command", step.command()},
                                     {"status", static_cast<int>(result.status)},
                                     {"status_name", statusName(result.status)},
                                     {"message", statusMessage(result.status)},
                                     {"output", result.output},
                                     {"seconds", result.elapsed.count()}};
    output_.write(object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
    output_.flush();
    if (!result.asExpected) tellProblem(failure(step, result));
  }

 private:
  Output& output_;
};

CheckedScripts checkOnSwitch(const std::vector<Script>& scripts, Conversation& tool) {
  Rehearsal rehearsal(learnSwitch(tool, selectedAsics(scripts)));
  return checkScripts(scripts, rehearsal);
}

CheckedScripts checkWithoutSwitch(const std::vector<Script>& scripts) {
  Rehearsal rehearsal;
  return checkScripts(scripts, rehearsal);
}

int report(const CheckedScripts& checked) {
  for (const std::string& problem : checked.problems)
    tellProblem(problem);
  return checked.problems.empty() ? kDone : kRefused;
}

int runOn(const Target& target, const Options& options, const std::vector<Script>& scripts) {
  Conversation tool(target, Seconds(options.common.timeout));
  const CheckedScripts checked = checkOnSwitch(scripts, tool);
  if (options.run.check || !checked.problems.empty()) return report(checked);
  Output output(STDOUT_FILENO);
  std::unique_ptr<RunObserver> observer;
  if (options.run.json) {
    observer = std::make_unique<JsonReport>(output);
  } else {
    observer = std::make_unique<TextReport>(output, options.run.echo);
  }
  JournalFile file(journalFolder(), complain);
  RunJournal log(std::move(file), target.name, options.common.syslog);
  const bool good = runSteps(checked.steps, options.run.keepGoing, tool, *observer, log);
  closeTool(tool, target);
  return good ? kDone : kFailed;
}

}  // namespace

int performRun(const Options& options) {
  std::vector<Script> scripts;
  for (const std::string& file : options.run.scripts)
    scripts.push_back(readScript(file));
  if (options.run.offline) return report(checkWithoutSwitch(scripts));
  return runOn(chosenTarget(options.common), options, scripts);
}

// A tool that cannot close the switch may not have kept what was changed.
void closeTool(Conversation& tool, const Target& target) {
  std::string lastWords;
  const ProcessEnd end = tool.close(lastWords);
  if (!end.well()) throw ConnectionError(target.name + ": the tool ended " + end.text() + ": " + lastWords);
}

Target chosenTarget(const CommonOptions& options) {
  TargetWords words = options.target;
  words.waitForLock = Seconds(options.waitForLock);
  Target target = findTarget(words);
  warnOfRunsLeft(target, words);
  return target;
}

}  // namespace serdesctl
