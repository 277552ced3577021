#include "simulator/switch/error_counter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace simulator {
namespace {

constexpr std::uint64_t kSecond = 1'000'000;

TEST(ErrorRate, TakesTheNearestMillionth) {
  EXPECT_EQ(errorRate(1234.56789049).whole, 1234U);
  EXPECT_EQ(errorRate(1234.56789049).millionths, 567890U);
  EXPECT_EQ(errorRate(1234.56789051).millionths, 567891U);
  EXPECT_EQ(errorRate(0.9999999).whole, 1U);
  EXPECT_EQ(errorRate(0.9999999).millionths, 0U);
}

TEST(ErrorRate, IsNoneForWhatIsNotAboveZero) {
  for (const double rate : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), 1e-9}) {
    EXPECT_EQ(errorRate(rate).whole, 0U);
    EXPECT_EQ(errorRate(rate).millionths, 0U);
  }
}

TEST(ErrorRate, EndsAtItsHighest) {
  EXPECT_EQ(errorRate(std::numeric_limits<double>::infinity()).whole, 1'000'000'000'000U);
}

TEST(ErrorCounter, ExposureIsRateTimesTime) {
  ErrorCounter counter;
  counter.accumulate(errorRate(1000.25), 8 * kSecond, 0);
  EXPECT_EQ(counter.exposure, 8002U);
  EXPECT_EQ(counter.carry, 0U);
  counter.accumulate(errorRate(0.001), 1, 0);
  EXPECT_EQ(counter.exposure, 8002U);
  EXPECT_EQ(counter.carry, 1000U);
}

// Mean and variance of counts in windows that expect `mean` errors each.
void expectPoisson(double mean, int windows, std::uint64_t seed) {
  ErrorCounter counter;
  double sum = 0;
  double squares = 0;
  for (int i = 0; i < windows; ++i) {
    const std::uint64_t before = counter.count;
    counter.accumulate(errorRate(mean), kSecond, seed);
    const double deviation = static_cast<double>(counter.count - before) - mean;
    sum += deviation;
    squares += deviation * deviation;
  }
  const double bias = sum / windows;
  // One per cent, or four times what chance explains where the windows hold less than that takes.
  EXPECT_LT(std::fabs(bias), std::max(0.01 * mean, 4 * std::sqrt(mean / windows))) << mean << " seed " << seed;
  const double ratio = (squares / windows - bias * bias) / mean;
  EXPECT_GT(ratio, 0.9) << mean << " seed " << seed;
  EXPECT_LT(ratio, 1.1) << mean << " seed " << seed;
}

TEST(ErrorCounter, CountsAsAPoissonProcessDoes) {
  for (const double mean : {0.05, 1.0, 3.7, 40.0, 255.0, 1e3, 1e5, 1e7, 1e9})
    expectPoisson(mean, 8'000, 1);
  for (std::uint64_t seed = 2; seed < 8; ++seed)
    expectPoisson(10, 8'000, seed);
}

TEST(ErrorCounter, MeanOfALongRunIsTheRate) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    ErrorCounter counter;
    counter.accumulate(errorRate(1000), 1000 * kSecond, seed);
    EXPECT_NEAR(static_cast<double>(counter.count), 1e6, 1e4) << seed;
  }
}

