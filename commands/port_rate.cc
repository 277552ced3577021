// Commands on ports as a whole: configured speed and transmit stream.
#include "commands/port_rate.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "arguments/keywords.h"
#include "arguments/word_reader.h"
#include "commands/platform_walk.h"
#include "display/name_tables.h"
#include "display/row.h"
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
  WordReader in(wordCount, words);
  const port_speed_type rate = in.take(parseRate);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__,
                    [&](std::uint32_t port) { return PortControl::SetPortCfgSpeed(portId(port), rate); });
}

CmdStatus setTxEnableCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const bool enable = in.number() != 0;
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  return onEachPort(ports, __func__,
                    [&](std::uint32_t port) { return PortControl::TxStreamEnable(portId(port), enable); });
}

CmdStatus showRateCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();

  std::array<unsigned int, kMaxPorts> configured{};
  std::array<std::uint8_t, kMaxPorts> streamEnabled{};
  const CmdStatus read = onEachPort(ports, __func__, [&](std::uint32_t port) {
    const int result = PortControl::GetPortCfgSpeed(portId(port), &configured[port]);
    return result < 0 ? result : readStreamState(port, streamEnabled[port]);
  });
  if (read != CMD_OK) return read;

  printPortTableHeader("show rate", ports);
  Row rates("config rate (gb/s)", 18), streams("stream enable", 18);
  forEachLink(ports, SERDES_LINK_TX, [&](std::uint32_t port, std::uint32_t) {
    rates.right(rateName(configured[port]), 5);
    streams.right(streamEnabled[port] != 0 ? "yes" : "no", 5);
  });
  std::printf("\n");
  rates.write();
  streams.write();
  return CMD_OK;
}
