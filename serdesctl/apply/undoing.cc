// Finding out what a run changed. One that was read back at its end is known; of others the steps tell what they may
// have left.
#include "serdesctl/apply/undoing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "serdesctl/plan/places.h"

namespace serdesctl {
namespace {

using Key = std::tuple<std::uint32_t, std::uint32_t, std::string, std::uint32_t, std::string, std::string>;

Key keyOf(const Difference& d) {
  constexpr std::uint32_t kNone = ~std::uint32_t{0};
  return {d.place.asic.value_or(kNone), d.place.port.value_or(kNone), d.place.side.value_or(""),
          d.place.link.value_or(kNone), d.place.rate.value_or(""),    d.parameter};
}

struct Touched {
  Difference where;
  std::vector<SettingValue> left;  // what the run may have left there
  bool anything = false;           // what hardware makes of a speed is not known beforehand
};

class Collector {
 public:
  void add(const Difference& where, const std::vector<SettingValue>& left, bool anything = false) {
    Touched& touched = all_.try_emplace(keyOf(where), Touched{where, {}, false}).first->second;
    touched.left.insert(touched.left.end(), left.begin(), left.end());
    if (anything) touched.anything = true;
  }

  std::map<Key, Touched> take() && {
    return std::move(all_);
  }

 private:
  std::map<Key, Touched> all_;
};

using Place = std::pair<std::uint32_t, std::uint32_t>;  // ASIC and port

// The ports whose live settings a speed may have changed: those that it was set for, and far ends that follow.
std::set<Place> retrained(const std::vector<PlannedStep>& steps, const SwitchState& before) {
  std::set<Place> ports;
  for (const PlannedStep& step : steps) {
    if (step.effect != Effect::kRetrain) continue;
    for (std::uint32_t port = 0; port < 32; ++port) {
      if ((step.ports >> port & 1) != 0) ports.emplace(step.asic, port);
    }
  }
  if (ports.empty()) return ports;
  for (const AsicState& asic : before.asics) {
    for (const PortState& port : asic.ports) {
      if (port.configRate == "AUTO") ports.emplace(asic.asic, port.port);
    }
  }
  return ports;
}

std::map<Key, Touched> touchedBy(const FoundRun& run, const SwitchState& before, const SwitchState& now) {
  Collector collector;
  if (const auto after = run.after()) {
    for (const Difference& d : compare(before, *after).settings)
      collector.add(d, {d.after});
    return std::move(collector).take();
  }
  const std::vector<PlannedStep> steps = run.steps();
  for (const PlannedStep& step : steps) {
    for (const Difference& d : step.changes)
      collector.add(d, {d.before, d.after});
  }
  const std::set<Place> ports = retrained(steps, before);
  for (const Difference& d : compare(before, now).settings) {
    if (isLive(d) && ports.contains({d.place.asic.value_or(0), d.place.port.value_or(0)})) collector.add(d, {}, true);
  }
  return std::move(collector).take();
}

}  // namespace

Undoing undoingOf(const FoundRun& run, const SwitchState& now) {
  const SwitchState before = run.before();
  Undoing undoing = {.wanted = now, .conflicts = {}};
  for (const auto& [key, touched] : touchedBy(run, before, now)) {
    const SettingValue was = valueAt(before, touched.where);
    const SettingValue is = valueAt(now, touched.where);
    if (is == was || was == SettingValue()) continue;
    const bool isOurs =
        touched.anything || std::find(touched.left.begin(), touched.left.end(), is) != touched.left.end();
    if (!isOurs) {
      undoing.conflicts.push_back({touched.where.place, touched.where.parameter, touched.left.back(), is});
    }
    assign(undoing.wanted, touched.where, was);
  }
  return undoing;
}

}  // namespace serdesctl
