// The printed names of rates and media, and the lookup that every name table shares.
#pragma once

#include <array>
#include <cstdint>
#include <span>

// Indexed by port_speed_type. The last name stands for an invalid rate and is never typed.
inline constexpr std::array<const char*, 8> rateNames = {"AUTO", "1G", "2G", "4G", "8G", "10G", "20G", "INV"};

// Indexed by MediaHwFcXmtrType. Both kinds of copper share a name on purpose.
inline constexpr std::array<const char*, 9> mediaNames = {"NONE", "N/A", "UNK",  "OPT", "ELC",
                                                          "COP",  "COP", "10GE", "1GE"};

// The name at `index`, or `otherwise` for a value that the platform should not have returned.
constexpr const char* nameAt(std::span<const char* const> names, std::uint32_t index, const char* otherwise) {
  return index < names.size() ? names[index] : otherwise;
}

constexpr const char* rateName(std::uint32_t rate) {
  return nameAt(rateNames, rate, "INV");
}

constexpr const char* mediaName(std::uint32_t media) {
  return nameAt(mediaNames, media, "UNK");
}
