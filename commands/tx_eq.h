// Live transmit equalisation: FFE and slew; and what the transmit caches share with it.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "arguments/cmd_status.h"
#include "commands/cells.h"
#include "display/name_tables.h"
#include "topology/serdes_topology.h"

CmdStatus showFFECmdHandler(int wordCount, char* words[]);
CmdStatus setFFECmdHandler(int wordCount, char* words[]);
CmdStatus showSlewCmdHandler(int wordCount, char* words[]);
CmdStatus setSlewCmdHandler(int wordCount, char* words[]);
CmdStatus showTxParamsCmdHandler(int wordCount, char* words[]);
CmdStatus setTxParamsCmdHandler(int wordCount, char* words[]);

// Indexed by SerDesTxFFEMode.
inline constexpr std::array<const char*, 4> ffeModeNames = {"FFENone", "FFE2", "FFE3", "FFE4"};

// Indexed by SerDesTxSlewRate. The last name stands for an unknown rate and is never typed.
inline constexpr std::array<const char*, 8> slewRateNames = {"24ps", "30ps", "36ps",  "50ps",
                                                             "60ps", "75ps", "100ps", "UNK"};
inline constexpr std::array<const char*, 8> slewRateShortNames = {"24", "30", "36", "50", "60", "75", "100", "UNK"};

// "FFE2", "FFE3" or "FFE4"; the mode without FFE has no keyword. Stores only on success.
CmdStatus parseFFEMode(const char* word, SerDesTxFFEMode& mode);

// "24" or "24ps" to "100" or "100ps". Stores only on success.
CmdStatus parseSlewRate(const char* word, SerDesTxSlewRate& slew);

// The six words of an FFE setting: the mode keyword, then power and c0 to c3 as whole numbers.
struct FFEArguments {
  SerDesTxFFEMode mode;
  std::array<std::uint32_t, 5> numbers;  // k, c0, c1, c2, c3
};
CmdStatus parseFFEArguments(char* const* words, FFEArguments& arguments);

// Prints the rows from "ffe mode" to "c3 (postcursor)". valuesOf(port, link) gives a link's column as a
// std::optional<SerDesTxRateParams>; no value leaves the column blank. The first row has no newline in front of it and
// the last none behind it.
template <typename ValuesOf>
void printFFERows(std::uint32_t portMask, ValuesOf valuesOf) {
  // "FFENone" overruns its cell and shifts the rest of the row; scripts know it that way.
  std::printf("%-19s ", "ffe mode");
  printCells(portMask, SERDES_LINK_TX, valuesOf, [](const SerDesTxRateParams& values) {
    std::printf("%-4s ", nameAt(ffeModeNames, static_cast<std::uint32_t>(values.mode), "UNK"));
  });
  std::printf("\n%-19s ", "k (power)");
  printCells(portMask, SERDES_LINK_TX, valuesOf,
             [](const SerDesTxRateParams& values) { std::printf("%4d ", values.power); });
  std::printf("\n%-19s ", "c0 (precursor)");
  printCells(portMask, SERDES_LINK_TX, valuesOf,
             [](const SerDesTxRateParams& values) { std::printf("%4d ", values.p0); });
  std::printf("\n%-19s ", "c1 (main)");
  printCells(portMask, SERDES_LINK_TX, valuesOf,
             [](const SerDesTxRateParams& values) { std::printf("%4d ", values.p1); });
  std::printf("\n%-19s ", "c2 (postcursor)");
  printCells(portMask, SERDES_LINK_TX, valuesOf,
             [](const SerDesTxRateParams& values) { std::printf("%4d ", values.p2); });
  std::printf("\n%-19s ", "c3 (postcursor)");
  printCells(portMask, SERDES_LINK_TX, valuesOf,
             [](const SerDesTxRateParams& values) { std::printf("%4d ", values.p3); });
}

// Prints the "slew rate (ps)" row in the same manner, a newline in front of it.
template <typename ValuesOf>
void printSlewRow(std::uint32_t portMask, ValuesOf valuesOf) {
  std::printf("\n%-18s ", "slew rate (ps)");
  printCells(portMask, SERDES_LINK_TX, valuesOf, [](const SerDesTxRateParams& values) {
    std::printf("%5s", nameAt(slewRateShortNames, static_cast<std::uint32_t>(values.slew), "UNK"));
  });
}
