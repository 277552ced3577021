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

inline constexpr auto kClockWords = std::to_array<Choice>({{"monotonic", 0}, {"virtual", 1}});
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

struct SettingsKey;

struct NamedSettings {
  std::string name;
  Settings settings;
  bool isEthernet = false;
  bool isForAll = false;                         // in the platform's numbers, which every port's caches keep
  std::vector<const SettingsKey*> written = {};  // what the SerDes of a port must take
};

// What ports refer to by name.
struct Library {
  std::map<std::string, NamedSettings, std::less<>> settings;
  std::map<std::string, Channel, std::less<>> channels;
};

// The entry that a value names; an error when there is none.
template <typename Map>
const typename Map::mapped_type& lookUp(const TomlValue& value, const Map& map, const char* section) {
  const std::string name = value.text();
  const auto found = map.find(name);
  if (found == map.end()) value.fail("there is no [" + std::string(section) + '.' + name + ']');
  return found->second;
}

NamedSettings readSettings(const TomlTable& table, const std::string& name);
// An error at `use` when the SerDes of a core does not take what the settings say of its side.
void judgeSettings(const NamedSettings& named, SerDesLinkType side, unsigned serDesType, const TomlValue& use);

// Whose a user port is, for all ASICs.
using UserPorts = std::map<unsigned, std::string>;
// Reads an entry of [[asics]].
AsicDescription readAsic(const TomlTable& table, const Library& library, unsigned asic, UserPorts& userPorts);

// Reads [[faults]], of a switch that is described otherwise.
std::vector<FaultDescription> readFaults(const std::vector<TomlTable>& tables,
                                         const std::vector<AsicDescription>& asics);

}  // namespace simulator
