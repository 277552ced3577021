// Lists of numbers as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>

namespace serdesctl {

// "1-5,7" up to `most`; nothing for another text.
std::optional<std::set<std::uint32_t>> numbersOf(std::string_view text, std::uint32_t most);

}  // namespace serdesctl
