// Real and virtual time.
#include "simulator/switch/clock.h"

namespace simulator {

Clock::Clock(ClockDescription description) : description_(description), last_(std::chrono::steady_clock::now()) {}

void Clock::tick() {
  if (description_.isVirtual) {
    now_ += description_.step;
    return;
  }
  // Whole microseconds only: the rest stays in last_ and is not lost.
  const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - last_);
  last_ += passed;
  now_ += static_cast<std::uint64_t>(passed.count());
}

void Clock::continueFrom(std::uint64_t now) {
  now_ = now;
  last_ = std::chrono::steady_clock::now();
}

}  // namespace simulator
