// The per-rate transmit parameters that the platform applies when a port runs at that rate.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus showTxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus setTxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus showTxParamsRawCmdHandler(int wordCount, char* words[]);
CmdStatus setTxParamsRawCmdHandler(int wordCount, char* words[]);
CmdStatus eshowTxParamsCacheCmdHandler(int wordCount, char* words[]);
CmdStatus esetTxParamsCacheCmdHandler(int wordCount, char* words[]);
