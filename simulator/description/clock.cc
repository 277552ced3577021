// Real and virtual time.
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

Clock::Clock(ClockDescription description) : description_(description), last_(std::chrono::steady_clock::now()) {}

void Clock::tick() {
  if (description_.isVirtual) {
    now_ += description_.step;
    return;
  }
  // Whole microseconds only: the rest stays in last_ and is not lost.
  const auto passed = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - last_);
  if (passed.count() <= 0) return;
  last_ += passed;
  now_ += static_cast<std::uint64_t>(passed.count());
}

void Clock::continueFrom(std::uint64_t now) {
  now_ = now;
  last_ = std::chrono::steady_clock::now();
}

}  // namespace simulator
