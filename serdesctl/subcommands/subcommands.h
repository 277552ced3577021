// What the subcommands do. Each is thin: it puts together what stands below and prints.
#pragma once

#include "serdesctl/options.h"

namespace serdesctl {

int performRun(const Options& options);
int performJournal(const Options& options);

// The target that the command line names, with the lock's patience.
Target chosenTarget(const CommonOptions& options);

}  // namespace serdesctl
