#include "simulator/switch/clock.h"

#include <gtest/gtest.h>

#include <chrono>

namespace simulator {
namespace {

using Time = std::chrono::steady_clock;

TEST(VirtualClock, GoesItsStepWithEachTick) {
  Clock clock({.isVirtual = true, .step = 250});
  EXPECT_EQ(clock.now(), 0U);
  clock.tick();
  clock.tick();
  EXPECT_EQ(clock.now(), 500U);
}

TEST(VirtualClock, ContinuesFromWhereItIsPut) {
  Clock clock({.isVirtual = true, .step = 1});
  clock.continueFrom(1'000'000);
  clock.tick();
  EXPECT_EQ(clock.now(), 1'000'001U);
}

TEST(MonotonicClock, GoesOnByItselfAsTimeDoesAndNeverBack) {
  const Time::time_point before = Time::now();
  Clock clock({});
  std::uint64_t last = clock.now();
  // Bounded by what the machine does in a millisecond, without waiting for any particular time.
  while (clock.now() < 1000) {
    clock.tick();
    ASSERT_GE(clock.now(), last);
    last = clock.now();
  }
  const auto passed = std::chrono::ceil<std::chrono::microseconds>(Time::now() - before);
  EXPECT_LE(last, static_cast<std::uint64_t>(passed.count()));
}

TEST(MonotonicClock, ContinuesFromWhereItIsPut) {
  Clock clock({});
  clock.continueFrom(5'000'000'000);
  clock.tick();
  EXPECT_GE(clock.now(), 5'000'000'000U);
  EXPECT_LT(clock.now(), 5'600'000'000U);
}

TEST(MonotonicClock, LeavesOutWhatPassedBeforeItContinues) {
  Clock clock({});
  const Time::time_point made = Time::now();
  // What a switch takes to be built and a state to be read.
  while (Time::now() - made < std::chrono::milliseconds(2)) {
  }
  const Time::time_point before = Time::now();
  clock.continueFrom(1'000'000);
  clock.tick();
  const auto passed = std::chrono::ceil<std::chrono::microseconds>(Time::now() - before);
  EXPECT_LE(clock.now() - 1'000'000, static_cast<std::uint64_t>(passed.count()));
}

}  // namespace
}  // namespace simulator
