// Selecting ports, and laying declared settings over what is.
#include "serdesctl/settings/wanted.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

#include "display/name_tables.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/state/saying.h"
#include "serdesctl/tables/config_records.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

// The keys that select by a name: visit(key, wanted names, names that the port has).
template <typename Visit>
void eachNamed(const PortSelector& selector, const AsicState& asic, const PortState& port, Visit&& visit) {
  const ConfigPort& config = asic.config.ports[port.port];
  const PortObservations& seen = port.observed;
  using Names = std::vector<std::optional<std::string>>;
  visit("kind", selector.kinds, Names{portTypeOf(asic.config, port.port)});
  visit("serdes_type", selector.serDesTypes, Names{config.tx.serDesType, config.rx.serDesType});
  visit("media", selector.media, Names{seen.media});
  visit("rate", selector.rates, Names{port.configRate});
  visit("running_rate", selector.runningRates, Names{seen.runningRate});
}

bool allowsPort(const std::set<std::uint32_t>& ports, const std::optional<std::uint32_t>& port) {
  return ports.empty() || (port && ports.contains(*port));
}

bool saysAnyTx(const LiveTx& tx) {
  return saysAny<FfeValues>(tx) || tx.slewPs;
}

bool saysAnyRx(const LiveRx& rx) {
  return rx.dfeMode || saysAny<VgaValues>(rx);
}

// A port that has no links is not meant by those who say something about links, unless they name it.
bool hasLinksFor(const SettingsEntry& entry, const ConfigPort& port) {
  if (!entry.selector.ports.empty() || !entry.selector.userPorts.empty()) return true;
  const EthernetSettings& ethernet = entry.ethernet;
  const bool tx = saysAnyTx(entry.transmit) || ethernet.power || ethernet.preEmphasis;
  const bool rx = saysAnyRx(entry.receive) || ethernet.cdrMode || ethernet.eqMode;
  return (!tx || port.tx.links != 0) && (!rx || port.rx.links != 0);
}

bool selects(const SettingsEntry& entry, const AsicState& asic, const PortState& port) {
  const PortSelector& selector = entry.selector;
  const ConfigPort& config = asic.config.ports[port.port];
  bool allowed = selector.asic.value_or(asic.asic) == asic.asic && allowsPort(selector.ports, port.port) &&
                 allowsPort(selector.userPorts, config.userPort) && hasLinksFor(entry, config);
  eachNamed(selector, asic, port, [&](const char*, const auto& wanted, const auto& names) {
    allowed = allowed && (wanted.empty() || std::any_of(names.begin(), names.end(), [&](const auto& name) {
                            return name && wanted.contains(*name);
                          }));
  });
  return allowed;
}

// Why no port is selected: a key of whose names the switch has none, with those that it has.
std::string whyNone(const SettingsEntry& entry, const SwitchState& now) {
  std::map<std::string, std::pair<std::set<std::string>, bool>> keys;  // names there are, and whether one is wanted
  for (const AsicState& asic : now.asics) {
    if (entry.selector.asic.value_or(asic.asic) != asic.asic) continue;
    for (const PortState& port : asic.ports) {
      eachNamed(entry.selector, asic, port, [&](const char* key, const auto& wanted, const auto& names) {
        auto& [there, found] = keys[key];
        for (const auto& name : names) {
          if (name) there.insert(*name);
          found = found || wanted.empty() || (name && wanted.contains(*name));
        }
      });
    }
  }
  for (const auto& [key, known] : keys) {
    if (!known.second) return key + ": no port has it: there are " + listed(known.first);
  }
  return "selects no port: none has all of this";
}

class Problems {
 public:
  explicit Problems(const SettingsFile& file) : file_(file) {}

  void add(const SettingsEntry& entry, const std::string& what) {
    lines_.push_back(file_.name + ":" + std::to_string(entry.line) + ": " + what);
  }
  std::size_t count() const {
    return lines_.size();
  }
  void refuseIfAny() const {
    refuse(lines_);
  }

 private:
  const SettingsFile& file_;
  std::vector<std::string> lines_;
};

