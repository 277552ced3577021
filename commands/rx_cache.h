// The per-rate receive parameters that the platform applies when a port comes up at that rate.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus showRxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus setRxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus showRxParamsRawCmdHandler(int wordCount, char* words[]);
CmdStatus setRxParamsRawCmdHandler(int wordCount, char* words[]);
CmdStatus eshowRxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus esetRxParamsCacheCmdHandler(int wordCount, char* words[]);
