// The model of the current ASIC that every command addresses: ports, links, cores and port types.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "platform/platform.h"

// The model's capacity. A platform may report more; what lies beyond is counted but never walked.
inline constexpr std::uint32_t kMaxPorts = 24;
inline constexpr std::uint32_t kMaxCores = 18;
inline constexpr std::uint32_t kMaxLinks = 4;
inline constexpr std::uint32_t kMaxRegisters = 32;
inline constexpr std::uint32_t kSerDesTypeCount = 7;

// The receive or the transmit side of a port.
struct PortSide {
  std::uint32_t linkCount;
  std::uint32_t serDesType;
  std::uint32_t coreId;
};

struct PortConfig {
  PortSide rx;
  PortSide tx;
};

struct CoreConfig {
  std::uint32_t serDesType;
  std::uint32_t pllRegisterCount;
  std::uint32_t rxRegisterCount;
  std::uint32_t txRegisterCount;
  std::uint32_t rxParamCount;
  std::uint32_t txParamCount;
  std::uint32_t rxPortMask;  // ports whose receive side the core serves
  std::uint32_t txPortMask;
};

struct SerdesConfig {
  std::uint32_t useCount;  // port sides served by a core of the type
};

struct SerdesTopology {
  std::uint32_t glPortList;
  std::uint32_t xgPortList;
  std::uint32_t exgPortList;
  std::uint32_t portCount;  // as reported: may exceed kMaxPorts
  std::array<Port_HW_Config_t, kMaxPorts> portHwConfig;
  std::uint32_t asicNum;
  std::array<PortConfig, kMaxPorts> portConfig;
  std::uint32_t coreCount;  // as reported: may exceed kMaxCores
  std::array<CoreConfig, kMaxCores> coreConfig;
  std::array<SerdesConfig, kSerDesTypeCount> serdesConfig;
  std::uint32_t glCoreMask;
  std::uint32_t xgCoreMask;
  std::uint32_t exgCoreMask;
  Switch_HW_Config_t switchHwConfig;
};

extern SerdesTopology serdesTopology;

// How many ports and cores of the current ASIC, and links of a side, there are to walk.
inline std::uint32_t walkedPortCount() {
  return std::min(serdesTopology.portCount, kMaxPorts);
}
inline std::uint32_t walkedCoreCount() {
  return std::min(serdesTopology.coreCount, kMaxCores);
}
inline std::uint32_t walkedLinkCount(const PortSide& side) {
  return std::min(side.linkCount, kMaxLinks);
}

// One side of a port below kMaxPorts.
inline const PortSide& portSide(std::uint32_t port, SerDesLinkType side) {
  const PortConfig& config = serdesTopology.portConfig[port];
  return side == SERDES_LINK_RX ? config.rx : config.tx;
}

// The identifier of a port below kMaxPorts, as the platform reported it.
port_id_t portId(std::uint32_t port);

// The user port number of any ASIC port number; kNoUserPort also beyond the topology.
std::uint16_t userPort(std::uint32_t port);

// The ports of `portMask` whose side is of the type.
std::uint32_t portsOfType(SerDesType type, SerDesLinkType side, std::uint32_t portMask);

// The cores of `coreMask` that are of the type.
std::uint32_t coresOfType(SerDesType type, std::uint32_t coreMask);

// The platform's name of a type: "UNK" when it has none, cut at kMaxTypeName characters. Valid until the next call.
const char* serDesTypeName(std::uint32_t type);
inline constexpr std::size_t kMaxTypeName = 255;

// Calls `visit` with every set bit of a mask below `count`, in ascending order.
template <typename Visit>
void forEachBit(std::uint32_t mask, std::uint32_t count, Visit visit) {
  if (count < 32) mask &= (std::uint32_t{1} << count) - 1;
  for (; mask != 0; mask &= mask - 1)
    visit(static_cast<std::uint32_t>(std::countr_zero(mask)));
}

// Calls visit(port, link) for every link of every port of the mask, ports and links in ascending order.
template <typename Visit>
void forEachLink(std::uint32_t portMask, SerDesLinkType side, Visit visit) {
  forEachBit(portMask, walkedPortCount(), [&](std::uint32_t port) {
    const std::uint32_t linkCount = walkedLinkCount(portSide(port, side));
    for (std::uint32_t link = 0; link < linkCount; ++link)
      visit(port, link);
  });
}
