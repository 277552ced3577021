// Caches into live settings, and back.
#include "serdesctl/plan/predicting.h"

#include <algorithm>
#include <span>

#include "serdesctl/state/saying.h"
#include "simulator/error_codes.h"
#include "simulator/serdes/settings.h"

namespace serdesctl {
namespace {

using simulator::FfeSettings;
using simulator::RegisterFile;
using simulator::SerDesTraits;
using simulator::VgaSettings;

// One ethernet SerDes shows its settings as another does.
constexpr unsigned kEthernetType = 4;

bool fits(std::int32_t value, std::int32_t least, std::int32_t greatest) {
  return least <= value && value <= greatest;
}

bool areBytes(std::span<const std::int32_t> values) {
  return std::all_of(values.begin(), values.end(), [](std::int32_t value) { return fits(value, -128, 127); });
}

bool isNumberOf(std::span<const ValueName> names, std::int32_t value) {
  return static_cast<std::uint32_t>(value) < names.size();
}

// The number of a slew rate; nothing for one that has no number: it stays.
std::optional<std::int32_t> slewNumber(const LiveSlew& slew) {
  const std::string ps = std::to_string(slew.slewPs.value_or(0));
  const auto found =
      std::find_if(slewRateNames.begin(), slewRateNames.end(), [&](const auto& n) { return ps == n.shortName; });
  if (found != slewRateNames.end()) return static_cast<std::int32_t>(found - slewRateNames.begin());
  return slew.slewUnnamed ? std::optional<std::int32_t>(SLEW_UNKNOWN) : std::nullopt;  // which no SerDes takes
}

FfeSettings ffeIn(const TxRawValues& cache) {
  return {static_cast<std::uint32_t>(cache.mode), cache.power, cache.p};
}

FfeValues shown(const FfeSettings& ffe) {
  return {ffeModeNames[ffe.mode].name, ffe.k, ffe.c[0], ffe.c[1], ffe.c[2], ffe.c[3]};
}

void applyEthernet(const TxRawValues& cache, LiveTx& live) {
  const SerDesTraits& traits = simulator::serDesTraits(kEthernetType);
  RegisterFile registers{};
  if (setDriveLevel(traits, registers, cache.power, cache.p[0]) != simulator::kOk) return;
  static_cast<FfeValues&>(live) = shown(ffeOf(traits, registers));
}

void apply(const TxRawValues& cache, LiveTx& live, const SerDesSide& side) {
  if (side.isEthernet) return applyEthernet(cache, live);
  RegisterFile registers{};
  const bool takesFfe = side.traits != nullptr
                            ? setFfe(*side.traits, registers, ffeIn(cache)) == simulator::kOk
                            : isNumberOf(ffeModeNames, cache.mode) && fits(cache.power, 0, 255) && areBytes(cache.p);
  if (takesFfe) static_cast<FfeValues&>(live) = shown(ffeIn(cache));
  const auto slew = static_cast<std::uint32_t>(cache.slew);
  const bool takesSlew = side.traits != nullptr ? setSlew(*side.traits, registers, true, slew) == simulator::kOk
                                                : slew < slewRateNames.size();
  if (takesSlew) static_cast<LiveSlew&>(live) = {{std::stoi(slewRateNames[slew].shortName)}, false};
}

void apply(const RxRawValues& cache, LiveRx& live, const SerDesSide& side) {
  RegisterFile registers{};
  if (side.isEthernet) {
    const SerDesTraits& traits = simulator::serDesTraits(kEthernetType);
    if (setEqualiser(traits, registers, cache.mode, cache.p[0]) == simulator::kOk) live.peak = cache.p[0];
    return;
  }
  const auto mode = static_cast<std::uint32_t>(cache.mode);
  const bool takesDfe = side.traits != nullptr ? setDfe(*side.traits, registers, mode) == simulator::kOk
                                               : isNumberOf(dfeModeNames, cache.mode);
  if (takesDfe) live.dfeMode = dfeModeNames[mode].name;
  const VgaSettings vga = {cache.p[0], cache.p[1], cache.p[2]};
  const bool takesVga = side.traits != nullptr ? setVga(*side.traits, registers, vga) == simulator::kOk
                                               : areBytes(std::span(cache.p).first(3));
  if (takesVga) static_cast<VgaValues&>(live) = {vga.pole, vga.peak, vga.amax};
}

template <typename Cache, typename Link>
void applyToAll(const Cache& cache, std::vector<Link>& links, const SerDesSide& side) {
  for (Link& link : links)
    apply(cache, link, side);
}

// Whether putting the cache into force gives just this.
bool gives(const TxRawValues& cache, const LiveTx& live, const SerDesSide& side) {
  LiveTx result = live;
  result.ffeMode.reset();
  apply(cache, result, side);
  return static_cast<const FfeValues&>(result) == live;
}

// Every drive level and pre-emphasis shows as an FFE of its own.
std::optional<TxRawValues> ethernetCacheFor(const LiveTx& live, TxRawValues cache, const SerDesSide& side) {
  for (cache.power = 0; cache.power <= simulator::kMaxDriveLevel; ++cache.power) {
    for (cache.p[0] = 0; cache.p[0] <= simulator::kMaxDriveLevel; ++cache.p[0]) {
      if (gives(cache, live, side)) return cache;
    }
  }
  return std::nullopt;
}

}  // namespace

bool isRate(const std::string& name) {
  return std::any_of(rateNames.begin() + 1, rateNames.end(), [&](const ValueName& rate) { return name == rate.name; });
}

std::string rateInForce(const PortState& port, const std::string& configRate, const PortState& wanted) {
  if (isRate(configRate)) return configRate;
  std::string then = wanted.observed.runningRate.value_or("");
  if (isRate(then)) return then;
  const bool mayStop = wanted.observed.runningRate && port.configRate && isRate(*port.configRate);
  std::string now = port.observed.runningRate.value_or("");
  return isRate(now) && !mayStop ? now : "";
}

void putIntoForce(PortState& port, const std::string& rate, const SerDesSides& sides) {
  if (const auto cache = port.txCaches.find(rate); cache != port.txCaches.end()) {
    applyToAll(cache->second, port.tx, sides.tx);
  }
  if (const auto cache = port.rxCaches.find(rate); cache != port.rxCaches.end()) {
    applyToAll(cache->second, port.rx, sides.rx);
  }
}

std::optional<std::int32_t> valueOf(std::span<const ValueName> names, const std::optional<std::string>& name) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const ValueName& n) { return name == n.name; });
  return found == names.end() ? std::nullopt : std::optional(static_cast<std::int32_t>(found - names.begin()));
}

std::optional<TxRawValues> cacheFor(const LiveTx& live, const TxRawValues& otherwise, const SerDesSide& side) {
  if (!saysAll<FfeValues>(live)) return std::nullopt;
  if (side.isEthernet) return ethernetCacheFor(live, otherwise, side);
  const auto mode = valueOf(ffeModeNames, live.ffeMode);
  if (!mode) return std::nullopt;
  const TxRawValues cache = {.power = *live.k,
                             .slew = slewNumber(live).value_or(otherwise.slew),
                             .mode = *mode,
                             .p = {*live.c0, *live.c1, *live.c2, *live.c3}};
  return gives(cache, live, side) ? std::optional(cache) : std::nullopt;
}

std::optional<RxRawValues> cacheFor(const LiveRx& live, const RxRawValues& otherwise, const SerDesSide& side) {
  if (!side.isEthernet || !live.peak || !fits(*live.peak, 0, simulator::kMaxPeak)) return std::nullopt;
  RxRawValues cache = otherwise;
  // What is in use is not shown; with a mode that is none the peak would not be taken either.
  if (!fits(cache.mode, 0, simulator::kMaxCdrMode)) cache.mode = 0;
  cache.p[0] = *live.peak;
  return cache;
}

}  // namespace serdesctl
