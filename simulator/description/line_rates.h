// What a port does at each speed: bauds and line codes.
#pragma once

#include "simulator/description/description.h"
#include "simulator/link/errors.h"

namespace simulator {

// Bauds are those of the whole port; ethernet has its own.
struct LineRate {
  std::uint32_t speed;
  double fibreChannelGigabaud;
  double ethernetGigabaud;
  LineCode code;

  constexpr double gigabaud(std::uint32_t portType) const {
    return portType == kPortTypeExg ? ethernetGigabaud : fibreChannelGigabaud;
  }
};
inline constexpr LineRate kLineRates[] = {
    {.speed = SPEED_1G, .fibreChannelGigabaud = 1.0625, .ethernetGigabaud = 1.25, .code = LineCode::k8b10b},
    {.speed = SPEED_2G, .fibreChannelGigabaud = 2.125, .ethernetGigabaud = 2.5, .code = LineCode::k8b10b},
    {.speed = SPEED_4G, .fibreChannelGigabaud = 4.25, .ethernetGigabaud = 5, .code = LineCode::k8b10b},
    {.speed = SPEED_8G, .fibreChannelGigabaud = 8.5, .ethernetGigabaud = 10.3125, .code = LineCode::k8b10b},
    {.speed = SPEED_10G, .fibreChannelGigabaud = 10.51875, .ethernetGigabaud = 10.3125, .code = LineCode::k64b66b},
    {.speed = SPEED_20G, .fibreChannelGigabaud = 21.0375, .ethernetGigabaud = 20.625, .code = LineCode::k64b66b},
};

// Of a speed that is not AUTO.
constexpr const LineRate& lineRateOf(std::uint32_t speed) {
  return kLineRates[speed - SPEED_1G];
}

constexpr bool lineRatesStandAtTheirSpeed() {
  for (std::uint32_t speed = SPEED_1G; speed < kSpeeds; ++speed) {
    if (lineRateOf(speed).speed != speed) return false;
  }
  return true;
}
static_assert(lineRatesStandAtTheirSpeed());

// 1G when the set is empty.
constexpr std::uint32_t lowestSpeed(SpeedSet speeds) {
  for (std::uint32_t speed = SPEED_1G; speed < kSpeeds; ++speed) {
    if ((speeds & speedBit(speed)) != 0) return speed;
  }
  return SPEED_1G;
}

}  // namespace simulator
