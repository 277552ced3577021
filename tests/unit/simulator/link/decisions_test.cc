// Error rates of levels that are known.
#include "simulator/link/decisions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

using reference::tail;

double bitErrorRate(double opening, const std::vector<double>& residuals, double sigma, double jitter = 0) {
  return LevelDistribution(opening, residuals, jitter, sigma).below(0, 11).probability;
}

Decisions decide(double main, const std::vector<double>& residuals, double sigma, double sensitivity = 0) {
  return Decisions({{LevelDistribution(main, residuals, 0, sigma)}}, sensitivity);
}

TEST(BitErrorRate, WithoutInterferenceIsTheTailOfTheNoise) {
  for (double x = 0; x < 9; x += 0.5)
    EXPECT_NEAR(bitErrorRate(x * 0.01, {}, 0.01) / tail(x), 1, 1e-9) << x;
}

TEST(BitErrorRate, AveragesOverSignPatterns) {
  EXPECT_NEAR(bitErrorRate(1, {0.2}, 0.2) / ((tail(4) + tail(6)) / 2), 1, 1e-9);
  const double mean = (tail(3.5) + tail(4.5) + tail(5.5) + tail(6.5)) / 4;
  EXPECT_NEAR(bitErrorRate(1, {-0.2, 0.1}, 0.2) / mean, 1, 1e-9);
}

TEST(BitErrorRate, TakesBoundedJitterForEitherOfTwoValues) {
  EXPECT_NEAR(bitErrorRate(1, {}, 0.2, 0.2) / ((tail(4) + tail(6)) / 2), 1, 1e-9);
  // It is a value of its own beside the eight largest residuals, however small.
  const std::vector<double> residuals(8, 0.05);
  const double with = bitErrorRate(1, residuals, 0.1, 0.01);
  EXPECT_NEAR(with, (bitErrorRate(1.01, residuals, 0.1) + bitErrorRate(0.99, residuals, 0.1)) / 2, with * 1e-9);
}

TEST(BitErrorRate, FoldsTheSmallOnesIntoNoise) {
  std::vector<double> isi(8, 0.0);
  isi.insert(isi.begin(), 3, 1e-3);
  // Nothing larger than the three: they are patterns. Behind eight larger ones they are noise.
  std::vector<double> large(8, 0.05);
  const double alone = bitErrorRate(1, large, 0.1);
  large.insert(large.begin() + 3, 0.049);
  const double folded = bitErrorRate(1, large, 0.1);
  const double asNoise = bitErrorRate(1, std::vector<double>(8, 0.05), std::sqrt(0.01 + 0.049 * 0.049));
  EXPECT_GT(folded, alone);
  EXPECT_NEAR(folded / asNoise, 1, 1e-9);
  EXPECT_NEAR(bitErrorRate(0.5, isi, 0.1) / tail(5), 1, 0.01);
}

TEST(LevelDistribution, DensityIsTheSlopeOfTheProbability) {
  const LevelDistribution levels(1, std::vector{0.2, -0.1, 0.05}, 0.03, 0.1);
  for (double level = 0.2; level < 1.5; level += 0.1) {
    const double slope =
        (levels.below(level + 1e-4, 11).probability - levels.below(level - 1e-4, 11).probability) / 2e-4;
    EXPECT_NEAR(levels.below(level, 11).density / slope, 1, 1e-3) << level;
  }
}

TEST(ErrorPropagation, GrowsWithTheFirstTap) {
  EXPECT_EQ(errorPropagation(1, 0, 0.1), 1);
  EXPECT_NEAR(errorPropagation(1, 0.5, 0.1), 1 / (1 - 0.25), 1e-9);
  EXPECT_LT(errorPropagation(1, 0.2, 0.1), errorPropagation(1, 0.4, 0.1));
  EXPECT_EQ(errorPropagation(1, 0.4, 0.1), errorPropagation(1, -0.4, 0.1));
  EXPECT_EQ(errorPropagation(1e-9, 1e-9, 0), errorPropagation(1e-9, 1e-9, 1e-9));
}

