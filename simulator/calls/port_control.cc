// PortControl: every operation is traced, may meet a fault, and is otherwise the switch's.
#include "simulator/calls/platform_call.h"

namespace simulator {
namespace {

constexpr Side kSide = Side::kPort;

CallSite site(Operation operation, port_id_t port) {
  return {.operation = operation, .asic = port.asic, .port = port.asicPort};
}

}  // namespace
}  // namespace simulator

using namespace simulator;
using enum Operation;

int PortControl::PortCtlOpen() {
  return openCall(kSide, kPortCtlOpen);
}

int PortControl::PortCtlClose() {
  return closeCall(kSide, kPortCtlClose);
}

int PortControl::GetPortHwConfig(port_id_t port, Port_HW_Config_t* config) {
  return platformCall(
      kSide, site(kGetPortHwConfig, port), arguments(port),
      [&](Switch& sw) { return sw.getPortHwConfig(port, config); }, [&] { return outputs(config); });
}

int PortControl::GetPortInfo(port_id_t port, port_info_t selector, unsigned long* value) {
  return platformCall(
      kSide, site(kGetPortInfo, port), arguments(port, selector),
      [&](Switch& sw) { return sw.getPortInfo(port, selector, value); }, [&] { return outputs(value); });
}

int PortControl::SetPortCfgSpeed(port_id_t port, unsigned int speed) {
  return platformCall(kSide, site(kSetPortCfgSpeed, port), arguments(port, speed),
                      [&](Switch& sw) { return sw.setPortSpeed(port, speed); });
}

int PortControl::GetPortCfgSpeed(port_id_t port, unsigned int* speed) {
  return platformCall(
      kSide, site(kGetPortCfgSpeed, port), arguments(port),
      [&](Switch& sw) { return sw.getConfiguredSpeed(port, speed); }, [&] { return outputs(speed); });
}

int PortControl::GetPortSpeed(port_id_t port, unsigned int* speed) {
  return platformCall(
      kSide, site(kGetPortSpeed, port), arguments(port), [&](Switch& sw) { return sw.getRunningSpeed(port, speed); },
      [&] { return outputs(speed); });
}

int PortControl::GetMediaHwFcXmtrType(port_id_t port, MediaHwFcXmtrType* type) {
  return platformCall(
      kSide, site(kGetMediaHwFcXmtrType, port), arguments(port), [&](Switch& sw) { return sw.getMedia(port, type); },
      [&] { return outputs(type); });
}

int PortControl::TxStreamEnable(port_id_t port, bool enable) {
  return platformCall(kSide, site(kTxStreamEnable, port), arguments(port, enable),
                      [&](Switch& sw) { return sw.setStream(port, enable); });
}

int PortControl::TxStreamState(port_id_t port, bool* enabled) {
  return platformCall(
      kSide, site(kTxStreamState, port), arguments(port), [&](Switch& sw) { return sw.getStream(port, enabled); },
      [&] { return outputs(enabled); });
}

int PortControl::GetFrameStatCntrs(port_id_t port, drv_counters_t* counters) {
  return platformCall(
      kSide, site(kGetFrameStatCntrs, port), arguments(port),
      [&](Switch& sw) { return sw.getCounters(port, counters); }, [&] { return outputs(counters); });
}

int PortControl::ClrFrameStatCntrs(port_id_t port) {
  return platformCall(kSide, site(kClrFrameStatCntrs, port), arguments(port),
                      [&](Switch& sw) { return sw.clearCounters(port); });
}
