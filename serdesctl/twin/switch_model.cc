// From names and numbers as the tool prints them to registers.
#include "serdesctl/twin/switch_model.h"

#include <algorithm>
#include <cstdlib>
#include <span>
#include <tuple>
#include <utility>

#include "display/name_tables.h"
#include "simulator/description/line_rates.h"

namespace serdesctl {
namespace {

using simulator::Field;
using simulator::RegisterFile;
using simulator::SerDesTraits;
using simulator::speedBit;

std::optional<std::uint32_t> indexOf(std::span<const ValueName> names, const std::optional<std::string>& name) {
  const auto found = std::find_if(names.begin(), names.end(), [&](const ValueName& row) { return name == row.name; });
  if (found == names.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - names.begin());
}

// The speeds that ports of a kind can be set to, as far as is known.
simulator::SpeedSet usualSpeeds(std::uint32_t kind) {
  constexpr simulator::SpeedSet k10G = speedBit(SPEED_10G);
  if (kind == kPortTypeExg) return speedBit(SPEED_1G) | k10G;
  if (kind == kPortTypeXg) return k10G | speedBit(SPEED_20G);
  return speedBit(SPEED_1G) | speedBit(SPEED_2G) | speedBit(SPEED_4G) | speedBit(SPEED_8G) | k10G;
}

// Sets a field as far as it is known.
template <typename Value>
void write(const simulator::RegisterMap& map, RegisterFile& registers, Field field, const std::optional<Value>& value) {
  if (value) map.write(registers, field, static_cast<int>(*value));
}

std::optional<std::uint32_t> slewIndex(const LiveTx& live) {
  if (live.slewUnnamed) return SLEW_UNKNOWN;
  const auto& slews = simulator::kSlewPs;
  const auto found = live.slewPs ? std::find(slews.begin(), slews.end(), *live.slewPs) : slews.end();
  if (found == slews.end()) return std::nullopt;
  return static_cast<std::uint32_t>(found - slews.begin());
}

// Whether the registers show what is known of the settings.
bool show(const SerDesTraits& traits, const RegisterFile& registers, const LiveTx& live) {
  const simulator::FfeSettings ffe = simulator::ffeOf(traits, registers);
  const auto same = [](const auto& known, auto shown) {
    return !known || static_cast<int>(*known) == static_cast<int>(shown);
  };
  return same(indexOf(ffeModeNames, live.ffeMode), ffe.mode) && same(live.k, ffe.k) && same(live.c0, ffe.c[0]) &&
         same(live.c1, ffe.c[1]) && same(live.c2, ffe.c[2]) && same(live.c3, ffe.c[3]) &&
         same(slewIndex(live), simulator::slewOf(traits, registers));
}

bool show(const SerDesTraits& traits, const RegisterFile& registers, const LiveRx& live) {
  const simulator::VgaSettings vga = simulator::vgaOf(traits, registers);
  const auto same = [](const auto& known, auto shown) {
    return !known || static_cast<int>(*known) == static_cast<int>(shown);
  };
  return same(indexOf(dfeModeNames, live.dfeMode), simulator::dfeOf(traits, registers)) && same(live.pole, vga.pole) &&
         same(live.peak, vga.peak) && same(live.amax, vga.amax);
}

bool isNamed(const LiveTx& live) {
  return live.ffeMode != kUnnamed;
}
bool isNamed(const LiveRx& live) {
  return live.dfeMode != kUnnamed;
}

// Ethernet shows its power and pre-emphasis as FFE settings: the ones that show so.
void writeDrive(const SerDesTraits& traits, const LiveTx& live, RegisterFile& registers) {
  for (int power = 0; power <= simulator::kMaxDriveLevel; ++power) {
    for (int preEmphasis = 0; preEmphasis <= simulator::kMaxDriveLevel; ++preEmphasis) {
      RegisterFile tried = registers;
      (void)simulator::setDriveLevel(traits, tried, power, preEmphasis);
      if (show(traits, tried, live)) {
        registers = tried;
        return;
      }
    }
  }
}

void writeLive(const SerDesTraits& traits, const LiveTx& live, RegisterFile& registers) {
  if (show(traits, registers, live)) return;
  if (traits.isEthernet) return writeDrive(traits, live, registers);
  write(traits.tx, registers, Field::kFfeMode, indexOf(ffeModeNames, live.ffeMode));
  write(traits.tx, registers, Field::kPower, live.k);
  write(traits.tx, registers, Field::kC0, live.c0);
  write(traits.tx, registers, Field::kC1, live.c1);
  write(traits.tx, registers, Field::kC2, live.c2);
  write(traits.tx, registers, Field::kC3, live.c3);
  write(traits.tx, registers, Field::kSlew, slewIndex(live));
}

void writeLive(const SerDesTraits& traits, const LiveRx& live, RegisterFile& registers) {
  if (show(traits, registers, live)) return;
  if (traits.isEthernet) {
    write(traits.rx, registers, Field::kEqMode, live.peak);
    return;
  }
  write(traits.rx, registers, Field::kDfeMode, indexOf(dfeModeNames, live.dfeMode));
  write(traits.rx, registers, Field::kPole, live.pole);
  write(traits.rx, registers, Field::kPeak, live.peak);
  write(traits.rx, registers, Field::kAmax, live.amax);
}

using Dumps = std::vector<std::vector<std::uint16_t>>;

RegisterFile withDump(RegisterFile registers, const std::vector<std::uint16_t>& dump) {
  std::copy_n(dump.begin(), std::min(dump.size(), registers.size()), registers.begin());
  return registers;
}

// Another maker's registers may lie otherwise: dumps are of use where they show the settings that the tool shows.
template <typename Live>
bool areOfThisLayout(const SerDesTraits& traits, const RegisterFile& base, const std::vector<Live>& live,
                     const Dumps& dumps) {
  for (std::size_t link = 0; link < std::min(live.size(), dumps.size()); ++link) {
    if (!show(traits, withDump(base, dumps[link]), live[link])) return false;
  }
  return true;
}

// A side's registers by link. What a port says of itself may be more than there can be.
template <typename Live>
std::vector<RegisterFile> linksOf(const SerDesTraits& traits, const RegisterFile& base, std::uint32_t links,
                                  const std::vector<Live>& live, const Dumps* dumps, bool& understood) {
  std::vector<RegisterFile> result(std::min(links, simulator::kMaxLinks), base);
  understood = dumps == nullptr || areOfThisLayout(traits, base, live, *dumps);
  for (std::size_t link = 0; link < result.size(); ++link) {
    if (dumps != nullptr && understood && link < dumps->size()) result[link] = withDump(base, (*dumps)[link]);
    if (link < live.size()) writeLive(traits, live[link], result[link]);
  }
  return result;
}

const Dumps* dumpsOf(const std::map<std::uint32_t, Dumps>& all, std::uint32_t port) {
  const auto found = all.find(port);
  return found == all.end() ? nullptr : &found->second;
}

std::uint32_t kindOf(const ConfigText& config, std::uint32_t port, bool onEthernetCore) {
  if ((config.glPorts >> port & 1) != 0) return kPortTypeGl;
  if ((config.xgPorts >> port & 1) != 0) return kPortTypeXg;
  if ((config.exgPorts >> port & 1) != 0) return kPortTypeExg;
  return onEthernetCore ? kPortTypeExg : kPortTypeGl;
}

simulator::Settings cacheOf(const ModelPort& port, const std::string& rate) {
  const PortState& state = *port.state;
  simulator::Settings settings = port.isEthernet() ? simulator::kPlainEthernetSettings : simulator::kPlainSettings;
  if (const auto tx = state.txCaches.find(rate); tx != state.txCaches.end()) {
    const TxRawValues& v = tx->second;
    settings.tx = {v.power, v.slew, v.mode, v.p[0], v.p[1], v.p[2], v.p[3]};
  }
  if (const auto rx = state.rxCaches.find(rate); rx != state.rxCaches.end()) {
    const RxRawValues& v = rx->second;
    settings.rx = {v.mode, v.p[0], v.p[1], v.p[2], v.p[3]};
  }
  return settings;
}

class Builder {
 public:
  explicit Builder(const SwitchState& state) : state_(state) {}

