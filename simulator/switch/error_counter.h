// Errors counted over time, arriving at random: a Poisson process whose rate may change at any time. Which errors there
// are is settled by a seed and by how many were to be expected so far, the exposure, and by nothing else: a minute read
// once and a minute read sixty times give the same count.
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

// How many errors arrive while the first `whole` and `fraction` * 1e-12 are to be expected, modulo 2^64. Each seed has
// a history of its own.
std::uint64_t arrivals(std::uint64_t seed, std::uint64_t whole, std::uint64_t fraction);

// The three numbers are all that there is to keep; the seed belongs to the place that counts.
struct ErrorCounter {
  std::uint64_t count = 0;
  std::uint64_t exposure = 0;  // errors that were to be expected so far, and 1e-12 of the next; below kCarryUnit
  std::uint64_t carry = 0;

  static constexpr std::uint64_t kCarryUnit = 1'000'000'000'000;

  bool operator==(const ErrorCounter&) const = default;

  // Counts what arrives in `microseconds` at `rate`. Wraps beyond 64 bits like the hardware's.
  void accumulate(ErrorRate rate, std::uint64_t microseconds, std::uint64_t seed);
  // Counts from 0 again. The exposure goes on, for otherwise the same errors would come again.
  void clear() {
    count = 0;
  }
};

}  // namespace simulator
