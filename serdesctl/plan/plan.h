// What must be sent to a switch so that it is as wanted: nothing more, and in the order in which links suffer least.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/state/compare.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// What a step does to the links of its ports.
enum class Effect {
  kNothing,
  kAdapt,    // they go on, and receivers adapt: bits may err meanwhile
  kRetrain,  // they go down and come up again
  kDown
};

const char* effectName(Effect effect);

// One command.
struct PlannedStep {
  std::uint32_t asic = 0;
  std::string command;
  std::uint32_t ports = 0;  // a mask
  Effect effect = Effect::kNothing;
  std::vector<Difference> changes;  // what follows from it is among them: a speed puts its caches into force

  bool operator==(const PlannedStep&) const = default;
};

// What is wanted and cannot be done, and the nearest that can.
struct Impossible {
  SettingPlace place;
  std::string what;  // "ffe", "slew", "dfe", "vga", "cache", "config_rate", ...
  std::string wanted;
  std::string reason;
  std::string nearest;

  bool operator==(const Impossible&) const = default;
};

struct Plan {
  std::vector<PlannedStep> steps;
  std::vector<Impossible> impossible;
  SwitchState after;  // as the switch is to be then, as far as it can be known beforehand
};

struct PlanChoice {
  bool throughCache = false;  // what has no keyword goes by the raw cache of the running rate, and the speed set anew
};

// In a wanted state, nothing means: as it is. Ports that are not in the current state are impossible.
Plan makePlan(const SwitchState& current, const SwitchState& wanted, const PlanChoice& choice);

// The steps as a script of the tool's, which begins with ASIC 0 as the current one.
std::vector<std::string> scriptOf(const std::vector<PlannedStep>& steps);

}  // namespace serdesctl
