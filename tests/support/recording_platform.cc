// The recording platform's operations. Each enters itself first, then answers if it is not to fail.
#include "tests/support/recording_platform.h"

#include <cstring>
#include <sstream>

namespace recording {

Platform platform;

void Platform::fail(const std::string& operation, int code, unsigned ordinal, bool forever) {
  faults.push_back({.operation = operation, .code = code, .remaining = ordinal, .forever = forever});
}

void Platform::failCall(unsigned ordinal, int code, bool forever) {
  fail("", code, ordinal, forever);
}

int Platform::record(const std::string& operation, const std::string& arguments) {
  calls.push_back(operation + "(" + arguments + ")");
  int result = failing ? failing() : 0;
  for (Fault& fault : faults) {
    if (!fault.operation.empty() && fault.operation != operation) continue;
    if (fault.remaining > 0) --fault.remaining;
    if (fault.remaining == 0 && fault.code != 0) {
      result = fault.code;
      if (!fault.forever) fault.code = 0;
    }
  }
  return result;
}

void resetPlatform() {
  platform = Platform{};
  platform.switchConfig.NumSlots = 1;
  platform.switchConfig.NumUserPorts = 24;
  platform.switchConfig.NumAuxPorts = 2;
  platform.switchConfig.NumASICs = 2;
  platform.portCount = 12;
  platform.coreCount = 6;
  platform.typeNames = {{0, "TYPE-0"}, {1, "TYPE-1"}, {2, "TYPE-2"}, {3, "TYPE-3"},
                        {4, "TYPE-4"}, {5, "TYPE-5"}, {6, "TYPE-6"}};
  for (unsigned p = 0; p < kPorts; ++p) {
    Port& port = platform.ports[p];
    if (p < 6) {
      port.rx = port.tx = {.linkCount = 1, .type = 2, .core = p / 4};
    } else if (p < 8) {
      port.rx = port.tx = {.linkCount = 4, .type = 3, .core = p - 4};
    } else {
      port.rx = {.linkCount = 1, .type = 4, .core = 4};
      port.tx = {.linkCount = 1, .type = 4, .core = 5};
    }
    const auto user = static_cast<std::uint16_t>(p == 3 || p == 9 ? kNoUserPort : 100 + p);
    port.hwConfig.portId = {.userPort = user, .asic = 0, .asicPort = static_cast<std::uint16_t>(p), .unused = {}};
    port.hwConfig.presence = 1;
    port.hwConfig.portType = p < 6 ? kPortTypeGl : p < 8 ? kPortTypeXg : kPortTypeExg;
  }
  for (unsigned c = 0; c < kCores; ++c) {
    platform.cores[c].firstPort = static_cast<unsigned short>(c * 4);
    platform.cores[c].type = c < 2 ? 2 : c < 4 ? 3 : 4;
  }
  platform.linkRegister = [](unsigned port, int link, SerDesLinkType, unsigned address) {
    return static_cast<unsigned short>(port << 8 | static_cast<unsigned>(link) << 4 | address);
  };
  platform.pllRegister = [](unsigned core, unsigned address) {
    return static_cast<unsigned short>(core << 8 | address);
  };
}

namespace {

template <typename... Values>
std::string listed(Values... values) {
  std::ostringstream text;
  const char* separator = "";
  ((text << separator << +values, separator = ", "), ...);
  return text.str();
}

std::string named(port_id_t id) {
  return listed(id.userPort) + "/" + listed(id.asic) + "/" + listed(id.asicPort);
}

std::string with(port_id_t id, const std::string& rest) {
  return named(id) + ", " + rest;
}

// Gives a call's result, after its values have been corrupted if they are to be.
template <typename... Values>
int answered(int result, Values*... values) {
  if (result >= 0 && platform.corrupt) (platform.corrupt(std::as_writable_bytes(std::span(values, 1))), ...);
  return result;
}

// The port that an identifier names, or any other one for an identifier that names none.
Port& portOf(port_id_t id) {
  return platform.ports[id.asicPort % kPorts];
}

Port& portOf(unsigned port) {
  return platform.ports[port % kPorts];
}

TxLink& txLinkOf(unsigned port, int link) {
  return portOf(port).txLinks[static_cast<unsigned>(link) % kLinks];
}

RxLink& rxLinkOf(unsigned port, int link) {
  return portOf(port).rxLinks[static_cast<unsigned>(link) % kLinks];
}

void store(WordPairCounter& counter, std::uint64_t value) {
  counter.high = static_cast<std::uint32_t>(value >> 32);
  counter.low = static_cast<std::uint32_t>(value);
}

}  // namespace
}  // namespace recording

