#include "simulator/description/clock.h"

#include <gtest/gtest.h>

#include <string>

namespace simulator {
namespace {

TEST(ParseClock, KnowsItsThreeForms) {
  EXPECT_EQ(parseClock("monotonic"), ClockDescription{});
  EXPECT_EQ(parseClock("virtual"), (ClockDescription{.isVirtual = true, .step = kDefaultClockStep}));
  for (const std::uint64_t step : {std::uint64_t{1}, std::uint64_t{25}, kMaxClockStep})
    EXPECT_EQ(parseClock("virtual:" + std::to_string(step)), (ClockDescription{.isVirtual = true, .step = step}));
}

TEST(ParseClock, RefusesAnythingElse) {
  for (const char* text : {"", "Virtual", "virtual:", "virtual:0", "virtual:-1", "virtual:1x", "virtual:3600000001",
                           "virtual:99999999999999999999999", "virtual5", "virtual55", "monotonic:5"}) {
    EXPECT_EQ(parseClock(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace simulator
