// Comparing states: records field by field, in their own terms.
#include "serdesctl/state/compare.h"

#include <algorithm>
#include <type_traits>
#include <utility>

#include "display/name_tables.h"
#include "serdesctl/tables/config_records.h"

namespace serdesctl {
namespace {

using Fields = std::vector<std::pair<std::string, SettingValue>>;

template <typename Value>
SettingValue valueOf(const Value& value) {
  if constexpr (std::is_same_v<Value, bool> || std::is_same_v<Value, std::string>) {
    return value;
  } else if constexpr (std::is_integral_v<Value>) {
    return std::int64_t{value};
  } else {
    return static_cast<std::int64_t>(value);
  }
}

template <typename Value>
SettingValue valueOf(const std::optional<Value>& value) {
  return value ? valueOf(*value) : SettingValue();
}

template <typename Group>
void addFields(const Group& group, Fields& fields) {
  eachField(group, [&](const char* name, const auto& value) { fields.emplace_back(name, valueOf(value)); });
}

Fields fieldsOf(const LiveTx& link) {
  Fields fields;
  addFields<FfeValues>(link, fields);
  fields.emplace_back("slew_ps", link.slewUnnamed ? SettingValue(kUnnamed) : valueOf(link.slewPs));
  return fields;
}

Fields fieldsOf(const LiveRx& link) {
  Fields fields;
  addFields<DfeModeValue>(link, fields);
  addFields<VgaValues>(link, fields);
  return fields;
}

template <typename Group>
Fields fieldsOf(const Group& group) {
  Fields fields;
  addFields(group, fields);
  return fields;
}

// Fields of two records of one kind.
void compareFields(const SettingPlace& place, const Fields& before, const Fields& after,
                   std::vector<Difference>& differences) {
  for (std::size_t i = 0; i < std::min(before.size(), after.size()); ++i) {
    const auto& [name, old] = before[i];
    const SettingValue& now = after[i].second;
    if (old == now || now.index() == 0) continue;
    differences.push_back({place, name, old, now});
  }
}

template <typename Link>
void compareLinks(SettingPlace place, const char* side, const std::vector<Link>& before, const std::vector<Link>& after,
                  std::vector<Difference>& differences) {
  place.side = side;
  for (std::uint32_t link = 0; link < after.size(); ++link) {
    place.link = link;
    compareFields(place, fieldsOf(link < before.size() ? before[link] : Link()), fieldsOf(after[link]), differences);
  }
}

Fields unknown(Fields fields) {
  for (auto& [name, value] : fields)
    value.emplace<std::monostate>();
  return fields;
}

// By rate from the slowest on.
template <typename Values>
void compareCaches(SettingPlace place, const char* side, const std::map<std::string, Values>& before,
                   const std::map<std::string, Values>& after, std::vector<Difference>& differences) {
  place.side = side;
  for (const ValueName& rate : rateNames) {
    const auto old = before.find(rate.name);
    const auto now = after.find(rate.name);
    if (now == after.end()) continue;
    place.rate = rate.name;
    const Fields fields = fieldsOf(now->second);
    compareFields(place, old == before.end() ? unknown(fields) : fieldsOf(old->second), fields, differences);
  }
}

void compareSettings(const SettingPlace& place, const PortState& before, const PortState& after,
                     std::vector<Difference>& differences) {
  const auto whole = [](const PortState& port) {
    return Fields{{"config_rate", valueOf(port.configRate)}, {"stream_enabled", valueOf(port.streamEnabled)}};
  };
  compareFields(place, whole(before), whole(after), differences);
  compareLinks(place, "tx", before.tx, after.tx, differences);
  compareLinks(place, "rx", before.rx, after.rx, differences);
  compareCaches(place, "tx", before.txCaches, after.txCaches, differences);
  compareCaches(place, "rx", before.rxCaches, after.rxCaches, differences);
}

void compareObservations(const SettingPlace& place, const PortState& before, const PortState& after,
                         std::vector<Difference>& differences) {
  const auto whole = [](const PortState& port) {
    return Fields{{"running_rate", valueOf(port.observed.runningRate)}, {"media", valueOf(port.observed.media)}};
  };
  compareFields(place, whole(before), whole(after), differences);
  compareLinks(place, "rx", before.observed.links, after.observed.links, differences);
}

void compareRegisterLists(const SettingPlace& place, const std::vector<std::uint16_t>& before,
                          const std::vector<std::uint16_t>& after, std::vector<Difference>& differences) {
  const auto fields = [](const std::vector<std::uint16_t>& registers) {
    Fields result;
    for (std::size_t address = 0; address < registers.size(); ++address)
      result.emplace_back("register " + std::to_string(address), valueOf(registers[address]));
    return result;
  };
  compareFields(place, fields(before), fields(after), differences);
}

using Dumps = std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>>;

void compareDumps(SettingPlace place, const char* side, const Dumps& before, const Dumps& after,
                  std::vector<Difference>& differences) {
  const auto old = before.find(*place.port);
  const auto now = after.find(*place.port);
  if (old == before.end() || now == after.end()) return;
  place.side = side;
  for (std::uint32_t link = 0; link < std::min(old->second.size(), now->second.size()); ++link) {
    place.link = link;
    compareRegisterLists(place, old->second[link], now->second[link], differences);
  }
}

void comparePlls(SettingPlace place, const RegisterDumps& before, const RegisterDumps& after,
                 std::vector<Difference>& differences) {
  for (const auto& [core, registers] : before.pll) {
    const auto now = after.pll.find(core);
    place.core = core;
    if (now != after.pll.end()) compareRegisterLists(place, registers, now->second, differences);
  }
}

// Whether two topologies have the same ports: the user's numbers are names, and no setting depends on them.
class Ports {
 public:
  Ports(const AsicState& before, const AsicState& after, Comparison& comparison)
      : before_(before), after_(after), comparison_(comparison) {}

