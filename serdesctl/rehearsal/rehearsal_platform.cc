// The rehearsal platform's operations.
#include "serdesctl/rehearsal/rehearsal_platform.h"

namespace serdesctl {

RehearsedSwitch rehearsedSwitch;
std::vector<RehearsedCall> rehearsedCalls;
std::string missingPlace;

namespace {

constexpr bool kChanges = true;
constexpr bool kAsks = false;

const RehearsedAsic* findAsic(unsigned asic) {
  return asic < kMostAsics ? &rehearsedSwitch.asics[asic] : nullptr;
}

std::string ofAsic(const char* what, unsigned number, unsigned asic) {
  return std::string(what) + " " + std::to_string(number) + " of ASIC " + std::to_string(asic);
}

void note(const char* operation, bool changes, unsigned asic, unsigned place, int link, std::string missing) {
  if (rehearsedCalls.empty()) missingPlace = std::move(missing);
  rehearsedCalls.push_back({operation, changes, asic, place, link});
}

std::string missingPort(unsigned asic, unsigned port) {
  const RehearsedAsic* const found = findAsic(asic);
  return found != nullptr && port < found->portCount ? "" : ofAsic("port", port, asic);
}

int onCore(const char* operation, bool changes, unsigned asic, unsigned core) {
  const RehearsedAsic* const found = findAsic(asic);
  const bool there = found != nullptr && core < found->coreCount;
  note(operation, changes, asic, core, -1, there ? "" : ofAsic("core", core, asic));
  return 0;
}

int onPort(const char* operation, bool changes, unsigned asic, unsigned port) {
  note(operation, changes, asic, port, -1, missingPort(asic, port));
  return 0;
}

int onPort(const char* operation, bool changes, port_id_t port) {
  return onPort(operation, changes, port.asic, port.asicPort);
}

// `links` says how many there are on the side that the operation works on.
int onLink(const char* operation, bool changes, unsigned asic, unsigned port, int link,
           std::uint32_t (*links)(const RehearsedPort&)) {
  std::string missing = missingPort(asic, port);
  if (missing.empty() && port < kMaxPorts && link != -1) {
    const std::uint32_t count = links(rehearsedSwitch.asics[asic].ports[port]);
    if (link < 0 || static_cast<std::uint32_t>(link) >= count) {
      missing = "link " + std::to_string(link) + " of port " + std::to_string(port);
    }
  }
  note(operation, changes, asic, port, link, std::move(missing));
  return 0;
}

std::uint32_t rxLinks(const RehearsedPort& port) {
  return port.rx.linkCount;
}
std::uint32_t txLinks(const RehearsedPort& port) {
  return port.tx.linkCount;
}
std::uint32_t anyLinks(const RehearsedPort& port) {
  return port.rx.linkCount > port.tx.linkCount ? port.rx.linkCount : port.tx.linkCount;
}

auto linksOf(SerDesLinkType side) {
  return side == SERDES_LINK_RX ? rxLinks : txLinks;
}

}  // namespace
}  // namespace serdesctl

using namespace serdesctl;  // NOLINT(google-build-using-namespace): the platform's classes are global

int AsicControl::AsicCtlOpen() {
  return 0;
}
int AsicControl::AsicCtlClose() {
  return 0;
}
int AsicControl::GetSwitchConfig(Switch_HW_Config_t* config) {
  *config = rehearsedSwitch.hardware;
  return 0;
}