using recording::answered;
using recording::listed;
using recording::named;
using recording::platform;
using recording::portOf;
using recording::rxLinkOf;
using recording::txLinkOf;
using recording::with;

int AsicControl::AsicCtlOpen() {
  return platform.record("AsicCtlOpen", "");
}

int AsicControl::AsicCtlClose() {
  return platform.record("AsicCtlClose", "");
}

int AsicControl::GetSwitchConfig(Switch_HW_Config_t* config) {
  const int result = platform.record("GetSwitchConfig", "");
  if (result >= 0 && !platform.silent) *config = platform.switchConfig;
  return answered(result, config);
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int* portCount, unsigned int* coreCount) {
  const int result = platform.record("GetSerDesInfo", listed(asic));
  if (result < 0 || platform.silent) return result;
  *portCount = platform.portCount;
  *coreCount = platform.coreCount;
  return answered(result, portCount, coreCount);
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int core, unsigned short* firstPort, SerDesType* type,
                               unsigned int* pllRegisterCount, unsigned int* rxRegisterCount,
                               unsigned int* txRegisterCount, unsigned int* rxParamCount, unsigned int* txParamCount) {
  const int result = platform.record("GetSerDesInfo", listed(asic, core));
  if (result < 0 || platform.silent) return result;
  const recording::Core& answer = platform.cores[core % recording::kCores];
  *firstPort = answer.firstPort;
  *type = static_cast<SerDesType>(answer.type);
  *pllRegisterCount = answer.pllRegisters;
  *rxRegisterCount = answer.rxRegisters;
  *txRegisterCount = answer.txRegisters;
  *rxParamCount = answer.rxParams;
  *txParamCount = answer.txParams;
  return answered(result, firstPort, type, pllRegisterCount, rxRegisterCount, txRegisterCount, rxParamCount,
                  txParamCount);
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int port, SerDesLinkType side, unsigned int* linkCount,
                               SerDesType* type, unsigned int* coreId) {
  const int result = platform.record("GetSerDesInfo", listed(asic, port) + (side == SERDES_LINK_RX ? ", rx" : ", tx"));
  if (result < 0 || platform.silent) return result;
  const recording::Side& answer = side == SERDES_LINK_RX ? portOf(port).rx : portOf(port).tx;
  *linkCount = answer.linkCount;
  *type = static_cast<SerDesType>(answer.type);
  *coreId = answer.core;
  return answered(result, linkCount, type, coreId);
}

const char* AsicControl::ToString(SerDesType type) {
  (void)platform.record("ToString", listed(static_cast<std::uint32_t>(type)));
  const auto name = platform.typeNames.find(type);
  return name == platform.typeNames.end() ? nullptr : name->second.c_str();
}

int AsicControl::ReadSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                        unsigned char address, unsigned short* values, unsigned char count) {
  const int result = platform.record("ReadSerDesLinkRegister", listed(asic, port, link, side, address, count));
  if (result < 0 || platform.silent) return result;
  for (unsigned i = 0; i < count; ++i)
    values[i] = platform.linkRegister(port, link, side, address + i);
  if (platform.corrupt) platform.corrupt(std::as_writable_bytes(std::span(values, count)));
  return result;
}

int AsicControl::WriteSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                         unsigned char address, unsigned short value) {
  return platform.record("WriteSerDesLinkRegister", listed(asic, port, link, side, address, value));
}

