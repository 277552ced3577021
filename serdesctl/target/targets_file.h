// targets.toml: names for switches.
//
//   [lab-1]
//   ssh = "admin@lab1"             # the machine; without it the command runs on this one
//   command = ["serdes"]           # its words, no shell; without it the tool's name
//   environment = { NAME = "value" }
//   lock = "/run/lock/lab-1.lock"  # on the machine where the command runs
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "serdesctl/target/child.h"

namespace serdesctl {

struct NamedTarget {
  std::string ssh;
  Command command;
  std::string lock;
};

// The files that may name targets, the user's own first.
std::vector<std::string> targetsFiles();

// Looks a name up; the first file that has it counts. Throws UsageError for a file that cannot be understood.
std::optional<NamedTarget> findNamedTarget(const std::string& name);

}  // namespace serdesctl
