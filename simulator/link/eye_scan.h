// The eye of a link, as a receiver draws it that samples beside the middle: error rates over phase and level, with gain
// and DFE as they stand in the middle.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "simulator/link/received.h"

namespace simulator {

// -10 log10 of a bit error rate, rounded: 0 to 180.
int errorExponent(double ber);

class EyeScan {
 public:
  static constexpr int kPhases = 64;    // steps of a UI
  static constexpr int kMaxPhase = 32;  // to either side
  static constexpr int kMaxLevel = 127;

  // The arguments are those of evaluateLink. The transfer functions are worked out here, the eye as it is asked for.
  EyeScan(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd,
          double farBaudGbd, std::span<const Aggressor> aggressors = {});

  // errorExponent of the rate when sampling `phase` steps (early is negative) from the middle and deciding `level` LSB
  // (of the converter, after the gain) above it: the mean of ones and zeros. What is out of range counts as the nearest
  // in range. At 0, 0 it is the link's own. It never rises outwards: each point takes the worst of all that lie between
  // it and the middle, both ways.
  int exponent(int phase, int level);

  // Between the phases early and late at which the rate passes 1e-12 with the level in the middle, in thousandths of a
  // UI; 0 when the rate in the middle is higher.
  int widthMilliUi() const;

 private:
  // By the level's magnitude, as far out as was asked for: zeros mirror ones.
  struct Column {
    std::optional<Decisions> decisions;
    std::vector<int> exponents;
  };

  int worst(int phase, int magnitude);
  double edgeUi(int direction) const;

  std::optional<ReceivedSignal> signal_;  // none where there is nothing to sample
  std::array<Column, 2 * kMaxPhase + 1> columns_;
};

}  // namespace simulator
