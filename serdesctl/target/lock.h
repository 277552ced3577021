// One serdesctl at a time per switch: a lock by flock on a file of the machine where the tool runs. The tool inherits
// it, so that it is held exactly as long as the tool runs.
#pragma once

#include <string>

#include "serdesctl/base/files.h"
#include "serdesctl/base/waiting.h"

namespace serdesctl {

// Takes the lock and writes `holder` into its file; throws LockedError, naming the holder, when it is not free in time.
Fd takeLock(const std::string& fileName, const std::string& holder, Seconds wait);

// Who this process is, for others who find the lock taken.
std::string lockHolder();

// The folder of lock files on this machine.
std::string lockFolder();

}  // namespace serdesctl
