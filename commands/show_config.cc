// The showConfig command. Asks the platform for the names of SerDes types and for nothing else.
#include "commands/show_config.h"

#include <cstdio>

#include "topology/serdes_topology.h"

namespace {

void printPort(std::uint32_t port) {
  const PortConfig& config = serdesTopology.portConfig[port];
  std::printf("portNum %-3d: ", static_cast<int>(port));
  std::printf("RX(linkCount:%d, %s, coreId:%d) ", static_cast<int>(config.rx.linkCount),
              serDesTypeName(config.rx.serDesType), static_cast<int>(config.rx.coreId));
  std::printf("TX(linkCount:%d, %s, coreId:%d)\n", static_cast<int>(config.tx.linkCount),
              serDesTypeName(config.tx.serDesType), static_cast<int>(config.tx.coreId));
}

void printServedPort(std::uint32_t port, const char* sides) {
  const int user = portId(port).userPort;
  if (user == kNoUserPort) {
    std::printf("P%d_%s(N/A) ", static_cast<int>(port), sides);
  } else {
    std::printf("P%d_%s(%d) ", static_cast<int>(port), sides, user);
  }
}

void printCore(std::uint32_t core) {
  const CoreConfig& config = serdesTopology.coreConfig[core];
  std::printf("coreId %-3d: ", static_cast<int>(core));
  std::printf("%-19s ", serDesTypeName(config.serDesType));
  forEachBit(config.rxPortMask | config.txPortMask, walkedPortCount(), [&](std::uint32_t port) {
    const bool rx = (config.rxPortMask >> port & 1) != 0;
    const bool tx = (config.txPortMask >> port & 1) != 0;
    printServedPort(port, rx && tx ? "TX_RX" : rx ? "RX" : "TX");
  });
  std::printf("\n");
}

}  // namespace

CmdStatus showConfigCmdHandler(int, char*[]) {
  std::printf("current asicNum:%d, coreCount:%d, portCount:%d\n", static_cast<int>(serdesTopology.asicNum),
              static_cast<int>(serdesTopology.coreCount), static_cast<int>(serdesTopology.portCount));
  std::printf("\nportConfig:\n");
  for (std::uint32_t port = 0; port < walkedPortCount(); ++port)
    printPort(port);
  std::printf("\ncoreConfig:\n");
  for (std::uint32_t core = 0; core < walkedCoreCount(); ++core)
    printCore(core);
  std::printf("\nserdesConfig:\n");
  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    std::printf("%s useCount:%d\n", serDesTypeName(type), static_cast<int>(serdesTopology.serdesConfig[type].useCount));
  }
  std::printf("\nglPortList: 0x%08x\n", serdesTopology.glPortList);
  std::printf("\nxgPortList: 0x%08x\n", serdesTopology.xgPortList);
  std::printf("\nexgPortList: 0x%08x\n", serdesTopology.exgPortList);
  return CMD_OK;
}
