// What could not be read of a switch.
#pragma once

#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// It is taken to be as predicted.
void fillIn(SwitchState& known, const SwitchState& predicted);

}  // namespace serdesctl
