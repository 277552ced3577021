// Common PLL registers of SerDes cores.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus showPLLRegistersCmdHandler(int wordCount, char* words[]);
CmdStatus writePLLRegisterCmdHandler(int wordCount, char* words[]);
CmdStatus readPLLRegisterCmdHandler(int wordCount, char* words[]);
