// SerDes self-tests, and clearing of error counters.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus runTestCmdHandler(int wordCount, char* words[]);
CmdStatus getTestCmdHandler(int wordCount, char* words[]);
CmdStatus clearErrorsCmdHandler(int wordCount, char* words[]);
