// The head that every per-link table shares, and the separator row of register dumps.
//
// A table has one column per link, ports and links in ascending order.
#pragma once

#include <array>
#include <cstdint>

#include "platform/platform.h"
#include "topology/serdes_topology.h"

// 1 when the last header that listed the port found it running or set to a fixed rate.
extern std::array<std::uint8_t, kMaxPorts> portRunning;

// The ports whose flag is set.
std::uint32_t runningPorts();

// Room for a title that holds words as typed: no word is longer than a command line.
inline constexpr std::size_t kTitleSize = 192;

// Columns for every link of every port in the mask, counted by the transmit links.
void printPortTableHeader(const char* title, std::uint32_t portMask);

// Columns for the ports of the mask whose side is of the type, entitled by the type's name. Columns are counted by the
// transmit links also when they head a receive table.
void printLinkTableHeader(SerDesType type, SerDesLinkType side, std::uint32_t portMask);

// A row of dashes under the same ports, its columns counted by the links of the table's own side.
void printLinkSeparatorRow(SerDesType type, SerDesLinkType side, std::uint32_t portMask);
