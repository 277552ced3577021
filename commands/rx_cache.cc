// Receive cache commands: by keyword for fibre channel ports, by number for an interface, and for ethernet ports.
// Cached numbers are kept whole, unlike live settings.
#include "commands/rx_cache.h"

#include <array>
#include <cstdio>

#include "arguments/keywords.h"
#include "arguments/port_lists.h"
#include "arguments/word_reader.h"
#include "commands/rx_eq.h"
#include "display/table_header.h"

namespace {

// Writes the record to every port of the mask.
CmdStatus writeCaches(std::uint32_t ports, port_speed_type rate, const SerDesRxRateParams& params,
                      const char* handler) {
  return onEachPort(ports, handler, [&](std::uint32_t port) {
    return AsicControl::SetSerDesRxRateParams(serdesTopology.asicNum, port, rate, params);
  });
}

// Reads the record of every port of the table, whatever its link count, into all of its columns.
CmdStatus readCaches(RxTable& table, port_speed_type rate, const char* handler) {
  return onEachPort(table.ports, handler, [&](std::uint32_t port) {
    SerDesRxRateParams params{};
    const int result = AsicControl::GetSerDesRxRateParams(serdesTopology.asicNum, port, rate, &params);
    table.records[port].fill(params);
    return result;
  });
}

}  // namespace

CmdStatus showRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  RxTable table = {.ports = in.ports(requireFibreChannel)};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s", words[1]);
  printPortTableHeader(title.data(), table.ports);
  printDfeModeRow(table);
  printVgaRows(table);
  return CMD_OK;
}

CmdStatus setRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  SerDesRxRateParams params{};
  params.mode = static_cast<std::int32_t>(in.take(parseDfeMode));
  for (std::int32_t* number : {&params.p0, &params.p1, &params.p2})
    *number = in.number<std::int32_t>();
  const std::uint32_t ports = in.ports(requireFibreChannel);
  if (in.failed()) return in.status();

  return writeCaches(ports, rate, params, __func__);
}

CmdStatus showRxParamsRawCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const CacheInterface interface = in.take(parseInterface);
  const port_speed_type rate = in.take(parseRate);
  RxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (interface == INTERFACE_ASIC) {
    if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;
  }

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s interface and rate %s", words[1], words[2]);
  printPortTableHeader(title.data(), table.ports);
  printRow(table, "Mode", &SerDesRxRateParams::mode);
  printRow(table, "P0", &SerDesRxRateParams::p0);
  printRow(table, "P1", &SerDesRxRateParams::p1);
  printRow(table, "P2", &SerDesRxRateParams::p2);
  printRow(table, "P3", &SerDesRxRateParams::p3);
  return CMD_OK;
}

CmdStatus setRxParamsRawCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const CacheInterface interface = in.take(parseInterface);
  const port_speed_type rate = in.take(parseRate);
  SerDesRxRateParams params{};
  for (std::int32_t* number : {&params.mode, &params.p0, &params.p1, &params.p2, &params.p3})
    *number = in.number<std::int32_t>();
  const std::uint32_t ports = in.ports(requireOnePortType);
  if (in.failed()) return in.status();

  // The other interfaces have no cache behind them: naming them is allowed and changes nothing.
  return interface == INTERFACE_ASIC ? writeCaches(ports, rate, params, __func__) : CMD_OK;
}

CmdStatus eshowRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  RxTable table = {.ports = in.ports(requireEthernet)};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show rx cache for %s", words[1]);
  printPortTableHeader(title.data(), table.ports);
  printRow(table, "cdr mode", &SerDesRxRateParams::mode);
  printRow(table, "eq mode", &SerDesRxRateParams::p0);
  return CMD_OK;
}

CmdStatus esetRxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  SerDesRxRateParams params{};
  params.mode = in.number<std::int32_t>();  // CDR mode
  params.p0 = in.number<std::int32_t>();    // equaliser mode
  const std::uint32_t ports = in.ports(requireEthernet);
  if (in.failed()) return in.status();

  return writeCaches(ports, rate, params, __func__);
}
