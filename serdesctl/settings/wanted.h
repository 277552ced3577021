// From declared settings to the state that they ask for.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "serdesctl/settings/settings_file.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// The ports that an entry selects: masks by ASIC.
using SelectedPorts = std::map<std::uint32_t, std::uint32_t>;

// Selectors look at the switch as it is. Throws UsageError where one names what the switch does not have, or selects
// nothing and must not.
std::vector<SelectedPorts> selectPorts(const SettingsFile& file, const SwitchState& now);

// The ports that something is said about, with what is said; later entries refine earlier ones. Caches and FFE and VGA
// of a link are whole: what is not said of them is as it is now, or, when the speed changes, as the cache of the new
// rate has it. Throws UsageError as above, for settings that a port cannot have, and for values that must stay and are
// not known.
SwitchState wantedState(const SettingsFile& file, const SwitchState& now);

}  // namespace serdesctl
