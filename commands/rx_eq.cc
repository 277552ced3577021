// Commands that set and show the live DFE and VGA of the receive links.
#include "commands/rx_eq.h"

#include <optional>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/platform_walk.h"
#include "display/table_header.h"

namespace {

// setDFEState takes this many words; its row in the command table admits others so that the port is judged first.
constexpr int kDfeStateWords = 14;

// The SerDes types whose DFE state can be loaded.
constexpr std::uint32_t kDfeStateTypes[] = {2, 5};

struct RxLinkValues {
  SerDesRxDFEMode mode;
  signed char pole;
  signed char peak;
  signed char amax;
};

SerDesRxRateParams tableColumn(const RxLinkValues& values) {
  return {
      .mode = static_cast<std::int32_t>(values.mode), .p0 = values.pole, .p1 = values.peak, .p2 = values.amax, .p3 = 0};
}

using VgaNumbers = std::array<std::uint32_t, 3>;  // pole, peak, amax

int setDFE(std::uint32_t port, SerDesRxDFEMode mode) {
  return AsicControl::SetSerDesRxDFE(serdesTopology.asicNum, port, kAllLinks, mode);
}

// Only the low 8 bits of each number reach the platform, which judges them.
int setVGA(std::uint32_t port, const VgaNumbers& vga) {
  const auto [pole, peak, amax] = vga;
  return AsicControl::SetSerDesRxVGA(serdesTopology.asicNum, port, kAllLinks, static_cast<signed char>(pole),
                                     static_cast<signed char>(peak), static_cast<signed char>(amax));
}

int getDFE(std::uint32_t port, std::uint32_t link, RxLinkValues& values) {
  return AsicControl::GetSerDesRxDFE(serdesTopology.asicNum, port, static_cast<int>(link), &values.mode);
}

int getVGA(std::uint32_t port, std::uint32_t link, RxLinkValues& values) {
  return AsicControl::GetSerDesRxVGA(serdesTopology.asicNum, port, static_cast<int>(link), &values.pole, &values.peak,
                                     &values.amax);
}

// The port count is compared as a signed number; nothing may be indexed with a port beyond the model.
bool hasReceiveSide(std::uint32_t port) {
  return port < kMaxPorts && static_cast<std::int32_t>(port) < static_cast<std::int32_t>(serdesTopology.portCount);
}

bool takesDfeState(std::uint32_t port) {
  const std::uint32_t type = serdesTopology.portConfig[port].rx.serDesType;
  return type == kDfeStateTypes[0] || type == kDfeStateTypes[1];
}

CmdStatus parseDfeState(char* words[], SerDesRxDFEState& state) {
  if (const CmdStatus status = parseDfeMode(words[3], state.mode); status != CMD_OK) return status;
  for (std::size_t i = 0; i < kDfeTapCount; ++i) {
    std::uint16_t value = 0;
    if (const CmdStatus status = parseNumber16(words[4 + i], value); status != CMD_OK) return status;
    state.h[i] = static_cast<std::int16_t>(value);
  }
  return CMD_OK;
}

}  // namespace

CmdStatus parseDfeMode(const char* word, SerDesRxDFEMode& mode) {
  return parseKeyword(word, dfeModeNames, {}, mode);
}

CmdStatus showRxParamsCmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<RxLinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_RX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    const int result = getVGA(port, link, values[port][link]);
    return result < 0 ? result : getDFE(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show rx params", portMask);
  // The columns of ports that do not run stay blank.
  const auto valuesOf = [&](std::uint32_t port, std::uint32_t link) -> std::optional<SerDesRxRateParams> {
    if (portRunning[port] == 0) return std::nullopt;
    return tableColumn(values[port][link]);
  };
  printDfeModeRow(portMask, valuesOf);
  std::printf("\n");
  printVgaRows(portMask, valuesOf);
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setRxParamsCmdHandler(int wordCount, char* words[]) {
  SerDesRxDFEMode mode{};
  VgaNumbers vga{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseDfeMode(words[1], mode); status != CMD_OK) return status;
  if (const CmdStatus status = parseNumbers(words + 2, vga); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 5, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) {
    const int result = setDFE(port, mode);
    return result < 0 ? result : setVGA(port, vga);
  });
}

CmdStatus showDFECmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<RxLinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_RX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    return getDFE(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show DFE", portMask);
  printDfeModeRow(
      portMask, [&](std::uint32_t port, std::uint32_t link) { return std::optional(tableColumn(values[port][link])); });
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setDFECmdHandler(int wordCount, char* words[]) {
  SerDesRxDFEMode mode{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseDfeMode(words[1], mode); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) { return setDFE(port, mode); });
}

CmdStatus setDFEStateCmdHandler(int wordCount, char* words[]) {
  std::uint32_t port = 0;
  std::uint32_t link = 0;
  if (const CmdStatus status = parseNumber(words[1], port); status != CMD_OK) return status;
  if (!hasReceiveSide(port)) return CMD_BAD_PARAM;
  if (const CmdStatus status = parseNumber(words[2], link); status != CMD_OK) return status;
  if (!takesDfeState(port)) return CMD_BAD_PARAM;
  if (wordCount < kDfeStateWords) return CMD_TOO_FEW_ARGS;
  if (wordCount > kDfeStateWords) return CMD_TOO_MANY_ARGS;
  SerDesRxDFEState state{};
  if (const CmdStatus status = parseDfeState(words, state); status != CMD_OK) return status;

  const int result = AsicControl::SetSerDesRxDFEState(serdesTopology.asicNum, port, static_cast<int>(link), &state);
  return result < 0 ? platformFailure(result, __func__) : CMD_OK;
}

CmdStatus showVGACmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<RxLinkValues> values{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_RX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    return getVGA(port, link, values[port][link]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show VGA", portMask);
  printVgaRows(portMask,
               [&](std::uint32_t port, std::uint32_t link) { return std::optional(tableColumn(values[port][link])); });
  std::printf("\n");
  return CMD_OK;
}

CmdStatus setVGACmdHandler(int wordCount, char* words[]) {
  VgaNumbers vga{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseNumbers(words + 1, vga); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 4, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__, [&](std::uint32_t port) { return setVGA(port, vga); });
}
