// Limits of SerDes types.
#include "serdesctl/plan/serdes_limits.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "display/name_tables.h"
#include "serdesctl/plan/predicting.h"
#include "simulator/link/ends.h"

namespace serdesctl {
namespace {

using simulator::Field;
using simulator::SerDesTraits;

constexpr std::array<std::optional<std::int32_t> FfeValues::*, 4> kTaps = {&FfeValues::c0, &FfeValues::c1,
                                                                           &FfeValues::c2, &FfeValues::c3};
constexpr std::array<Field, 4> kTapFields = {Field::kC0, Field::kC1, Field::kC2, Field::kC3};
constexpr std::array<std::uint32_t, 4> kDfeModesFromMost = {DFE_5, DFE_3, DFE_1, DFE_NONE};

bool hasMode(std::uint8_t modes, std::int32_t mode) {
  return (modes >> mode & 1) != 0;
}

std::int32_t sumOf(const FfeValues& ffe) {
  std::int32_t sum = 0;
  for (const auto tap : kTaps)
    sum += std::abs((ffe.*tap).value_or(0));
  return sum;
}

// The first that is wanted and that there is not; the number of taps without one.
std::size_t missingTap(const SerDesTraits& traits, const FfeValues& ffe) {
  std::size_t tap = 0;
  while (tap < kTaps.size() && (ffe.*kTaps[tap] == 0 || traits.tx.has(kTapFields[tap])))
    ++tap;
  return tap;
}

// Taps in the same proportion send the same.
FfeValues nearestOf(const SerDesTraits& traits, FfeValues ffe) {
  if (!hasMode(traits.ffeModes, valueOf(ffeModeNames, ffe.ffeMode).value_or(0))) {
    ffe.ffeMode = ffeModeNames[static_cast<std::size_t>(std::bit_width(traits.ffeModes) - 1)].name;
  }
  for (std::size_t i = 0; i < kTaps.size(); ++i) {
    const std::int32_t most = traits.tx.has(kTapFields[i]) ? traits.maxTap : 0;
    ffe.*kTaps[i] = std::clamp((ffe.*kTaps[i]).value_or(0), -most, most);
  }
  const std::int32_t sum = std::max(sumOf(ffe), traits.maxTapSum);
  for (const auto tap : kTaps)
    ffe.*tap = *(ffe.*tap) * traits.maxTapSum / sum;
  return ffe;
}

}  // namespace

SerDesSides serDesSides(const AsicState& asic, std::uint32_t port) {
  const SerDesSide unknown = {.traits = nullptr, .isEthernet = (asic.config.exgPorts >> port & 1) != 0};
  const auto ofCore = [&](std::uint32_t core) -> SerDesSide {
    const auto found =
        std::find_if(asic.cores.begin(), asic.cores.end(), [&](const FoundCore& c) { return c.core == core; });
    if (found == asic.cores.end() || found->serDesType >= simulator::kSerDesTypes) return unknown;
    const SerDesTraits& traits = simulator::serDesTraits(found->serDesType);
    return {&traits, traits.isEthernet};
  };
  for (const ConfigPort& config : asic.config.ports) {
    if (config.port == port) return {.tx = ofCore(config.tx.core), .rx = ofCore(config.rx.core)};
  }
  return {.tx = unknown, .rx = unknown};
}

std::optional<SerDesRefusal<FfeValues>> refusalOf(const SerDesTraits& traits, const FfeValues& ffe) {
  const FfeValues nearest = nearestOf(traits, ffe);
  if (nearest == ffe) return std::nullopt;
  std::string reason = std::string(traits.name) + " takes taps of -" + std::to_string(traits.maxTap) + " to " +
                       std::to_string(traits.maxTap) + " whose amounts add up to " + std::to_string(traits.maxTapSum) +
                       " at most";
  if (nearest.ffeMode != ffe.ffeMode) {
    reason = std::string(traits.name) + " has no " + ffe.ffeMode.value_or("-");
  } else if (const std::size_t tap = missingTap(traits, ffe); tap < kTaps.size()) {
    reason = std::string(traits.name) + " has no c" + std::to_string(tap);
  }
  return SerDesRefusal<FfeValues>{reason, nearest};
}

std::optional<SerDesRefusal<LiveSlew>> refusalOf(const SerDesTraits& traits, const LiveSlew&) {
  if (traits.tx.has(Field::kSlew)) return std::nullopt;
  return SerDesRefusal<LiveSlew>{std::string(traits.name) + " has no slew control", std::nullopt};
}

std::optional<SerDesRefusal<DfeModeValue>> refusalOf(const SerDesTraits& traits, const DfeModeValue& dfe) {
  const auto mode = static_cast<std::uint32_t>(valueOf(dfeModeNames, dfe.dfeMode).value_or(DFE_NONE));
  if (hasMode(traits.dfeModes, static_cast<std::int32_t>(mode))) return std::nullopt;
  const auto wanted = std::find(kDfeModesFromMost.begin(), kDfeModesFromMost.end(), mode);
  const auto nearest = std::find_if(wanted, kDfeModesFromMost.end(), [&](std::uint32_t less) {
    return hasMode(traits.dfeModes, static_cast<std::int32_t>(less));
  });
  SerDesRefusal<DfeModeValue> refusal = {std::string(traits.name) + " has no " + dfe.dfeMode.value_or("-"), {}};
  if (nearest != kDfeModesFromMost.end()) refusal.nearest = DfeModeValue{dfeModeNames[*nearest].name};
  return refusal;
}

std::optional<SerDesRefusal<VgaValues>> refusalOf(const SerDesTraits& traits, const VgaValues& vga) {
  const auto limited = [](const std::optional<std::int32_t>& value, std::int32_t most) {
    return std::clamp(value.value_or(0), 0, most);
  };
  const VgaValues nearest = {.pole = limited(vga.pole, simulator::kMaxPole),
                             .peak = limited(vga.peak, simulator::kMaxPeak),
                             .amax = limited(vga.amax, simulator::kMaxAmax)};
  if (nearest == vga) return std::nullopt;
  return SerDesRefusal<VgaValues>{std::string(traits.name) + " takes pole and peak of 0 to " +
                                      std::to_string(simulator::kMaxPole) + " and amax of 0 to " +
                                      std::to_string(simulator::kMaxAmax),
                                  nearest};
}

}  // namespace serdesctl
