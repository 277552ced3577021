// Commands that set and show the live DFE and VGA of the receive links.
#include "commands/rx_eq.h"

#include <array>
#include <cstdio>

#include "arguments/keywords.h"
#include "arguments/word_reader.h"
#include "display/name_tables.h"
#include "display/table_header.h"

namespace {

// setDFEState takes this many words; its row in the command table admits others so that the port is judged first.
constexpr int kDfeStateWords = 14;

struct Vga {
  signed char pole;
  signed char peak;
  signed char amax;
};

// Only the low 8 bits of each number reach the platform, which judges them.
Vga takeVga(WordReader& in) {
  Vga vga{};
  for (signed char* number : {&vga.pole, &vga.peak, &vga.amax})
    *number = in.number<signed char>();
  return vga;
}

int setDFE(std::uint32_t port, SerDesRxDFEMode mode) {
  return AsicControl::SetSerDesRxDFE(serdesTopology.asicNum, port, kAllLinks, mode);
}

int setVGA(std::uint32_t port, const Vga& vga) {
  return AsicControl::SetSerDesRxVGA(serdesTopology.asicNum, port, kAllLinks, vga.pole, vga.peak, vga.amax);
}

int getDFE(std::uint32_t port, std::uint32_t link, SerDesRxRateParams& params) {
  SerDesRxDFEMode mode{};
  const int result = AsicControl::GetSerDesRxDFE(serdesTopology.asicNum, port, static_cast<int>(link), &mode);
  params.mode = static_cast<std::int32_t>(mode);
  return result;
}

int getVGA(std::uint32_t port, std::uint32_t link, SerDesRxRateParams& params) {
  Vga vga{};
  const int result = AsicControl::GetSerDesRxVGA(serdesTopology.asicNum, port, static_cast<int>(link), &vga.pole,
                                                 &vga.peak, &vga.amax);
  params.p0 = std::int32_t{vga.pole};
  params.p1 = std::int32_t{vga.peak};
  params.p2 = std::int32_t{vga.amax};
  return result;
}

int getRxParams(std::uint32_t port, std::uint32_t link, SerDesRxRateParams& params) {
  const int result = getVGA(port, link, params);
  return result < 0 ? result : getDFE(port, link, params);
}

// Of two SerDes types the DFE state can be loaded. The port count is compared as a signed number; nothing may be
// indexed with a port beyond the model.
bool takesDfeState(std::uint32_t port) {
  if (port >= kMaxPorts || static_cast<std::int32_t>(port) >= static_cast<std::int32_t>(serdesTopology.portCount)) {
    return false;
  }
  const std::uint32_t type = portSide(port, SERDES_LINK_RX).serDesType;
  return type == 2 || type == 5;
}

}  // namespace

void printDfeModeRow(const RxTable& table) {
  printRow(table, Row("dfe mode"), [](Row& row, const SerDesRxRateParams& link) {
    row.left(nameAt(dfeModeNames, static_cast<std::uint32_t>(link.mode), "UNK"), 4);
    row.text(" ");
  });
}

void printVgaRows(const RxTable& table) {
  printRow(table, "pole", &SerDesRxRateParams::p0);
  printRow(table, "peak", &SerDesRxRateParams::p1);
  printRow(table, Row("amax"), [](Row& row, const SerDesRxRateParams& link) {
    std::array<char, 12> cell;  // a negative amax shows all its 32 bits
    std::snprintf(cell.data(), cell.size(), "0x%02x ", static_cast<std::uint32_t>(link.p2));
    row.text(cell.data());
  });
}

CmdStatus showRxParamsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  RxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getRxParams, __func__); status != CMD_OK) return status;

  printPortTableHeader("show rx params", table.ports);
  table.filled = runningPorts();
  printDfeModeRow(table);
  printVgaRows(table);
  return CMD_OK;
}

CmdStatus setRxParamsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const SerDesRxDFEMode mode = in.take(parseDfeMode);
  const Vga vga = takeVga(in);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) {
    const int result = setDFE(port, mode);
    return result < 0 ? result : setVGA(port, vga);
  });
}

CmdStatus showDFECmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  RxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getDFE, __func__); status != CMD_OK) return status;

  printPortTableHeader("show DFE", table.ports);
  printDfeModeRow(table);
  return CMD_OK;
}

CmdStatus setDFECmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const SerDesRxDFEMode mode = in.take(parseDfeMode);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) { return setDFE(port, mode); });
}

CmdStatus setDFEStateCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t port = in.number();
  const int link = in.number<int>();
  in.require(takesDfeState(port), CMD_BAD_PARAM);
  in.require(wordCount >= kDfeStateWords, CMD_TOO_FEW_ARGS);
  in.require(wordCount <= kDfeStateWords, CMD_TOO_MANY_ARGS);
  SerDesRxDFEState state{};
  state.mode = in.take(parseDfeMode);
  for (std::int16_t& tap : state.h)
    tap = static_cast<std::int16_t>(in.take(parseNumber16));
  if (in.failed()) return in.status();

  const int result = AsicControl::SetSerDesRxDFEState(serdesTopology.asicNum, port, link, &state);
  return result < 0 ? platformFailure(result, __func__) : CMD_OK;
}

CmdStatus showVGACmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  RxTable table = {.ports = in.ports()};
  if (in.failed()) return in.status();
  if (const CmdStatus status = readTable(table, getVGA, __func__); status != CMD_OK) return status;

  printPortTableHeader("show VGA", table.ports);
  printVgaRows(table);
  return CMD_OK;
}

CmdStatus setVGACmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const Vga vga = takeVga(in);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__, [&](std::uint32_t port) { return setVGA(port, vga); });
}
