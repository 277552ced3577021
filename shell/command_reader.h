// Reads command lines from a stream, cuts them into words and runs them.
#pragma once

#include <cstdint>
#include <cstdio>

#include "arguments/cmd_status.h"

// The most words a command line may have, the command word included.
inline constexpr int kMaxWords = 24;

// The row of cmdTable whose command is being run. With each change currentCommandSets follows its isSetCmd.
extern std::uint32_t currentCommandIndex;

// True in a session at the prompt, false while scripts run.
extern bool interactive;

// Runs commands from `input` until exit or end of input and returns 0. Prompts and status lines go to `output`, what
// the commands print goes to standard output.
int runCommandStream(std::FILE* input, std::FILE* output);

// Looks up and runs one command. "?" or "help" as word 1 prints the command's help and blanks that word.
CmdStatus dispatchCommand(int wordCount, char* words[]);
