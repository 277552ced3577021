// AsicControl: every operation is traced, may meet a fault, and is otherwise the switch's.
#include "simulator/calls/platform_call.h"

namespace simulator {
namespace {

constexpr Side kSide = Side::kAsic;

CallSite site(Operation operation, unsigned asic, unsigned port) {
  return {.operation = operation, .asic = asic, .port = port};
}
CallSite site(Operation operation, unsigned asic, unsigned port, int link) {
  return {.operation = operation, .asic = asic, .port = port, .link = link};
}
CallSite coreSite(Operation operation, unsigned asic, unsigned core) {
  return {.operation = operation, .asic = asic, .core = core};
}

}  // namespace
}  // namespace simulator

using namespace simulator;
using enum Operation;

int AsicControl::AsicCtlOpen() {
  return openCall(kSide, kAsicCtlOpen);
}

int AsicControl::AsicCtlClose() {
  return closeCall(kSide, kAsicCtlClose);
}

int AsicControl::GetSwitchConfig(Switch_HW_Config_t* config) {
  return platformCall(
      kSide, {.operation = kGetSwitchConfig}, arguments(), [&](Switch& sw) { return sw.getSwitchConfig(config); },
      [&] { return outputs(config); });
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int* portCount, unsigned int* coreCount) {
  return platformCall(
      kSide, {.operation = kGetSerDesInfoOfAsic, .asic = asic}, arguments(asic),
      [&](Switch& sw) { return sw.getAsicInfo(asic, portCount, coreCount); },
      [&] { return outputs(portCount, coreCount); });
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int core, unsigned short* firstPort, SerDesType* type,
                               unsigned int* pllRegisterCount, unsigned int* rxRegisterCount,
                               unsigned int* txRegisterCount, unsigned int* rxParamCount, unsigned int* txParamCount) {
  return platformCall(
      kSide, coreSite(kGetSerDesInfoOfCore, asic, core), arguments(asic, core),
      [&](Switch& sw) {
        return sw.getCoreInfo(asic, core, firstPort, type,
                              {pllRegisterCount, rxRegisterCount, txRegisterCount, rxParamCount, txParamCount});
      },
      [&] {
        return outputs(firstPort, type, pllRegisterCount, rxRegisterCount, txRegisterCount, rxParamCount, txParamCount);
      });
}

int AsicControl::GetSerDesInfo(unsigned int asic, unsigned int port, SerDesLinkType side, unsigned int* linkCount,
                               SerDesType* type, unsigned int* coreId) {
  return platformCall(
      kSide, site(kGetSerDesInfoOfPort, asic, port), arguments(asic, port, side),
      [&](Switch& sw) { return sw.getPortSideInfo(asic, port, side, linkCount, type, coreId); },
      [&] { return outputs(linkCount, type, coreId); });
}

const char* AsicControl::ToString(SerDesType type) {
  return typeNameCall(type);
}

int AsicControl::ReadSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                        unsigned char address, unsigned short* values, unsigned char count) {
  return platformCall(
      kSide, site(kReadSerDesLinkRegister, asic, port, link), arguments(asic, port, link, side, Hex{address, 2}, count),
      [&](Switch& sw) { return sw.readLinkRegisters(asic, port, link, side, address, values, count); },
      [&] { return registerOutputs(values, count); });
}

int AsicControl::WriteSerDesLinkRegister(unsigned int asic, unsigned int port, int link, SerDesLinkType side,
                                         unsigned char address, unsigned short value) {
  return platformCall(kSide, site(kWriteSerDesLinkRegister, asic, port, link),
                      arguments(asic, port, link, side, Hex{address, 2}, Hex{value, 4}),
                      [&](Switch& sw) { return sw.writeLinkRegister(asic, port, link, side, address, value); });
}

int AsicControl::ReadSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                       unsigned short* values, unsigned char count) {
  return platformCall(
      kSide, coreSite(kReadSerDesPLLRegister, asic, core), arguments(asic, core, Hex{address, 2}, count),
      [&](Switch& sw) { return sw.readPllRegisters(asic, core, address, values, count); },
      [&] { return registerOutputs(values, count); });
}

int AsicControl::WriteSerDesPLLRegister(unsigned int asic, unsigned int core, unsigned char address,
                                        unsigned short value) {
  return platformCall(kSide, coreSite(kWriteSerDesPLLRegister, asic, core),
                      arguments(asic, core, Hex{address, 2}, Hex{value, 4}),
                      [&](Switch& sw) { return sw.writePllRegister(asic, core, address, value); });
}

int AsicControl::SetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode mode, unsigned char k,
                                signed char c0, signed char c1, signed char c2, signed char c3) {
  return platformCall(kSide, site(kSetSerDesTxFFE, asic, port, link),
                      arguments(asic, port, link, mode, k, c0, c1, c2, c3), [&](Switch& sw) {
                        return sw.setTxFfe(asic, port, link, {.mode = mode, .k = k, .c = {c0, c1, c2, c3}});
                      });
}

int AsicControl::GetSerDesTxFFE(unsigned int asic, unsigned int port, int link, SerDesTxFFEMode* mode, unsigned char* k,
                                signed char* c0, signed char* c1, signed char* c2, signed char* c3) {
  return platformCall(
      kSide, site(kGetSerDesTxFFE, asic, port, link), arguments(asic, port, link),
      [&](Switch& sw) -> int {
        if (mode == nullptr || k == nullptr || c0 == nullptr || c1 == nullptr || c2 == nullptr || c3 == nullptr) {
          return kBadArgument;
        }
        FfeSettings settings{};
        if (const int code = sw.getTxFfe(asic, port, link, &settings); code != kOk) return code;
        *mode = static_cast<SerDesTxFFEMode>(settings.mode);
        *k = static_cast<unsigned char>(settings.k);
        *c0 = static_cast<signed char>(settings.c[0]);
        *c1 = static_cast<signed char>(settings.c[1]);
        *c2 = static_cast<signed char>(settings.c[2]);
        *c3 = static_cast<signed char>(settings.c[3]);
        return kOk;
      },
      [&] { return outputs(mode, k, c0, c1, c2, c3); });
}