int AsicControl::GetSerDesInfo(unsigned asic, unsigned* portCount, unsigned* coreCount) {
  const RehearsedAsic* const found = findAsic(asic);
  if (found == nullptr) return -1;
  *portCount = found->portCount;
  *coreCount = found->coreCount;
  return 0;
}
int AsicControl::GetSerDesInfo(unsigned asic, unsigned core, unsigned short* firstPort, SerDesType* type,
                               unsigned* pllRegisterCount, unsigned* rxRegisterCount, unsigned* txRegisterCount,
                               unsigned* rxParamCount, unsigned* txParamCount) {
  const RehearsedAsic* const found = findAsic(asic);
  if (found == nullptr || core >= kMaxCores) return -1;
  const RehearsedCore& answer = found->cores[core];
  *firstPort = answer.firstPort;
  *type = static_cast<SerDesType>(answer.serDesType);
  *pllRegisterCount = answer.pllRegisters;
  *rxRegisterCount = answer.rxRegisters;
  *txRegisterCount = answer.txRegisters;
  *rxParamCount = answer.rxParams;
  *txParamCount = answer.txParams;
  return 0;
}
int AsicControl::GetSerDesInfo(unsigned asic, unsigned port, SerDesLinkType side, unsigned* linkCount, SerDesType* type,
                               unsigned* coreId) {
  const RehearsedAsic* const found = findAsic(asic);
  if (found == nullptr || port >= kMaxPorts) return -1;
  const PortSide& answer = side == SERDES_LINK_RX ? found->ports[port].rx : found->ports[port].tx;
  *linkCount = answer.linkCount;
  *type = static_cast<SerDesType>(answer.serDesType);
  *coreId = answer.coreId;
  return 0;
}
const char* AsicControl::ToString(SerDesType type) {
  return type < kSerDesTypeCount ? rehearsedSwitch.typeNames[type].c_str() : nullptr;
}

int AsicControl::ReadSerDesLinkRegister(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned char,
                                        unsigned short* values, unsigned char count) {
  for (unsigned char i = 0; i < count; ++i)
    values[i] = 0;
  return onLink("ReadSerDesLinkRegister", kAsks, asic, port, link, linksOf(side));
}
int AsicControl::WriteSerDesLinkRegister(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned char,
                                         unsigned short) {
  return onLink("WriteSerDesLinkRegister", kChanges, asic, port, link, linksOf(side));
}
int AsicControl::ReadSerDesPLLRegister(unsigned asic, unsigned core, unsigned char, unsigned short* values,
                                       unsigned char count) {
  for (unsigned char i = 0; i < count; ++i)
    values[i] = 0;
  return onCore("ReadSerDesPLLRegister", kAsks, asic, core);
}
int AsicControl::WriteSerDesPLLRegister(unsigned asic, unsigned core, unsigned char, unsigned short) {
  return onCore("WriteSerDesPLLRegister", kChanges, asic, core);
}

int AsicControl::SetSerDesTxFFE(unsigned asic, unsigned port, int link, SerDesTxFFEMode, unsigned char, signed char,
                                signed char, signed char, signed char) {
  return onLink("SetSerDesTxFFE", kChanges, asic, port, link, txLinks);
}
int AsicControl::GetSerDesTxFFE(unsigned asic, unsigned port, int link, SerDesTxFFEMode* mode, unsigned char* k,
                                signed char* c0, signed char* c1, signed char* c2, signed char* c3) {
  *mode = FFE_NONE;
  *k = 0;
  *c0 = *c1 = *c2 = *c3 = 0;
  return onLink("GetSerDesTxFFE", kAsks, asic, port, link, txLinks);
}
int AsicControl::SetSerDesTxSlew(unsigned asic, unsigned port, int link, bool, SerDesTxSlewRate) {
  return onLink("SetSerDesTxSlew", kChanges, asic, port, link, txLinks);
}
int AsicControl::GetSerDesTxSlew(unsigned asic, unsigned port, int link, bool* enable, SerDesTxSlewRate* slew) {
  *enable = false;
  *slew = SLEW_24PS;
  return onLink("GetSerDesTxSlew", kAsks, asic, port, link, txLinks);
}
int AsicControl::SetSerDesTxRateParams(unsigned asic, unsigned port, port_speed_type, SerDesTxRateParams) {
  return onPort("SetSerDesTxRateParams", kChanges, asic, port);
}
int AsicControl::GetSerDesTxRateParams(unsigned asic, unsigned port, port_speed_type, SerDesTxRateParams* params) {
  *params = {};
  return onPort("GetSerDesTxRateParams", kAsks, asic, port);
}

