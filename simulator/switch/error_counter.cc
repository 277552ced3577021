// Products of rate and time, split so that no intermediate exceeds 64 bits on any target.
#include "simulator/switch/error_counter.h"

namespace simulator {
namespace {

constexpr std::uint64_t kMillion = 1'000'000;
constexpr double kHighestRate = 1e12;

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

void ErrorCounter::accumulate(ErrorRate rate, std::uint64_t microseconds) {
  const std::uint64_t seconds = microseconds / kMillion;
  const std::uint64_t rest = microseconds % kMillion;
  // In errors, in 1e-6 errors and in 1e-12 errors: each product keeps its own unit until the carries are taken.
  count += rate.whole * seconds;
  std::uint64_t millionths = rate.whole * rest;
  std::uint64_t trillionths = rate.millionths * rest + carry;
  const std::uint64_t slow = rate.millionths * seconds;
  count += slow / kMillion;
  millionths += slow % kMillion + trillionths / kMillion;
  trillionths %= kMillion;
  count += millionths / kMillion;
  carry = millionths % kMillion * kMillion + trillionths;
}

}  // namespace simulator
