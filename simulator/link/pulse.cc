// What a clock recovery and a decision feedback equaliser make of a pulse response.
#include "simulator/link/pulse.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "simulator/link/math.h"

namespace simulator {

namespace {

// Weights of the four samples around a point `fraction` of a step after the second (Lagrange).
std::array<double, 4> cubicWeights(double fraction) {
  const double a = fraction + 1;
  const double b = fraction;
  const double c = fraction - 1;
  const double d = fraction - 2;
  return {-b * c * d / 6, a * c * d / 2, -a * b * d / 2, a * b * c / 6};
}

// Reads the periodic pulse at any whole sample.
class PeriodicSamples {
 public:
  explicit PeriodicSamples(Pulse pulse) : samples_(pulse), mask_(pulse.size() - 1) {}
  double operator[](std::int64_t index) const {
    return samples_[static_cast<std::size_t>(index) & mask_];
  }

 private:
  Pulse samples_;
  std::size_t mask_;
};

std::int64_t highestSample(Pulse pulse) {
  std::size_t best = 0;
  for (std::size_t i = 1; i < pulse.size(); ++i) {
    if (pulse[i] > pulse[best]) best = i;
  }
  return static_cast<std::int64_t>(best);
}

}  // namespace

double samplingInstant(Pulse pulse) {
  const PeriodicSamples p(pulse);
  constexpr std::int64_t kHalf = kSamplesPerUi / 2;
  const auto difference = [&](std::int64_t i) { return p[i - kHalf] - p[i + kHalf]; };
  const std::int64_t peak = highestSample(pulse);
  for (std::int64_t step = 0; step <= 2 * 2 * kHalf; ++step) {
    // 0, -1, 1, -2, 2 ... so that the nearest crossing wins.
    const std::int64_t at = peak + (step % 2 != 0 ? -1 - step / 2 : step / 2);
    if (difference(at) > 0 || difference(at + 1) <= 0) continue;
    const double d[] = {difference(at - 1), difference(at), difference(at + 1), difference(at + 2)};
    double low = 0;
    double high = 1;
    for (int i = 0; i < 30; ++i) {
      const double middle = (low + high) / 2;
      const std::array<double, 4> w = cubicWeights(middle);
      (w[0] * d[0] + w[1] * d[1] + w[2] * d[2] + w[3] * d[3] > 0 ? high : low) = middle;
    }
    return (static_cast<double>(at) + low) / kSamplesPerUi;
  }
  return static_cast<double>(peak) / kSamplesPerUi;
}

Cursors cursorsAt(Pulse pulse, double instantUi) {
  Cursors cursors{std::vector<double>(pulse.size() / kSamplesPerUi)};
  const PeriodicSamples p(pulse);
  const double position = instantUi * kSamplesPerUi;
  const double whole = std::floor(position);
  const std::array<double, 4> w = cubicWeights(position - whole);
  std::int64_t i = static_cast<std::int64_t>(whole) - kPrecursors * static_cast<std::int64_t>(kSamplesPerUi);
  for (double& h : cursors.h) {
    h = w[0] * p[i - 1] + w[1] * p[i] + w[2] * p[i + 1] + w[3] * p[i + 2];
    i += kSamplesPerUi;
  }
  return cursors;
}

Cursors slopesAt(Pulse pulse, double instantUi) {
  const Cursors before = cursorsAt(pulse, instantUi - 1.0 / 16);
  Cursors slopes = cursorsAt(pulse, instantUi + 1.0 / 16);
  for (std::size_t i = 0; i < slopes.h.size(); ++i)
    slopes.h[i] = (slopes.h[i] - before.h[i]) * 8;
  return slopes;
}

double dfeClamp(unsigned tap, double value, double h0) {
  const double reach = (tap <= 1 ? 0.5 : 0.25) * limited(h0, 0, 1e6);
  return limited(value, -reach, reach);
}

std::array<double, kMaxDfeTaps> dfeTaps(const Cursors& cursors, unsigned taps) {
  std::array<double, kMaxDfeTaps> h{};
  for (unsigned tap = 1; tap <= kMaxDfeTaps && tap <= taps; ++tap)
    h[tap - 1] = dfeClamp(tap, cursors[static_cast<int>(tap)], cursors[0]);
  return h;
}

}  // namespace simulator
