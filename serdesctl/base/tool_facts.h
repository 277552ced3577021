// What holds for the tool, wherever it is driven or read.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace serdesctl {

inline constexpr std::string_view kPrompt = "serdes: ";
inline constexpr std::string_view kStartBegin = "switchHwConfig.NumSlots:";  // the first words of its start

inline constexpr std::uint32_t kMostAsics = 2;  // that it can address

// The lowest port of a mask that has one.
inline std::uint32_t lowestPort(std::uint32_t ports) {
  return static_cast<std::uint32_t>(std::countr_zero(ports));
}

}  // namespace serdesctl
