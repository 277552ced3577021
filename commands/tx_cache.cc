// Transmit cache commands: by keyword for fibre channel ports, by number for an interface, and for ethernet ports.
// Cached numbers are kept whole, unlike live settings.
#include "commands/tx_cache.h"

#include <array>
#include <cstdio>

#include "arguments/keywords.h"
#include "arguments/port_lists.h"
#include "commands/tx_eq.h"
#include "display/table_header.h"

namespace {

// Writes the record to every port of the mask.
CmdStatus writeCaches(std::uint32_t ports, port_speed_type rate, const SerDesTxRateParams& params,
                      const char* handler) {
  return onEachPort(ports, handler, [&](std::uint32_t port) {
    return AsicControl::SetSerDesTxRateParams(serdesTopology.asicNum, port, rate, params);
  });
}

// Reads the record of every port of the table, whatever its link count, into all of its columns.
CmdStatus readCaches(TxTable& table, port_speed_type rate, const char* handler) {
  return onEachPort(table.ports, handler, [&](std::uint32_t port) {
    SerDesTxRateParams params{};
    const int result = AsicControl::GetSerDesTxRateParams(serdesTopology.asicNum, port, rate, &params);
    table.records[port].fill(params);
    return result;
  });
}

}  // namespace

CmdStatus showTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  TxTable table = {.ports = in.ports(requireFibreChannel)};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s", words[1]);
  printPortTableHeader(title.data(), table.ports);
  printFFERows(table);
  printSlewRow(table);
  return CMD_OK;
}

CmdStatus setTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  SerDesTxRateParams params = takeFFE(in);
  params.slew = static_cast<std::int32_t>(in.take(parseSlewRate));
  const std::uint32_t ports = in.ports(requireFibreChannel);
  if (in.failed()) return in.status();

  return writeCaches(ports, rate, params, __func__);
}

CmdStatus showTxParamsRawCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const CacheInterface interface = in.take(parseInterface);
  const port_speed_type rate = in.take(parseRate);
  TxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (interface == INTERFACE_ASIC) {
    if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;
  }

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s interface at rate %s", words[1], words[2]);
  printPortTableHeader(title.data(), table.ports);
  std::printf("\n");
  printRow(table, "Power", &SerDesTxRateParams::power);
  printRow(table, "Slew", &SerDesTxRateParams::slew);
  printRow(table, "Mode", &SerDesTxRateParams::mode);
  printRow(table, "P0", &SerDesTxRateParams::p0);
  printRow(table, "P1", &SerDesTxRateParams::p1);
  printRow(table, "P2", &SerDesTxRateParams::p2);
  printRow(table, "P3", &SerDesTxRateParams::p3);
  return CMD_OK;
}

CmdStatus setTxParamsRawCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const CacheInterface interface = in.take(parseInterface);
  const port_speed_type rate = in.take(parseRate);
  // The numbers go in record order, power first; the help text names them otherwise.
  SerDesTxRateParams params{};
  for (std::int32_t* number :
       {&params.power, &params.slew, &params.mode, &params.p0, &params.p1, &params.p2, &params.p3})
    *number = in.number<std::int32_t>();
  const std::uint32_t ports = in.ports(requireOnePortType);
  if (in.failed()) return in.status();

  // The other interfaces have no cache behind them: naming them is allowed and changes nothing.
  return interface == INTERFACE_ASIC ? writeCaches(ports, rate, params, __func__) : CMD_OK;
}

CmdStatus eshowTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  TxTable table = {.ports = in.ports(requireEthernet)};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readCaches(table, rate, __func__); status != CMD_OK) return status;

  std::array<char, kTitleSize> title;
  std::snprintf(title.data(), title.size(), "show tx cache for %s", words[1]);
  printPortTableHeader(title.data(), table.ports);
  std::printf("\n");
  printRow(table, "k (power)", &SerDesTxRateParams::power);
  printRow(table, "p0 (pre-emphasis)", &SerDesTxRateParams::p0);
  return CMD_OK;
}

CmdStatus esetTxParamsCacheCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  const SerDesTxRateParams params = {.power = in.number<std::int32_t>(),
                                     .slew = SLEW_UNKNOWN,
                                     .mode = FFE_NONE,
                                     .p0 = in.number<std::int32_t>(),  // pre-emphasis
                                     .p1 = 0,
                                     .p2 = 0,
                                     .p3 = 0};
  const std::uint32_t ports = in.ports(requireEthernet);
  if (in.failed()) return in.status();

  return writeCaches(ports, rate, params, __func__);
}
