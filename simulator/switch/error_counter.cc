// Products of rate and time are split so that no intermediate exceeds 64 bits on any target.
//
// The process is a tree over exposure. A span of 2^63 holds 2^63 errors; each of its halves holds about half of them, a
// draw from the binomial distribution with probability 1/2 that a hash of seed and place makes, and so on down. What
// arrives up to a place is found on the way down to it, in some sixty steps whatever the number. For spans that are
// small against 2^63, as all are that anybody can wait for, the counts are independent and Poisson distributed.
#include "simulator/switch/error_counter.h"

#include <bit>
#include <cmath>

namespace simulator {
namespace {

constexpr std::uint64_t kMillion = 1'000'000;
constexpr double kHighestRate = 1e12;

constexpr int kSpanBits = 63;
constexpr int kFractionBits = 40;  // a 1e-12 and finer
constexpr int kHashes = 4;
constexpr std::uint64_t kExact = 64 * kHashes;  // as many as the hashes have bits

// Finaliser of a well-known 64-bit mixing generator: every bit of the input reaches every bit of the output.
constexpr std::uint64_t mixed(std::uint64_t x) {
  x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9;
  x = (x ^ (x >> 27)) * 0x94d049bb133111eb;
  return x ^ (x >> 31);
}

// How many of n fall into the lower half: a binomial draw with probability 1/2. Up to kExact it counts that many random
// bits; beyond it takes the sum of kExact bits for the bell curve that the binomial is close to by then.
std::uint64_t lowerHalf(std::uint64_t n, std::uint64_t key) {
  constexpr std::uint64_t kGamma = 0x9e3779b97f4a7c15;
  if (n <= kExact) {
    unsigned ones = 0;
    for (; n >= 64; n -= 64)
      ones += static_cast<unsigned>(std::popcount(mixed(key += kGamma)));
    return ones + static_cast<unsigned>(std::popcount(mixed(key + kGamma) & ((std::uint64_t{1} << n) - 1)));
  }
  std::int64_t ones = -static_cast<std::int64_t>(kExact / 2);
  for (int i = 0; i < kHashes; ++i)
    ones += std::popcount(mixed(key += kGamma));
  // A step of this sum is several errors; sixteen bits of chance spread it evenly, and one halves an odd number fairly.
  const std::uint64_t chance = mixed(key + kGamma);
  const std::int64_t spread = ones * 65536 + static_cast<std::int64_t>(chance & 65535) - 32768;
  const auto sigmas = static_cast<std::int64_t>(std::sqrt(static_cast<double>(n)));
  // A standard deviation of the sum is 8, and of the draw half the root of n.
  const std::int64_t deviation = (sigmas * spread + 8 * 65536) >> 20;
  return n / 2 + (n & chance >> 63) + static_cast<std::uint64_t>(deviation);
}

}  // namespace

ErrorRate errorRate(double errorsPerSecond) {
  if (!(errorsPerSecond > 0)) return {};
  if (errorsPerSecond > kHighestRate) errorsPerSecond = kHighestRate;
  ErrorRate rate;
  rate.whole = static_cast<std::uint64_t>(errorsPerSecond);
  const double fraction = errorsPerSecond - static_cast<double>(rate.whole);
  rate.millionths = static_cast<std::uint64_t>(fraction * static_cast<double>(kMillion) + 0.5);
  if (rate.millionths == kMillion) rate = {.whole = rate.whole + 1, .millionths = 0};
  return rate;
}

std::uint64_t arrivals(std::uint64_t seed, std::uint64_t whole, std::uint64_t fraction) {
  std::uint64_t held = std::uint64_t{1} << kSpanBits;
  std::uint64_t passed = whole >> kSpanBits << kSpanBits;
  std::uint64_t place = mixed(seed ^ mixed(whole >> kSpanBits));
  const auto descend = [&](bool upper) {
    const std::uint64_t lower = lowerHalf(held, place);
    if (upper) passed += lower;
    held = upper ? held - lower : lower;
    // The chain of turns is the place.
    place = mixed(place + (upper ? 2 : 1));
  };
  for (int bit = kSpanBits - 1; bit >= 0 && held > 0; --bit)
    descend((whole >> bit & 1) != 0);
  for (int bit = 0; bit < kFractionBits && held > 0; ++bit) {
    fraction *= 2;
    const bool upper = fraction >= ErrorCounter::kCarryUnit;
    if (upper) fraction -= ErrorCounter::kCarryUnit;
    descend(upper);
  }
  return passed;
}

void ErrorCounter::accumulate(ErrorRate rate, std::uint64_t microseconds, std::uint64_t seed) {
  const ErrorCounter before = *this;
  const std::uint64_t seconds = microseconds / kMillion;
  const std::uint64_t rest = microseconds % kMillion;
  // In errors, in 1e-6 errors and in 1e-12 errors: each product keeps its own unit until the carries are taken.
  exposure += rate.whole * seconds;
  std::uint64_t millionths = rate.whole * rest;
  std::uint64_t trillionths = rate.millionths * rest + carry;
  const std::uint64_t slow = rate.millionths * seconds;
  exposure += slow / kMillion;
  millionths += slow % kMillion + trillionths / kMillion;
  trillionths %= kMillion;
  exposure += millionths / kMillion;
  carry = millionths % kMillion * kMillion + trillionths;
  if (exposure == before.exposure && carry == before.carry) return;
  count += arrivals(seed, exposure, carry) - arrivals(seed, before.exposure, before.carry);
}

}  // namespace simulator