// The share of windows without errors tells single arrivals from errors in bursts.
TEST(ErrorCounter, RareErrorsComeOneByOne) {
  ErrorCounter counter;
  int empty = 0;
  for (int i = 0; i < 20'000; ++i) {
    const std::uint64_t before = counter.count;
    counter.accumulate(errorRate(1), kSecond, 5);
    if (counter.count == before) ++empty;
  }
  EXPECT_NEAR(empty / 20'000.0, std::exp(-1), 0.015);
}

TEST(ErrorCounter, NeighbouringWindowsKnowNothingOfEachOther) {
  ErrorCounter counter;
  double last = 0;
  double product = 0;
  for (int i = 0; i < 20'000; ++i) {
    const std::uint64_t before = counter.count;
    counter.accumulate(errorRate(4), kSecond, 9);
    const double deviation = static_cast<double>(counter.count - before) - 4;
    product += deviation * last;
    last = deviation;
  }
  EXPECT_NEAR(product / 20'000 / 4, 0, 0.04);
}

TEST(ErrorCounter, DoesNotDependOnHowOftenItIsRead) {
  for (const double perSecond : {0.37, 3.141592, 2000.5, 1e9}) {
    ErrorCounter atOnce;
    ErrorCounter inSteps;
    const ErrorRate rate = errorRate(perSecond);
    atOnce.accumulate(rate, 30'000'007, 3);
    std::uint64_t left = 30'000'007;
    for (std::uint64_t step = 1; left > 0; step = step * 3 % 99'991) {
      const std::uint64_t taken = step < left ? step : left;
      inSteps.accumulate(rate, taken, 3);
      left -= taken;
    }
    EXPECT_EQ(inSteps, atOnce) << perSecond;
  }
}

TEST(ErrorCounter, NeverCountsBackwards) {
  ErrorCounter counter;
  std::uint64_t last = 0;
  for (int i = 0; i < 20'000; ++i) {
    counter.accumulate(errorRate(0.9), 10'000, 4);
    EXPECT_GE(counter.count, last);
    EXPECT_LE(counter.count, last + 3);
    last = counter.count;
  }
}

TEST(ErrorCounter, EachSeedHasItsOwnErrors) {
  std::vector<std::uint64_t> counts;
  for (std::uint64_t seed = 0; seed < 5; ++seed)
    counts.push_back(arrivals(seed, 1'000'000, 0));
  for (std::size_t i = 1; i < counts.size(); ++i)
    EXPECT_NE(counts[i], counts[i - 1]);
  EXPECT_EQ(arrivals(3, 1'000'000, 0), counts[3]);
}

TEST(ErrorCounter, CountsOtherErrorsAfterItIsCleared) {
  ErrorCounter counter;
  counter.accumulate(errorRate(100), kSecond, 6);
  const std::uint64_t first = counter.count;
  int equal = 0;
  for (int i = 0; i < 50; ++i) {
    counter.clear();
    EXPECT_EQ(counter.count, 0U);
    counter.accumulate(errorRate(100), kSecond, 6);
    if (counter.count == first) ++equal;
  }
  EXPECT_LT(equal, 10);
}

TEST(ErrorCounter, CountsBeyond32BitsAndOverYears) {
  ErrorCounter counter;
  const std::uint64_t year = 31'536'000;
  counter.accumulate(errorRate(1e9), year * kSecond, 0);
  EXPECT_EQ(counter.exposure, year * 1'000'000'000);
  EXPECT_NEAR(static_cast<double>(counter.count) / 3.1536e16, 1, 1e-7);
}

TEST(ErrorCounter, NothingArrivesBeforeThereIsExposure) {
  for (std::uint64_t seed = 0; seed < 20; ++seed)
    EXPECT_EQ(arrivals(seed, 0, 0), 0U);
}

// Exact: a run on one processor continues on another.
TEST(ErrorCounter, IsTheSameEverywhere) {
  EXPECT_EQ(arrivals(1, 77U, 123'456'789'012), 82U);
  EXPECT_EQ(arrivals(1, 123'456'789U, 123'456'789'012), 123473001U);
  EXPECT_EQ(arrivals(1, 9'876'543'210'123U, 123'456'789'012), 9876540841847U);
  EXPECT_EQ(arrivals(1, 0x7fffffffffffffffU, 123'456'789'012), 9223372036854775807U);
  EXPECT_EQ(arrivals(1, 0xffffffffffffffffU, 123'456'789'012), 18446744073709551615U);
  EXPECT_EQ(arrivals(99, 77U, 123'456'789'012), 86U);
  EXPECT_EQ(arrivals(99, 123'456'789U, 123'456'789'012), 123453524U);
  EXPECT_EQ(arrivals(99, 9'876'543'210'123U, 123'456'789'012), 9876541925694U);
  EXPECT_EQ(arrivals(99, 0x7fffffffffffffffU, 123'456'789'012), 9223372036854775806U);
  EXPECT_EQ(arrivals(99, 0xffffffffffffffffU, 123'456'789'012), 18446744073709551615U);
  std::uint64_t weighted = 0;
  for (std::uint64_t seed = 0; seed < 500; ++seed) {
    for (const std::uint64_t fraction : {0ULL, 250'000'000'000ULL, 500'000'000'000ULL, 999'999'999'999ULL})
      weighted = 3 * weighted + arrivals(seed, seed * seed * seed * 5, fraction);
  }
  EXPECT_EQ(weighted, 1855689539872339725U);
}

}  // namespace
}  // namespace simulator