int AsicControl::SetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool enable, SerDesTxSlewRate slew) {
  return platformCall(kSide, site(kSetSerDesTxSlew, asic, port, link), arguments(asic, port, link, enable, slew),
                      [&](Switch& sw) { return sw.setTxSlew(asic, port, link, enable, slew); });
}

int AsicControl::GetSerDesTxSlew(unsigned int asic, unsigned int port, int link, bool* enable, SerDesTxSlewRate* slew) {
  return platformCall(
      kSide, site(kGetSerDesTxSlew, asic, port, link), arguments(asic, port, link),
      [&](Switch& sw) { return sw.getTxSlew(asic, port, link, enable, slew); }, [&] { return outputs(enable, slew); });
}

int AsicControl::SetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesTxRateParams params) {
  return platformCall(kSide, site(kSetSerDesTxRateParams, asic, port), arguments(asic, port, rate, params),
                      [&](Switch& sw) { return sw.setTxRateParams(asic, port, rate, params); });
}

int AsicControl::GetSerDesTxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesTxRateParams* params) {
  return platformCall(
      kSide, site(kGetSerDesTxRateParams, asic, port), arguments(asic, port, rate),
      [&](Switch& sw) { return sw.getTxRateParams(asic, port, rate, params); }, [&] { return outputs(params); });
}

int AsicControl::SetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode mode) {
  return platformCall(kSide, site(kSetSerDesRxDFE, asic, port, link), arguments(asic, port, link, mode),
                      [&](Switch& sw) { return sw.setRxDfe(asic, port, link, mode); });
}

int AsicControl::GetSerDesRxDFE(unsigned int asic, unsigned int port, int link, SerDesRxDFEMode* mode) {
  return platformCall(
      kSide, site(kGetSerDesRxDFE, asic, port, link), arguments(asic, port, link),
      [&](Switch& sw) { return sw.getRxDfe(asic, port, link, mode); }, [&] { return outputs(mode); });
}

int AsicControl::SetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char pole, signed char peak,
                                signed char amax) {
  return platformCall(
      kSide, site(kSetSerDesRxVGA, asic, port, link), arguments(asic, port, link, pole, peak, amax),
      [&](Switch& sw) { return sw.setRxVga(asic, port, link, {.pole = pole, .peak = peak, .amax = amax}); });
}

int AsicControl::GetSerDesRxVGA(unsigned int asic, unsigned int port, int link, signed char* pole, signed char* peak,
                                signed char* amax) {
  return platformCall(
      kSide, site(kGetSerDesRxVGA, asic, port, link), arguments(asic, port, link),
      [&](Switch& sw) -> int {
        if (pole == nullptr || peak == nullptr || amax == nullptr) return kBadArgument;
        VgaSettings settings{};
        if (const int code = sw.getRxVga(asic, port, link, &settings); code != kOk) return code;
        *pole = static_cast<signed char>(settings.pole);
        *peak = static_cast<signed char>(settings.peak);
        *amax = static_cast<signed char>(settings.amax);
        return kOk;
      },
      [&] { return outputs(pole, peak, amax); });
}

int AsicControl::SetSerDesRxDFEState(unsigned int asic, unsigned int port, int link, SerDesRxDFEState* state) {
  return platformCall(kSide, site(kSetSerDesRxDFEState, asic, port, link),
                      arguments(asic, port, link, const_cast<const SerDesRxDFEState*>(state)),
                      [&](Switch& sw) { return sw.setRxDfeState(asic, port, link, state); });
}

int AsicControl::GetSerDesRxDFEStats(unsigned int asic, unsigned int port, int link, SerDesRxDFEStats* stats) {
  return platformCall(
      kSide, site(kGetSerDesRxDFEStats, asic, port, link), arguments(asic, port, link),
      [&](Switch& sw) { return sw.getRxDfeStats(asic, port, link, stats); }, [&] { return outputs(stats); });
}

int AsicControl::SetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesRxRateParams params) {
  return platformCall(kSide, site(kSetSerDesRxRateParams, asic, port), arguments(asic, port, rate, params),
                      [&](Switch& sw) { return sw.setRxRateParams(asic, port, rate, params); });
}

int AsicControl::GetSerDesRxRateParams(unsigned int asic, unsigned int port, port_speed_type rate,
                                       SerDesRxRateParams* params) {
  return platformCall(
      kSide, site(kGetSerDesRxRateParams, asic, port), arguments(asic, port, rate),
      [&](Switch& sw) { return sw.getRxRateParams(asic, port, rate, params); }, [&] { return outputs(params); });
}

int AsicControl::SetSerDesTestOption(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                     int mode) {
  return platformCall(kSide, site(kSetSerDesTestOption, asic, port, link), arguments(asic, port, link, option, mode),
                      [&](Switch& sw) { return sw.setTestOption(asic, port, link, option, mode); });
}

int AsicControl::GetSerDesTestStatus(unsigned int asic, unsigned int port, int link, SerDesTestOption option,
                                     int* status) {
  return platformCall(
      kSide, site(kGetSerDesTestStatus, asic, port, link), arguments(asic, port, link, option),
      [&](Switch& sw) { return sw.getTestStatus(asic, port, link, option, status); }, [&] { return outputs(status); });
}
