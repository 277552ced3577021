// The link evaluation: spectrum, pulse response, clock recovery, gain, feedback equaliser, noise and bit error rate.
#include "simulator/link/model.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "simulator/link/fft.h"

namespace simulator {

namespace {

constexpr unsigned kSamples = kSamplesPerUi * kPulseUi;
constexpr unsigned kBins = kSamples / 2 + 1;

constexpr double kThermalV2PerGHz = 5.2e-8;  // eta0 of IEEE 802.3 annex 93A
constexpr double kTransmitterSnrDb = 27;
constexpr double kDeterministicJitterUi = 0.05;
constexpr double kRandomJitterUi = 0.012;
constexpr double kSensitivityLsb = 2;
constexpr double kLatchLsb = 0.75;
constexpr double kCrosstalkGHz = 4.25;
constexpr double kSignalDetectV = 0.002;

// A pattern whose eye is open by more sigma than this adds nothing to a rate above the floor.
constexpr double kCertain = 11;
constexpr unsigned kPatternCursors = 8;
constexpr unsigned kPatterns = 1u << kPatternCursors;

// A bin attenuated by more than this many nepers (174 dB) by medium and edge is left out.
constexpr double kDeafNepers = 20;

// What a bin has in common at every baud, as f = k fb / 64.
struct BinTables {
  std::array<Complex, kBins> bit;       // spectrum of one rectangular bit
  std::array<double, kBins> bitPower;   // share of a random bit stream's power near this bin
  std::array<double, kBins> root;       // sqrt k
  std::array<double, kBins> entropy;    // k ln k
  std::array<Complex, kPulseUi> delay;  // exp(-j 2 pi k / 64): one unit interval at bin k
  InverseRealFft transform{kSamples};

