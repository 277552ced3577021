// What a receiver shows of a signal.
#include "simulator/link/model.h"

#include <cmath>
#include <cstddef>

#include "simulator/link/math.h"

namespace simulator {

namespace {

double offsetOf(const Receiver& receiver) {
  return limited(receiver.offsetLsb, -kMaxOffsetLsb, kMaxOffsetLsb);
}

double reading(double lsb) {
  return limited(lsb, -kMaxReading - 1, kMaxReading);
}

// A signal without lock: its level is held, and nothing else means anything.
void loseLock(LinkResult& result) {
  result.locked = false;
  result.ber = 0.5;
  result.eyeHeightV = 0;
  result.amin = 0;
  result.taps.fill(0);
}

}  // namespace

bool samePace(double baudGbd, double farBaudGbd) {
  const double baud = limited(baudGbd, 0, 1e3);
  return std::fabs(limited(farBaudGbd, 0, 1e3) - baud) <= kCaptureRange * baud;
}

int readingOf(double lsb) {
  const double bounded = limited(lsb, -32768, 32767);
  return static_cast<int>(bounded + std::copysign(0.5, bounded));
}

LinkResult silentLink(const Receiver& receiver) {
  LinkResult result;
  result.ap = kLatchLsb;
  result.an = offsetOf(receiver) - kLatchLsb;
  return result;
}

LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, std::span<const Aggressor> aggressors) {
  if (!usableBaud(baudGbd)) return silentLink(receiver);
  const ReceivedSignal signal = receive(transmitter, channel, receiver, baudGbd, aggressors);
  LinkResult result = silentLink(receiver);
  result.swingV = signal.swingV;
  result.signalDetected = signal.detected;
  if (!signal.readable()) return result;

  result.h0 = signal.h0();
  result.gain = signal.gain;
  result.gainInRange = signal.gainInRange;
  result.ap = reading(result.h0 / signal.lsbV);
  result.an = reading(offsetOf(receiver) - result.ap);
  result.crosstalk = std::sqrt(signal.crosstalkV2);
  for (std::size_t i = 0; i < result.taps.size(); ++i)
    result.taps[i] = reading(signal.feedbackLsb[i % 2][i / 2]);

  const Sample centre = sampleAt(signal, 0);
  result.sigma = centre.sigma;
  result.ber = centre.decisions.errorRate();
  result.amin = reading(centre.decisions.levelAt(kAminProbability) / signal.lsbV);
  result.eyeHeightV = 2 * centre.decisions.offsetAt(kEyeBer);
  result.locked = result.ber <= kLockLossBer;
  return result;
}

LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, double farBaudGbd, std::span<const Aggressor> aggressors) {
  LinkResult result = evaluateLink(transmitter, channel, receiver, baudGbd, aggressors);
  if (!samePace(baudGbd, farBaudGbd)) loseLock(result);
  return result;
}

}  // namespace simulator
