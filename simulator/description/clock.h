// The time of a switch in microseconds: real, or a fixed step for each platform call so that runs can be repeated.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace simulator {

inline constexpr std::uint64_t kDefaultClockStep = 1000;
inline constexpr std::uint64_t kMaxClockStep = 3'600'000'000;  // an hour

struct ClockDescription {
  bool isVirtual = false;
  std::uint64_t step = kDefaultClockStep;  // microseconds a platform call takes, 1 to kMaxClockStep; virtual only

  bool operator==(const ClockDescription&) const = default;
};

// "monotonic", "virtual" or "virtual:MICROSECONDS"; nothing for any other text.
std::optional<ClockDescription> parseClock(std::string_view text);

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
