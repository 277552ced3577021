// Pulse response by inverse Fourier transform, and what a clock recovery and a decision feedback equaliser make of it.
#include "simulator/link/pulse.h"

#include <cmath>
#include <cstddef>

#include "simulator/link/fft.h"

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
  explicit PeriodicSamples(PulseView pulse) : samples_(pulse.samples), mask_(pulse.samples.size() - 1) {}
  double operator[](std::int64_t index) const {
    return samples_[static_cast<std::size_t>(index) & mask_];
  }

 private:
  std::span<const double> samples_;
  std::size_t mask_;
};

struct Position {
  std::int64_t sample;
  double fraction;
};

Position positionOf(PulseView pulse, double ui) {
  const double position = limited(ui, -1e6, 1e6) * pulse.samplesPerUi;
  const double whole = std::floor(position);
  return {static_cast<std::int64_t>(whole), position - whole};
}

std::int64_t highestSample(PulseView pulse) {
  std::size_t best = 0;
  for (std::size_t i = 1; i < pulse.samples.size(); ++i) {
    if (pulse.samples[i] > pulse.samples[best]) best = i;
  }
  return static_cast<std::int64_t>(best);
}

unsigned roundedGrid(unsigned samplesPerUi) {
  unsigned grid = 4;
  while (grid < samplesPerUi && grid < 256)
    grid *= 2;
  return grid;
}

}  // namespace

double pulseAt(PulseView pulse, double ui) {
  if (pulse.samples.empty()) return 0;
  const PeriodicSamples p(pulse);
  const Position at = positionOf(pulse, ui);
  const std::array<double, 4> w = cubicWeights(at.fraction);
  return w[0] * p[at.sample - 1] + w[1] * p[at.sample] + w[2] * p[at.sample + 1] + w[3] * p[at.sample + 2];
}

PulseResponse pulseResponse(const std::function<Complex(double)>& transfer, double baudGbd, unsigned samplesPerUi) {
  PulseResponse pulse;
  pulse.samplesPerUi = roundedGrid(samplesPerUi);
  const unsigned samples = kPulseUi * pulse.samplesPerUi;
  const double baud = limited(baudGbd, 0.01, 1000);
  std::vector<Complex> spectrum(samples / 2 + 1);
  for (unsigned k = 0; k <= samples / 2; ++k) {
    const double u = static_cast<double>(k) / kPulseUi;
    const Complex h = transfer(u * baud);
    spectrum[k] = Complex{limited(h.re, -1e6, 1e6), limited(h.im, -1e6, 1e6)} * bitSpectrum(u);
  }
  spectrum.front().im = 0;
  spectrum.back().im = 0;
  std::vector<Complex> work(samples / 2);
  pulse.samples.resize(samples);
  InverseRealFft(samples).run(spectrum, work, pulse.samples);
  return pulse;
}

Complex bitSpectrum(double fOverBaud) {
  if (fOverBaud == 0) return {1.0 / kPulseUi, 0};
  const Complex halfTurn = unitPhasor(-kPi * fOverBaud);
  return (-halfTurn.im / (kPi * fOverBaud * kPulseUi)) * halfTurn;
}

double peakInstant(PulseView pulse) {
  return static_cast<double>(highestSample(pulse)) / pulse.samplesPerUi;
}

double samplingInstant(PulseView pulse) {
  if (pulse.samples.empty()) return 0;
  const PeriodicSamples p(pulse);
  const auto half = static_cast<std::int64_t>(pulse.samplesPerUi / 2);
  const auto difference = [&](std::int64_t i) { return p[i - half] - p[i + half]; };
  const std::int64_t peak = highestSample(pulse);
  for (std::int64_t step = 0; step <= 2 * 2 * half; ++step) {
    // 0, -1, 1, -2, 2 ... so that the nearest crossing wins.
    const std::int64_t at = peak + (step % 2 != 0 ? -(step + 1) / 2 : step / 2);
    if (difference(at) > 0 || difference(at + 1) <= 0) continue;
    const double d[] = {difference(at - 1), difference(at), difference(at + 1), difference(at + 2)};
    double low = 0;
    double high = 1;
    for (int i = 0; i < 30; ++i) {
      const double middle = (low + high) / 2;
      const std::array<double, 4> w = cubicWeights(middle);
      (w[0] * d[0] + w[1] * d[1] + w[2] * d[2] + w[3] * d[3] > 0 ? high : low) = middle;
    }
    return (static_cast<double>(at) + low) / pulse.samplesPerUi;
  }
  return peakInstant(pulse);
}

Cursors cursorsAt(PulseView pulse, double instantUi) {
  Cursors cursors;
  if (pulse.samples.empty()) return cursors;
  const PeriodicSamples p(pulse);
  const Position at = positionOf(pulse, instantUi);
  const std::array<double, 4> w = cubicWeights(at.fraction);
  for (int k = Cursors::kFirst; k <= Cursors::kLast; ++k) {
    const std::int64_t i = at.sample + static_cast<std::int64_t>(k) * pulse.samplesPerUi;
    cursors[k] = w[0] * p[i - 1] + w[1] * p[i] + w[2] * p[i + 1] + w[3] * p[i + 2];
  }
  return cursors;
}

Cursors slopesAt(PulseView pulse, double instantUi) {
  const Cursors before = cursorsAt(pulse, instantUi - 1.0 / 16);
  const Cursors after = cursorsAt(pulse, instantUi + 1.0 / 16);
  Cursors slopes;
  for (std::size_t i = 0; i < slopes.h.size(); ++i)
    slopes.h[i] = (after.h[i] - before.h[i]) * 8;
  return slopes;
}

double dfeClamp(unsigned tap, double value, double h0) {
  const double reach = (tap <= 1 ? 0.5 : 0.25) * limited(h0, 0, 1e6);
  return limited(value, -reach, reach);
}

std::array<double, kMaxDfeTaps> dfeTaps(const Cursors& cursors, unsigned taps) {
  std::array<double, kMaxDfeTaps> h{};
  for (unsigned tap = 1; tap <= kMaxDfeTaps && tap <= taps; ++tap) {
    h[tap - 1] = dfeClamp(tap, cursors[static_cast<int>(tap)], cursors[0]);
  }
  return h;
}

double eyeOpening(const Cursors& cursors, unsigned taps) {
  const std::array<double, kMaxDfeTaps> h = dfeTaps(cursors, taps);
  double isi = 0;
  for (int k = Cursors::kFirst; k <= Cursors::kLast; ++k) {
    if (k == 0) continue;
    const bool fed = k >= 1 && k <= static_cast<int>(kMaxDfeTaps);
    isi += std::fabs(cursors[k] - (fed ? h[static_cast<unsigned>(k - 1)] : 0));
  }
  return cursors[0] - isi;
}

}  // namespace simulator
