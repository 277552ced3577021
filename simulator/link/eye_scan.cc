// Columns of the eye, worked out once each.
#include "simulator/link/eye_scan.h"

#include <algorithm>

#include "simulator/link/math.h"
#include "simulator/link/model.h"

namespace simulator {

namespace {

double rateAt(const ReceivedSignal& signal, double phaseUi) {
  return sampleAt(signal, phaseUi).decisions.errorRate();
}

}  // namespace

int errorExponent(double ber) {
  constexpr double kTenths = 4.34294481903251828;  // 10 / ln 10
  return readingOf(limited(-kTenths * naturalLog(limited(ber, kBerFloor, 1)), 0, 180));
}

EyeScan::EyeScan(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd,
                 double farBaudGbd, std::span<const Aggressor> aggressors) {
  if (!usableBaud(baudGbd) || !samePace(baudGbd, farBaudGbd)) return;
  signal_ = receive(transmitter, channel, receiver, baudGbd, aggressors);
  if (!signal_->readable()) signal_.reset();
}

const EyeScan::Column& EyeScan::column(int phase) {
  std::optional<Column>& stored = columns_[static_cast<std::size_t>(phase + kMaxPhase)];
  if (stored) return *stored;
  const int none = errorExponent(0.5);
  Column made;
  made.fill(static_cast<std::uint8_t>(none));
  const Decisions decisions = sampleAt(*signal_, static_cast<double>(phase) / kPhases).decisions;
  int worst = 180;
  for (std::size_t level = 0; level < made.size() && worst > none; ++level) {
    worst = std::min(worst, errorExponent(decisions.errorRate(static_cast<double>(level) * signal_->lsbV)));
    made[level] = static_cast<std::uint8_t>(worst);
  }
  if (phase != 0) {
    const Column& inner = column(phase < 0 ? phase + 1 : phase - 1);
    for (std::size_t level = 0; level < made.size(); ++level)
      made[level] = std::min(made[level], inner[level]);
  }
  stored = made;
  return *stored;
}

int EyeScan::exponent(int phase, int level) {
  if (!signal_) return errorExponent(0.5);
  const int magnitude = level < 0 ? std::min(-(level + 1), kMaxLevel - 1) + 1 : std::min(level, kMaxLevel);
  return column(std::clamp(phase, -kMaxPhase, kMaxPhase))[static_cast<std::size_t>(magnitude)];
}

double EyeScan::edgeUi(int direction) const {
  for (int phase = 1; phase <= kMaxPhase; ++phase) {
    double outside = static_cast<double>(direction * phase) / kPhases;
    if (rateAt(*signal_, outside) <= kEyeBer) continue;
    double inside = static_cast<double>(direction * (phase - 1)) / kPhases;
    for (int i = 0; i < 8; ++i) {
      const double middle = (inside + outside) / 2;
      (rateAt(*signal_, middle) <= kEyeBer ? inside : outside) = middle;
    }
    return inside;
  }
  return 0.5 * direction;
}

int EyeScan::widthMilliUi() const {
  if (!signal_ || rateAt(*signal_, 0) > kEyeBer) return 0;
  return readingOf(1000 * (edgeUi(1) - edgeUi(-1)));
}

}  // namespace simulator