  SwitchModel build() {
    for (const AsicState& asic : state_.asics) {
      addAsicsTo(asic.asic);
      model_.asics.push_back({.number = asic.asic, .state = &asic, .ports = {}});
      for (const ConfigPort& port : asic.config.ports)
        addPort(asic, port);
    }
    addAsicsTo(std::min(state_.hardware.asics, simulator::kMaxAsics));
    return std::move(model_);
  }

 private:
  // Those that are not in the save.
  void addAsicsTo(std::size_t count) {
    while (model_.asics.size() < count)
      model_.asics.push_back(
          {.number = static_cast<std::uint32_t>(model_.asics.size()), .state = nullptr, .ports = {}});
  }

  std::uint32_t typeOf(const AsicState& asic, const ConfigSide& side) const {
    const std::uint32_t type = side.core < asic.cores.size() ? asic.cores[side.core].serDesType : 0;
    return std::min(type, simulator::kSerDesTypes - 1);
  }

  void addPort(const AsicState& asic, const ConfigPort& config) {
    ModelPort& port = model_.asics.back().ports.emplace_back();
    const auto state = std::find_if(asic.ports.begin(), asic.ports.end(),
                                    [&](const PortState& saved) { return saved.port == config.port; });
    port.config = &config;
    port.state = state == asic.ports.end() ? nullptr : &*state;
    port.rxType = typeOf(asic, config.rx);
    port.txType = typeOf(asic, config.tx);
    port.kind = kindOf(asic.config, config.port, port.txTraits().isEthernet);
    port.present = ((asic.config.glPorts | asic.config.xgPorts | asic.config.exgPorts) >> config.port & 1) != 0;
    port.speeds = usualSpeeds(port.kind);
    if (port.state != nullptr) addState(port);
    noteNames(asic, port);
    addLinks(asic, port);
  }

