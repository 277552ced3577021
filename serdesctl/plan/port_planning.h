// What one port needs: operations that become commands together with those of other ports.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "serdesctl/plan/plan.h"

namespace serdesctl {

// The order in which links suffer least.
enum class Phase { kCaches, kSpeedMeanwhile, kSpeed, kLive, kCachesBack, kStreams };

struct Operation {
  Phase phase = Phase::kCaches;
  std::string words;  // the command without its ports
  std::uint32_t port = 0;
  Effect effect = Effect::kNothing;
  std::function<void(PortState&)> change;  // what it makes of the port
};

struct PortPlan {
  std::vector<Operation> operations;
  std::vector<Impossible> impossible;
};

PortPlan planPort(const AsicState& asic, const PortState& current, const PortState& wanted, const PlanChoice& choice);

}  // namespace serdesctl
