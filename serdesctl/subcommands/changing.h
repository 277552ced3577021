// What the subcommands share that plan and change.
#pragma once

#include <string>

#include "serdesctl/options.h"
#include "serdesctl/plan/plan_json.h"
#include "serdesctl/session/conversation.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/store/run_store.h"
#include "serdesctl/subcommands/subcommands.h"

namespace serdesctl {

// A switch as it is, and the tool that it was read with.
struct OpenedSwitch {
  OpenedSwitch(const CommonOptions& options);

  Target target;
  Conversation tool;
  Save now;
};

// What a file asks for: settings, a save, or a kept plan. `planned` is as it must be still, for a kept plan.
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

// The plan for people.
std::string planReport(const Plan& plan, const SwitchState& now);

// What is impossible, a line each.
std::string impossibleText(const Plan& plan);

// Asks, sends and says how it ended; gives the exit status. `what` is for the history.
int changeSwitch(OpenedSwitch& opened, const Options& options, const Wish& wish, const std::string& what,
                 const FoundRun* undone = nullptr);

}  // namespace serdesctl
