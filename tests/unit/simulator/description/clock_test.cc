#include "simulator/description/clock.h"

#include <gtest/gtest.h>

namespace simulator {
namespace {

TEST(ParseClock, KnowsItsThreeForms) {
  EXPECT_EQ(parseClock("monotonic"), ClockDescription{});
  EXPECT_EQ(parseClock("virtual"), (ClockDescription{.isVirtual = true, .step = kDefaultClockStep}));
  EXPECT_EQ(parseClock("virtual:25"), (ClockDescription{.isVirtual = true, .step = 25}));
}

TEST(ParseClock, RefusesAnythingElse) {
  for (const char* text : {"", "Virtual", "virtual:", "virtual:0", "virtual:-1", "virtual:1x", "virtual:3600000001",
                           "virtual:99999999999999999999999", "virtual5", "monotonic:5"}) {
    EXPECT_EQ(parseClock(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace simulator
