// The words of description files, and what the readers of the file's parts share.
#pragma once

#include <array>
#include <map>
#include <string>

#include "simulator/description/description.h"
#include "simulator/description/toml_table.h"

namespace simulator {

inline constexpr auto kSpeedWords = std::to_array<Choice>({{"AUTO", SPEED_AUTO},
                                                           {"1G", SPEED_1G},
                                                           {"2G", SPEED_2G},
                                                           {"4G", SPEED_4G},
                                                           {"8G", SPEED_8G},
                                                           {"10G", SPEED_10G},
                                                           {"20G", SPEED_20G}});
// The speeds a port or a medium can run at: all but AUTO.
inline constexpr std::span<const Choice> kFixedSpeedWords = std::span(kSpeedWords).subspan<1>();

inline constexpr auto kFfeWords =
    std::to_array<Choice>({{"FFENone", FFE_NONE}, {"FFE2", FFE_2}, {"FFE3", FFE_3}, {"FFE4", FFE_4}});
inline constexpr auto kDfeWords =
    std::to_array<Choice>({{"DFE3", DFE_3}, {"DFE5", DFE_5}, {"NONE", DFE_NONE}, {"DFE1", DFE_1}});
inline constexpr auto kPortTypeWords =
    std::to_array<Choice>({{"GL", kPortTypeGl}, {"XG", kPortTypeXg}, {"EXG", kPortTypeExg}});
inline constexpr auto kMediaWords = std::to_array<Choice>({{"none", MEDIA_NONE},
                                                           {"not applicable", MEDIA_NOT_APPLICABLE},
                                                           {"unknown", MEDIA_UNKNOWN},
                                                           {"optical", MEDIA_OPTICAL},
                                                           {"electrical", MEDIA_ELECTRICAL},
                                                           {"copper passive", MEDIA_COPPER_PASSIVE},
                                                           {"copper active", MEDIA_COPPER_ACTIVE},
                                                           {"10G ethernet", MEDIA_10G_ETHERNET},
                                                           {"1G ethernet", MEDIA_1G_ETHERNET}});

// Settings of a port that names none: those after a reset.
inline constexpr Settings kPlainSettings = {
    .tx = {.power = 115, .slew = SLEW_36PS, .mode = FFE_NONE, .p0 = 0, .p1 = 63, .p2 = 0, .p3 = 0},
    .rx = {.mode = DFE_3, .p0 = 6, .p1 = 4, .p2 = 0x4e, .p3 = 0}};
inline constexpr Settings kPlainEthernetSettings = {
    .tx = {.power = 7, .slew = SLEW_UNKNOWN, .mode = FFE_NONE, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0},
    .rx = {.mode = 0, .p0 = 2, .p1 = 0, .p2 = 0, .p3 = 0}};

struct NamedSettings {
  Settings settings;
  bool isEthernet = false;
};

// What ports refer to by name.
struct Library {
  std::map<std::string, NamedSettings, std::less<>> settings;
  std::map<std::string, Channel, std::less<>> channels;
};

// The named entry; an error at `key` when there is none.
template <typename Map>
const typename Map::mapped_type& lookUp(const TomlTable& table, std::string_view key, const Map& map,
                                        std::string_view name, const char* section) {
  const auto found = map.find(name);
  if (found == map.end()) table.fail(key, "there is no [" + std::string(section) + '.' + std::string(name) + ']');
  return found->second;
}

template <typename T, typename V>
void store(T& target, const std::optional<V>& value) {
  if (value) target = static_cast<T>(*value);
}

// Reads an entry of [[asics]].
AsicDescription readAsic(TomlTable& table, const Library& library);

}  // namespace simulator
