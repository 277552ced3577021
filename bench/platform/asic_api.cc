// AsicControl on the instant switch. What no benchmark asks for fails.
#include <cstdio>
#include <cstring>

#include "bench/platform/instant_switch.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotOffered = -1;

using instant::theSwitch;

}  // namespace

int AsicControl::AsicCtlOpen() {
  instant::open();
  return kDone;
}

int AsicControl::AsicCtlClose() {
  return kDone;
}

int AsicControl::GetSwitchConfig(Switch_HW_Config_t* config) {
  config->NumSlots = 0;
  config->NumUserPorts = static_cast<std::int32_t>(theSwitch.ports);
  config->NumAuxPorts = 0;
  config->NumASICs = 1;
  return kDone;
}

int AsicControl::GetSerDesInfo(unsigned int, unsigned int* portCount, unsigned int* coreCount) {
  *portCount = theSwitch.ports;
  *coreCount = (theSwitch.ports + instant::kPortsPerCore - 1) / instant::kPortsPerCore;
  return kDone;
}

int AsicControl::GetSerDesInfo(unsigned int, unsigned int core, unsigned short* firstPort, SerDesType* type,
                               unsigned int* pllRegisterCount, unsigned int* rxRegisterCount,
                               unsigned int* txRegisterCount, unsigned int* rxParamCount, unsigned int* txParamCount) {
  *firstPort = static_cast<unsigned short>(core * instant::kPortsPerCore);
  *type = static_cast<SerDesType>(instant::kSerDesType);
  *pllRegisterCount = *rxRegisterCount = *txRegisterCount = kMaxRegisters;
  *rxParamCount = *txParamCount = 4;
  return kDone;
}

int AsicControl::GetSerDesInfo(unsigned int, unsigned int port, SerDesLinkType, unsigned int* linkCount,
                               SerDesType* type, unsigned int* coreId) {
  *linkCount = theSwitch.links;
  *type = static_cast<SerDesType>(instant::kSerDesType);
  *coreId = port / instant::kPortsPerCore;
  return kDone;
}

const char* AsicControl::ToString(SerDesType) {
  return "INSTANT";
}

int AsicControl::ReadSerDesLinkRegister(unsigned int, unsigned int port, int link, SerDesLinkType,
                                        unsigned char address, unsigned short* values, unsigned char count) {
  const auto& registers = theSwitch.registers[port][static_cast<unsigned int>(link)];
  std::memcpy(values, &registers[address], count * sizeof *values);
  return kDone;
}

int AsicControl::SetSerDesTxFFE(unsigned int, unsigned int port, int, SerDesTxFFEMode mode, unsigned char k,
                                signed char c0, signed char c1, signed char c2, signed char c3) {
  if (theSwitch.reports) std::printf("port %u: FFE%u %d %d %d %d %d\n", port, mode + 1, k, c0, c1, c2, c3);
  return kDone;
}

int AsicControl::WriteSerDesLinkRegister(unsigned int, unsigned int, int, SerDesLinkType, unsigned char,
                                         unsigned short) {
  return kNotOffered;
}

int AsicControl::ReadSerDesPLLRegister(unsigned int, unsigned int, unsigned char, unsigned short*, unsigned char) {
  return kNotOffered;
}

int AsicControl::WriteSerDesPLLRegister(unsigned int, unsigned int, unsigned char, unsigned short) {
  return kNotOffered;
}

int AsicControl::GetSerDesTxFFE(unsigned int, unsigned int, int, SerDesTxFFEMode*, unsigned char*, signed char*,
                                signed char*, signed char*, signed char*) {
  return kNotOffered;
}

int AsicControl::SetSerDesTxSlew(unsigned int, unsigned int, int, bool, SerDesTxSlewRate) {
  return kNotOffered;
}

int AsicControl::GetSerDesTxSlew(unsigned int, unsigned int, int, bool*, SerDesTxSlewRate*) {
  return kNotOffered;
}

int AsicControl::SetSerDesTxRateParams(unsigned int, unsigned int, port_speed_type, SerDesTxRateParams) {
  return kNotOffered;
}

int AsicControl::GetSerDesTxRateParams(unsigned int, unsigned int, port_speed_type, SerDesTxRateParams*) {
  return kNotOffered;
}

int AsicControl::SetSerDesRxDFE(unsigned int, unsigned int, int, SerDesRxDFEMode) {
  return kNotOffered;
}

int AsicControl::GetSerDesRxDFE(unsigned int, unsigned int, int, SerDesRxDFEMode*) {
  return kNotOffered;
}

int AsicControl::SetSerDesRxVGA(unsigned int, unsigned int, int, signed char, signed char, signed char) {
  return kNotOffered;
}

int AsicControl::GetSerDesRxVGA(unsigned int, unsigned int, int, signed char*, signed char*, signed char*) {
  return kNotOffered;
}

int AsicControl::SetSerDesRxDFEState(unsigned int, unsigned int, int, SerDesRxDFEState*) {
  return kNotOffered;
}

int AsicControl::GetSerDesRxDFEStats(unsigned int, unsigned int, int, SerDesRxDFEStats*) {
  return kNotOffered;
}

int AsicControl::SetSerDesRxRateParams(unsigned int, unsigned int, port_speed_type, SerDesRxRateParams) {
  return kNotOffered;
}

int AsicControl::GetSerDesRxRateParams(unsigned int, unsigned int, port_speed_type, SerDesRxRateParams*) {
  return kNotOffered;
}

int AsicControl::SetSerDesTestOption(unsigned int, unsigned int, int, SerDesTestOption, int) {
  return kNotOffered;
}

int AsicControl::GetSerDesTestStatus(unsigned int, unsigned int, int, SerDesTestOption, int*) {
  return kNotOffered;
}