int AsicControl::ReadSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                       unsigned short* values, unsigned char count) {
  const int result = platform.record("ReadSerDesPLLRegister", listed(asic, core, address, count));
  if (result < 0 || platform.silent) return result;
  for (unsigned i = 0; i < count; ++i)
    values[i] = platform.pllRegister(core, address + i);
  if (platform.corrupt) platform.corrupt(std::as_writable_bytes(std::span(values, count)));
  return result;
}

int AsicControl::WriteSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                        unsigned short value) {
  return platform.record("WriteSerDesPLLRegister", listed(asic, core, address, value));
}

int AsicControl::SetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode mode, unsigned char k,
                                signed char c0, signed char c1, signed char c2, signed char c3) {
  return platform.record("SetSerDesTxFFE", listed(asic, port, link, mode, k, c0, c1, c2, c3));
}

int AsicControl::GetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode* mode, unsigned char* k,
                                signed char* c0, signed char* c1, signed char* c2, signed char* c3) {
  const int result = platform.record("GetSerDesTxFFE", listed(asic, port, link));
  if (result < 0 || platform.silent) return result;
  const recording::TxLink& answer = txLinkOf(port, link);
  *mode = static_cast<SerDesTxFFEMode>(answer.mode);
  *k = answer.k;
  *c0 = answer.c[0];
  *c1 = answer.c[1];
  *c2 = answer.c[2];
  *c3 = answer.c[3];
  return answered(result, mode, k, c0, c1, c2, c3);
}

int AsicControl::SetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool enable, SerDesTxSlewRate slew) {
  return platform.record("SetSerDesTxSlew", listed(asic, port, link, enable, slew));
}

int AsicControl::GetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool* enable, SerDesTxSlewRate* slew) {
  const int result = platform.record("GetSerDesTxSlew", listed(asic, port, link));
  if (result < 0 || platform.silent) return result;
  *enable = true;
  *slew = static_cast<SerDesTxSlewRate>(txLinkOf(port, link).slew);
  return answered(result, enable, slew);
}

int AsicControl::SetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesTxRateParams p) {
  return platform.record("SetSerDesTxRateParams",
                         listed(asic, port, rate, p.power, p.slew, p.mode, p.p0, p.p1, p.p2, p.p3));
}

int AsicControl::GetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesTxRateParams* params) {
  const int result = platform.record("GetSerDesTxRateParams", listed(asic, port, rate));
  if (result >= 0 && !platform.silent) *params = portOf(port).txCache;
  return answered(result, params);
}

int AsicControl::SetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode mode) {
  return platform.record("SetSerDesRxDFE", listed(asic, port, link, mode));
}

int AsicControl::GetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode* mode) {
  const int result = platform.record("GetSerDesRxDFE", listed(asic, port, link));
  if (result >= 0 && !platform.silent) *mode = static_cast<SerDesRxDFEMode>(rxLinkOf(port, link).mode);
  return answered(result, mode);
}

int AsicControl::SetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char pole, signed char peak,
                                signed char amax) {
  return platform.record("SetSerDesRxVGA", listed(asic, port, link, pole, peak, amax));
}

int AsicControl::GetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char* pole, signed char* peak,
                                signed char* amax) {
  const int result = platform.record("GetSerDesRxVGA", listed(asic, port, link));
  if (result < 0 || platform.silent) return result;
  const recording::RxLink& answer = rxLinkOf(port, link);
  *pole = answer.pole;
  *peak = answer.peak;
  *amax = answer.amax;
  return answered(result, pole, peak, amax);
}

int AsicControl::SetSerDesRxDFEState(unsigned int asic, unsigned int port, int link, SerDesRxDFEState* state) {
  platform.lastDfeState = *state;
  const auto& h = state->h;
  return platform.record("SetSerDesRxDFEState", listed(asic, port, link, state->leadingWord, state->mode, h[0], h[1],
                                                       h[2], h[3], h[4], h[5], h[6], h[7], h[8], h[9]));
}

int AsicControl::GetSerDesRxDFEStats(unsigned int asic, unsigned int port, int link, SerDesRxDFEStats* stats) {
  const int result = platform.record("GetSerDesRxDFEStats", listed(asic, port, link));
  if (result >= 0 && !platform.silent) *stats = rxLinkOf(port, link).stats;
  return answered(result, stats);
}

