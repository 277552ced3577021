// What files ask for, as plans for a switch.
#pragma once

#include <string>

#include "serdesctl/plan/plan.h"
#include "serdesctl/subcommands/options.h"

namespace serdesctl {

// What a file asks for: settings, a save, or a kept plan. `plan` is as it must be still, for a kept plan.
struct Wish {
  std::string source;
  SwitchState wanted;
  bool throughCache = false;
  Plan plan;
};

// Reads the file and makes a plan of it. Throws UsageError for a file that is not right, for one that is of another
// switch, and for a kept plan that the switch has left behind.
Wish readWish(const std::string& file, const SwitchState& now, bool throughCache);

// Of the ports alone that the options name.
Wish readRestoration(const ChangeOptions& options, const SwitchState& now);

}  // namespace serdesctl