  // Names what differs, and gives the ports that can be compared.
  std::uint32_t compare() {
    const std::vector<PortRecord> before = portRecords(before_.config), after = portRecords(after_.config);
    const SettingPlace asic = {.asic = before_.asic};
    compareFields(asic, {{"port_count", valueOf(before_.config.portCount)}},
                  {{"port_count", valueOf(after_.config.portCount)}}, comparison_.hardware);
    std::uint32_t same = 0;
    for (std::uint32_t port = 0; port < std::min(before.size(), after.size()); ++port) {
      if (comparePort(before[port], after[port])) same |= std::uint32_t{1} << port;
    }
    return same;
  }

 private:
  // A port that has none of something differs from one that has some.
  bool comparePort(const PortRecord& before, const PortRecord& after) {
    const Fields old = fieldsOf(before), now = fieldsOf(after);
    bool same = true;
    for (std::size_t i = 0; i < old.size(); ++i) {
      if (old[i].second == now[i].second) continue;
      const SettingPlace place = {.asic = before.asic, .port = before.config.port, .userPort = before.config.userPort};
      comparison_.hardware.push_back({place, old[i].first, old[i].second, now[i].second});
      same = same && old[i].first == "user_port";
    }
    return same;
  }

  const AsicState& before_;
  const AsicState& after_;
  Comparison& comparison_;
};

template <typename List, typename Is>
auto findIn(const List& list, Is is) {
  const auto found = std::find_if(list.begin(), list.end(), is);
  return found == list.end() ? nullptr : &*found;
}

const PortState* portIn(const AsicState& asic, std::uint32_t port) {
  return findIn(asic.ports, [&](const PortState& p) { return p.port == port; });
}

const AsicState* asicIn(const SwitchState& state, std::uint32_t asic) {
  return findIn(state.asics, [&](const AsicState& a) { return a.asic == asic; });
}

SettingPlace placeIn(const AsicState& asic) {
  SettingPlace place;
  place.asic = asic.asic;
  return place;
}

SettingPlace placeIn(const AsicState& asic, std::uint32_t port) {
  SettingPlace place = placeIn(asic);
  place.port = port;
  if (port < asic.config.ports.size()) place.userPort = asic.config.ports[port].userPort;
  return place;
}

void compareAsics(const AsicState& before, const AsicState& after, Comparison& result) {
  const std::uint32_t comparable = Ports(before, after, result).compare();
  for (const PortState& now : after.ports) {
    const PortState* const old = portIn(before, now.port);
    const SettingPlace place = placeIn(after, now.port);
    if (old == nullptr) result.notInFirst.push_back(place);
    if (old == nullptr || (comparable >> now.port & 1) == 0) continue;
    compareSettings(place, *old, now, result.settings);
    compareObservations(place, *old, now, result.observations);
    if (!before.registers || !after.registers) continue;
    compareDumps(place, "tx", before.registers->tx, after.registers->tx, result.registers);
    compareDumps(place, "rx", before.registers->rx, after.registers->rx, result.registers);
  }
  for (const PortState& old : before.ports) {
    if (portIn(after, old.port) == nullptr) result.notInSecond.push_back(placeIn(before, old.port));
  }
  if (before.registers && after.registers) {
    comparePlls(placeIn(before), *before.registers, *after.registers, result.registers);
  }
}

void compareHardware(const SwitchText& before, const SwitchText& after, Comparison& result) {
  const auto fields = [](const SwitchText& hardware) {
    return Fields{{"slots", valueOf(hardware.slots)},
                  {"user_ports", valueOf(hardware.userPorts)},
                  {"aux_ports", valueOf(hardware.auxPorts)},
                  {"asics", valueOf(hardware.asics)}};
  };
  compareFields({}, fields(before), fields(after), result.hardware);
}

std::vector<Unread> without(std::vector<Unread> unread, const std::vector<Unread>& others) {
  std::erase_if(unread,
                [&](const Unread& one) { return std::find(others.begin(), others.end(), one) != others.end(); });
  return unread;
}

}  // namespace

std::string textOf(const SettingValue& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "yes" : "no";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* name = std::get_if<std::string>(&value)) return *name;
  return "-";
}

std::string textOf(const SettingPlace& place) {
  if (!place.asic) return "the switch";
  std::string text = "ASIC " + std::to_string(*place.asic);
  if (place.core) text += " core " + std::to_string(*place.core);
  if (place.port) text += " port " + std::to_string(*place.port);
  if (place.userPort) text += " (user " + std::to_string(*place.userPort) + ")";
  if (place.rate) return text + " " + *place.rate + " " + *place.side + " cache";
  if (place.link) text += " " + *place.side + " link " + std::to_string(*place.link);
  return text;
}

std::string textOf(const Unread& unread) {
  return textOf(SettingPlace{.asic = unread.asic, .port = unread.port}) + " " + unread.what + ": " + unread.why;
}

Comparison compare(const SwitchState& before, const SwitchState& after) {
  Comparison result;
  compareHardware(before.hardware, after.hardware, result);
  for (const AsicState& now : after.asics) {
    if (const AsicState* const old = asicIn(before, now.asic)) {
      compareAsics(*old, now, result);
    } else {
      result.notInFirst.push_back(placeIn(now));
    }
  }
  for (const AsicState& old : before.asics) {
    if (asicIn(after, old.asic) == nullptr) result.notInSecond.push_back(placeIn(old));
  }
  result.unreadInFirst = without(before.unread, after.unread);
  result.unreadInSecond = without(after.unread, before.unread);
  return result;
}

}  // namespace serdesctl