int AsicControl::SetSerDesRxDFE(unsigned asic, unsigned port, int link, SerDesRxDFEMode) {
  return onLink("SetSerDesRxDFE", kChanges, asic, port, link, rxLinks);
}
int AsicControl::GetSerDesRxDFE(unsigned asic, unsigned port, int link, SerDesRxDFEMode* mode) {
  *mode = DFE_NONE;
  return onLink("GetSerDesRxDFE", kAsks, asic, port, link, rxLinks);
}
int AsicControl::SetSerDesRxVGA(unsigned asic, unsigned port, int link, signed char, signed char, signed char) {
  return onLink("SetSerDesRxVGA", kChanges, asic, port, link, rxLinks);
}
int AsicControl::GetSerDesRxVGA(unsigned asic, unsigned port, int link, signed char* pole, signed char* peak,
                                signed char* amax) {
  *pole = *peak = *amax = 0;
  return onLink("GetSerDesRxVGA", kAsks, asic, port, link, rxLinks);
}
int AsicControl::SetSerDesRxDFEState(unsigned asic, unsigned port, int link, SerDesRxDFEState*) {
  return onLink("SetSerDesRxDFEState", kChanges, asic, port, link, rxLinks);
}
int AsicControl::GetSerDesRxDFEStats(unsigned asic, unsigned port, int link, SerDesRxDFEStats* stats) {
  *stats = {};
  return onLink("GetSerDesRxDFEStats", kAsks, asic, port, link, rxLinks);
}
int AsicControl::SetSerDesRxRateParams(unsigned asic, unsigned port, port_speed_type, SerDesRxRateParams) {
  return onPort("SetSerDesRxRateParams", kChanges, asic, port);
}
int AsicControl::GetSerDesRxRateParams(unsigned asic, unsigned port, port_speed_type, SerDesRxRateParams* params) {
  *params = {};
  return onPort("GetSerDesRxRateParams", kAsks, asic, port);
}

int AsicControl::SetSerDesTestOption(unsigned asic, unsigned port, int link, SerDesTestOption, int) {
  return onLink("SetSerDesTestOption", kChanges, asic, port, link, anyLinks);
}
int AsicControl::GetSerDesTestStatus(unsigned asic, unsigned port, int link, SerDesTestOption, int* status) {
  *status = 0;
  return onLink("GetSerDesTestStatus", kAsks, asic, port, link, anyLinks);
}

int PortControl::PortCtlOpen() {
  return 0;
}
int PortControl::PortCtlClose() {
  return 0;
}
int PortControl::GetPortHwConfig(port_id_t port, Port_HW_Config_t* config) {
  const RehearsedAsic* const found = findAsic(port.asic);
  if (found == nullptr || port.asicPort >= kMaxPorts) return -1;
  const RehearsedPort& answer = found->ports[port.asicPort];
  *config = {};
  config->portId = {.userPort = answer.userPort, .asic = port.asic, .asicPort = port.asicPort, .unused = {}};
  config->presence = answer.portType != 0 ? 1 : 0;
  config->portType = answer.portType;
  return 0;
}

int PortControl::GetPortInfo(port_id_t port, port_info_t, unsigned long* value) {
  *value = kPortStateRunning;
  return onPort("GetPortInfo", kAsks, port);
}
int PortControl::SetPortCfgSpeed(port_id_t port, unsigned) {
  return onPort("SetPortCfgSpeed", kChanges, port);
}
int PortControl::GetPortCfgSpeed(port_id_t port, unsigned* speed) {
  *speed = SPEED_8G;
  return onPort("GetPortCfgSpeed", kAsks, port);
}
int PortControl::GetPortSpeed(port_id_t port, unsigned* speed) {
  *speed = SPEED_8G;
  return onPort("GetPortSpeed", kAsks, port);
}
int PortControl::GetMediaHwFcXmtrType(port_id_t port, MediaHwFcXmtrType* type) {
  *type = MEDIA_OPTICAL;
  return onPort("GetMediaHwFcXmtrType", kAsks, port);
}
int PortControl::TxStreamEnable(port_id_t port, bool) {
  return onPort("TxStreamEnable", kChanges, port);
}
int PortControl::TxStreamState(port_id_t port, bool* enabled) {
  *enabled = true;
  return onPort("TxStreamState", kAsks, port);
}
int PortControl::GetFrameStatCntrs(port_id_t port, drv_counters_t* counters) {
  *counters = {};
  return onPort("GetFrameStatCntrs", kAsks, port);
}
int PortControl::ClrFrameStatCntrs(port_id_t port) {
  return onPort("ClrFrameStatCntrs", kChanges, port);
}
