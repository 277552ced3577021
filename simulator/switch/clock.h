// The time of a switch in microseconds.
#pragma once

#include <chrono>
#include <cstdint>

#include "simulator/description/clock.h"

namespace simulator {

class Clock {
 public:
  explicit Clock(ClockDescription description);
  // A platform call begins: takes the step, or looks at the real clock.
  void tick();
  // The time at the last tick; it never goes back.
  std::uint64_t now() const {
    return now_;
  }
  // Goes on from `now`, as after a pause that took no time.
  void continueFrom(std::uint64_t now);

 private:
  ClockDescription description_;
  std::uint64_t now_ = 0;
  std::chrono::steady_clock::time_point last_;
};

}  // namespace simulator
