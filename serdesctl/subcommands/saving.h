// What the subcommands share that read a whole switch.
#pragma once

#include <functional>
#include <string>

#include "serdesctl/state/capture.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/subcommands/options.h"

namespace serdesctl {

// Chooses what to read of a switch by its hardware.
using ChooseCapture = std::function<CaptureChoice(const SwitchText& hardware)>;

// Reads the target, in a session of its own, and complains of what could not be read.
Save captureSave(const CommonOptions& options, const ChooseCapture& choose);

// A save from a file or, without one, the whole target as it is now.
Save saveOrSwitch(const CommonOptions& options, const std::string& file, bool registers);

// "sim as it was at 2025-11-21T21:13:05Z"
std::string originText(const Origin& origin);

}  // namespace serdesctl
