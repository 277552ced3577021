// Sums over a grid that is the same for all links, so that what transmitters of any baud send adds up on it.
#include "simulator/link/crosstalk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "simulator/link/arrival.h"
#include "simulator/link/math.h"

namespace simulator {

namespace {

// Fine enough for four bits of 1 Gbd in a row, and to where receive filters leave nothing.
constexpr double kStepGHz = 0.125;
constexpr std::size_t kBins = 193;
constexpr double kReferenceGHz = 4.25;

using Spectrum = std::array<double, kBins>;

// Adds `share` of what the transmitter sends on random bits, A^2 2 T sinc^2(f T) |edge|^2 |FFE|^2, at k kStepGHz, times
// k^2: coupling that rises with f takes away the fall of the sinc. The factors follow from bin to bin by
// multiplication: turns by a fixed angle, and a Gaussian by a quotient that itself falls by another.
void addSent(const Aggressor& aggressor, double share, Spectrum& sent) {
  const double amplitude = driveAmplitude(aggressor.transmitter);
  const auto [c0, c1, c2, c3] = normalisedTaps(aggressor.transmitter);
  const double turns = kStepGHz / aggressor.baudGbd;  // of a unit interval, a bin
  const double edge = exponential(-2 * slewNepers(aggressor.transmitter.slewPs, kStepGHz));
  const double scale = share * amplitude * amplitude * 2 / aggressor.baudGbd / (2 * kPi * kPi * turns * turns);
  // |FFE|^2 = sum of products of taps m apart times cos(2 pi f m T), as a polynomial in cos(2 pi f T).
  const double apart0 = c0 * c0 + c1 * c1 + c2 * c2 + c3 * c3;
  const double apart1 = 2 * (c0 * c1 + c1 * c2 + c2 * c3);
  const double apart2 = 2 * (c0 * c2 + c1 * c3);
  const double apart3 = 2 * c0 * c3;
  const Complex turn = unitPhasor(2 * kPi * turns);
  Complex angle = turn;
  double gauss = edge;
  double quotient = edge * edge * edge;
  // The bin at 0 GHz couples nothing, and neither does what the edge leaves below 1e-30.
  for (std::size_t k = 1; k < kBins && gauss > 1e-30; ++k) {
    const double cosine = angle.re;
    const double ffe = apart0 - apart2 + cosine * (apart1 - 3 * apart3 + cosine * (2 * apart2 + cosine * 4 * apart3));
    // sin^2(pi f T) = (1 - cos(2 pi f T)) / 2
    sent[k] += scale * (1 - cosine) * gauss * ffe;
    angle = angle * turn;
    gauss *= quotient;
    quotient *= edge * edge;
  }
}

}  // namespace

double neighbourShare(unsigned distance, bool farEnd) {
  if (distance < 1 || distance > kFarthestNeighbour) return 0;
  double share = farEnd ? 0.08 : 0.32;
  for (unsigned further = 1; further < distance; ++further)
    share /= 4;
  return share;
}

double crosstalkPower(std::span<const Aggressor> aggressors, const Channel& channel, const Receiver& receiver,
                      double baudGbd) {
  Spectrum near{};
  Spectrum far{};
  bool anyFar = false;
  for (const Aggressor& aggressor : aggressors) {
    if (!usableBaud(aggressor.baudGbd)) continue;
    addSent(aggressor, neighbourShare(aggressor.distance, aggressor.farEnd), aggressor.farEnd ? far : near);
    anyFar = anyFar || aggressor.farEnd;
  }
  if (anyFar) {
    const LossFit loss(channel);
    for (std::size_t k = 1; k < kBins; ++k) {
      const double f = static_cast<double>(k) * kStepGHz;
      near[k] += far[k] * fromDb(-2 * loss.db(f, std::sqrt(f)));
    }
  }
  const ReceiveFilters filters(receiver, baudGbd);
  double sum = 0;
  for (std::size_t k = 1; k < kBins; ++k)
    sum += near[k] * filters.at(static_cast<double>(k) * kStepGHz).power;
  const double coupling = fromDb(limited(channel.crosstalkDb, -200, 0)) * kStepGHz / kReferenceGHz;
  return coupling * coupling * sum * kStepGHz;
}

}  // namespace simulator
