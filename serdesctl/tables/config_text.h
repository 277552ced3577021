// What the tool prints about the switch: its start-up lines, the cores that setAsicNum finds, and showConfig's whole
// answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

struct SwitchText {
  std::int32_t slots = 0;
  std::int32_t userPorts = 0;
  std::int32_t auxPorts = 0;
  std::uint32_t asics = 0;
};

// A core as setAsicNum prints it.
struct FoundCore {
  std::uint32_t asic = 0;
  std::uint32_t core = 0;
  std::int32_t firstPort = 0;
  std::uint32_t serDesType = 0;
  std::uint32_t pllRegisters = 0;
  std::uint32_t rxRegisters = 0;
  std::uint32_t txRegisters = 0;
  std::uint32_t rxParams = 0;
  std::uint32_t txParams = 0;
};

struct DiscoveryText {
  std::vector<FoundCore> cores;
  bool complete = false;  // false: it failed after these cores, and what follows is not known
  std::uint32_t asic = 0;
  std::uint32_t coreCount = 0;  // as reported: may exceed the cores above
  std::uint32_t portCount = 0;
};

struct StartText {
  SwitchText hardware;
  DiscoveryText discovery;
};

struct ConfigSide {
  std::uint32_t links = 0;
  std::string serDesType;  // its name
  std::uint32_t core = 0;
};

struct ConfigPort {
  std::uint32_t port = 0;
  ConfigSide rx;
  ConfigSide tx;
  std::optional<std::uint32_t> userPort;  // nothing for "N/A" and for a port that no listed core serves
};

struct ConfigCore {
  std::uint32_t core = 0;
  std::string serDesType;
  std::uint32_t rxPorts = 0;  // masks: the ports whose side the core serves
  std::uint32_t txPorts = 0;
};

struct ConfigType {
  std::string name;
  std::uint32_t useCount = 0;
};

struct ConfigText {
  std::uint32_t asic = 0;
  std::uint32_t coreCount = 0;  // as reported
  std::uint32_t portCount = 0;
  std::vector<ConfigPort> ports;
  std::vector<ConfigCore> cores;
  std::vector<ConfigType> types;  // by number
  std::uint32_t glPorts = 0;
  std::uint32_t xgPorts = 0;
  std::uint32_t exgPorts = 0;
};

// Each reads what it is about and leaves the rest; throws ParseError.
SwitchText readSwitch(TextCursor& text);
DiscoveryText readDiscovery(TextCursor& text);
ConfigText readConfig(TextCursor& text);

// Each reads the whole text or throws ParseError.
StartText parseStart(std::string_view text);
DiscoveryText parseDiscovery(std::string_view text);
ConfigText parseConfig(std::string_view text);

}  // namespace serdesctl
