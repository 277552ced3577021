// Port speed and transmit stream.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus setRateCmdHandler(int wordCount, char* words[]);
CmdStatus setTxEnableCmdHandler(int wordCount, char* words[]);
CmdStatus showRateCmdHandler(int wordCount, char* words[]);
