// The names of the values that tables print. What of them may be typed stands in arguments/keywords.h.
#pragma once

#include <array>
#include <cstdint>
#include <span>

struct ValueName {
  const char* name;
  const char* shortName = nullptr;  // where it has another
};

// Indexed by port_speed_type.
inline constexpr std::array<ValueName, 7> rateNames = {
    {{"AUTO"}, {"1G", "1"}, {"2G", "2"}, {"4G", "4"}, {"8G", "8"}, {"10G", "10"}, {"20G", "20"}}};

// Indexed by MediaHwFcXmtrType. Both kinds of copper share a name on purpose.
inline constexpr std::array<ValueName, 9> mediaNames = {
    {{"NONE"}, {"N/A"}, {"UNK"}, {"OPT"}, {"ELC"}, {"COP"}, {"COP"}, {"10GE"}, {"1GE"}}};

// Indexed by SerDesTxFFEMode.
inline constexpr std::array<ValueName, 4> ffeModeNames = {{{"FFENone"}, {"FFE2"}, {"FFE3"}, {"FFE4"}}};

// Indexed by SerDesTxSlewRate.
inline constexpr std::array<ValueName, 7> slewRateNames = {
    {{"24ps", "24"}, {"30ps", "30"}, {"36ps", "36"}, {"50ps", "50"}, {"60ps", "60"}, {"75ps", "75"}, {"100ps", "100"}}};

// Indexed by SerDesRxDFEMode.
inline constexpr std::array<ValueName, 4> dfeModeNames = {{{"DFE3"}, {"DFE5"}, {"NONE"}, {"DFE1"}}};

// The name at `index`, or `otherwise` for a value that has none.
constexpr const char* nameAt(std::span<const ValueName> names, std::uint32_t index, const char* otherwise) {
  return index < names.size() ? names[index].name : otherwise;
}

constexpr const char* rateName(std::uint32_t rate) {
  return nameAt(rateNames, rate, "INV");
}

constexpr const char* mediaName(std::uint32_t media) {
  return nameAt(mediaNames, media, "UNK");
}

// Tables have no room for the unit.
constexpr const char* slewRateName(std::uint32_t slew) {
  return slew < slewRateNames.size() ? slewRateNames[slew].shortName : "UNK";
}
