// What the subcommands share that plan and change.
#pragma once

#include <string>

#include "serdesctl/session/conversation.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/store/run_store.h"
#include "serdesctl/subcommands/options.h"
#include "serdesctl/subcommands/subcommands.h"
#include "serdesctl/subcommands/wishes.h"

namespace serdesctl {

// A switch as it is, and the tool that it was read with.
struct OpenedSwitch {
  OpenedSwitch(const CommonOptions& options);

  Target target;
  Conversation tool;
  Save now;
};

// Asks, sends and says how it ended; gives the exit status. `what` is for the history.
int changeSwitch(OpenedSwitch& opened, const Options& options, const Wish& wish, const std::string& what,
                 const FoundRun* undone = nullptr);

}  // namespace serdesctl
