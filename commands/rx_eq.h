// Live receive equalisation: DFE and VGA; and what the receive caches share with it.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "arguments/cmd_status.h"
#include "commands/cells.h"
#include "display/name_tables.h"
#include "topology/serdes_topology.h"

CmdStatus showRxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus setRxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus showDFECmdHandler(int wordCount, char* words[]);
CmdStatus setDFECmdHandler(int wordCount, char* words[]);
CmdStatus setDFEStateCmdHandler(int wordCount, char* words[]);
CmdStatus showVGACmdHandler(int wordCount, char* words[]);
CmdStatus setVGACmdHandler(int wordCount, char* words[]);

// Indexed by SerDesRxDFEMode.
inline constexpr std::array<const char*, 4> dfeModeNames = {"DFE3", "DFE5", "NONE", "DFE1"};

// A keyword of dfeModeNames. Stores only on success.
CmdStatus parseDfeMode(const char* word, SerDesRxDFEMode& mode);

// Prints the "dfe mode" row, a newline neither in front of it nor behind it. valuesOf(port, link) gives a link's column
// as a std::optional<SerDesRxRateParams>; no value leaves the column blank.
template <typename ValuesOf>
void printDfeModeRow(std::uint32_t portMask, ValuesOf valuesOf) {
  std::printf("%-19s ", "dfe mode");
  printCells(portMask, SERDES_LINK_RX, valuesOf, [](const SerDesRxRateParams& values) {
    std::printf("%-4s ", nameAt(dfeModeNames, static_cast<std::uint32_t>(values.mode), "UNK"));
  });
}

// Prints the rows "pole", "peak" and "amax", a newline between them alone. A negative amax shows all its 32 bits.
template <typename ValuesOf>
void printVgaRows(std::uint32_t portMask, ValuesOf valuesOf) {
  std::printf("%-19s ", "pole");
  printCells(portMask, SERDES_LINK_RX, valuesOf,
             [](const SerDesRxRateParams& values) { std::printf("%4d ", values.p0); });
  std::printf("\n%-19s ", "peak");
  printCells(portMask, SERDES_LINK_RX, valuesOf,
             [](const SerDesRxRateParams& values) { std::printf("%4d ", values.p1); });
  std::printf("\n%-19s ", "amax");
  printCells(portMask, SERDES_LINK_RX, valuesOf,
             [](const SerDesRxRateParams& values) { std::printf("0x%02x ", static_cast<std::uint32_t>(values.p2)); });
}
