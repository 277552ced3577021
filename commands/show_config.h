// The display of the topology.
#pragma once

#include "arguments/cmd_status.h"

// Prints ports, cores, SerDes types and port lists of the current ASIC.
CmdStatus showConfigCmdHandler(int wordCount, char* words[]);