  BinTables() {
    for (unsigned k = 0; k < kBins; ++k) {
      bit[k] = bitSpectrum(static_cast<double>(k) / kPulseUi);
      bitPower[k] = 2 * kPulseUi * magnitudeSquared(bit[k]);
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

// What arrives at the slicer, before the gain.
struct Arrival {
  std::array<double, kSamples> samples;
  double noiseBandGHz = 0;  // integral of |receiver filters|^2
  double crosstalkV2 = 0;
};

// Multiplies the spectrum by 1 + sum r exp(-j 2 pi f tau).
void addEchoes(const Channel& channel, double stepGHz, std::span<Complex> spectrum) {
  if (channel.echoes.empty()) return;
  std::array<Complex, kBins> factor;
  factor.fill({1, 0});
  for (const Echo& echo : channel.echoes) {
    const Complex turn = unitPhasor(-2 * kPi * stepGHz * limited(echo.delayNs, 0, 1e4));
    Complex delayed{limited(echo.reflection, -1, 1), 0};
    for (Complex& bin : factor) {
      bin = bin + delayed;
      delayed = delayed * turn;
    }
  }
  for (unsigned k = 0; k < kBins; ++k)
    spectrum[k] = spectrum[k] * factor[k];
}

// The receiver's filters at one bin: their product is `gain` * (low + j 4 u) with u = f/fb.
struct FilterBin {
  Complex gain;
  double power;
};

FilterBin filterBin(double fOverCorner, double u, double lowGain) {
  const double x = fOverCorner;
  const double xx = x * x;
  const Complex below = Complex{1 - 3.414214 * xx + xx * xx, 2.613126 * (x - x * xx)} * Complex{1 - 4 * u * u, 5 * u};
  const double share = 1 / magnitudeSquared(below);
  const Complex above{lowGain, 4 * u};
  return {share * (above * Complex{below.re, -below.im}), magnitudeSquared(above) * share};
}

// Fills `arrival`; the baud is in range.
void receive(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baud,
             Arrival& arrival) {
  const BinTables& tables = binTables();
  const double step = baud / kPulseUi;
  const double logStep = naturalLog(step);
  const double amplitude = driveAmplitude(transmitter);
  const std::array<double, 4> taps = normalisedTaps(transmitter);
  const double edgeNepers = slewNepers(transmitter.slewPs, step);
  const auto [a0, a1, a2, a4] = fitCoefficients(channel);
  const double skin = a1 * std::sqrt(step);
  const double cornerBins = receiverCornerGHz(receiver.pole) / step;
  const double lowGain = fromDb(-1.5 * limited(receiver.peak, 0, kMaxPeak));
  const double coupling = fromDb(limited(channel.crosstalkDb, -200, 0)) * step / kCrosstalkGHz;

  std::array<Complex, kBins> spectrum;
  double band = 0;
  double crosstalk = 0;
  for (unsigned k = 0; k < kBins; ++k) {
    const double f = k * step;
    const FilterBin filter = filterBin(k / cornerBins, static_cast<double>(k) / kPulseUi, lowGain);
    band += filter.power;

    spectrum[k] = {};
    const double edge = edgeNepers * k * k;
    if (edge > kDeafNepers) continue;
    const double edgeGain = exponential(-edge);
    crosstalk += tables.bitPower[k] * filter.power * (edgeGain * edgeGain) * (static_cast<double>(k) * k);

    const double lossDb = limited(a0 + skin * tables.root[k] + a2 * f + a4 * f * f, kMinLossDb, kMaxLossDb);
    if (edge + lossDb * (1 / kNeperDb) > kDeafNepers) continue;
    const double lag = skin * tables.root[k] - (2 / kPi) * a2 * step * (tables.entropy[k] + k * logStep);
    const Complex medium = fromDb(-lossDb) * unitPhasor(-lag * (1 / kNeperDb));

    const Complex delay = tables.delay[k % kPulseUi];
    Complex ffe{taps[3], 0};
    for (int n = 2; n >= 0; --n)
      ffe = ffe * delay + Complex{taps[static_cast<unsigned>(n)], 0};
    spectrum[k] = (amplitude * edgeGain) * (tables.bit[k] * ffe) * (medium * filter.gain);
  }
  addEchoes(channel, step, spectrum);
  spectrum[0].im = 0;
  spectrum[kBins - 1].im = 0;

  arrival.noiseBandGHz = band * step;
  arrival.crosstalkV2 = amplitude * amplitude * coupling * coupling * crosstalk;
  std::array<Complex, kSamples / 2> work;
  tables.transform.run(spectrum, work, arrival.samples);
}

double offsetOf(const Receiver& receiver) {
  return limited(receiver.offsetLsb, -kMaxOffsetLsb, kMaxOffsetLsb);
}

double reading(double lsb) {
  return limited(lsb, -kMaxReading - 1, kMaxReading);
}

// rms noise in V before the gain, but for the ISI that bitErrorRate counts as noise; `lsb` is a step there.
double noiseRms(const Channel& channel, const Arrival& arrival, double instant, double h0, double lsb) {
  double slopePower = 0;
  for (const double slope : slopesAt(PulseView(arrival.samples, kSamplesPerUi), instant).h)
    slopePower += slope * slope;
  const double addedJitter = limited(channel.randomJitterUi, 0, 0.5);
  const double jitter =
      kRandomJitterUi * kRandomJitterUi + kDeterministicJitterUi * kDeterministicJitterUi + addedJitter * addedJitter;
  const double transmitterNoise = h0 * fromDb(-kTransmitterSnrDb);
  const double latch = kLatchLsb * lsb;
  return std::sqrt(kThermalV2PerGHz * arrival.noiseBandGHz + transmitterNoise * transmitterNoise + jitter * slopePower +
                   arrival.crosstalkV2 + latch * latch);
}

struct Settled {
  double ber;
  double residual;  // sum |residual|
};

// One of the two decision paths, with its feedback `taps` in V.
Settled settle(const Cursors& cursors, const std::array<double, kMaxDfeTaps>& taps, double sensitivity, double sigma) {
  std::array<double, kPulseUi> isi{};
  unsigned count = 0;
  double sum = 0;
  for (int k = Cursors::kFirst; k <= Cursors::kLast; ++k) {
    if (k == 0) continue;
    const bool fed = k >= 1 && k <= static_cast<int>(kMaxDfeTaps);
    isi[count] = cursors[k] - (fed ? taps[static_cast<unsigned>(k - 1)] : 0);
    sum += std::fabs(isi[count]);
    ++count;
  }
  const double ber = bitErrorRate(cursors[0] - sensitivity, std::span(isi).first(count), sigma) *
                     errorPropagation(cursors[0], taps[0], sigma);
  return {limited(ber, kBerFloor, 0.5), sum};
}

// The two decision paths differ in gain, so that the same correction reads differently in either.
void equalise(const Receiver& receiver, const Cursors& cursors, LinkResult& result) {
  const double lsb = kLsbV / result.gain;
  const double mismatch = limited(receiver.evenOddMismatch, -0.2, 0.2);
  const unsigned taps = std::min(receiver.dfeTaps, kMaxDfeTaps);
  Settled paths[2];
  for (unsigned path = 0; path < 2; ++path) {
    const double pathLsb = lsb / (path == 0 ? 1 + mismatch / 2 : 1 - mismatch / 2);
    std::array<double, kMaxDfeTaps> feedback = dfeTaps(cursors, taps);
    for (unsigned tap = 0; tap < taps; ++tap) {
      if (!receiver.adapt) {
        const double held = limited(receiver.heldTaps[2 * tap + path], -32768, 32767) * pathLsb;
        feedback[tap] = dfeClamp(tap + 1, held, result.h0);
      }
      result.taps[2 * tap + path] = reading(feedback[tap] / pathLsb);
    }
    // An adapted equaliser leaves the same residual in both paths.
    const bool same = path == 1 && receiver.adapt;
    paths[path] = same ? paths[0] : settle(cursors, feedback, kSensitivityLsb * lsb, result.sigma);
  }
  const double residual = std::max(paths[0].residual, paths[1].residual);
  result.ber = (paths[0].ber + paths[1].ber) / 2;
  result.eyeHeightV = result.h0 - residual;
  result.residualIsi = residual / result.h0;
  result.amin = reading((result.h0 - residual - 3 * result.sigma) / lsb);
  result.locked = result.ber <= kLockLossBer;
}

bool usable(double baudGbd) {
  return baudGbd >= kMinBaudGbd && baudGbd <= kMaxBaudGbd;
}

}  // namespace

PulseResponse pulseResponse(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                            double baudGbd) {
  Arrival arrival;
  receive(transmitter, channel, receiver, limited(baudGbd, kMinBaudGbd, kMaxBaudGbd), arrival);
  return {{arrival.samples.begin(), arrival.samples.end()}, kSamplesPerUi};
}

double bitErrorRate(double opening, std::span<const double> isi, double sigma) {
  opening = limited(opening, -1e6, 1e6);
  std::array<double, kPatternCursors> largest{};
  double noise = limited(sigma, 1e-9, 1e6);
  noise *= noise;
  // Insertion into the sorted few; what drops out is noise.
  for (const double value : isi) {
    double falling = std::fabs(limited(value, -1e6, 1e6));
    for (double& kept : largest) {
      if (falling > kept) std::swap(falling, kept);
    }
    noise += falling * falling;
  }
  const double perSigma = 1 / std::sqrt(noise);

  std::array<double, kPatterns> eyes;
  eyes[0] = opening * perSigma;
  unsigned patterns = 1;
  for (const double value : largest) {
    for (unsigned i = 0; i < patterns; ++i) {
      eyes[patterns + i] = eyes[i] + value * perSigma;
      eyes[i] -= value * perSigma;
    }
    patterns *= 2;
  }
  double sum = 0;
  for (const double eye : eyes) {
    if (eye < kCertain) sum += qFunction(eye);
  }
  return limited(sum / kPatterns, 0, 0.5);
}

double errorPropagation(double h0, double h1, double sigma) {
  const double feedback = limited(h1, -1e6, 1e6);
  if (feedback == 0) return 1;
  const double main = limited(h0, -1e6, 1e6);
  const double noise = limited(sigma, 1e-9, 1e6);
  const double again = 0.5 * (qFunction((main - 2 * feedback) / noise) + qFunction((main + 2 * feedback) / noise));
  return 1 / (1 - limited(again, 0, 0.5));
}

int readingOf(double lsb) {
  const double bounded = limited(lsb, -32768, 32767);
  return static_cast<int>(bounded < 0 ? bounded - 0.5 : bounded + 0.5);
}

LinkResult silentLink(const Receiver& receiver) {
  LinkResult result;
  result.ap = kLatchLsb;
  result.an = offsetOf(receiver) - kLatchLsb;
  return result;
}

LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd) {
  if (!channel.connected || !usable(baudGbd)) return silentLink(receiver);
  Arrival arrival;
  receive(transmitter, channel, receiver, baudGbd, arrival);
  const PulseView pulse(arrival.samples, kSamplesPerUi);
  const double instant = samplingInstant(pulse);
  const Cursors cursors = cursorsAt(pulse, instant);
  const double h0 = cursors[0];
  if (!(h0 >= kSignalDetectV)) return silentLink(receiver);

  LinkResult result;
  result.signalDetected = true;
  result.h0 = h0;
  const double target = limited(receiver.amax, 0, kMaxAmax) * kLsbV;
  result.gain = limited(target / h0, kMinGain, kMaxGain);
  result.gainInRange = target / h0 == result.gain;
  const double lsb = kLsbV / result.gain;
  result.ap = reading(h0 / lsb);
  result.an = reading(offsetOf(receiver) - result.ap);
  result.crosstalk = std::sqrt(arrival.crosstalkV2);
  result.sigma = noiseRms(channel, arrival, instant, h0, lsb);
  equalise(receiver, cursors, result);
  for (std::size_t i = 0; i < result.precursors.size(); ++i) {
    result.precursors[i] = cursors[-1 - static_cast<int>(i)] / h0;
  }
  for (std::size_t i = 0; i < result.postcursors.size(); ++i) {
    result.postcursors[i] = cursors[1 + static_cast<int>(i)] / h0;
  }
  return result;
}

LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, double farBaudGbd) {
  LinkResult result = evaluateLink(transmitter, channel, receiver, baudGbd);
  const double apart = std::fabs(limited(farBaudGbd, 0, 1e3) - limited(baudGbd, 0, 1e3));
  if (apart <= kCaptureRange * limited(baudGbd, 0, 1e3)) return result;
  // The clock slides over the bits: a signal is there, its level is held, and nothing else means anything.
  result.locked = false;
  result.ber = 0.5;
  result.eyeHeightV = 0;
  result.amin = 0;
  result.taps.fill(0);
  return result;
}

}  // namespace simulator
