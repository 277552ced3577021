// The commands that work on the shell itself.
#pragma once

#include "arguments/cmd_status.h"

// Prints the command list and the notes.
CmdStatus helpCmdHandler(int wordCount, char* words[]);

// Runs the command that follows over and over, every two seconds: ten times in a script, until a line is typed at the
// prompt, or until the command fails.
CmdStatus loopCmdHandler(int wordCount, char* words[]);
