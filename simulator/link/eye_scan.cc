// Points of the eye, worked out once each and from the middle outwards.
#include "simulator/link/eye_scan.h"

#include <algorithm>
#include <cstdlib>

#include "simulator/link/math.h"
#include "simulator/link/model.h"

namespace simulator {

namespace {

bool isOpen(const ReceivedSignal& signal, double phaseUi) {
  return sampleAt(signal, phaseUi).decisions.errorRate() <= kEyeBer;
}

}  // namespace

int errorExponent(double ber) {
  constexpr double kTenths = 4.34294481903251828;  // 10 / ln 10
  return readingOf(-kTenths * naturalLog(limited(ber, kBerFloor, 1)));
}

EyeScan::EyeScan(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd,
                 double farBaudGbd, std::span<const Aggressor> aggressors) {
  if (!usableBaud(baudGbd) || !samePace(baudGbd, farBaudGbd)) return;
  signal_ = receive(transmitter, channel, receiver, baudGbd, aggressors);
  if (!signal_->readable()) signal_.reset();
}

int EyeScan::worst(int phase, int magnitude) {
  const int index = phase + kMaxPhase;
  Column& column = columns_[static_cast<std::size_t>(index)];
  if (!column.decisions) column.decisions = sampleAt(*signal_, static_cast<double>(phase) / kPhases).decisions;
  while (static_cast<int>(column.exponents.size()) <= magnitude) {
    const int level = static_cast<int>(column.exponents.size());
    int exponent = errorExponent(column.decisions->errorRate(level * signal_->lsbV));
    if (level > 0) exponent = std::min(exponent, column.exponents.back());
    if (phase < 0) exponent = std::min(exponent, worst(phase + 1, level));
    if (phase > 0) exponent = std::min(exponent, worst(phase - 1, level));
    column.exponents.push_back(exponent);
  }
  return column.exponents[static_cast<std::size_t>(magnitude)];
}

int EyeScan::exponent(int phase, int level) {
  if (!signal_) return errorExponent(0.5);
  return worst(std::clamp(phase, -kMaxPhase, kMaxPhase), std::abs(std::clamp(level, -kMaxLevel, kMaxLevel)));
}

double EyeScan::edgeUi(int direction) const {
  const auto at = [&](int phase) { return static_cast<double>(direction * phase) / kPhases; };
  int phase = 1;
  while (phase < kMaxPhase && isOpen(*signal_, at(phase)))
    ++phase;
  double inside = at(phase - 1);
  double outside = at(phase);
  for (int i = 0; i < 8; ++i) {
    const double middle = (inside + outside) / 2;
    (isOpen(*signal_, middle) ? inside : outside) = middle;
  }
  return inside;
}

int EyeScan::widthMilliUi() const {
  if (!signal_ || !isOpen(*signal_, 0)) return 0;
  return readingOf(1000 * (edgeUi(1) - edgeUi(-1)));
}

}  // namespace simulator
