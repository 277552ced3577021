// Filters that the settings at either end of a link stand for.
#include "simulator/link/ends.h"

#include <cmath>

namespace simulator {

double driveAmplitude(const Transmitter& transmitter) {
  const unsigned k = transmitter.k > 255 ? 255 : transmitter.k;
  return kFullSwingV / 2 * k / 255;
}

std::array<double, 4> normalisedTaps(const Transmitter& transmitter) {
  constexpr bool kUsed[4][4] = {
      {false, true, false, false}, {false, true, true, false}, {true, true, true, false}, {true, true, true, true}};
  const auto& used = kUsed[transmitter.ffeMode > 3 ? 3 : transmitter.ffeMode];
  std::array<double, 4> taps{};
  double sum = 0;
  for (unsigned n = 0; n < 4; ++n) {
    if (!used[n]) continue;
    taps[n] = limited(transmitter.c[n], -128, 127);
    sum += std::fabs(taps[n]);
  }
  if (sum == 0) return {};
  for (double& tap : taps)
    tap /= sum;
  return taps;
}

double slewNepers(double slewPs, double fGHz) {
  const double turns = kPi * fGHz * (limited(slewPs, 0, 1e4) / 1000) / 1.6832;
  return 2 * turns * turns;
}

double receiverCornerGHz(int pole) {
  return 6.375 * (0.6 + 0.4 * limited(pole, 0, kMaxPole) / kMaxPole);
}

ReceiveFilters::ReceiveFilters(const Receiver& receiver, double baudGbd)
    : perCorner_(1 / receiverCornerGHz(receiver.pole)),
      perBaud_(1 / baudGbd),
      lowGain_(fromDb(-1.5 * limited(receiver.peak, 0, kMaxPeak))) {}

ReceiveFilters::Point ReceiveFilters::at(double fGHz) const {
  const double x = fGHz * perCorner_;
  const double u = fGHz * perBaud_;
  const double xx = x * x;
  const Complex below = Complex{1 - 3.414214 * xx + xx * xx, 2.613126 * (x - x * xx)} * Complex{1 - 4 * u * u, 5 * u};
  const double share = 1 / magnitudeSquared(below);
  const Complex above{lowGain_, 4 * u};
  return {share * (above * Complex{below.re, -below.im}), magnitudeSquared(above) * share};
}

}  // namespace simulator
