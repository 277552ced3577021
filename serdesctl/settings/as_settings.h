// A settings file of a switch, for people to read and change.
#pragma once

#include <string>

#include "serdesctl/state/state_json.h"

namespace serdesctl {

// Ports that share something are in one entry. Applied to the same switch the file changes nothing. What cannot be said
// there stands in comments.
std::string settingsText(const Save& save);

}  // namespace serdesctl
