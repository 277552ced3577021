// Commands that set and show the live FFE and slew of the transmit links.
#include "commands/tx_eq.h"

#include <cstdio>

#include "arguments/keywords.h"
#include "display/name_tables.h"
#include "display/table_header.h"

namespace {

// Only the low 8 bits of each number reach the platform, which judges them.
int setFFE(std::uint32_t port, const SerDesTxRateParams& ffe) {
  return AsicControl::SetSerDesTxFFE(serdesTopology.asicNum, port, kAllLinks, static_cast<SerDesTxFFEMode>(ffe.mode),
                                     static_cast<unsigned char>(ffe.power), static_cast<signed char>(ffe.p0),
                                     static_cast<signed char>(ffe.p1), static_cast<signed char>(ffe.p2),
                                     static_cast<signed char>(ffe.p3));
}

int setSlew(std::uint32_t port, SerDesTxSlewRate slew) {
  return AsicControl::SetSerDesTxSlew(serdesTopology.asicNum, port, kAllLinks, true, slew);
}

int getFFE(std::uint32_t port, std::uint32_t link, SerDesTxRateParams& params) {
  SerDesTxFFEMode mode{};
  unsigned char k = 0;
  signed char c0 = 0, c1 = 0, c2 = 0, c3 = 0;
  const int result =
      AsicControl::GetSerDesTxFFE(serdesTopology.asicNum, port, static_cast<int>(link), &mode, &k, &c0, &c1, &c2, &c3);
  params = {.power = k, .slew = {}, .mode = static_cast<std::int32_t>(mode), .p0 = c0, .p1 = c1, .p2 = c2, .p3 = c3};
  return result;
}

int getSlew(std::uint32_t port, std::uint32_t link, SerDesTxRateParams& params) {
  bool enable = false;  // written by the platform, never read
  SerDesTxSlewRate slew{};
  const int result = AsicControl::GetSerDesTxSlew(serdesTopology.asicNum, port, static_cast<int>(link), &enable, &slew);
  params.slew = static_cast<std::int32_t>(slew);
  return result;
}

int getTxParams(std::uint32_t port, std::uint32_t link, SerDesTxRateParams& params) {
  const int result = getFFE(port, link, params);
  return result < 0 ? result : getSlew(port, link, params);
}

}  // namespace

SerDesTxRateParams takeFFE(WordReader& in) {
  SerDesTxRateParams ffe{};
  ffe.mode = static_cast<std::int32_t>(in.take(parseFFEMode));
  for (std::int32_t* number : {&ffe.power, &ffe.p0, &ffe.p1, &ffe.p2, &ffe.p3})
    *number = in.number<std::int32_t>();
  return ffe;
}

void printFFERows(const TxTable& table) {
  // "FFENone" overruns its cell and shifts the rest of the row; scripts know it that way.
  printRow(table, Row("ffe mode"), [](Row& row, const SerDesTxRateParams& link) {
    row.left(nameAt(ffeModeNames, static_cast<std::uint32_t>(link.mode), "UNK"), 4);
    row.text(" ");
  });
  printRow(table, "k (power)", &SerDesTxRateParams::power);
  printRow(table, "c0 (precursor)", &SerDesTxRateParams::p0);
  printRow(table, "c1 (main)", &SerDesTxRateParams::p1);
  printRow(table, "c2 (postcursor)", &SerDesTxRateParams::p2);
  printRow(table, "c3 (postcursor)", &SerDesTxRateParams::p3);
}

void printSlewRow(const TxTable& table) {
  printRow(table, Row("slew rate (ps)", 18), [](Row& row, const SerDesTxRateParams& link) {
    row.right(slewRateName(static_cast<std::uint32_t>(link.slew)), 5);
  });
}

CmdStatus showFFECmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  TxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getFFE, __func__); status != CMD_OK) return status;

  printPortTableHeader("show FFE", table.ports);
  printFFERows(table);
  return CMD_OK;
}

CmdStatus setFFECmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const SerDesTxRateParams ffe = takeFFE(in);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) { return setFFE(port, ffe); });
}

CmdStatus showSlewCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  TxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getSlew, __func__); status != CMD_OK) return status;

  printPortTableHeader("show slew", table.ports);
  std::printf("\n");  // unlike in the FFE table
  printSlewRow(table);
  return CMD_OK;
}

CmdStatus setSlewCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const SerDesTxSlewRate slew = in.take(parseSlewRate);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) { return setSlew(port, slew); });
}

CmdStatus showTxParamsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  TxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getTxParams, __func__); status != CMD_OK) return status;

  printPortTableHeader("show tx params", table.ports);
  table.filled = runningPorts();
  printFFERows(table);
  printSlewRow(table);
  return CMD_OK;
}

CmdStatus setTxParamsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const SerDesTxRateParams ffe = takeFFE(in);
  const SerDesTxSlewRate slew = in.take(parseSlewRate);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) {
    const int result = setFFE(port, ffe);
    return result < 0 ? result : setSlew(port, slew);
  });
}
