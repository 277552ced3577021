// What differs between two states of a switch, setting by setting.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// A number, a name, or nothing.
using SettingValue = std::variant<std::monostate, bool, std::int64_t, std::string>;

std::string textOf(const SettingValue& value);

// Where in a switch a value stands. Of link and rate at most one is told.
struct SettingPlace {
  std::optional<std::uint32_t> asic{};  // nothing: the switch as such
  std::optional<std::uint32_t> port{};  // nothing: the ASIC as such, or a core
  std::optional<std::uint32_t> userPort{};
  std::optional<std::uint32_t> core{};
  std::optional<std::string> side{};  // "tx", "rx"
  std::optional<std::uint32_t> link{};
  std::optional<std::string> rate{};  // of the cache

  bool operator==(const SettingPlace&) const = default;
};

// "ASIC 0 port 4 (user 12) tx link 0", "... 8G tx cache"
std::string textOf(const SettingPlace& place);

// "ASIC 0 port 4 slew: why"
std::string textOf(const Unread& unread);

struct Difference {
  SettingPlace place;
  std::string parameter;  // in the records' terms: "c0", "config_rate"
  SettingValue before;
  SettingValue after;

  bool operator==(const Difference&) const = default;
};

struct Comparison {
  std::vector<Difference> hardware;  // what can be compared at all: ports that differ here are left out below
  std::vector<Difference> settings;
  std::vector<Difference> registers;  // where both states have them
  std::vector<Difference> observations;
  std::vector<SettingPlace> notInFirst;  // ASICs and ports of which the second state alone knows, and the first
  std::vector<SettingPlace> notInSecond;
  std::vector<Unread> unreadInFirst;  // what could be read for the second state alone, and for the first
  std::vector<Unread> unreadInSecond;
};

// In order of ASIC and port. What `after` does not tell is no difference: in a wanted state nothing means as it is.
// What it tells and `before` does not differs from nothing.
Comparison compare(const SwitchState& before, const SwitchState& after);

}  // namespace serdesctl