int AsicControl::SetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesRxRateParams p) {
  return platform.record("SetSerDesRxRateParams", listed(asic, port, rate, p.mode, p.p0, p.p1, p.p2, p.p3));
}

int AsicControl::GetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesRxRateParams* params) {
  const int result = platform.record("GetSerDesRxRateParams", listed(asic, port, rate));
  if (result >= 0 && !platform.silent) *params = portOf(port).rxCache;
  return answered(result, params);
}

int AsicControl::SetSerDesTestOption(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                     int mode) {
  return platform.record("SetSerDesTestOption", listed(asic, port, link, static_cast<std::uint32_t>(option), mode));
}

int AsicControl::GetSerDesTestStatus(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                     int* status) {
  const int result =
      platform.record("GetSerDesTestStatus", listed(asic, port, link, static_cast<std::uint32_t>(option)));
  if (result >= 0 && !platform.silent) *status = platform.testStatus;
  return answered(result, status);
}

int PortControl::PortCtlOpen() {
  return platform.record("PortCtlOpen", "");
}

int PortControl::PortCtlClose() {
  return platform.record("PortCtlClose", "");
}

int PortControl::GetPortHwConfig(port_id_t port, Port_HW_Config_t* config) {
  const int result = platform.record("GetPortHwConfig", named(port));
  if (result >= 0 && !platform.silent) *config = portOf(port).hwConfig;
  return answered(result, config);
}

int PortControl::GetPortInfo(port_id_t port, port_info_t selector, unsigned long* value) {
  const int result = platform.record("GetPortInfo", with(port, listed(selector)));
  if ((result >= 0 || platform.answersThoughFailing) && !platform.silent) *value = portOf(port).state;
  return answered(result, value);
}

int PortControl::SetPortCfgSpeed(port_id_t port, unsigned int speed) {
  return platform.record("SetPortCfgSpeed", with(port, listed(speed)));
}

int PortControl::GetPortCfgSpeed(port_id_t port, unsigned int* speed) {
  const int result = platform.record("GetPortCfgSpeed", named(port));
  if ((result >= 0 || platform.answersThoughFailing) && !platform.silent) *speed = portOf(port).configuredSpeed;
  return answered(result, speed);
}

int PortControl::GetPortSpeed(port_id_t port, unsigned int* speed) {
  const int result = platform.record("GetPortSpeed", named(port));
  if (result >= 0 && !platform.silent) *speed = portOf(port).runningSpeed;
  return answered(result, speed);
}

int PortControl::GetMediaHwFcXmtrType(port_id_t port, MediaHwFcXmtrType* type) {
  const int result = platform.record("GetMediaHwFcXmtrType", named(port));
  if (result >= 0 && !platform.silent) *type = static_cast<MediaHwFcXmtrType>(portOf(port).media);
  return answered(result, type);
}

int PortControl::TxStreamEnable(port_id_t port, bool enable) {
  return platform.record("TxStreamEnable", with(port, listed(enable)));
}

int PortControl::TxStreamState(port_id_t port, bool* enabled) {
  const int result = platform.record("TxStreamState", named(port));
  if (result >= 0 && !platform.silent) std::memcpy(enabled, &portOf(port).streamState, 1);
  return answered(result, enabled);
}

int PortControl::GetFrameStatCntrs(port_id_t port, drv_counters_t* counters) {
  const int result = platform.record("GetFrameStatCntrs", named(port));
  if (result < 0 || platform.silent) return result;
  if (platform.frameStatistics) {
    *counters = platform.frameStatistics(port);
    return result;
  }
  *counters = {};
  recording::store(counters->decodeErrors, portOf(port).decodeErrors);
  recording::store(counters->crcErrors, portOf(port).crcErrors);
  return answered(result, counters);
}

int PortControl::ClrFrameStatCntrs(port_id_t port) {
  return platform.record("ClrFrameStatCntrs", named(port));
}
