// PortControl on the instant switch. What no benchmark asks for fails.
#include "bench/platform/instant_switch.h"

namespace {

constexpr int kDone = 0;
constexpr int kNotOffered = -1;

}  // namespace

int PortControl::PortCtlOpen() {
  return kDone;
}

int PortControl::PortCtlClose() {
  return kDone;
}

int PortControl::GetPortHwConfig(port_id_t port, Port_HW_Config_t* config) {
  config->portId = port;
  config->portId.userPort = port.asicPort;
  config->presence = 1;
  config->portType = kPortTypeGl;
  return kDone;
}

int PortControl::GetPortInfo(port_id_t, port_info_t, unsigned long* value) {
  *value = kPortStateRunning;
  return kDone;
}

int PortControl::GetPortCfgSpeed(port_id_t, unsigned int* speed) {
  *speed = SPEED_8G;
  return kDone;
}

int PortControl::GetPortSpeed(port_id_t, unsigned int* speed) {
  *speed = SPEED_8G;
  return kDone;
}

int PortControl::GetMediaHwFcXmtrType(port_id_t, MediaHwFcXmtrType* type) {
  *type = MEDIA_OPTICAL;
  return kDone;
}

int PortControl::SetPortCfgSpeed(port_id_t, unsigned int) {
  return kNotOffered;
}

int PortControl::TxStreamEnable(port_id_t, bool) {
  return kNotOffered;
}

int PortControl::TxStreamState(port_id_t, bool*) {
  return kNotOffered;
}

int PortControl::GetFrameStatCntrs(port_id_t, drv_counters_t*) {
  return kNotOffered;
}

int PortControl::ClrFrameStatCntrs(port_id_t) {
  return kNotOffered;
}
