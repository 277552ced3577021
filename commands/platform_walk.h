// Walks over the selected ports and links, as all commands do them: ports and links in ascending order, the first
// negative platform result is reported under the handler's name and ends the command.
#pragma once

#include <array>
#include <cstdint>

#include "arguments/cmd_status.h"
#include "topology/serdes_topology.h"

// Values kept per link of an ASIC.
template <typename Value>
using PerLink = std::array<std::array<Value, kMaxLinks>, kMaxPorts>;

// Calls operation(port), which returns a platform result, for every port of the mask.
template <typename Operation>
CmdStatus onEachPort(std::uint32_t portMask, const char* handler, Operation operation) {
  const std::uint32_t portCount = walkedPortCount();
  for (std::uint32_t port = 0; port < portCount; ++port) {
    if ((portMask >> port & 1) == 0) continue;
    const int result = operation(port);
    if (result < 0) return platformFailure(result, handler);
  }
  return CMD_OK;
}

// Calls operation(port, link), which returns a platform result, for every link of every port of the mask.
template <typename Operation>
CmdStatus onEachLink(std::uint32_t portMask, SerDesLinkType side, const char* handler, Operation operation) {
  return onEachPort(portMask, handler, [&](std::uint32_t port) {
    const std::uint32_t linkCount = walkedLinkCount(portSide(port, side));
    for (std::uint32_t link = 0; link < linkCount; ++link) {
      const int result = operation(port, link);
      if (result < 0) return result;
    }
    return 0;
  });
}
