// Tails of a mean of Gaussians, and their inverse.
#include "simulator/link/decisions.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace simulator {

namespace {

constexpr std::size_t kPatternCursors = 8;
// A pattern that is further from the level than this many sigma adds nothing to a rate above the floor.
constexpr double kCertain = 11;
// One that is this many sigma further than where a probability is reached adds less than a millionth of it.
constexpr double kSurplus = 3;

// The x with Q(x) = `probability`, to about 0.02; for probabilities below 0.1.
double aboutInverseTail(double probability) {
  const double x = std::sqrt(-2 * naturalLog(probability));
  return x - naturalLog(x * 2.5066) / x;
}

// Where a rising probability `tail(x)` reaches `target`, between `low` and `high`, to 1e-6 of `sigma`. sqrt(-2 ln p) is
// nearly a straight line, along which a step or two suffice; where it is not, halving closes in.
template <typename Tail>
double whereReached(Tail tail, double target, double start, double low, double high, double sigma) {
  const double wanted = std::sqrt(-2 * naturalLog(target));
  double x = limited(start, low, high);
  for (int i = 0; i < 60; ++i) {
    const NormalTail at = tail(x);
    (at.probability > target ? high : low) = x;
    if (high - low < 1e-6 * sigma) break;
    double step = (low + high) / 2 - x;
    double close = 0;
    if (at.density > 0 && at.probability > 0 && at.probability < 1) {
      const double root = std::sqrt(-2 * naturalLog(at.probability));
      const double straight = (root - wanted) * root * at.probability / at.density;
      // A step this short is short of its aim by the square of it.
      if (x + straight > low && x + straight < high) {
        step = straight;
        close = 1e-3 * sigma;
      }
    }
    x += step;
    if (std::fabs(step) < close) break;
  }
  return x;
}

}  // namespace

LevelDistribution::LevelDistribution(double main, std::span<const double> residuals, double jitter, double sigma)
    : main_(limited(main, -1e6, 1e6)) {
  std::array<double, kTwoValued> twoValued{};
  double noise = limited(sigma, 1e-9, 1e6);
  noise *= noise;
  // Insertion into the sorted few; what drops out is noise.
  for (const double value : residuals) {
    double falling = std::fabs(limited(value, -1e6, 1e6));
    for (std::size_t i = 0; i < kPatternCursors && falling > 0; ++i) {
      if (falling > twoValued[i]) std::swap(falling, twoValued[i]);
    }
    noise += falling * falling;
  }
  twoValued[kPatternCursors] = std::fabs(limited(jitter, -1e6, 1e6));
  const double noiseRms = std::sqrt(noise);
  perSigma_ = 1 / noiseRms;
  double fourthPowers = 0;
  reach_ = std::fabs(main_) + 40 * noiseRms;
  levels_[0] = main_ * perSigma_;
  for (const double value : twoValued) {
    if (value == 0) continue;
    const double step = value * perSigma_;
    for (unsigned i = 0; i < patterns_; ++i) {
      levels_[patterns_ + i] = levels_[i] + step;
      levels_[i] -= step;
    }
    patterns_ *= 2;
    noise += value * value;
    fourthPowers += value * value * value * value;
    reach_ += value;
  }
  spread_ = std::sqrt(noise);
  excess_ = -2 * fourthPowers / (noise * noise);
}

double LevelDistribution::about(double sigmas) const {
  // Cornish and Fisher's first term for a symmetric distribution.
  return main_ - spread_ * sigmas * (1 + (sigmas * sigmas - 3) * excess_ / 24);
}

NormalTail LevelDistribution::below(double level, double certain) const {
  const double offset = limited(level, -1e9, 1e9) * perSigma_;
  const NormalTail sum = sumOfTails(std::span(levels_).first(patterns_), offset, certain);
  return {sum.probability / patterns_, sum.density * perSigma_ / patterns_};
}

double errorPropagation(double h0, double h1, double sigma) {
  const double feedback = limited(h1, -1e6, 1e6);
  if (feedback == 0) return 1;
  const double main = limited(h0, -1e6, 1e6);
  const double noise = limited(sigma, 1e-9, 1e6);
  const double again = 0.5 * (normalTail((main - 2 * feedback) / noise).probability +
                              normalTail((main + 2 * feedback) / noise).probability);
  return 1 / (1 - limited(again, 0, 0.5));
}

NormalTail Decisions::below(double level, double certain) const {
  NormalTail sum;
  for (const DecisionPath& path : paths_) {
    const NormalTail tail = path.levels.below(level, certain);
    sum.probability += path.propagation * tail.probability;
    sum.density += path.propagation * tail.density;
  }
  const double share = 1.0 / static_cast<double>(paths_.size());
  return {share * sum.probability, share * sum.density};
}

double Decisions::errorRate(double offset) const {
  // A one falls short the more often, the higher the threshold; a zero the less often.
  const double ones = below(sensitivity_ + offset, kCertain).probability;
  const double zeros = offset == 0 ? ones : below(sensitivity_ - offset, kCertain).probability;
  return limited((ones + zeros) / 2, kBerFloor, 0.5);
}

double Decisions::levelAt(double probability) const {
  const double sigmas = aboutInverseTail(probability);
  const LevelDistribution& levels = paths_.front().levels;
  return whereReached([&](double level) { return below(level, sigmas + kSurplus); }, probability, levels.about(sigmas),
                      -levels.reach(), levels.reach(), levels.sigma());
}

double Decisions::offsetAt(double rate) const {
  if (errorRate() > rate) return 0;
  const double sigmas = aboutInverseTail(2 * rate);
  const LevelDistribution& levels = paths_.front().levels;
  const auto tail = [&](double offset) {
    const NormalTail above = below(sensitivity_ + offset, sigmas + kSurplus);
    const NormalTail beneath = below(sensitivity_ - offset, sigmas + kSurplus);
    return NormalTail{(above.probability + beneath.probability) / 2, (above.density - beneath.density) / 2};
  };
  return whereReached(tail, rate, levels.about(sigmas) - sensitivity_, 0, levels.reach(), levels.sigma());
}

}  // namespace simulator
