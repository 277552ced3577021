// Spectrum and pulse response of a link.
#include "simulator/link/arrival.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "simulator/link/fft.h"
#include "simulator/link/math.h"

namespace simulator {

namespace {

constexpr unsigned kSamples = kSamplesPerUi * kPulseUi;
constexpr unsigned kBins = kSamples / 2 + 1;

// A bin attenuated by more than this many nepers (174 dB) by medium and edge is left out.
constexpr double kDeafNepers = 20;

// What a bin has in common at every baud, as f = k fb / 64.
struct BinTables {
  std::array<Complex, kBins> bit;       // spectrum of one rectangular bit, exp(-j pi u) sin(pi u) / (pi u), u = f/fb
  std::array<double, kBins> root;       // sqrt k
  std::array<double, kBins> entropy;    // k ln k
  std::array<Complex, kPulseUi> delay;  // exp(-j 2 pi k / 64): one unit interval at bin k
  InverseRealFft transform{kSamples};

  BinTables() {
    for (unsigned k = 0; k < kBins; ++k) {
      const Complex halfTurn = unitPhasor(-kPi * k / kPulseUi);
      bit[k] = k == 0 ? Complex{1.0 / kPulseUi, 0} : (-halfTurn.im / (kPi * k)) * halfTurn;
      root[k] = std::sqrt(static_cast<double>(k));
      entropy[k] = k * naturalLog(k);
    }
    for (unsigned k = 0; k < kPulseUi; ++k)
      delay[k] = unitPhasor(-2 * kPi * k / kPulseUi);
  }
};

const BinTables& binTables() {
  static const BinTables tables;
  return tables;
}

double limitedDelayUi(const Echo& echo, double baud) {
  return limited(echo.delayNs, 0, 1e4) * baud;
}

// Adds `reflection` times `pulse`, `delaySamples` later, to `sum`, whose period holds the whole of it.
void addEcho(Pulse pulse, double reflection, double delaySamples, std::span<double> sum) {
  constexpr std::ptrdiff_t kFirst = -kPrecursors * static_cast<std::ptrdiff_t>(kSamplesPerUi);
  constexpr std::ptrdiff_t kEnd = kFirst + static_cast<std::ptrdiff_t>(kSamples);
  const double whole = std::ceil(delaySamples);
  const std::array<double, 4> w = cubicWeights(whole - delaySamples);
  const auto at = [&](std::ptrdiff_t i) {
    return i < kFirst || i >= kEnd ? 0 : pulse[static_cast<std::size_t>(i) % kSamples];
  };
  for (std::ptrdiff_t i = kFirst; i < kEnd; ++i) {
    const auto late = static_cast<std::size_t>(i + static_cast<std::ptrdiff_t>(whole)) & (sum.size() - 1);
    sum[late] += reflection * (w[0] * at(i - 1) + w[1] * at(i) + w[2] * at(i + 1) + w[3] * at(i + 2));
  }
}

// Takes in the medium's echoes: p(t) + sum r p(t - tau).
void addEchoes(const Channel& channel, double baud, Arrival& arrival) {
  double latest = 0;
  for (const Echo& echo : channel.echoes) {
    const double delayUi = limitedDelayUi(echo, baud);
    if (delayUi <= kMaxPulseUi - kPulseUi && delayUi > latest) latest = delayUi;
  }
  unsigned periodUi = kPulseUi;
  while (periodUi < kPulseUi + latest)
    periodUi *= 2;

  const std::vector<double> pulse = arrival.samples;
  arrival.samples.resize(static_cast<std::size_t>(periodUi) * kSamplesPerUi);
  // What comes before the bit moves to the end of the longer period.
  constexpr std::ptrdiff_t kBefore = kPrecursors * static_cast<std::ptrdiff_t>(kSamplesPerUi);
  if (periodUi > kPulseUi) {
    std::fill(arrival.samples.begin() + kSamples - kBefore, arrival.samples.end(), 0);
    std::copy(pulse.end() - kBefore, pulse.end(), arrival.samples.end() - kBefore);
  }
  for (const Echo& echo : channel.echoes) {
    const double reflection = limited(echo.reflection, -1, 1);
    const double delayUi = limitedDelayUi(echo, baud);
    if (delayUi <= kMaxPulseUi - kPulseUi) {
      addEcho(pulse, reflection, delayUi * kSamplesPerUi, arrival.samples);
    } else {
      arrival.lateEchoPower += reflection * reflection;
    }
  }
}

}  // namespace

double longestEchoNs(double baudGbd) {
  return (kMaxPulseUi - kPulseUi) / limited(baudGbd, kMinBaudGbd, kMaxBaudGbd);
}

Arrival arrivalOf(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd) {
  const BinTables& tables = binTables();
  const double step = baudGbd / kPulseUi;
  const double logStep = naturalLog(step);
  const double rootStep = std::sqrt(step);
  const double amplitude = driveAmplitude(transmitter);
  const std::array<double, 4> taps = normalisedTaps(transmitter);
  const double edgeNepers = slewNepers(transmitter.slewPs, step);
  const LossFit loss(channel);
  const ReceiveFilters filters(receiver, baudGbd);

  std::array<Complex, kBins> spectrum;
  double band = 0;
  for (unsigned k = 0; k < kBins; ++k) {
    const double f = k * step;
    const ReceiveFilters::Point filter = filters.at(f);
    band += filter.power;

    spectrum[k] = {};
    const double rootF = tables.root[k] * rootStep;
    const double edge = edgeNepers * k * k;
    const double nepers = edge + loss.db(f, rootF) * (1 / kNeperDb);
    if (nepers > kDeafNepers) continue;
    // f ln f in terms of k ln k.
    const double lagDb = loss.a1 * rootF - (2 / kPi) * loss.a2 * step * (tables.entropy[k] + k * logStep);
    const Complex medium = exponential(-nepers) * unitPhasor(-lagDb * (1 / kNeperDb));

    const Complex delay = tables.delay[k % kPulseUi];
    Complex ffe{taps[3], 0};
    for (std::size_t n = 3; n > 0; --n)
      ffe = ffe * delay + Complex{taps[n - 1], 0};
    spectrum[k] = amplitude * (tables.bit[k] * ffe) * (medium * filter.response);
  }
  spectrum[0].im = 0;
  spectrum[kBins - 1].im = 0;

  Arrival arrival{.samples = std::vector<double>(kSamples), .noiseBandGHz = band * step};
  std::array<Complex, kSamples / 2> work;
  tables.transform.run(spectrum, work, arrival.samples);
  if (!channel.echoes.empty()) addEchoes(channel, baudGbd, arrival);
  return arrival;
}

}  // namespace simulator
