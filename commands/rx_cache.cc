// Receive cache commands: by keyword for fibre channel ports, by number for an interface, and for ethernet ports.
// Cached numbers are kept whole, unlike live settings.
#include "commands/rx_cache.h"

#include <array>
#include <cstdio>
#include <optional>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/rate_cache.h"
#include "commands/rx_eq.h"
#include "topology/serdes_topology.h"

CmdStatus showRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireFibreChannel(portMask); status != CMD_OK) return status;

  PortRecords<SerDesRxRateParams> records{};
  if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s", words[1]);
  printPortTableHeader(title.data(), portMask);
  const auto valuesOf = [&](std::uint32_t port, std::uint32_t) { return std::optional(records[port]); };
  printDfeModeRow(portMask, valuesOf);
  std::printf("\n");
  printVgaRows(portMask, valuesOf);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  SerDesRxDFEMode mode{};
  std::array<std::uint32_t, 3> numbers{};  // p0, p1, p2
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseDfeMode(words[2], mode); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 3, numbers); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 6, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireFibreChannel(portMask); status != CMD_OK) return status;

  const SerDesRxRateParams params = {.mode = static_cast<std::int32_t>(mode),
                                     .p0 = static_cast<std::int32_t>(numbers[0]),
                                     .p1 = static_cast<std::int32_t>(numbers[1]),
                                     .p2 = static_cast<std::int32_t>(numbers[2]),
                                     .p3 = 0};
  return writeCaches(portMask, rate, params, __func__);
}

CmdStatus showRxParamsRawCmdHandler(int wordCount, char* words[]) {
  CacheInterface interface {};
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseInterface(words[1], interface); status != CMD_OK) return status;
  if (const CmdStatus status = parseRate(words[2], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 3, portMask); status != CMD_OK) return status;

  PortRecords<SerDesRxRateParams> records{};
  if (interface == INTERFACE_ASIC) {
    if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;
  }

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s interface and rate %s", words[1], words[2]);
  printPortTableHeader(title.data(), portMask);
  std::printf("%-19s ", "Mode");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::mode);
  std::printf("\n%-19s ", "P0");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::p0);
  std::printf("\n%-19s ", "P1");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::p1);
  std::printf("\n%-19s ", "P2");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::p2);
  std::printf("\n%-19s ", "P3");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::p3);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setRxParamsRawCmdHandler(int wordCount, char* words[]) {
  CacheInterface interface {};
  port_speed_type rate{};
  std::array<std::uint32_t, 5> numbers{};  // mode, p0, p1, p2, p3
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseInterface(words[1], interface); status != CMD_OK) return status;
  if (const CmdStatus status = parseRate(words[2], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 3, numbers); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 8, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireOnePortType(portMask); status != CMD_OK) return status;

  // The other interfaces have no cache behind them: naming them is allowed and changes nothing.
  if (interface != INTERFACE_ASIC) return CMD_OK;
  const SerDesRxRateParams params = {.mode = static_cast<std::int32_t>(numbers[0]),
                                     .p0 = static_cast<std::int32_t>(numbers[1]),
                                     .p1 = static_cast<std::int32_t>(numbers[2]),
                                     .p2 = static_cast<std::int32_t>(numbers[3]),
                                     .p3 = static_cast<std::int32_t>(numbers[4])};
  return writeCaches(portMask, rate, params, __func__);
}

CmdStatus eshowRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireEthernet(portMask); status != CMD_OK) return status;

  PortRecords<SerDesRxRateParams> records{};
  if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s", words[1]);
  printPortTableHeader(title.data(), portMask);
  std::printf("%-19s ", "cdr mode");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::mode);
  std::printf("\n%-19s ", "eq mode");
  printCacheCells(portMask, SERDES_LINK_RX, records, &SerDesRxRateParams::p0);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus esetRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::array<std::uint32_t, 2> numbers{};  // CDR mode, equaliser mode
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 2, numbers); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 4, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireEthernet(portMask); status != CMD_OK) return status;

  const SerDesRxRateParams params = {.mode = static_cast<std::int32_t>(numbers[0]),
                                     .p0 = static_cast<std::int32_t>(numbers[1]),
                                     .p1 = 0,
                                     .p2 = 0,
                                     .p3 = 0};
  return writeCaches(portMask, rate, params, __func__);
}
