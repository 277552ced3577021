// Caches into live settings, and back.
#include "serdesctl/plan/predicting.h"

#include <algorithm>
#include <array>
#include <span>

#include "serdesctl/plan/serdes_limits.h"
#include "serdesctl/state/saying.h"

namespace serdesctl {
namespace {

// Ethernet links show a step of power as 17 of k, and pre-emphasis as what goes from the main cursor to the next.
constexpr std::int32_t kStepOfK = 17;
constexpr std::int32_t kEthernetMain = 63;
constexpr std::int32_t kStepOfPreEmphasis = 2;
constexpr std::int32_t kMostEthernet = 15;  // power, pre-emphasis
constexpr std::int32_t kMostEqMode = 7;
constexpr std::int32_t kMostCdrMode = 3;

bool fits(std::int32_t value, std::int32_t least, std::int32_t greatest) {
  return least <= value && value <= greatest;
}

bool isByte(std::int32_t value) {
  return fits(value, -128, 127);
}

std::optional<std::string> nameOf(std::span<const ValueName> names, std::int32_t value) {
  const auto index = static_cast<std::uint32_t>(value);
  return index < names.size() ? std::optional<std::string>(names[index].name) : std::nullopt;
}

// The number of a slew rate; nothing for one that has no number: it stays.
std::optional<std::int32_t> slewNumber(const LiveSlew& slew) {
  const std::string ps = std::to_string(slew.slewPs.value_or(0));
  const auto found =
      std::find_if(slewRateNames.begin(), slewRateNames.end(), [&](const auto& n) { return ps == n.shortName; });
  if (found != slewRateNames.end()) return static_cast<std::int32_t>(found - slewRateNames.begin());
  return slew.slewUnnamed ? std::optional<std::int32_t>(SLEW_UNKNOWN) : std::nullopt;  // which no SerDes takes
}

void applyEthernet(const TxRawValues& cache, LiveTx& live) {
  if (!fits(cache.power, 0, kMostEthernet) || !fits(cache.p[0], 0, kMostEthernet)) return;
  const std::int32_t shifted = kStepOfPreEmphasis * cache.p[0];
  live.ffeMode = ffeModeNames[shifted == 0 ? FFE_NONE : FFE_2].name;
  live.k = kStepOfK * cache.power;
  live.c0 = 0;
  live.c1 = kEthernetMain - shifted;
  live.c2 = -shifted;
  live.c3 = 0;
}

void apply(const TxRawValues& cache, LiveTx& live) {
  const auto mode = nameOf(ffeModeNames, cache.mode);
  if (mode && fits(cache.power, 0, 255) && std::all_of(cache.p.begin(), cache.p.end(), isByte)) {
    static_cast<FfeValues&>(live) = {mode, cache.power, cache.p[0], cache.p[1], cache.p[2], cache.p[3]};
  }
  if (!fits(cache.slew, 0, static_cast<std::int32_t>(slewRateNames.size()) - 1)) return;
  live.slewPs = std::stoi(slewRateNames[static_cast<std::size_t>(cache.slew)].shortName);
  live.slewUnnamed = false;
}

void applyEthernet(const RxRawValues& cache, LiveRx& live) {
  if (fits(cache.mode, 0, kMostCdrMode) && fits(cache.p[0], 0, kMostEqMode)) live.peak = cache.p[0];
}

void apply(const RxRawValues& cache, LiveRx& live) {
  if (const auto mode = nameOf(dfeModeNames, cache.mode)) live.dfeMode = mode;
  if (!std::all_of(cache.p.begin(), cache.p.end() - 1, isByte)) return;
  live.pole = cache.p[0];
  live.peak = cache.p[1];
  live.amax = cache.p[2];
}

template <typename Cache, typename Link>
void applyToAll(const Cache& cache, std::vector<Link>& links, bool ethernet) {
  for (Link& link : links)
    ethernet ? applyEthernet(cache, link) : apply(cache, link);
}

// Whether putting the cache into force gives just this.
bool gives(const TxRawValues& cache, const LiveTx& live, bool ethernet) {
  LiveTx result = live;
  result.ffeMode.reset();
  ethernet ? applyEthernet(cache, result) : apply(cache, result);
  return static_cast<const FfeValues&>(result) == live;
}

}  // namespace

EthernetSides ethernetSides(const AsicState& asic, std::uint32_t port) {
  const auto [tx, rx] = traitsOf(asic, port);
  const bool otherwise = (asic.config.exgPorts >> port & 1) != 0;
  return {.tx = tx == nullptr ? otherwise : tx->isEthernet, .rx = rx == nullptr ? otherwise : rx->isEthernet};
}

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

void putIntoForce(PortState& port, const std::string& rate, EthernetSides ethernet) {
  if (const auto cache = port.txCaches.find(rate); cache != port.txCaches.end()) {
    applyToAll(cache->second, port.tx, ethernet.tx);
  }
  if (const auto cache = port.rxCaches.find(rate); cache != port.rxCaches.end()) {
    applyToAll(cache->second, port.rx, ethernet.rx);
  }
}

std::optional<std::int32_t> valueOf(std::span<const ValueName> names, const std::optional<std::string>& name) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const ValueName& n) { return name == n.name; });
  return found == names.end() ? std::nullopt : std::optional(static_cast<std::int32_t>(found - names.begin()));
}

std::optional<TxRawValues> cacheFor(const LiveTx& live, const TxRawValues& otherwise, bool ethernet) {
  if (!saysAll<FfeValues>(live)) return std::nullopt;
  TxRawValues cache = otherwise;
  if (ethernet) {
    cache.power = *live.k / kStepOfK;
    cache.p[0] = -*live.c2 / kStepOfPreEmphasis;
  } else {
    const auto mode = valueOf(ffeModeNames, live.ffeMode);
    if (!mode) return std::nullopt;
    cache.power = *live.k;
    cache.mode = *mode;
    cache.p = {*live.c0, *live.c1, *live.c2, *live.c3};
    cache.slew = slewNumber(live).value_or(cache.slew);
  }
  return gives(cache, live, ethernet) ? std::optional(cache) : std::nullopt;
}

std::optional<RxRawValues> cacheFor(const LiveRx& live, const RxRawValues& otherwise, bool ethernet) {
  if (!ethernet || !live.peak || !fits(*live.peak, 0, kMostEqMode)) return std::nullopt;
  RxRawValues cache = otherwise;
  if (!fits(cache.mode, 0, kMostCdrMode)) cache.mode = 0;  // or neither would be taken; what is in use is not shown
  cache.p[0] = *live.peak;
  return cache;
}

}  // namespace serdesctl
