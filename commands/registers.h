// Link registers: single reads and writes, and dumps.
#pragma once

#include "arguments/cmd_status.h"

CmdStatus readRxRegisterCmdHandler(int wordCount, char* words[]);
CmdStatus readTxRegisterCmdHandler(int wordCount, char* words[]);
CmdStatus writeRxRegisterCmdHandler(int wordCount, char* words[]);
CmdStatus writeTxRegisterCmdHandler(int wordCount, char* words[]);
CmdStatus showRxRegistersCmdHandler(int wordCount, char* words[]);
CmdStatus showTxRegistersCmdHandler(int wordCount, char* words[]);