// What a selector names must be there.
void checkNamed(const SettingsEntry& entry, const SwitchState& now, Problems& problems) {
  const PortSelector& selector = entry.selector;
  std::set<std::uint32_t> ports, userPorts;
  bool asicFound = !selector.asic;
  for (const AsicState& asic : now.asics) {
    asicFound = asicFound || asic.asic == *selector.asic;
    for (const PortState& port : asic.ports) {
      if (selector.asic.value_or(asic.asic) == asic.asic) ports.insert(port.port);
      if (const auto user = asic.config.ports[port.port].userPort) userPorts.insert(*user);
    }
  }
  if (!asicFound) {
    problems.add(entry, "asic: the switch has no ASIC " + std::to_string(*selector.asic));
    return;
  }
  for (const std::uint32_t port : selector.ports) {
    if (ports.contains(port)) continue;
    problems.add(entry, "ports: no port " + std::to_string(port) + " of ASIC " + std::to_string(*selector.asic));
  }
  for (const std::uint32_t port : selector.userPorts) {
    if (!userPorts.contains(port)) problems.add(entry, "user_ports: no user port " + std::to_string(port));
  }
}

std::string portText(std::uint32_t asic, std::uint32_t port) {
  return "port " + std::to_string(port) + " of ASIC " + std::to_string(asic);
}

// Caches of ethernet ports hold other things than those of other ports.
void checkKinds(const SettingsEntry& entry, const AsicState& asic, std::uint32_t ports, Problems& problems) {
  const bool forOthers = !entry.caches.empty() && (saysAnyTx(entry.transmit) || saysAnyRx(entry.receive));
  const std::uint32_t ethernet = ports & asic.config.exgPorts;
  const std::uint32_t others = ports & (asic.config.glPorts | asic.config.xgPorts);
  if (forOthers && ethernet != 0) {
    problems.add(entry, "transmit, receive: " + portText(asic.asic, lowestPort(ethernet)) +
                            " is an ethernet port, whose caches have ethernet settings alone");
  }
  if (saysAny(entry.ethernet) && others != 0) {
    problems.add(entry, "ethernet: " + portText(asic.asic, lowestPort(others)) + " is no ethernet port");
  }
}

SelectedPorts selectFor(const SettingsEntry& entry, const SwitchState& now, Problems& problems) {
  SelectedPorts selected;
  for (const AsicState& asic : now.asics) {
    for (const PortState& port : asic.ports) {
      if (selects(entry, asic, port)) selected[asic.asic] |= std::uint32_t{1} << port.port;
    }
    checkKinds(entry, asic, selected.contains(asic.asic) ? selected[asic.asic] : 0, problems);
  }
  if (entry.optional) return selected;
  const std::size_t before = problems.count();
  checkNamed(entry, now, problems);
  if (selected.empty() && before == problems.count()) {
    problems.add(entry, whyNone(entry, now) + "; with optional = true it may select none");
  }
  return selected;
}

std::vector<SelectedPorts> select(const SettingsFile& file, const SwitchState& now, Problems& problems) {
  std::vector<SelectedPorts> selected;
  for (const SettingsEntry& entry : file.entries)
    selected.push_back(selectFor(entry, now, problems));
  return selected;
}

using serdesctl::overlay;  // of single values and links; these here are of what a file declares

void overlay(EthernetSettings& under, const EthernetSettings& over) {
  overlay(under.power, over.power);
  overlay(under.preEmphasis, over.preEmphasis);
  overlay(under.cdrMode, over.cdrMode);
  overlay(under.eqMode, over.eqMode);
}

// Settings of links, as far as they are said.
struct LinkSettings {
  LiveTx transmit;
  LiveRx receive;
  EthernetSettings ethernet;
};

void overlay(LinkSettings& under, const SettingsEntry& over) {
  overlay(under.transmit, over.transmit);
  overlay(under.receive, over.receive);
  overlay(under.ethernet, over.ethernet);
}

// All that the entries say about a port.
struct Declared {
  const SettingsEntry* last = nullptr;  // which messages name
  std::optional<std::string> speed;
  std::optional<bool> stream;
  LinkSettings live;
  std::map<std::string, LinkSettings> caches;
};

