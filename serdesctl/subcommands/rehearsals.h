// What rehearse and apply share.
#pragma once

#include <string>

#include "serdesctl/plan/plan.h"
#include "serdesctl/subcommands/changing.h"
#include "serdesctl/twin/rehearsing.h"

namespace serdesctl {

// Tries a plan's commands on a twin of the switch as it is now; says so when one is refused or a port gets worse.
bool rehearsedWell(OpenedSwitch& opened, const CommonOptions& options, const Plan& plan, const std::string& file);

}  // namespace serdesctl
