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

// What the tool shows for a value that it has no name for, and what the state says too.
inline constexpr const char* kUnnamed = "UNK";

// Live settings of a link. The names of modes are the tool's.
struct LiveSlew : SlewValue {
  bool slewUnnamed = false;  // there is one, and the tool cannot name it

  bool operator==(const LiveSlew&) const = default;
};
struct LiveTx : FfeValues, LiveSlew {
  bool operator==(const LiveTx&) const = default;
};
struct LiveRx : DfeModeValue, VgaValues {
  bool operator==(const LiveRx&) const = default;
};

// What is seen and cannot be set.
struct PortObservations {
  std::optional<std::string> runningRate;
  std::optional<std::string> media;
  std::vector<DfeStatsValues> links;  // by receive link, without values where the tool has no layout
  std::string unread;                 // why the statistics could not be read
};

// The tool shows rate, stream and transmit caches by transmit link, and receive caches by receive link: of a port
// without such links nothing is known of them.
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

// What the tool refused to show.
struct Unread {
  std::uint32_t asic = 0;
  std::optional<std::uint32_t> port{};  // nothing: the ASIC as such
  std::string what;                     // the kind of records, for caches with their rate: "tx_cache_raw 8G"
  std::string why;

  bool operator==(const Unread&) const = default;
};

struct SwitchState {
  SwitchText hardware;
  std::vector<AsicState> asics;
  std::vector<Unread> unread;
};

}  // namespace serdesctl
