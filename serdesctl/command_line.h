// The command line: a row per subcommand, from which parsing, help, manual and completion are made.
#pragma once

#include "serdesctl/subcommands/options.h"

namespace CLI {
class App;
}

namespace serdesctl {

// A subcommand: its word, what --help says about it, its own options, and what it does. `perform` gives the exit
// status.
struct Subcommand {
  const char* name;
  const char* description;
  void (*addOptions)(CLI::App& app, Options& options);
  int (*perform)(const Options& options);
};

// Parses the command line and runs the subcommand it names. Throws UsageError.
int runCommandLine(int argc, char* argv[]);

}  // namespace serdesctl
