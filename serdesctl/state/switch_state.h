// What the tool can set of a switch, as one record: what a save holds, what a plan compares, what an undo puts back.
//
// The same record says what is and what is wanted. In a wanted state nothing (an empty optional, a rate that has no
// entry, a list without links) means: as it is, whatever that may be.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/tables/config_text.h"
#include "serdesctl/tables/records.h"

namespace serdesctl {

// Live settings of a link. The names of modes are the tool's; nothing for a value that it cannot name.
struct LiveTx : FfeValues, SlewValue {};
struct LiveRx : DfeModeValue, VgaValues {};

// What is seen and cannot be set.
struct PortObservations {
  std::optional<std::string> runningRate;
  std::optional<std::string> media;
  std::vector<DfeStatsValues> links;  // by receive link
};

struct PortState {
  std::uint32_t port = 0;
  std::optional<std::string> configRate;
  std::optional<bool> streamEnabled;
  std::vector<LiveTx> tx;                       // by link
  std::vector<LiveRx> rx;                       // by link
  std::map<std::string, TxRawValues> txCaches;  // by rate, in the platform's numbers
  std::map<std::string, RxRawValues> rxCaches;
  PortObservations observed;
};

// Registers as dumped, by address. They show the settings once more, and what cannot be set: a plan never writes them.
struct RegisterDumps {
  std::map<std::uint32_t, std::vector<std::uint16_t>> pll;              // by core
  std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>> tx;  // by port and link
  std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>> rx;
};

struct AsicState {
  std::uint32_t asic = 0;
  ConfigText config;             // what ports there are, of what types
  std::vector<PortState> ports;  // by number; a wanted state has only those that matter
  std::vector<FoundCore> cores;  // as setAsicNum finds them
  std::optional<RegisterDumps> registers;
};

struct SwitchState {
  SwitchText hardware;
  std::vector<AsicState> asics;
};

}  // namespace serdesctl
