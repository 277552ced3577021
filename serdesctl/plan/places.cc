// Settings by place.
#include "serdesctl/plan/places.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace serdesctl {
namespace {

LiveSlew& slewOf(LiveTx& r) {
  return r;
}
const LiveSlew& slewOf(const LiveTx& r) {
  return r;
}

template <typename Link, typename Visit>
void eachLiveField(Link& r, Visit&& visit) {
  if constexpr (requires { r.ffeMode; }) {
    visit("ffe_mode", r.ffeMode);
    visit("k", r.k);
    visit("c0", r.c0);
    visit("c1", r.c1);
    visit("c2", r.c2);
    visit("c3", r.c3);
    visit("slew_ps", slewOf(r));
  } else {
    visit("dfe_mode", r.dfeMode);
    visit("pole", r.pole);
    visit("peak", r.peak);
    visit("amax", r.amax);
  }
}

template <typename Cache, typename Visit>
void eachCacheField(Cache& r, Visit&& visit) {
  constexpr std::array<const char*, 4> kNames = {"p0", "p1", "p2", "p3"};
  if constexpr (requires { r.power; }) {
    visit("power", r.power);
    visit("slew", r.slew);
  }
  visit("mode", r.mode);
  for (std::size_t i = 0; i < kNames.size(); ++i)
    visit(kNames[i], r.p[i]);
}

template <typename Links, typename Caches, typename Visit>
void eachOfSide(Links& links, Caches& caches, const SettingPlace& place, Visit&& visit) {
  if (place.link && *place.link < links.size()) eachLiveField(links[*place.link], visit);
  if (!place.rate) return;
  if (const auto cache = caches.find(*place.rate); cache != caches.end()) eachCacheField(cache->second, visit);
}

// Calls visit(name, value) for the settings that stand together there.
template <typename State, typename Visit>
void eachAt(State& state, const SettingPlace& place, Visit&& visit) {
  auto* const asic = place.asic ? findAsic(state, *place.asic) : nullptr;
  auto* const port = asic == nullptr || !place.port ? nullptr : findPort(*asic, *place.port);
  if (port == nullptr) return;
  if (place.side == "tx") return eachOfSide(port->tx, port->txCaches, place, visit);
  if (place.side == "rx") return eachOfSide(port->rx, port->rxCaches, place, visit);
  visit("config_rate", port->configRate);
  visit("stream_enabled", port->streamEnabled);
}

SettingValue read(std::int32_t value) {
  return std::int64_t{value};
}
SettingValue read(const std::optional<std::int32_t>& value) {
  return value ? read(*value) : SettingValue();
}
template <typename Value>
SettingValue read(const std::optional<Value>& value) {
  return value ? SettingValue(*value) : SettingValue();
}
// A slew that has no name is a value too.
SettingValue read(const LiveSlew& slew) {
  return slew.slewUnnamed ? SettingValue(kUnnamed) : read(slew.slewPs);
}

void write(std::int32_t& to, const SettingValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) to = static_cast<std::int32_t>(*number);
}
void write(std::optional<std::int32_t>& to, const SettingValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) to = static_cast<std::int32_t>(*number);
}
template <typename Value>
void write(std::optional<Value>& to, const SettingValue& value) {
  if (const auto* typed = std::get_if<Value>(&value)) to = *typed;
}
void write(LiveSlew& to, const SettingValue& value) {
  to.slewPs.reset();
  write(to.slewPs, value);
  to.slewUnnamed = !to.slewPs;
}

template <typename Parts, typename Number>
auto* findBy(Parts& parts, Number member, std::uint32_t number) {
  const auto found = std::find_if(parts.begin(), parts.end(), [&](const auto& p) { return p.*member == number; });
  return found == parts.end() ? nullptr : &*found;
}

}  // namespace

SettingValue valueAt(const SwitchState& state, const Difference& where) {
  SettingValue found;
  eachAt(state, where.place, [&](const std::string& name, const auto& setting) {
    if (name == where.parameter) found = read(setting);
  });
  return found;
}

void assign(SwitchState& state, const Difference& where, const SettingValue& value) {
  eachAt(state, where.place, [&](const std::string& name, auto&& setting) {
    if (name == where.parameter) write(setting, value);
  });
}

bool sameSetting(const Difference& a, const Difference& b) {
  return a.place == b.place && a.parameter == b.parameter;
}

bool isLive(const Difference& where) {
  return where.place.link.has_value();
}

AsicState* findAsic(SwitchState& state, std::uint32_t asic) {
  return findBy(state.asics, &AsicState::asic, asic);
}
const AsicState* findAsic(const SwitchState& state, std::uint32_t asic) {
  return findBy(state.asics, &AsicState::asic, asic);
}
PortState* findPort(AsicState& asic, std::uint32_t port) {
  return findBy(asic.ports, &PortState::port, port);
}
const PortState* findPort(const AsicState& asic, std::uint32_t port) {
  return findBy(asic.ports, &PortState::port, port);
}

}  // namespace serdesctl
