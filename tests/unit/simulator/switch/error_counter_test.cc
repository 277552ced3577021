#include "simulator/switch/error_counter.h"

#include <gtest/gtest.h>

#include <limits>

namespace simulator {
namespace {

TEST(ErrorRate, TakesTheNearestMillionth) {
  EXPECT_EQ(errorRate(1234.5678904).whole, 1234U);
  EXPECT_EQ(errorRate(1234.5678904).millionths, 567890U);
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

TEST(ErrorCounter, CountsRateTimesTime) {
  ErrorCounter counter;
  counter.accumulate(errorRate(1000.25), 8'000'000);
  EXPECT_EQ(counter.count, 8002U);
  EXPECT_EQ(counter.carry, 0U);
}

TEST(ErrorCounter, CarriesFractionsOverManyShortSteps) {
  ErrorCounter atOnce;
  ErrorCounter inSteps;
  const ErrorRate rate = errorRate(3.141592);
  atOnce.accumulate(rate, 1'000'003);
  for (int i = 0; i < 1'000'003; ++i)
    inSteps.accumulate(rate, 1);
  EXPECT_EQ(inSteps.count, 3U);
  EXPECT_EQ(atOnce.count, inSteps.count);
  EXPECT_EQ(atOnce.carry, inSteps.carry);
}

TEST(ErrorCounter, KeepsARareErrorUntilItIsWhole) {
  ErrorCounter counter;
  const ErrorRate oneInThousandSeconds = errorRate(0.001);
  for (int second = 0; second < 999; ++second)
    counter.accumulate(oneInThousandSeconds, 1'000'000);
  EXPECT_EQ(counter.count, 0U);
  counter.accumulate(oneInThousandSeconds, 1'000'000);
  EXPECT_EQ(counter.count, 1U);
}

TEST(ErrorCounter, CountsBeyond32BitsAndOverYears) {
  ErrorCounter counter;
  const std::uint64_t year = 31'536'000;
  counter.accumulate(errorRate(1e9), year * 1'000'000);
  EXPECT_EQ(counter.count, year * 1'000'000'000);
}

}  // namespace
}  // namespace simulator
