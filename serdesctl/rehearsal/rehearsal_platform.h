// The platform that the tool's own handlers run on when a command is rehearsed: every operation succeeds, is recorded,
// and answers from a switch's topology.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "serdesctl/base/tool_facts.h"
#include "topology/serdes_topology.h"

namespace serdesctl {

struct RehearsedCore {
  unsigned short firstPort = 0;
  std::uint32_t serDesType = 0;
  unsigned pllRegisters = 0;
  unsigned rxRegisters = 0;
  unsigned txRegisters = 0;
  unsigned rxParams = 0;
  unsigned txParams = 0;
};

struct RehearsedPort {
  PortSide rx{};
  PortSide tx{};
  std::uint32_t portType = 0;  // 0: of no type, or absent
  std::uint16_t userPort = kNoUserPort;
};

struct RehearsedAsic {
  bool known = false;  // false: the widest that any ASIC can be
  std::uint32_t portCount = 0;
  std::uint32_t coreCount = 0;
  std::array<RehearsedPort, kMaxPorts> ports{};
  std::array<RehearsedCore, kMaxCores> cores{};
};

struct RehearsedSwitch {
  Switch_HW_Config_t hardware{};
  std::array<RehearsedAsic, kMostAsics> asics;
  std::array<std::string, kSerDesTypeCount> typeNames;
};

// One platform call.
struct RehearsedCall {
  std::string_view operation;
  bool changes;  // the hardware
  std::uint32_t asic;
  std::uint32_t place;  // port or core
  int link;             // -1 for all, and where there is none
};

// The switch that answers, and what was asked of it since the list was last cleared.
extern RehearsedSwitch rehearsedSwitch;
extern std::vector<RehearsedCall> rehearsedCalls;

// The first thing that a call named and the switch does not have, such as "port 24 of ASIC 0"; empty for none. Told
// from the first call of a command alone: further ones name what the tool thought of.
extern std::string missingPlace;

}  // namespace serdesctl
