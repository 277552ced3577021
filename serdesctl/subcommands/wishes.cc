// Settings files, saves and kept plans.
#include "serdesctl/subcommands/wishes.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/text.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/plan/places.h"
#include "serdesctl/plan/plan_json.h"
#include "serdesctl/settings/settings_file.h"
#include "serdesctl/settings/wanted.h"
#include "serdesctl/state/json_place.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/subcommands/plan_text.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 64U << 20;

// A save of other ports is of another switch.
void refuseOtherSwitch(const std::string& file, const SwitchState& now, const SwitchState& wanted) {
  const Comparison comparison = compare(now, wanted);
  for (const Difference& d : comparison.hardware) {
    const AsicState* const asic = d.place.asic ? findAsic(wanted, *d.place.asic) : nullptr;
    const bool isWanted = d.place.port && asic != nullptr && findPort(*asic, *d.place.port) != nullptr;
    if (isWanted && d.parameter != "user_port") throw UsageError(file + " is of another switch: " + differenceText(d));
  }
}

// Ports whose topology a wish does not tell are those that there are.
void completeTopology(SwitchState& wanted, const SwitchState& now) {
  for (AsicState& asic : wanted.asics) {
    const AsicState* const known = findAsic(now, asic.asic);
    if (known == nullptr || !asic.config.ports.empty()) continue;
    asic.config = known->config;
    asic.cores = known->cores;
  }
}

// What the steps change, each setting as the first of them finds it.
std::vector<Difference> changesOf(const std::vector<PlannedStep>& steps) {
  std::vector<Difference> all;
  for (const PlannedStep& step : steps) {
    for (const Difference& change : step.changes) {
      const auto same = [&](const Difference& d) { return sameSetting(d, change); };
      if (std::none_of(all.begin(), all.end(), same)) all.push_back(change);
    }
  }
  return all;
}

std::vector<Difference> without(std::vector<Difference> list, const std::vector<Difference>& others) {
  std::erase_if(list, [&](const Difference& d) { return std::find(others.begin(), others.end(), d) != others.end(); });
  return list;
}

// What the plan was to change and is otherwise now. Where that is nothing, something else has changed that it stands
// on, and shows in what would be changed now.
void refuseOutdated(const std::string& file, const KeptPlan& kept, const Plan& plan, const SwitchState& now) {
  if (kept.topology != topologyOf(now)) throw UsageError(file + ": the plan is for another switch");
  const std::vector<Difference> then = changesOf(kept.steps);
  std::vector<Difference> changed;
  for (const Difference& change : then) {
    const SettingValue is = valueAt(now, change);
    if (is != change.before) changed.push_back({change.place, change.parameter, change.before, is});
  }
  if (changed.empty() && kept.steps == plan.steps) return;
  std::string what = "\n" + differencesText(changed);
  if (changed.empty()) what = "; it would do otherwise now:\n" + differencesText(without(changesOf(plan.steps), then));
  throw UsageError(file + ": the switch has changed since the plan was made" + what + "make a new plan");
}

Wish planned(Wish wish, const SwitchState& now) {
  completeTopology(wish.wanted, now);
  wish.plan = makePlan(now, wish.wanted, {.throughCache = wish.throughCache});
  return wish;
}

Wish saveWish(const std::string& text, const std::string& file, const SwitchState& now, bool throughCache) {
  Wish wish = {.source = file, .wanted = parseSave(text, file).state, .throughCache = throughCache, .plan = {}};
  refuseOtherSwitch(file, now, wish.wanted);
  return planned(std::move(wish), now);
}

// The ASIC and ports of a save that the options name, which must be in it.
void keepChosen(SwitchState& wanted, const ChangeOptions& options) {
  const std::uint32_t number = options.asic.value_or(0);
  std::erase_if(wanted.asics, [&](const AsicState& asic) { return asic.asic != number; });
  if (wanted.asics.empty()) throw UsageError(options.file + " has no ASIC " + std::to_string(number));
  if (options.ports.empty()) return;
  AsicState& asic = wanted.asics.front();
  const std::uint32_t ports = portsOfList(options.ports, asic.config);
  for (std::uint32_t rest = ports; rest != 0; rest &= rest - 1) {
    const std::uint32_t port = lowestPort(rest);
    if (findPort(asic, port) != nullptr) continue;
    throw UsageError(options.file + " has no port " + std::to_string(port) + " of ASIC " + std::to_string(number));
  }
  std::erase_if(asic.ports, [&](const PortState& port) { return (ports >> port.port & 1) == 0; });
}

}  // namespace

Wish readWish(const std::string& file, const SwitchState& now, bool throughCache) {
  const std::string text = readFile(file, kMostBytes);
  const std::string title = fileTitle(file);
  if (!isJson(text)) {
    Wish wish = {.source = file,
                 .wanted = wantedState(parseSettings(text, title), now),
                 .throughCache = throughCache,
                 .plan = {}};
    return planned(std::move(wish), now);
  }
  const Json json = parseJson(text, title);
  if (!isPlan(json)) return saveWish(text, title, now, throughCache);
  const KeptPlan kept = readPlan(json, title);
  Wish wish =
      planned({.source = kept.source, .wanted = kept.wanted, .throughCache = kept.throughCache, .plan = {}}, now);
  refuseOutdated(title, kept, wish.plan, now);
  return wish;
}

Wish readRestoration(const ChangeOptions& options, const SwitchState& now) {
  SwitchState wanted = readSave(options.file).state;
  if (!options.ports.empty() || options.asic) keepChosen(wanted, options);
  refuseOtherSwitch(options.file, now, wanted);
  return planned(
      {.source = options.file, .wanted = std::move(wanted), .throughCache = options.throughCache, .plan = {}}, now);
}

}  // namespace serdesctl
