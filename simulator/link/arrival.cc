// Spectrum and pulse response of a link.
#include "simulator/link/arrival.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "simulator/link/fft.h"
#include "simulator/link/math.h"

namespace simulator {

namespace {

// A bin attenuated by more than this many nepers (104 dB) by medium and edge is left out.
constexpr double kDeafNepers = 12;

// What a bin has in common at every baud, as f = k fb / period.
struct BinTables {
  unsigned bins;
  std::vector<Complex> bit;     // spectrum of one rectangular bit, exp(-j pi u) sin(pi u) / (pi u), u = f/fb
  std::vector<double> root;     // sqrt k
  std::vector<double> entropy;  // k ln k
  std::vector<Complex> delay;   // exp(-j 2 pi k / period): one unit interval at bin k
  InverseRealFft transform;

  explicit BinTables(unsigned periodUi) : bins(kSamplesPerUi * periodUi / 2 + 1), transform(kSamplesPerUi * periodUi) {
    for (unsigned k = 0; k < bins; ++k) {
      const Complex halfTurn = unitPhasor(-kPi * k / periodUi);
      bit.push_back(k == 0 ? Complex{1.0 / periodUi, 0} : (-halfTurn.im / (kPi * k)) * halfTurn);
      root.push_back(std::sqrt(static_cast<double>(k)));
      entropy.push_back(k * naturalLog(k));
    }
    for (unsigned k = 0; k < periodUi; ++k)
      delay.push_back(unitPhasor(-2 * kPi * k / periodUi));
  }
};

template <unsigned kPeriodUi>
const BinTables& tablesOf() {
  static const BinTables tables(kPeriodUi);
  return tables;
}

const BinTables& binTables(unsigned periodUi) {
  static_assert(kPulseUi == 64 && kMaxPulseUi == 1024);
  switch (periodUi) {
    case 64:
      return tablesOf<64>();
    case 128:
      return tablesOf<128>();
    case 256:
      return tablesOf<256>();
    case 512:
      return tablesOf<512>();
    default:
      return tablesOf<1024>();
  }
}

double delayNs(const Echo& echo) {
  return limited(echo.delayNs, 0, 1e4);
}
double reflectionOf(const Echo& echo) {
  return limited(echo.reflection, -1, 1);
}

unsigned periodFor(const Channel& channel, double baud) {
  const double most = longestEchoNs(baud);
  double latest = 0;
  for (const Echo& echo : channel.echoes) {
    if (delayNs(echo) <= most) latest = std::max(latest, delayNs(echo));
  }
  unsigned periodUi = kPulseUi;
  while (periodUi < kMaxPulseUi && periodUi < kPulseUi + latest * baud)
    periodUi *= 2;
  return periodUi;
}

// Multiplies the spectrum by 1 + sum r exp(-j 2 pi f tau). Gives the power of the echoes that come too late.
double addEchoes(const Channel& channel, double baud, double stepGHz, std::span<Complex> spectrum) {
  std::vector<Complex> factor(spectrum.size(), {1, 0});
  double late = 0;
  for (const Echo& echo : channel.echoes) {
    const double reflection = reflectionOf(echo);
    if (delayNs(echo) > longestEchoNs(baud)) {
      late += reflection * reflection;
      continue;
    }
    const Complex turn = unitPhasor(-2 * kPi * stepGHz * delayNs(echo));
    Complex delayed{reflection, 0};
    for (Complex& bin : factor) {
      bin = bin + delayed;
      delayed = delayed * turn;
    }
  }
  for (std::size_t k = 0; k < spectrum.size(); ++k)
    spectrum[k] = spectrum[k] * factor[k];
  return late;
}

}  // namespace

double longestEchoNs(double baudGbd) {
  return (kMaxPulseUi - kPulseUi) / limited(baudGbd, kMinBaudGbd, kMaxBaudGbd);
}

Arrival arrivalOf(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd) {
  const unsigned periodUi = periodFor(channel, baudGbd);
  const BinTables& tables = binTables(periodUi);
  const double step = baudGbd / periodUi;
  const double logStep = naturalLog(step);
  const double rootStep = std::sqrt(step);
  const double amplitude = driveAmplitude(transmitter);
  const std::array<double, 4> taps = normalisedTaps(transmitter);
  const double edgeNepers = slewNepers(transmitter.slewPs, step);
  const LossFit loss(channel);
  const ReceiveFilters filters(receiver, baudGbd);

  std::vector<Complex> spectrum(tables.bins);
  double band = 0;
  for (unsigned k = 0; k < tables.bins; ++k) {
    const double f = k * step;
    const ReceiveFilters::Point filter = filters.at(f);
    band += k == 0 ? filter.power / 2 : filter.power;

    const double rootF = tables.root[k] * rootStep;
    const double edge = edgeNepers * k * k;
    const double nepers = edge + loss.db(f, rootF) * (1 / kNeperDb);
    if (nepers > kDeafNepers) continue;
    // f ln f in terms of k ln k.
    const double lagDb = loss.a1 * rootF - (2 / kPi) * loss.a2 * step * (tables.entropy[k] + k * logStep);
    const Complex medium = exponential(-nepers) * unitPhasor(-lagDb * (1 / kNeperDb));

    const Complex delay = tables.delay[k % periodUi];
    Complex ffe{taps[3], 0};
    for (std::size_t n = 3; n > 0; --n)
      ffe = ffe * delay + Complex{taps[n - 1], 0};
    spectrum[k] = amplitude * (tables.bit[k] * ffe) * (medium * filter.response);
  }
  Arrival arrival{.samples = std::vector<double>(2 * std::size_t{tables.bins - 1}), .noiseBandGHz = band * step};
  if (!channel.echoes.empty()) arrival.lateEchoPower = addEchoes(channel, baudGbd, step, spectrum);
  spectrum.front().im = 0;
  spectrum.back().im = 0;
  std::vector<Complex> work(tables.bins - 1);
  tables.transform.run(spectrum, work, arrival.samples);
  return arrival;
}

}  // namespace simulator
