// Settings that people declare, as they stand in a file: entries, each for the ports that it selects.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// Ports to which all of this applies. What is empty selects any.
struct PortSelector {
  std::optional<std::uint32_t> asic;  // 0 where ports are named and nothing else is said
  std::set<std::uint32_t> ports;
  std::set<std::uint32_t> userPorts;
  std::set<std::string> kinds;        // "gl", "xg", "exg"
  std::set<std::string> serDesTypes;  // of either side
  std::set<std::string> media;
  std::set<std::string> rates;  // configured
  std::set<std::string> runningRates;
};

// By the fields of ethernet ports' caches.
struct EthernetSettings {
  std::optional<std::int32_t> power;
  std::optional<std::int32_t> preEmphasis;
  std::optional<std::int32_t> cdrMode;
  std::optional<std::int32_t> eqMode;
};

template <typename Visit>
void eachField(const EthernetSettings& r, Visit&& visit) {
  visit("power", r.power);
  visit("pre_emphasis", r.preEmphasis);
  visit("cdr_mode", r.cdrMode);
  visit("eq_mode", r.eqMode);
}

struct SettingsEntry {
  std::uint32_t line = 0;
  PortSelector selector;
  bool optional = false;  // it may select no port
  std::optional<std::string> speed;
  std::optional<bool> stream;
  LiveTx transmit;
  LiveRx receive;
  EthernetSettings ethernet;
  bool live = false;             // where the three above go
  std::set<std::string> caches;  // and the rates whose caches they go to
};

struct SettingsFile {
  std::string name;
  std::vector<SettingsEntry> entries;
};

// Reads and checks a file, or standard input for "-". Throws UsageError with a line for all that is wrong:
// "FILE:LINE: KEY: what, and what is allowed".
SettingsFile readSettings(const std::string& fileName);
SettingsFile parseSettings(const std::string& text, const std::string& name);

// "A, B, C"
template <typename Words>
std::string listed(const Words& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : ", ") + word;
  return text;
}

// Throws UsageError with all of the problems, if there are any.
void refuse(const std::vector<std::string>& problems);

}  // namespace serdesctl
