// serdesctl rehearse: a script, or declared settings, tried on a twin of the switch.
#include <unistd.h>

#include <string>
#include <utility>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/rehearsal/learning.h"
#include "serdesctl/run/script.h"
#include "serdesctl/state/capture.h"
#include "serdesctl/subcommands/changing.h"
#include "serdesctl/subcommands/rehearsals.h"
#include "serdesctl/subcommands/saving.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/twin/twin.h"

namespace serdesctl {
namespace {

// "FILE:LINE: reason" of a check.
Refusal refusalOf(const std::string& problem, const Script& steps) {
  for (const Step& step : steps) {
    const std::string begin = step.place() + ": ";
    if (problem.starts_with(begin)) return {step.place(), step.command(), problem.substr(begin.size())};
  }
  return {problem.substr(0, problem.find(": ")), "", problem.substr(problem.find(": ") + 2)};
}

Rehearsed readScriptFor(const Script& script, Conversation& tool) {
  Rehearsal rehearsal(learnSwitch(tool, selectedAsics({script})));
  CheckedScripts checked = checkScripts({script}, rehearsal);
  Rehearsed rehearsed;
  for (const std::string& problem : checked.problems)
    rehearsed.refused.push_back(refusalOf(problem, checked.steps));
  rehearsed.steps = std::move(checked.steps);
  return rehearsed;
}

bool isDeclared(const std::string& file) {
  return file.ends_with(".toml") || file.ends_with(".json");
}

}  // namespace

Rehearsed rehearsedPlan(const Plan& plan, const std::string& file) {
  Rehearsed rehearsed;
  for (const std::string& command : scriptOf(plan.steps)) {
    Step& step = rehearsed.steps.emplace_back();
    step.file = file;
    step.words = splitWords(command);
  }
  for (const Impossible& one : plan.impossible)
    rehearsed.refused.push_back({file, "", textOf(one.place) + " " + one.what + " " + one.wanted + ": " + one.reason});
  return rehearsed;
}

// Refusals have been told with the plan, and what fails on the way is rolled back.
bool rehearsedWell(OpenedSwitch& opened, const CommonOptions& options, const Plan& plan, const std::string& file) {
  const Twin twin = makeTwin(capture(opened.tool, {}), originText(opened.now.origin));
  const RehearsalResult result =
      rehearseOn(twin.description, Seconds(options.timeout),
                 [&](Conversation&, const SwitchState&) { return rehearsedPlan(plan, file); });
  if (!result.anyWorse()) return true;
  complain("nothing was sent, for on a twin ports get worse:\n" + trendsText(result));
  return false;
}

int performRehearse(const Options& options) {
  const RehearseOptions& words = options.rehearse;
  const bool declared = isDeclared(words.file);
  const Script script = declared ? Script() : readScript(words.file);
  if (script.size() == 1 && script[0].line == 0) throw UsageError(script[0].place() + ": " + script[0].fault);
  const Save save = saveOrSwitch(options.common, words.on, false);
  const Twin twin = makeTwin(save.state, originText(save.origin));
  const RehearsalResult result =
      rehearseOn(twin.description, Seconds(options.common.timeout), [&](Conversation& tool, const SwitchState& now) {
        if (!declared) return readScriptFor(script, tool);
        return rehearsedPlan(readWish(words.file, now, words.throughCache).plan, words.file);
      });
  Output output(STDOUT_FILENO);
  output.write(words.json ? jsonReport(result, save.origin) : textReport(result, ::isatty(STDOUT_FILENO) != 0));
  output.flush();
  return result.good() ? kDone : kFailed;
}

}  // namespace serdesctl
