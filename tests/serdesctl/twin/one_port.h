// A switch with one port, and what a receiver of it shows.
#pragma once

#include <cmath>
#include <cstdint>

#include "serdesctl/twin/port_fits.h"
#include "serdesctl/twin/switch_model.h"

namespace serdesctl {

// A port of SerDes type 2 at 8G, alone on its core.
inline SwitchState onePort() {
  SwitchState state;
  state.hardware = {.slots = 1, .userPorts = 1, .auxPorts = 0, .asics = 1};
  AsicState& asic = state.asics.emplace_back();
  asic.config.portCount = asic.config.coreCount = 1;
  asic.config.glPorts = 1;
  const ConfigSide side = {.links = 1, .serDesType = "T2", .core = 0};
  asic.config.ports.push_back({.port = 0, .rx = side, .tx = side, .userPort = 4});
  for (const char* name : {"T0", "T1", "T2", "T3", "T4", "T5", "T6"})
    asic.config.types.push_back({.name = name, .useCount = 0});
  asic.cores.push_back({.asic = 0,
                        .core = 0,
                        .firstPort = 0,
                        .serDesType = 2,
                        .pllRegisters = 12,
                        .rxRegisters = 24,
                        .txRegisters = 16,
                        .rxParams = 5,
                        .txParams = 7});
  PortState& port = asic.ports.emplace_back();
  port.configRate = "8G";
  port.streamEnabled = true;
  port.observed.media = "ELC";
  port.txCaches["8G"] = {.power = 115, .slew = 2, .mode = 1, .p = {0, 58, -8, 0}};
  port.rxCaches["8G"] = {.mode = 0, .p = {6, 4, 78, 0}};
  return state;
}

// What the port's first receive link shows of a far end that is set so, over a board, at the port's speed or another.
inline DfeStatsValues statisticsOf(const SwitchState& state, const SerDesTxRateParams& far, double inches,
                                   std::uint32_t speed = SPEED_8G) {
  const SwitchModel model = modelOf(state);
  const ModelPort& port = model.asics[0].ports[0];
  const simulator::LinkResult result =
      simulator::evaluateLink(simulator::transmitterOf(port.txTraits(), registersAfter(port.txTraits(), far)),
                              mediumRow(Medium::kBoard).channel(inches),
                              simulator::receiverOf(port.rxTraits(), port.rx[0]), port.baud(speed, port.rx.size()));
  DfeStatsValues shown;
  for (std::size_t tap = 0; tap < result.taps.size(); ++tap)
    shown.evenOddTaps[tap] = simulator::readingOf(result.taps[tap]);
  shown.ap = simulator::readingOf(result.ap);
  shown.amin = simulator::readingOf(result.amin);
  return shown;
}

// The settings of its 8G cache.
inline constexpr SerDesTxRateParams kOwnSettings = {
    .power = 115, .slew = 2, .mode = 1, .p0 = 0, .p1 = 58, .p2 = -8, .p3 = 0};

}  // namespace serdesctl
