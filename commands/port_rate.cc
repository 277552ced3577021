// Commands on ports as a whole: configured speed and transmit stream.
#include "commands/port_rate.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "arguments/argument_parsers.h"
#include "arguments/port_lists.h"
#include "commands/platform_walk.h"
#include "display/name_tables.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

namespace {

static_assert(sizeof(bool) == 1);

// The platform writes the flag, and a bool that it did not make 0 or 1 must not be read as one.
int readStreamState(std::uint32_t port, std::uint8_t& enabled) {
  bool state = false;
  const int result = PortControl::TxStreamState(portId(port), &state);
  std::memcpy(&enabled, &state, sizeof enabled);
  return result;
}

}  // namespace

CmdStatus setRateCmdHandler(int wordCount, char* words[]) {
  port_speed_type rate{};
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseRate(words[1], rate); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__,
                    [&](std::uint32_t port) { return PortControl::SetPortCfgSpeed(portId(port), rate); });
}

CmdStatus setTxEnableCmdHandler(int wordCount, char* words[]) {
  std::uint32_t enable = 0;
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parseNumber(words[1], enable); status != CMD_OK) return status;
  if (const CmdStatus status = parsePorts(wordCount, words, 2, portMask); status != CMD_OK) return status;

  return onEachPort(portMask, __func__,
                    [&](std::uint32_t port) { return PortControl::TxStreamEnable(portId(port), enable != 0); });
}

CmdStatus showRateCmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  std::array<unsigned int, kMaxPorts> configured{};
  std::array<std::uint8_t, kMaxPorts> streamEnabled{};
  const CmdStatus read = onEachPort(portMask, __func__, [&](std::uint32_t port) {
    const int result = PortControl::GetPortCfgSpeed(portId(port), &configured[port]);
    return result < 0 ? result : readStreamState(port, streamEnabled[port]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show rate", portMask);
  std::printf("\n%-18s ", "config rate (gb/s)");
  forEachLink(portMask, SERDES_LINK_TX,
              [&](std::uint32_t port, std::uint32_t) { std::printf("%5s", rateName(configured[port])); });
  std::printf("\n%-18s ", "stream enable");
  forEachLink(portMask, SERDES_LINK_TX,
              [&](std::uint32_t port, std::uint32_t) { std::printf("%5s", streamEnabled[port] != 0 ? "yes" : "no"); });
  std::printf("\n");
  return CMD_OK;
}
