// Where the tool runs: the word after --target becomes a command to start, and the lock that goes with it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "serdesctl/base/files.h"
#include "serdesctl/base/waiting.h"
#include "serdesctl/target/child.h"

namespace serdesctl {

// What the command line says about it.
struct TargetWords {
  std::string target;  // empty: the tool of this machine
  std::string state;   // the file that keeps a simulated switch; empty: none
  Seconds waitForLock{0};
};

struct Target {
  std::string name;  // as messages and records call it
  Command tool;
  std::vector<std::string> reach;  // what takes the tool's command to another machine; empty: it runs on this one
  std::string lockFile;            // on the tool's machine; empty: none
  Seconds waitForLock{0};
};

// Throws UsageError for a word that names no target.
Target findTarget(const TargetWords& words);

struct Start {
  Command command;
  Fd lock;  // for the tool to inherit
};

// Takes the lock, or leaves that to the command where it runs on another machine.
Start prepareStart(const Target& target);

// What a command on another machine says on its standard error when the lock is taken there; the holder follows.
inline constexpr const char* kLockedElsewhere = "serdesctl: locked by ";

}  // namespace serdesctl
