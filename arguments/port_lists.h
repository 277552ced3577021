// Port lists of the current ASIC, and the checks of the port types that a command allows.
#pragma once

#include <cstdint>

#include "arguments/cmd_status.h"

// The words from word `first` on as a port list.
CmdStatus parsePorts(int wordCount, char* words[], int first, std::uint32_t& portMask);

// CMD_FC_ONLY when the mask holds an ethernet port.
CmdStatus requireFibreChannel(std::uint32_t portMask);

// CMD_ETHERNET_ONLY when the mask holds a fibre channel port.
CmdStatus requireEthernet(std::uint32_t portMask);

// CMD_MIXED_PORT_TYPES when the mask holds ports of two types.
CmdStatus requireOnePortType(std::uint32_t portMask);
