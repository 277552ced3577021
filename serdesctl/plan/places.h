// Settings of a state, one by one, by the place that a difference names.
#pragma once

#include <cstdint>

#include "serdesctl/state/compare.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// What stands there; nothing for a place that the state does not have.
SettingValue valueAt(const SwitchState& state, const Difference& where);

// Gives the setting this value; a place that the state does not have is left out.
void assign(SwitchState& state, const Difference& where, const SettingValue& value);

// Whether two differences are about the same setting.
bool sameSetting(const Difference& a, const Difference& b);

// Whether it is a live setting of a link.
bool isLive(const Difference& where);

// The parts of a state; null where there is none.
AsicState* findAsic(SwitchState& state, std::uint32_t asic);
const AsicState* findAsic(const SwitchState& state, std::uint32_t asic);
PortState* findPort(AsicState& asic, std::uint32_t port);
const PortState* findPort(const AsicState& asic, std::uint32_t port);

}  // namespace serdesctl
