// Gain, feedback and noise of a receiver, and what it decides by.
#include "simulator/link/received.h"

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "simulator/link/math.h"

namespace simulator {

namespace {

constexpr double kThermalV2PerGHz = 5.2e-8;  // eta0 of IEEE 802.3 annex 93A
constexpr double kTransmitterSnrDb = 27;
constexpr double kBoundedJitterUi = 0.05;
constexpr double kRandomJitterUi = 0.012;

double sumOfSquares(const Cursors& cursors) {
  double sum = 0;
  for (const double h : cursors.h)
    sum += h * h;
  return sum;
}

double swingOf(const Cursors& cursors) {
  double sum = 0;
  for (const double h : cursors.h)
    sum += std::fabs(h);
  return 2 * sum;
}

void settleGain(const Receiver& receiver, ReceivedSignal& signal) {
  if (signal.h0() <= 0) return;
  const double wanted = limited(receiver.amax, 0, kMaxAmax) * kLsbV / signal.h0();
  signal.gain = limited(wanted, kMinGain, kMaxGain);
  signal.gainInRange = wanted == signal.gain;
  signal.lsbV = kLsbV / signal.gain;
}

void settleFeedback(const Receiver& receiver, ReceivedSignal& signal) {
  const double mismatch = limited(receiver.evenOddMismatch, -0.2, 0.2);
  const ReceivedSignal::Taps adapted = dfeTaps(signal.cursors, receiver.dfeTaps);
  for (std::size_t path = 0; path < 2; ++path) {
    const double pathLsb = signal.lsbV / (path == 0 ? 1 + mismatch / 2 : 1 - mismatch / 2);
    for (std::size_t tap = 0; tap < kMaxDfeTaps && tap < receiver.dfeTaps; ++tap) {
      double& feedback = signal.feedback[path][tap];
      feedback = adapted[tap];
      if (!receiver.adapt) {
        const double held = limited(receiver.heldTaps[2 * tap + path], -32768, 32767) * pathLsb;
        feedback = dfeClamp(static_cast<unsigned>(tap + 1), held, signal.h0());
      }
      signal.feedbackLsb[path][tap] = feedback / pathLsb;
    }
  }
  signal.pathsDiffer = signal.feedback[0] != signal.feedback[1];
}

}  // namespace

ReceivedSignal receive(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd,
                       std::span<const Aggressor> aggressors) {
  ReceivedSignal signal;
  signal.arrival = arrivalOf(transmitter, channel, receiver, baudGbd);
  signal.instant = samplingInstant(signal.arrival.samples);
  signal.cursors = cursorsAt(signal.arrival.samples, signal.instant);
  signal.swingV = swingOf(signal.cursors);
  signal.detected = signal.swingV > 0 && signal.swingV * 1000 >= limited(receiver.signalDetectMv, 0, 2000);
  settleGain(receiver, signal);
  settleFeedback(receiver, signal);

  const double latch = kLatchLsb * signal.lsbV;
  signal.crosstalkV2 = crosstalkPower(aggressors, channel, receiver, baudGbd);
  signal.steadyNoiseV2 = kThermalV2PerGHz * signal.arrival.noiseBandGHz + signal.crosstalkV2 + latch * latch;
  const double added = limited(channel.randomJitterUi, 0, 0.5);
  signal.randomJitterUi2 = kRandomJitterUi * kRandomJitterUi + added * added;
  return signal;
}

Sample sampleAt(const ReceivedSignal& signal, double phaseUi) {
  const Pulse pulse = signal.arrival.samples;
  const double instant = signal.instant + phaseUi;
  const Cursors cursors = cursorsAt(pulse, instant);
  const double h0 = cursors[0];
  const double slopePower = sumOfSquares(slopesAt(pulse, instant));
  const double transmitterNoise = h0 * fromDb(-kTransmitterSnrDb);
  double variance = signal.steadyNoiseV2 + transmitterNoise * transmitterNoise + signal.randomJitterUi2 * slopePower;
  if (signal.arrival.lateEchoPower > 0) variance += signal.arrival.lateEchoPower * sumOfSquares(cursors);
  const double sigma = std::sqrt(variance);
  const double jitter = kBoundedJitterUi * std::sqrt(slopePower);

  std::vector<DecisionPath> paths;
  for (std::size_t path = 0; path < (signal.pathsDiffer ? 2 : 1); ++path) {
    const ReceivedSignal::Taps& taps = signal.feedback[path];
    std::vector<double> residuals = cursors.h;
    residuals[kPrecursors] = 0;
    for (std::size_t tap = 0; tap < taps.size(); ++tap)
      residuals[kPrecursors + 1 + tap] -= taps[tap];
    paths.push_back({LevelDistribution(h0, residuals, jitter, sigma), errorPropagation(h0, taps[0], sigma)});
  }
  return {Decisions(std::move(paths), kSensitivityLsb * signal.lsbV), sigma};
}

}  // namespace simulator
