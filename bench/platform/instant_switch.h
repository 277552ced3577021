// A switch that answers at once and does nothing else, so that a benchmark measures the tool: every port is a GL port,
// every core serves two ports, registers hold fixed words.
#pragma once

#include <array>
#include <cstdint>

#include "topology/serdes_topology.h"

namespace instant {

inline constexpr std::uint32_t kSerDesType = 2;
inline constexpr std::uint32_t kPortsPerCore = 2;

struct Switch {
  std::uint32_t ports = kMaxPorts;  // SERDES_BENCH_PORTS
  std::uint32_t links = kMaxLinks;  // SERDES_BENCH_LINKS, on each side of a port
  bool reports = false;             // SERDES_BENCH_REPORTS: setting the FFE prints what was set
  std::array<std::array<std::array<unsigned short, kMaxRegisters>, kMaxLinks>, kMaxPorts> registers;
};

extern Switch theSwitch;

// Takes the size from the environment and fills the registers.
void open();

}  // namespace instant
