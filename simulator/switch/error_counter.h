// Errors counted over time. Rates come from the link model as real numbers; what is counted is exact, so that a minute
// read once and a minute read sixty times give the same count.
#pragma once

#include <cstdint>

namespace simulator {

// Errors a second, in millionths.
struct ErrorRate {
  std::uint64_t whole = 0;
  std::uint64_t millionths = 0;  // below 1,000,000
};

// Nearest rate; what is not above 0 is 0, and 1e12 is the highest.
ErrorRate errorRate(double errorsPerSecond);

struct ErrorCounter {
  std::uint64_t count = 0;
  std::uint64_t carry = 0;  // fraction of the next error, in 1e-12; below kCarryUnit

  static constexpr std::uint64_t kCarryUnit = 1'000'000'000'000;

  // Adds what `rate` gives in `microseconds`. Wraps beyond 64 bits like the hardware's.
  void accumulate(ErrorRate rate, std::uint64_t microseconds);
};

}  // namespace simulator
