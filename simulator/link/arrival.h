// What arrives at the slicer, before the gain: the pulse response of transmitter, medium and receive filters.
// Units: frequency GHz, baud Gbd, V (differential, half of peak to peak).
#pragma once

#include <vector>

#include "simulator/link/channel.h"
#include "simulator/link/ends.h"
#include "simulator/link/pulse.h"

namespace simulator {

inline constexpr double kMinBaudGbd = 0.05;
inline constexpr double kMaxBaudGbd = 100;
constexpr bool usableBaud(double baudGbd) {
  return baudGbd >= kMinBaudGbd && baudGbd <= kMaxBaudGbd;
}

// The period over which a pulse is worked out. It grows by powers of two, so that the latest echo comes with as much
// room as a pulse without echoes has, and does not wrap round.
inline constexpr unsigned kPulseUi = 64;
inline constexpr unsigned kMaxPulseUi = 1024;
// The latest echo that fits at a baud. At a baud where an echo does not, its power counts as noise.
double longestEchoNs(double baudGbd);

struct Arrival {
  std::vector<double> samples;  // see Pulse
  double noiseBandGHz = 0;      // integral of |receive filters|^2
  double lateEchoPower = 0;     // sum r^2 of the echoes that come too late to be in `samples`
};

// `baudGbd` is usable.
Arrival arrivalOf(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd);

}  // namespace simulator