  void addState(ModelPort& port) {
    const PortState& state = *port.state;
    port.configuredSpeed = indexOf(rateNames, state.configRate).value_or(SPEED_AUTO);
    port.runningSpeed = indexOf(rateNames, state.observed.runningRate).value_or(SPEED_AUTO);
    port.media = indexOf(mediaNames, state.observed.media).value_or(MEDIA_UNKNOWN);
    port.sends = state.streamEnabled.value_or(true);
    for (const std::uint32_t speed : {port.configuredSpeed, port.runningSpeed})
      if (speed != SPEED_AUTO) port.speeds |= speedBit(speed);
    for (std::uint32_t speed = SPEED_1G; speed < simulator::kSpeeds; ++speed)
      port.caches[speed] = cacheOf(port, rateNames[speed].name);
  }

  void addLinks(const AsicState& asic, ModelPort& port) {
    const auto [tx, rx] = startOf(port, port.speed());
    static const PortState kNothing;
    const PortState& state = port.state != nullptr ? *port.state : kNothing;
    const bool dumped = asic.registers.has_value();
    const std::uint32_t number = port.config->port;
    bool txUnderstood = true;
    bool rxUnderstood = true;
    port.dumped = dumped;
    port.tx = linksOf(port.txTraits(), tx, port.config->tx.links, state.tx,
                      dumped ? dumpsOf(asic.registers->tx, number) : nullptr, txUnderstood);
    port.rx = linksOf(port.rxTraits(), rx, port.config->rx.links, state.rx,
                      dumped ? dumpsOf(asic.registers->rx, number) : nullptr, rxUnderstood);
    for (const DfeStatsValues& link : state.observed.links)
      port.seen.push_back(readingsOf(link));
    port.seen.resize(port.rx.size());
    noteUnsaid(port.txTraits(), port.tx, state.tx, placeOf(model_.asics.back(), port) + " tx");
    noteUnsaid(port.rxTraits(), port.rx, state.rx, placeOf(model_.asics.back(), port) + " rx");
    if (txUnderstood && rxUnderstood) return;
    port.dumped = false;
    model_.notes.push_back(placeOf(model_.asics.back(), port) +
                           ": its registers lie otherwise than the simulated switch's, and their values are left out");
  }

  // A switch may show other names for the same thing from one look to the next.
  void noteNames(const AsicState& asic, const ModelPort& port) {
    const auto note = [&](const std::string& what) {
      model_.notes.push_back(placeOf(model_.asics.back(), port) + ": " + what);
    };
    for (const auto& [type, shown] :
         {std::pair(port.rxType, port.config->rx.serDesType), std::pair(port.txType, port.config->tx.serDesType)}) {
      const auto& types = asic.config.types;
      if (type < types.size() && types[type].name != shown) note("the name of its SerDes type, " + shown);
    }
    if (port.state != nullptr && port.state->configRate && !indexOf(rateNames, port.state->configRate)) {
      note("a configured rate of " + *port.state->configRate);
    }
  }

