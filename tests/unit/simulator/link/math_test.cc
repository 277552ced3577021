// The own elementary functions against the C library's, and their behaviour outside their range.
#include "simulator/link/math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace simulator {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double relativeError(double value, double expected) {
  return std::fabs(value - expected) / std::fabs(expected);
}

TEST(LinkMath, ExponentialAgreesWithLibrary) {
  for (double x = -690; x <= 690; x += 0.37)
    EXPECT_LT(relativeError(exponential(x), std::exp(x)), 1e-15) << x;
  EXPECT_EQ(exponential(0), 1);
}

TEST(LinkMath, ExponentialMinusOneKeepsSmallValues) {
  for (double x = -2; x <= 2; x += 0.013) {
    if (std::fabs(x) < 1e-9) continue;
    EXPECT_LT(relativeError(exponentialMinusOne(x), std::expm1(x)), 1e-14) << x;
  }
  EXPECT_LT(relativeError(exponentialMinusOne(-1e-17), -1e-17), 1e-15);
  EXPECT_EQ(exponentialMinusOne(0), 0);
}

TEST(LinkMath, LogarithmAgreesWithLibrary) {
  for (double x = 1e-300; x < 1e300; x *= 3.7)
    EXPECT_LT(relativeError(naturalLog(x), std::log(x)), 1e-15) << x;
  for (double x = 0.5; x < 2; x += 0.0007)
    EXPECT_NEAR(naturalLog(x), std::log(x), 1e-15) << x;
  EXPECT_EQ(naturalLog(1), 0);
}

TEST(LinkMath, LogOnePlusKeepsSmallValues) {
  for (double x = -0.99; x < 3; x += 0.0137)
    EXPECT_NEAR(logOnePlus(x), std::log1p(x), 1e-14) << x;
  EXPECT_LT(relativeError(logOnePlus(-1e-18), -1e-18), 1e-15);
  EXPECT_LT(relativeError(logOnePlus(-1e-9), std::log1p(-1e-9)), 1e-15);
}

TEST(LinkMath, PhasorAgreesWithLibrary) {
  for (double x = -1e5; x <= 1e5; x += 13.7) {
    const Complex phasor = unitPhasor(x);
    EXPECT_NEAR(phasor.re, std::cos(x), 1e-15) << x;
    EXPECT_NEAR(phasor.im, std::sin(x), 1e-15) << x;
  }
  for (double x = -7; x <= 7; x += 0.001) {
    const Complex phasor = unitPhasor(x);
    EXPECT_NEAR(phasor.re, std::cos(x), 1e-15) << x;
    EXPECT_NEAR(phasor.im, std::sin(x), 1e-15) << x;
  }
}

TEST(LinkMath, DecibelsAreARatio) {
  for (double db = -300; db <= 300; db += 7.3)
    EXPECT_LT(relativeError(fromDb(db), std::pow(10.0, db / 20)), 1e-13) << db;
}

TEST(LinkMath, TailAgreesWithLibrary) {
  for (double x = -12; x <= 12; x += 0.00131) {
    const NormalTail tail = normalTail(x);
    EXPECT_LT(relativeError(tail.probability, std::erfc(x / std::sqrt(2.0)) / 2), 1e-9) << x;
    EXPECT_LT(relativeError(tail.density, std::exp(-x * x / 2) / std::sqrt(2 * kPi)), 1e-5) << x;
  }
  EXPECT_EQ(normalTail(0).probability, 0.5);
  EXPECT_EQ(normalTail(13).probability, normalTail(12).probability);
  EXPECT_EQ(normalTail(-13).probability, 1);
}

TEST(LinkMath, BitErrorRateAtWholeSigmas) {
  const double table[][2] = {{3, 1.3499e-3},  {4, 3.1671e-5},  {5, 2.8665e-7},
                             {6, 9.8659e-10}, {7, 1.2798e-12}, {8, 6.2210e-16}};
  for (const auto& [x, ber] : table)
    EXPECT_LT(relativeError(normalTail(x).probability, ber), 1e-4) << x;
}

TEST(LinkMath, SigmasForBitErrorRate) {
  const double table[][2] = {{1e-6, 4.75342}, {1e-9, 5.99781}, {1e-12, 7.03448}, {1e-15, 7.94135}};
  for (const auto& [ber, x] : table)
    EXPECT_LT(relativeError(normalTail(x).probability, ber), 1e-4) << ber;
}

TEST(LinkMath, SumOfTailsLeavesOutWhatIsFarAway) {
  const double values[] = {-20, -9.5, -1, 0, 3, 8, 11, 14};
  double probability = 2;
  double density = 0;
  for (const double x : {-1.0, 0.0, 3.0, 8.0}) {
    probability += normalTail(x).probability;
    density += normalTail(x).density;
  }
  const NormalTail sum = sumOfTails(values, 0, 9);
  EXPECT_DOUBLE_EQ(sum.probability, probability);
  EXPECT_DOUBLE_EQ(sum.density, density);
  EXPECT_DOUBLE_EQ(sumOfTails(std::span(values).subspan(6, 1), 6, 9).probability, normalTail(5).probability);
  EXPECT_EQ(sumOfTails({}, 0, 9).probability, 0);
}

TEST(LinkMath, EveryFunctionIsFiniteForEveryArgument) {
  const double arguments[] = {kNan,  kInfinity, -kInfinity, 0,       -0.0,
                              1e308, -1e308,    5e-324,     -5e-324, std::numeric_limits<double>::max()};
  for (const double x : arguments) {
    for (const double y : {exponential(x), exponentialMinusOne(x), naturalLog(x), logOnePlus(x), fromDb(x),
                           unitPhasor(x).re, unitPhasor(x).im, normalTail(x).probability, normalTail(x).density}) {
      EXPECT_TRUE(std::isfinite(y)) << x;
    }
  }
}

TEST(LinkMath, LimitedReadsNotANumberAsZeroOrNearestEnd) {
  EXPECT_EQ(limited(kNan, -1, 1), 0);
  EXPECT_EQ(limited(kNan, 2, 3), 2);
  EXPECT_EQ(limited(kNan, -3, -2), -2);
  EXPECT_EQ(limited(kInfinity, 2, 3), 3);
  EXPECT_EQ(limited(-kInfinity, 2, 3), 2);
  EXPECT_EQ(limited(2.5, 2, 3), 2.5);
}

}  // namespace
}  // namespace simulator
