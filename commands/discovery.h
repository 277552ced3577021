// Selecting an ASIC: asks the platform for its cores and ports and builds the topology.
#pragma once

#include "arguments/cmd_status.h"

// Builds the topology of the ASIC that word 1 names and prints its cores. After a failure the topology is partly
// filled: what was stored before stays.
CmdStatus setAsicNumCmdHandler(int wordCount, char* words[]);
