// serdesctl rehearse: a script, or declared settings, tried on a twin of the switch.
#include <unistd.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "serdesctl/base/errors.h"
#include "serdesctl/base/output.h"
#include "serdesctl/plan/places.h"
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

Script commandsOf(const Plan& plan, const std::string& file) {
  Script script;
  for (const std::string& command : scriptOf(plan.steps)) {
    Step& step = script.emplace_back();
    step.file = file;
    step.words = splitWords(command);
  }
  return script;
}

Rehearsed rehearsedPlan(const Plan& plan, const std::string& file) {
  Rehearsed rehearsed = {.steps = commandsOf(plan, file), .refused = {}};
  for (const Impossible& one : plan.impossible)
    rehearsed.refused.push_back({file, "", textOf(one.place) + " " + one.what + " " + one.wanted + ": " + one.reason});
  return rehearsed;
}

// A twin of a save of some ports has the others too, and nobody knows how these are.
void refuseUnsaved(RehearsalResult& result, const SwitchState& saved, const std::string& file) {
  const auto isUnsaved = [&](const Difference& change) {
    return std::none_of(saved.asics.begin(), saved.asics.end(), [&](const AsicState& asic) {
      return asic.asic == change.place.asic && findPort(asic, change.place.port.value_or(0)) != nullptr;
    });
  };
  std::vector<SettingPlace> told;
  for (const Difference& change : result.changes.settings) {
    const SettingPlace port = {.asic = change.place.asic, .port = change.place.port, .userPort = change.place.userPort};
    if (!isUnsaved(change) || std::find(told.begin(), told.end(), port) != told.end()) continue;
    told.push_back(port);
    result.refused.push_back({file, "", "sets " + textOf(port) + ", which the save does not have"});
  }
  std::erase_if(result.changes.settings, isUnsaved);
}

}  // namespace

// What cannot be done has been told with the plan.
bool rehearsedWell(OpenedSwitch& opened, const CommonOptions& options, const Plan& plan, const std::string& file) {
  const Twin twin = makeTwin(capture(opened.tool, {}), originText(opened.now.origin));
  const RehearsalResult result =
      rehearseOn(twin.description, Seconds(options.timeout), [&](Conversation&, const SwitchState&) -> Rehearsed {
        return {commandsOf(plan, file), {}};
      });
  if (result.good()) return true;
  complain("nothing was sent, for on a twin it went wrong:\n" + refusalsText(result) + trendsText(result));
  return false;
}

int performRehearse(const Options& options) {
  const RehearseOptions& words = options.rehearse;
  const bool declared = isDeclared(words.file);
  const Script script = declared ? Script() : readScript(words.file);
  if (script.size() == 1 && script[0].line == 0) throw UsageError(script[0].place() + ": " + script[0].fault);
  const Save save = saveOrSwitch(options.common, words.on, false);
  const Twin twin = makeTwin(save.state, originText(save.origin));
  RehearsalResult result =
      rehearseOn(twin.description, Seconds(options.common.timeout), [&](Conversation& tool, const SwitchState& now) {
        if (!declared) return readScriptFor(script, tool);
        return rehearsedPlan(readWish(words.file, now, words.throughCache).plan, words.file);
      });
  refuseUnsaved(result, save.state, words.file);
  Output output(STDOUT_FILENO);
  output.write(words.json ? jsonReport(result, save.origin) : textReport(result, showsColour(STDOUT_FILENO)));
  output.flush();
  return result.good() ? kDone : kFailed;
}

}  // namespace serdesctl
