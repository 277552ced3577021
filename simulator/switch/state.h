// Everything about a switch that can change, as plain values. What can be worked out from it (link results, port
// states, status registers) is not here.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/description/description.h"
#include "simulator/link/eye_scan.h"
#include "simulator/serdes/register_map.h"
#include "simulator/switch/error_counter.h"
#include "simulator/switch/faults.h"

namespace simulator {

// What test option 4 can read. A point of the eye, `phase` and `level` from the middle, is the mode
// kMarginPoint + 256 phase + level.
enum MarginMode : std::uint32_t {
  kMarginHeight = 0,  // converter steps
  kMarginErrorRate = 1,
  kMarginWidth = 2,  // thousandths of a UI
  kMarginPoint = 0x18080,
};
inline constexpr int kMaxMarginMode = kMarginPoint + 256 * EyeScan::kMaxPhase + EyeScan::kMaxLevel;

struct TxLinkState {
  RegisterFile registers{};
  std::uint32_t injectedErrors = 0;
};

struct RxLinkState {
  RegisterFile registers{};
  ErrorCounter checkErrors;       // bit errors that pattern checking has found
  std::uint32_t marginShown = 0;  // what test option 4 reads, a MarginMode or a point of the eye
  std::uint8_t sensor = 0;        // what test option 9 reads: 0 the receive core's temperature, 1 the transmit core's
};

struct PortState {
  std::uint32_t configuredSpeed = SPEED_AUTO;
  std::uint32_t operatingSpeed = SPEED_AUTO;  // what the SerDes is set to; AUTO while none is agreed on
  bool sends = true;                          // the transmit stream of a port without transmit links
  std::array<Settings, kSpeeds> caches{};
  ErrorCounter decodeErrors;
  ErrorCounter crcErrors;
  std::uint64_t settledAt = 0;  // microseconds: errors are counted up to here
  std::array<TxLinkState, kMaxLinks> tx{};
  std::array<RxLinkState, kMaxLinks> rx{};
};

struct AsicState {
  std::vector<PortState> ports;
  std::vector<RegisterFile> plls;
};

struct SwitchState {
  std::uint64_t now = 0;  // microseconds
  std::vector<FaultState> faults;
  std::uint32_t random = 1;
  std::vector<AsicState> asics;
};

// The state as a list of named records, in an order that the description fixes.
struct StateRecord {
  std::string name;
  std::vector<std::uint64_t> values;

  bool operator==(const StateRecord&) const = default;
};

// `state` has the shape that the description asks for: so many ASICs, ports, cores and faults.
std::vector<StateRecord> toRecords(const SwitchDescription& description, SwitchState state);
// Takes over a list of exactly the shape that toRecords makes of `state`, with values in range. False when it is not:
// `state` then is of no use.
bool fromRecords(const SwitchDescription& description, const std::vector<StateRecord>& records, SwitchState& state);

}  // namespace simulator
