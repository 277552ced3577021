// A session of the utility from start to end.
#pragma once

#include "arguments/cmd_status.h"

// Opens the platform, reads and prints the switch configuration and selects ASIC 0. Reports its own failures.
CmdStatus openSerdes(int argc, char* argv[]);

// Closes both platform controls, the second also when the first fails; the first result that is not 0.
[[nodiscard]] int closeSerdes();

// Runs one session: at the prompt without arguments, else through the script files named. Returns the exit status.
int runSession(int argc, char* argv[]);

// Ends the command stream.
CmdStatus exitCmdHandler(int wordCount, char* words[]);