void overlay(Declared& under, const SettingsEntry& over) {
  under.last = &over;
  overlay(under.speed, over.speed);
  overlay(under.stream, over.stream);
  if (over.live) overlay(under.live, over);
  for (const std::string& rate : over.caches)
    overlay(under.caches[rate], over);
}

// The number of a name or of picoseconds, among names in the platform's order.
template <std::size_t kCount>
std::int32_t numberOf(const std::array<ValueName, kCount>& names, const std::string& word,
                      const char* ValueName::*which) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const ValueName& n) { return word == n.*which; });
  return static_cast<std::int32_t>(found - names.begin());
}

// What an entry says about a cache, over the platform's numbers.
void overlay(TxRawValues& under, const LinkSettings& over) {
  const LiveTx& tx = over.transmit;
  overlay(under.power, tx.k);
  if (tx.slewPs) under.slew = numberOf(slewRateNames, std::to_string(*tx.slewPs), &ValueName::shortName);
  if (tx.ffeMode) under.mode = numberOf(ffeModeNames, *tx.ffeMode, &ValueName::name);
  overlay(under.p[0], tx.c0);
  overlay(under.p[1], tx.c1);
  overlay(under.p[2], tx.c2);
  overlay(under.p[3], tx.c3);
  overlay(under.power, over.ethernet.power);
  overlay(under.p[0], over.ethernet.preEmphasis);
}

void overlay(RxRawValues& under, const LinkSettings& over) {
  const LiveRx& rx = over.receive;
  if (rx.dfeMode) under.mode = numberOf(dfeModeNames, *rx.dfeMode, &ValueName::name);
  overlay(under.p[0], rx.pole);
  overlay(under.p[1], rx.peak);
  overlay(under.p[2], rx.amax);
  overlay(under.mode, over.ethernet.cdrMode);
  overlay(under.p[0], over.ethernet.eqMode);
}

// What fits 8 bits reaches a link.
void carry(std::optional<std::int32_t>& value, std::int32_t cached, std::int32_t lowest, std::int32_t highest) {
  if (lowest <= cached && cached <= highest) value = cached;
}

// What a link has once it has got another rate's cache, if any, as far as links can have it; the rest as it is now.
FfeValues afterRate(FfeValues link, const TxRawValues* cache) {
  if (cache == nullptr) return link;
  const auto mode = static_cast<std::uint32_t>(cache->mode);
  if (mode < ffeModeNames.size()) link.ffeMode = ffeModeNames[mode].name;
  carry(link.k, cache->power, 0, 255);
  carry(link.c0, cache->p[0], -128, 127);
  carry(link.c1, cache->p[1], -128, 127);
  carry(link.c2, cache->p[2], -128, 127);
  carry(link.c3, cache->p[3], -128, 127);
  return link;
}

VgaValues afterRate(VgaValues link, const RxRawValues* cache) {
  if (cache == nullptr) return link;
  carry(link.pole, cache->p[0], -128, 127);
  carry(link.peak, cache->p[1], -128, 127);
  carry(link.amax, cache->p[2], -128, 127);
  return link;
}

// The wanted state of a port.
class PortBuilder {
 public:
  PortBuilder(const AsicState& asic, const PortState& now, const Declared& declared, Problems& problems)
      : asic_(asic), now_(now), declared_(declared), problems_(problems) {}

  PortState build() {
    port_.port = now_.port;
    port_.configRate = declared_.speed;
    port_.streamEnabled = declared_.stream;
    for (const auto& [rate, settings] : declared_.caches)
      addCaches(rate, settings);
    addLinks();
    return std::move(port_);
  }

 private:
  void addCaches(const std::string& rate, const LinkSettings& settings) {
    const EthernetSettings& e = settings.ethernet;
    if (saysAnyTx(settings.transmit) || e.power || e.preEmphasis)
      addCache(now_.txCaches, rate, settings, port_.txCaches);
    if (saysAnyRx(settings.receive) || e.cdrMode || e.eqMode) addCache(now_.rxCaches, rate, settings, port_.rxCaches);
  }

  template <typename Caches>
  void addCache(const Caches& now, const std::string& rate, const LinkSettings& settings, Caches& wanted) {
    const auto cache = now.find(rate);
    if (cache == now.end()) {
      complain("has no " + rate + " cache on that side, or it could not be read");
      return;
    }
    wanted[rate] = cache->second;
    overlay(wanted[rate], settings);
  }

