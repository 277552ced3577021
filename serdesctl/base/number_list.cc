// Lists of numbers.
#include "serdesctl/base/number_list.h"

#include <charconv>

namespace serdesctl {

std::optional<std::set<std::uint32_t>> numbersOf(std::string_view text, std::uint32_t most) {
  std::set<std::uint32_t> numbers;
  const char* at = text.data();
  const char* const end = at + text.size();
  const auto number = [&](std::uint32_t& value) {
    const auto [next, error] = std::from_chars(at, end, value);
    at = next;
    return error == std::errc() && value <= most;
  };
  while (true) {
    std::uint32_t first = 0, last = 0;
    if (!number(first)) return std::nullopt;
    last = first;
    if (at != end && *at == '-' && (++at, !number(last))) return std::nullopt;
    if (last < first) return std::nullopt;
    for (std::uint32_t n = first; n <= last; ++n)
      numbers.insert(n);
    if (at == end) return numbers;
    if (*at++ != ',') return std::nullopt;
    while (at != end && *at == ' ')
      ++at;
  }
}

}  // namespace serdesctl
