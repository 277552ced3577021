// Filters that the settings at either end of a link stand for.
#include "simulator/link/ends.h"

#include <cstdlib>

namespace simulator {

namespace {

double frequency(double fGHz) {
  return limited(fGHz, 0, 1e4);
}

}  // namespace

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
    sum += taps[n] < 0 ? -taps[n] : taps[n];
  }
  if (sum == 0) return {};
  for (double& tap : taps)
    tap /= sum;
  return taps;
}

Complex ffeResponse(const Transmitter& transmitter, double fGHz, double baudGbd) {
  const std::array<double, 4> taps = normalisedTaps(transmitter);
  const Complex delay = unitPhasor(-2 * kPi * frequency(fGHz) / limited(baudGbd, 0.01, 1000));
  // Horner in the delay of one unit interval.
  Complex sum{taps[3], 0};
  for (int n = 2; n >= 0; --n)
    sum = sum * delay + Complex{taps[static_cast<unsigned>(n)], 0};
  return sum;
}

double ffeGainDb(const Transmitter& transmitter, double fGHz, double baudGbd) {
  return limited(toDb(magnitudeSquared(ffeResponse(transmitter, fGHz, baudGbd))) / 2, -300, 0);
}

double slewNepers(double slewPs, double fGHz) {
  const double turns = kPi * frequency(fGHz) * (limited(slewPs, 0, 1e4) / 1000) / 1.6832;
  return 2 * turns * turns;
}

double slewResponse(double slewPs, double fGHz) {
  return exponential(-slewNepers(slewPs, fGHz));
}

double slewLossDb(double slewPs, double fGHz) {
  return kNeperDb * slewNepers(slewPs, fGHz);
}

Complex receiverFilter(double fGHz, double cornerGHz) {
  const double x = frequency(fGHz) / limited(cornerGHz, 1e-3, 1e4);
  const double xx = x * x;
  return Complex{1, 0} / Complex{1 - 3.414214 * xx + xx * xx, 2.613126 * (x - x * xx)};
}

double receiverCornerGHz(int pole) {
  return 6.375 * (0.6 + 0.4 * limited(pole, 0, kMaxPole) / kMaxPole);
}

Complex peakingFilter(int peak, double fGHz, double baudGbd) {
  const double u = frequency(fGHz) / limited(baudGbd, 0.01, 1000);
  const double g = fromDb(-1.5 * limited(peak, 0, kMaxPeak));
  return Complex{g, 4 * u} / (Complex{1, 4 * u} * Complex{1, u});
}

}  // namespace simulator