TEST(Decisions, ErrBetweenTheFloorAndOneHalf) {
  EXPECT_EQ(decide(-1, {}, 0.1).errorRate(), 0.5);
  EXPECT_EQ(decide(0, {}, 0.1).errorRate(), 0.5);
  EXPECT_EQ(decide(2, {}, 0.1).errorRate(), kBerFloor);
}

TEST(Decisions, NeedTheSensitivity) {
  EXPECT_NEAR(decide(1, {}, 0.1, 0.4).errorRate() / tail(6), 1, 1e-9);
}

// A threshold beside the middle costs the ones more than it saves the zeros.
TEST(Decisions, BesideTheMiddleAreTheMeanOfOnesAndZeros) {
  const Decisions decisions = decide(5, {}, 1, 0.5);
  EXPECT_NEAR(decisions.errorRate(1) / ((tail(3.5) + tail(5.5)) / 2), 1, 1e-9);
  EXPECT_EQ(decisions.errorRate(1), decisions.errorRate(-1));
  EXPECT_GT(decisions.errorRate(1), decisions.errorRate());
}

TEST(Decisions, LevelOfAProbabilityIsItsInverse) {
  EXPECT_NEAR(decide(1, {}, 0.1).levelAt(1e-6), 1 - 0.475342, 1e-6);
  for (const std::vector<double>& residuals :
       {std::vector<double>{}, {0.3}, {0.001, 0.3, 0.2}, std::vector<double>(20, 0.02), {5.0, 0.001}}) {
    for (const double sigma : {0.001, 0.05, 1.0}) {
      for (const double probability : {1e-3, 1e-6, 1e-12}) {
        const double level = decide(1, residuals, sigma).levelAt(probability);
        EXPECT_NEAR(decide(1 - level, residuals, sigma).errorRate() / probability, 1, 1e-4) << sigma;
      }
    }
  }
}

TEST(Decisions, LevelCountsErrorPropagationAndBothPaths) {
  const LevelDistribution good(1, std::vector{0.1}, 0, 0.1);
  const LevelDistribution bad(1, std::vector{0.4}, 0, 0.1);
  const Decisions decisions({{good, 1.5}, {bad, 2}}, 0);
  const double level = decisions.levelAt(1e-6);
  EXPECT_NEAR((1.5 * good.below(level, 11).probability + 2 * bad.below(level, 11).probability) / 2, 1e-6, 1e-11);
}

TEST(Decisions, OffsetOfARateIsItsInverse) {
  for (const double main : {0.75, 0.8, 1.0, 2.0}) {
    const Decisions decisions = decide(main, {0.01, 0.02}, 0.1, 0.02);
    const double offset = decisions.offsetAt(1e-12);
    EXPECT_GT(offset, 0);
    EXPECT_NEAR(decisions.errorRate(offset) / 1e-12, 1, 1e-4) << main;
  }
  EXPECT_EQ(decide(0.6, {}, 0.1).offsetAt(1e-12), 0);
}

TEST(Decisions, OfAbsurdLevelsStayFinite) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const double absurd[] = {kNan, std::numeric_limits<double>::infinity(), -1e300, 0, 1e-300, 1};
  for (const double main : absurd) {
    for (const double residual : absurd) {
      for (const double sigma : absurd) {
        const Decisions decisions({{LevelDistribution(main, std::vector{residual}, residual, sigma),
                                    errorPropagation(main, residual, sigma)}},
                                  sigma);
        for (const double value :
             {decisions.errorRate(), decisions.errorRate(main), decisions.levelAt(1e-6), decisions.offsetAt(1e-12)})
          EXPECT_TRUE(std::isfinite(value)) << main << " " << residual << " " << sigma;
      }
    }
  }
}

}  // namespace
}  // namespace simulator
