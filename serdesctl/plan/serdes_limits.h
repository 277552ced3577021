// What the known types of SerDes take, so that a plan says beforehand what they would refuse. Of other types nothing is
// known.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "serdesctl/state/switch_state.h"
#include "simulator/serdes/register_map.h"

namespace serdesctl {

// What is known of one side of a port. Of an ethernet side the live settings cannot be set: they follow from caches
// alone.
struct SerDesSide {
  const simulator::SerDesTraits* traits = nullptr;  // null: the type is not known
  bool isEthernet = false;
};
struct SerDesSides {
  SerDesSide tx;
  SerDesSide rx;
};
SerDesSides serDesSides(const AsicState& asic, std::uint32_t port);

// Why settings are not taken, and the nearest that are, if there are any.
template <typename Part>
struct SerDesRefusal {
  std::string reason;
  std::optional<Part> nearest;
};

// For settings that the tool's commands can carry.
std::optional<SerDesRefusal<FfeValues>> refusalOf(const simulator::SerDesTraits& traits, const FfeValues& ffe);
std::optional<SerDesRefusal<LiveSlew>> refusalOf(const simulator::SerDesTraits& traits, const LiveSlew& slew);
std::optional<SerDesRefusal<DfeModeValue>> refusalOf(const simulator::SerDesTraits& traits, const DfeModeValue& dfe);
std::optional<SerDesRefusal<VgaValues>> refusalOf(const simulator::SerDesTraits& traits, const VgaValues& vga);

}  // namespace serdesctl
