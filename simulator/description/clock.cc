// A clock as a text says it.
#include "simulator/description/clock.h"

#include <charconv>

namespace simulator {

std::optional<ClockDescription> parseClock(std::string_view text) {
  if (text == "monotonic") return ClockDescription{};
  constexpr std::string_view kVirtual = "virtual";
  if (!text.starts_with(kVirtual)) return std::nullopt;
  text.remove_prefix(kVirtual.size());
  ClockDescription description{.isVirtual = true};
  if (text.empty()) return description;
  if (text.front() != ':') return std::nullopt;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, description.step);
  if (error != std::errc() || stop != end) return std::nullopt;
  if (description.step < 1 || description.step > kMaxClockStep) return std::nullopt;
  return description;
}

}  // namespace simulator