  template <typename Live>
  void noteUnsaid(const SerDesTraits& traits, const std::vector<RegisterFile>& links, const std::vector<Live>& live,
                  const std::string& side) {
    for (std::size_t link = 0; link < std::min(links.size(), live.size()); ++link) {
      if (isNamed(live[link]) && show(traits, links[link], live[link])) continue;
      model_.notes.push_back(side + " link " + std::to_string(link) + ": settings that its SerDes cannot have");
    }
  }

  const SwitchState& state_;
  SwitchModel model_;
};

}  // namespace

LinkRegisters startOf(const ModelPort& port, std::uint32_t speed) {
  LinkRegisters registers = {port.txTraits().tx.resetValues(), port.rxTraits().rx.resetValues()};
  if (speed != SPEED_AUTO) {
    simulator::applyCache(port.txTraits(), registers.tx, port.caches[speed].tx);
    simulator::applyCache(port.rxTraits(), registers.rx, port.caches[speed].rx);
  }
  port.txTraits().tx.write(registers.tx, Field::kTxEnable, port.sends ? 1 : 0);
  return registers;
}

bool sameTxSettings(const SerDesTraits& traits, const RegisterFile& a, const RegisterFile& b) {
  const auto shown = [&](const RegisterFile& registers) {
    const auto [mode, k, c] = simulator::ffeOf(traits, registers);
    return std::tuple(mode, k, c, simulator::slewOf(traits, registers));
  };
  return shown(a) == shown(b);
}

bool sameRxSettings(const SerDesTraits& traits, const RegisterFile& a, const RegisterFile& b) {
  const auto shown = [&](const RegisterFile& registers) {
    const auto [pole, peak, amax] = simulator::vgaOf(traits, registers);
    return std::tuple(pole, peak, amax, simulator::dfeOf(traits, registers));
  };
  return shown(a) == shown(b);
}

double ModelPort::baud(std::uint32_t speed, std::size_t links) const {
  const std::uint32_t chosen = speed != SPEED_AUTO ? speed : simulator::lowestSpeed(speeds);
  return simulator::lineRateOf(chosen).gigabaud(kind) / static_cast<double>(std::max<std::size_t>(links, 1));
}

SwitchModel modelOf(const SwitchState& state) {
  return Builder(state).build();
}

std::string placeOf(const ModelAsic& asic, const ModelPort& port) {
  return "port " + std::to_string(port.config->port) + " of ASIC " + std::to_string(asic.number);
}

RegisterFile registersAfter(const SerDesTraits& traits, const SerDesTxRateParams& settings) {
  RegisterFile registers = traits.tx.resetValues();
  simulator::applyCache(traits, registers, settings);
  return registers;
}

SerDesTxRateParams settingsIn(const SerDesTraits& traits, const RegisterFile& registers) {
  if (traits.isEthernet) {
    return {.power = traits.tx.read(registers, Field::kDriveLevel),
            .slew = SLEW_UNKNOWN,
            .mode = FFE_NONE,
            .p0 = traits.tx.read(registers, Field::kPreEmphasis),
            .p1 = 0,
            .p2 = 0,
            .p3 = 0};
  }
  const simulator::FfeSettings ffe = simulator::ffeOf(traits, registers);
  return {.power = ffe.k,
          .slew = static_cast<std::int32_t>(simulator::slewOf(traits, registers)),
          .mode = static_cast<std::int32_t>(ffe.mode),
          .p0 = ffe.c[0],
          .p1 = ffe.c[1],
          .p2 = ffe.c[2],
          .p3 = ffe.c[3]};
}

SerDesRxRateParams rxSettingsIn(const SerDesTraits& traits, const RegisterFile& registers) {
  if (traits.isEthernet) {
    return {.mode = traits.rx.read(registers, Field::kCdrMode),
            .p0 = traits.rx.read(registers, Field::kEqMode),
            .p1 = 0,
            .p2 = 0,
            .p3 = 0};
  }
  const simulator::VgaSettings vga = simulator::vgaOf(traits, registers);
  return {.mode = static_cast<std::int32_t>(simulator::dfeOf(traits, registers)),
          .p0 = vga.pole,
          .p1 = vga.peak,
          .p2 = vga.amax,
          .p3 = 0};
}

}  // namespace serdesctl
