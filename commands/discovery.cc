// The setAsicNum command, also run once at start-up.
#include "commands/discovery.h"

#include <cstdio>

#include "arguments/word_reader.h"
#include "topology/serdes_topology.h"

namespace {

constexpr std::uint32_t kHighestAsic = 1;

void clearTopology() {
  serdesTopology.portConfig = {};
  serdesTopology.coreConfig = {};
  serdesTopology.serdesConfig = {};
  serdesTopology.glPortList = 0;
  serdesTopology.xgPortList = 0;
  serdesTopology.exgPortList = 0;
  serdesTopology.glCoreMask = 0;
  serdesTopology.xgCoreMask = 0;
  serdesTopology.exgCoreMask = 0;
}

CmdStatus discoverCore(std::uint32_t core, const char* name) {
  unsigned short firstPort = 0;
  SerDesType type{};
  unsigned int pll = 0, rx = 0, tx = 0, rxParams = 0, txParams = 0;
  const std::uint32_t asic = serdesTopology.asicNum;
  const int result = AsicControl::GetSerDesInfo(asic, core, &firstPort, &type, &pll, &rx, &tx, &rxParams, &txParams);
  if (result < 0) return platformFailure(result, name);
  CoreConfig& config = serdesTopology.coreConfig[core];
  config.serDesType = type;
  config.pllRegisterCount = pll;
  config.rxRegisterCount = rx;
  config.txRegisterCount = tx;
  config.rxParamCount = rxParams;
  config.txParamCount = txParams;
  std::printf("asicNum:%d, coreNum:%d, firstPort:%d, serDesType:%d:\n", static_cast<int>(asic), static_cast<int>(core),
              firstPort, static_cast<int>(type));
  std::printf("pllRegisterCount:%d, rxRegisterCount:%d, txRegisterCount:%d\n", static_cast<int>(pll),
              static_cast<int>(rx), static_cast<int>(tx));
  std::printf("rxParamCount:%d, txParamCount:%d\n", static_cast<int>(rxParams), static_cast<int>(txParams));
  return CMD_OK;
}

CmdStatus discoverPortSide(std::uint32_t port, SerDesLinkType side, const char* name) {
  unsigned int linkCount = 0, coreId = 0;
  SerDesType type{};
  const int result = AsicControl::GetSerDesInfo(serdesTopology.asicNum, port, side, &linkCount, &type, &coreId);
  if (result < 0) return platformFailure(result, name);
  if (coreId >= kMaxCores) return CMD_EXEC_ERROR;
  PortConfig& portConfig = serdesTopology.portConfig[port];
  (side == SERDES_LINK_RX ? portConfig.rx : portConfig.tx) = {linkCount, type, coreId};
  CoreConfig& core = serdesTopology.coreConfig[coreId];
  core.serDesType = type;
  (side == SERDES_LINK_RX ? core.rxPortMask : core.txPortMask) |= std::uint32_t{1} << port;
  if (type < kSerDesTypeCount) ++serdesTopology.serdesConfig[type].useCount;
  return CMD_OK;
}

// Enters a port into the lists of its type. Of its two cores only the transmit one counts as a core of that type.
void classifyPort(std::uint32_t port) {
  const Port_HW_Config_t& hwConfig = serdesTopology.portHwConfig[port];
  if (hwConfig.presence == 0) return;
  const std::uint32_t portBit = std::uint32_t{1} << port;
  const std::uint32_t coreBit = std::uint32_t{1} << serdesTopology.portConfig[port].tx.coreId;
  switch (hwConfig.portType) {
    case kPortTypeGl:
      serdesTopology.glPortList |= portBit;
      serdesTopology.glCoreMask |= coreBit;
      break;
    case kPortTypeXg:
      serdesTopology.xgPortList |= portBit;
      serdesTopology.xgCoreMask |= coreBit;
      break;
    case kPortTypeExg:
      serdesTopology.exgPortList |= portBit;
      serdesTopology.exgCoreMask |= coreBit;
      break;
    default:
      break;
  }
}

CmdStatus discoverPort(std::uint32_t port, const char* name) {
  const port_id_t id = {.userPort = kNoUserPort,
                        .asic = static_cast<std::uint16_t>(serdesTopology.asicNum),
                        .asicPort = static_cast<std::uint16_t>(port),
                        .unused = {}};
  // A port without a hardware record is not reported by name or code.
  if (PortControl::GetPortHwConfig(id, &serdesTopology.portHwConfig[port]) < 0) return CMD_EXEC_ERROR;
  if (const CmdStatus status = discoverPortSide(port, SERDES_LINK_RX, name); status != CMD_OK) return status;
  if (const CmdStatus status = discoverPortSide(port, SERDES_LINK_TX, name); status != CMD_OK) return status;
  classifyPort(port);
  return CMD_OK;
}

}  // namespace

CmdStatus setAsicNumCmdHandler(int, char* words[]) {
  WordReader in(2, words);  // start-up counts one of its two words
  const std::uint32_t asic = in.number();
  in.require(asic <= kHighestAsic && asic < serdesTopology.switchHwConfig.NumASICs, CMD_BAD_PARAM);
  if (in.failed()) return in.status();

  clearTopology();
  unsigned int portCount = 0, coreCount = 0;
  const int result = AsicControl::GetSerDesInfo(asic, &portCount, &coreCount);
  if (result < 0) return platformFailure(result, __func__);
  // The count held so far is tested, not the one just fetched: ports beyond the capacity are never walked anyway.
  if (serdesTopology.portCount > kMaxPorts) return CMD_EXEC_ERROR;
  serdesTopology.asicNum = asic;
  serdesTopology.portCount = portCount;
  serdesTopology.coreCount = coreCount;
  for (std::uint32_t core = 0; core < walkedCoreCount(); ++core) {
    if (const CmdStatus status = discoverCore(core, __func__); status != CMD_OK) return status;
  }
  for (std::uint32_t port = 0; port < walkedPortCount(); ++port) {
    if (const CmdStatus status = discoverPort(port, __func__); status != CMD_OK) return status;
  }
  std::printf("current asicNum:%d, coreCount:%d, portCount:%d\n", static_cast<int>(asic), static_cast<int>(coreCount),
              static_cast<int>(portCount));
  return CMD_OK;
}
