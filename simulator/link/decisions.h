// How the levels that a slicer sees are distributed, and how often it decides wrongly for that. Levels in V before the
// gain (differential, half of peak to peak); they are those of a one, and a zero's mirror them.
#pragma once

#include <array>
#include <span>
#include <utility>
#include <vector>

#include "simulator/link/math.h"

namespace simulator {

inline constexpr double kBerFloor = 1e-18;  // no link is reported better

// A main cursor, plus or minus the eight largest residual cursors, plus or minus a bounded jitter, each sign as likely
// as the other, with Gaussian noise in which the smaller residuals are folded.
class LevelDistribution {
 public:
  LevelDistribution(double main, std::span<const double> residuals, double jitter, double sigma);

  // Probability that a one falls short of `level`, and its density by V: the mean of Q((main +- ... - level) / sigma)
  // over all signs. Signs that keep it more than `certain` sigma away are left out.
  NormalTail below(double level, double certain) const;
  // About where a one falls short with the probability of a normal distribution's tail beyond `sigmas`.
  double about(double sigmas) const;
  // rms of the Gaussian noise, and how far from 0 no level is.
  double sigma() const {
    return 1 / perSigma_;
  }
  double reach() const {
    return reach_;
  }

 private:
  static constexpr unsigned kTwoValued = 9;
  unsigned patterns_ = 1;
  std::array<double, 1u << kTwoValued> levels_;  // in sigma
  double main_;
  double perSigma_;
  double spread_;
  double excess_;  // kurtosis above a normal distribution's
  double reach_;
};

// How many errors one error becomes by wrong feedback of the first tap h1: 1 / (1 - a),
// a = (Q((h0 - 2 h1)/sigma) + Q((h0 + 2 h1)/sigma)) / 2. 1 without feedback.
double errorPropagation(double h0, double h1, double sigma);

// One way of deciding. The even and the odd decisions of a DFE that is held are two, each of them every other bit.
struct DecisionPath {
  LevelDistribution levels;
  double propagation = 1;
};

class Decisions {
 public:
  // One path or two; a one must exceed the slicer's threshold by `sensitivity`, and a zero likewise.
  Decisions(std::vector<DecisionPath> paths, double sensitivity)
      : paths_(std::move(paths)), sensitivity_(sensitivity) {}

  // Bit error rate with the threshold `offset` above the middle, kBerFloor to 0.5.
  double errorRate(double offset = 0) const;
  // The level that a one falls short of with this probability (below 0.5), error propagation counted.
  double levelAt(double probability) const;
  // How far from the middle the threshold can be for an error rate of `rate`; 0 when it is higher in the middle.
  double offsetAt(double rate) const;

 private:
  NormalTail below(double level, double certain) const;

  std::vector<DecisionPath> paths_;
  double sensitivity_;
};

}  // namespace simulator
