// Transmit cache commands: by keyword for fibre channel ports, by number for an interface, and for ethernet ports.
// Cached numbers are kept whole, unlike live settings.
#include "commands/tx_cache.h"

#include <array>
#include <cstdio>
#include <optional>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/rate_cache.h"
#include "commands/tx_eq.h"
#include "topology/serdes_topology.h"

CmdStatus showTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireFibreChannel(portMask); status != CMD_OK) return status;

  PortRecords<SerDesTxRateParams> records{};
  if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s", words[1]);
  printPortTableHeader(title.data(), portMask);
  const auto valuesOf = [&](std::uint32_t port, std::uint32_t) { return std::optional(records[port]); };
  printFFERows(portMask, valuesOf);
  printSlewRow(portMask, valuesOf);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  FFEArguments ffe{};
  SerDesTxSlewRate slew{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseFFEArguments(words + 2, ffe); status != CMD_OK) return status;
  if (const CmdStatus status = parseSlewRate(words[8], slew); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 9, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireFibreChannel(portMask); status != CMD_OK) return status;

  const SerDesTxRateParams params = {.power = static_cast<std::int32_t>(ffe.numbers[0]),
                                     .slew = static_cast<std::int32_t>(slew),
                                     .mode = static_cast<std::int32_t>(ffe.mode),
                                     .p0 = static_cast<std::int32_t>(ffe.numbers[1]),
                                     .p1 = static_cast<std::int32_t>(ffe.numbers[2]),
                                     .p2 = static_cast<std::int32_t>(ffe.numbers[3]),
                                     .p3 = static_cast<std::int32_t>(ffe.numbers[4])};
  return writeCaches(portMask, rate, params, __func__);
}

CmdStatus showTxParamsRawCmdHandler(int wordCount, char* words[]) {
  CacheInterface interface {};
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseInterface(words[1], interface); status != CMD_OK) return status;
  if (const CmdStatus status = parseRate(words[2], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 3, portMask); status != CMD_OK) return status;

  PortRecords<SerDesTxRateParams> records{};
  if (interface == INTERFACE_ASIC) {
    if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;
  }

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s interface at rate %s", words[1], words[2]);
  printPortTableHeader(title.data(), portMask);
  std::printf("\n%-19s ", "Power");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::power);
  std::printf("\n%-19s ", "Slew");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::slew);
  std::printf("\n%-19s ", "Mode");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::mode);
  std::printf("\n%-19s ", "P0");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::p0);
  std::printf("\n%-19s ", "P1");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::p1);
  std::printf("\n%-19s ", "P2");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::p2);
  std::printf("\n%-19s ", "P3");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::p3);
  std::printf("\n");
  return CMD_OK;
}

// The numbers go in record order, power first; the help text names them otherwise.
CmdStatus setTxParamsRawCmdHandler(int wordCount, char* words[]) {
  CacheInterface interface {};
  port_speed_type rate{};
  std::array<std::uint32_t, 7> numbers{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseInterface(words[1], interface); status != CMD_OK) return status;
  if (const CmdStatus status = parseRate(words[2], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 3, numbers); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 10, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireOnePortType(portMask); status != CMD_OK) return status;

  // The other interfaces have no cache behind them: naming them is allowed and changes nothing.
  if (interface != INTERFACE_ASIC) return CMD_OK;
  const SerDesTxRateParams params = {.power = static_cast<std::int32_t>(numbers[0]),
                                     .slew = static_cast<std::int32_t>(numbers[1]),
                                     .mode = static_cast<std::int32_t>(numbers[2]),
                                     .p0 = static_cast<std::int32_t>(numbers[3]),
                                     .p1 = static_cast<std::int32_t>(numbers[4]),
                                     .p2 = static_cast<std::int32_t>(numbers[5]),
                                     .p3 = static_cast<std::int32_t>(numbers[6])};
  return writeCaches(portMask, rate, params, __func__);
}

CmdStatus eshowTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireEthernet(portMask); status != CMD_OK) return status;

  PortRecords<SerDesTxRateParams> records{};
  if (const CmdStatus status = readCaches(portMask, rate, records, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s", words[1]);
  printPortTableHeader(title.data(), portMask);
  std::printf("\n%-19s ", "k (power)");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::power);
  std::printf("\n%-19s ", "p0 (pre-emphasis)");
  printCacheCells(portMask, SERDES_LINK_TX, records, &SerDesTxRateParams::p0);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus esetTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::array<std::uint32_t, 2> numbers{};  // power, pre-emphasis
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 2, numbers); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 4, portMask); status != CMD_OK) return status;
  if (const CmdStatus status = requireEthernet(portMask); status != CMD_OK) return status;

  const SerDesTxRateParams params = {.power = static_cast<std::int32_t>(numbers[0]),
                                     .slew = SLEW_UNKNOWN,
                                     .mode = FFE_NONE,
                                     .p0 = static_cast<std::int32_t>(numbers[1]),
                                     .p1 = 0,
                                     .p2 = 0,
                                     .p3 = 0};
  return writeCaches(portMask, rate, params, __func__);
}
