// Which time a switch has: real, or a fixed step for each platform call so that runs can be repeated.
#pragma once

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

}  // namespace simulator
