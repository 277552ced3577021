// Questions to the topology that several commands ask.
#include "topology/serdes_topology.h"

#include <array>
#include <cstring>

SerdesTopology serdesTopology{};

port_id_t portId(std::uint32_t port) {
  return serdesTopology.portHwConfig[port].portId;
}

std::uint16_t userPort(std::uint32_t port) {
  return port < walkedPortCount() ? portId(port).userPort : kNoUserPort;
}

std::uint32_t portsOfType(SerDesType type, SerDesLinkType side, std::uint32_t portMask) {
  std::uint32_t ports = 0;
  forEachBit(portMask, walkedPortCount(), [&](std::uint32_t port) {
    if (portSide(port, side).serDesType == type) ports |= std::uint32_t{1} << port;
  });
  return ports;
}

std::uint32_t coresOfType(SerDesType type, std::uint32_t coreMask) {
  std::uint32_t cores = 0;
  forEachBit(coreMask, walkedCoreCount(), [&](std::uint32_t core) {
    if (serdesTopology.coreConfig[core].serDesType == type) cores |= std::uint32_t{1} << core;
  });
  return cores;
}

const char* serDesTypeName(std::uint32_t type) {
  static std::array<char, kMaxTypeName + 1> cut;
  const char* name = AsicControl::ToString(static_cast<SerDesType>(type));
  if (name == nullptr) return "UNK";
  const std::size_t length = strnlen(name, kMaxTypeName);
  std::memcpy(cut.data(), name, length);
  cut[length] = '\0';
  return cut.data();
}
