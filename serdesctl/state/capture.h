// Reads what the tool can set of a switch. Nothing is set but the current ASIC.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

#include "serdesctl/session/conversation.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

struct CaptureChoice {
  std::optional<std::set<std::uint32_t>> asics{};                  // nothing: all that the tool can select
  std::function<std::uint32_t(const ConfigText& config)> ports{};  // of each of them, as a mask; empty: all
  bool registers = false;
  bool statistics = true;
};

// ASIC 0 must be the current one, and is again afterwards. What the tool refuses to show is `unread`, and the rest is
// read all the same. Throws UsageError for ASICs that the switch does not have.
SwitchState capture(Conversation& tool, const CaptureChoice& choice);

// The ASICs and ports of a state, as far as the switch has them.
CaptureChoice portsOfState(const SwitchState& state, const SwitchText& hardware);

}  // namespace serdesctl