  void addLinks() {
    if (saysAnyTx(declared_.live.transmit)) addTxLinks();
    if (saysAnyRx(declared_.live.receive)) addRxLinks();
  }

  void addTxLinks() {
    const LiveTx& said = declared_.live.transmit;
    const auto* const cache = newRateCache(now_.txCaches, port_.txCaches);
    for (const LiveTx& now : now_.tx) {
      LiveTx& link = port_.tx.emplace_back();
      if (saysAny<FfeValues>(said))
        static_cast<FfeValues&>(link) = afterRate(static_cast<const FfeValues&>(now), cache);
      overlay(link, said);
      if (saysAny<FfeValues>(said) && !saysAll<FfeValues>(link)) complainOfUnknown("k, c0 to c3 or the mode");
    }
    if (now_.tx.empty()) complainOfNoLinks("transmit");
  }

  void addRxLinks() {
    const LiveRx& said = declared_.live.receive;
    const auto* const cache = newRateCache(now_.rxCaches, port_.rxCaches);
    for (const LiveRx& now : now_.rx) {
      LiveRx& link = port_.rx.emplace_back();
      if (saysAny<VgaValues>(said))
        static_cast<VgaValues&>(link) = afterRate(static_cast<const VgaValues&>(now), cache);
      overlay(link, said);
      if (saysAny<VgaValues>(said) && !saysAll<VgaValues>(link)) complainOfUnknown("pole, peak or amax");
    }
    if (now_.rx.empty()) complainOfNoLinks("receive");
  }

  // The cache that a change of speed will apply; null when there is none, or nobody knows which.
  template <typename Caches>
  const typename Caches::mapped_type* newRateCache(const Caches& now, const Caches& wanted) const {
    if (!declared_.speed || declared_.speed == now_.configRate) return nullptr;
    if (const auto cache = wanted.find(*declared_.speed); cache != wanted.end()) return &cache->second;
    const auto cache = now.find(*declared_.speed);
    return cache == now.end() ? nullptr : &cache->second;
  }

  void complain(const std::string& what) {
    problems_.add(*declared_.last, portText(asic_.asic, now_.port) + " " + what);
  }
  void complainOfUnknown(const std::string& what) {
    complain("keeps " + what + " as it is, which could not be read: say all of it");
  }
  void complainOfNoLinks(const std::string& side) {
    complain("has no " + side + " links, or they could not be read");
  }

  const AsicState& asic_;
  const PortState& now_;
  const Declared& declared_;
  Problems& problems_;
  PortState port_;
};

AsicState wantedAsic(const AsicState& now, const std::map<std::uint32_t, Declared>& declared, Problems& problems) {
  AsicState wanted;
  wanted.asic = now.asic;
  wanted.config = now.config;
  wanted.cores = now.cores;
  for (const PortState& port : now.ports) {
    const auto found = declared.find(port.port);
    if (found != declared.end()) wanted.ports.push_back(PortBuilder(now, port, found->second, problems).build());
  }
  return wanted;
}

}  // namespace

std::vector<SelectedPorts> selectPorts(const SettingsFile& file, const SwitchState& now) {
  Problems problems(file);
  std::vector<SelectedPorts> selected = select(file, now, problems);
  problems.refuseIfAny();
  return selected;
}

SwitchState wantedState(const SettingsFile& file, const SwitchState& now) {
  Problems problems(file);
  const std::vector<SelectedPorts> selected = select(file, now, problems);
  SwitchState wanted = {.hardware = now.hardware, .asics = {}, .unread = {}};
  for (const AsicState& asic : now.asics) {
    std::map<std::uint32_t, Declared> declared;
    for (std::size_t i = 0; i < selected.size(); ++i) {
      const auto ports = selected[i].find(asic.asic);
      if (ports == selected[i].end()) continue;
      forEachBit(ports->second, kMaxPorts, [&](std::uint32_t port) { overlay(declared[port], file.entries[i]); });
    }
    if (!declared.empty()) wanted.asics.push_back(wantedAsic(asic, declared, problems));
  }
  problems.refuseIfAny();
  return wanted;
}

}  // namespace serdesctl
