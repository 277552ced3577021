// Noise that the transmitters of neighbouring ports cause in a receiver.
#pragma once

#include <span>

#include "simulator/link/channel.h"
#include "simulator/link/ends.h"

namespace simulator {

// A transmitter that disturbs: one beside the receiver (near end), or one at the far end beside the transmitter that
// the receiver hears. `distance` is 1 for the nearest on either side and 2 for those behind; others are too far away.
struct Aggressor {
  Transmitter transmitter;
  double baudGbd = 0;
  unsigned distance = 1;
  bool farEnd = false;
  bool operator==(const Aggressor&) const = default;
};

inline constexpr unsigned kFarthestNeighbour = 2;

// Share of an aggressor in the power that all neighbours couple: 0.32 of the nearest at the near end, a fourth (6 dB
// less) a port further, and a fourth at the far end. Two neighbours to either side at both ends come to 1.
double neighbourShare(unsigned distance, bool farEnd);

// Noise variance in V^2 before the gain, as far as aggressors of random bits cause it:
//   sum of share * A^2 * integral 2 T sinc^2(f T) |edge|^2 |FFE|^2 |coupling|^2 |receive filters|^2 df,
// coupling 10^(crosstalkDb/20) * f / 4.25 GHz, with A, T, edge and FFE of the aggressor and the receive filters at
// `baudGbd`, the receiver's own. What couples at the far end passes the medium's loss too.
double crosstalkPower(std::span<const Aggressor> aggressors, const Channel& channel, const Receiver& receiver,
                      double baudGbd);

}  // namespace simulator
