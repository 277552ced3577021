// Lines of TOML. Whatever can be left to the description's defaults is written all the same where the save knows it.
#include "serdesctl/twin/description.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "display/name_tables.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/text.h"

namespace serdesctl {
namespace {

using simulator::Field;
using simulator::RegisterFile;
using simulator::RegisterMap;
using simulator::speedBit;

constexpr std::size_t kMaxTypeName = simulator::kMaxTypeName;
constexpr simulator::SpeedSet kAllSpeeds = 0b1111110;

// Words of descriptions, by number.
constexpr std::array<const char*, 9> kMediaWords = {"none",          "not applicable", "unknown",
                                                    "optical",       "electrical",     "copper passive",
                                                    "copper active", "10G ethernet",   "1G ethernet"};
constexpr std::array<const char*, 4> kKindWords = {"", "GL", "XG", "EXG"};

std::string fixed(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.2f", value);
  return text.data();
}

template <typename Value>
std::string line(const char* key, const Value& value) {
  if constexpr (std::is_arithmetic_v<Value>) {
    return std::string(key) + " = " + std::to_string(value) + "\n";
  } else {
    return std::string(key) + " = " + value + "\n";
  }
}

template <typename Values, typename Text>
std::string list(const Values& values, Text text) {
  std::string result;
  for (const auto& value : values)
    result += (result.empty() ? "" : ", ") + text(value);
  return "[" + result + "]";
}

std::string speedList(simulator::SpeedSet speeds) {
  std::vector<std::uint32_t> numbers;
  for (std::uint32_t speed = SPEED_1G; speed < simulator::kSpeeds; ++speed)
    if ((speeds & speedBit(speed)) != 0) numbers.push_back(speed);
  return list(numbers, [](std::uint32_t speed) { return tomlText(rateName(speed)); });
}

// How many bytes the UTF-8 character at the start takes; 0 where there is none.
std::size_t characterLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  const auto length = static_cast<std::size_t>(std::countl_one(first));
  if (length < 2 || length > 4 || length > text.size()) return 0;
  std::uint32_t code = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code = code << 6 | (byte(i) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return code < kLeast[length] || code > 0x10FFFF || surrogate ? 0 : length;
}

std::string escaped(char c) {
  std::array<char, 8> text;
  std::snprintf(text.data(), text.size(), "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
  return text.data();
}

// Settings by their text: what is the same has one name.
class SettingsLibrary {
 public:
  std::string nameOf(const simulator::Settings& settings, bool ethernet) {
    const std::string body = bodyOf(settings, ethernet);
    const auto [found, isNew] = names_.emplace(body, "set" + std::to_string(names_.size() + 1));
    if (isNew) text_ += "[settings." + found->second + "]\n" + body + "\n";
    return tomlText(found->second);
  }

  const std::string& text() const {
    return text_;
  }

 private:
  static std::string bodyOf(const simulator::Settings& settings, bool ethernet) {
    if (ethernet ? isNamedEthernet(settings) : isNamed(settings)) {
      return line("raw", "true") + (ethernet ? ethernetBody(settings) : fibreChannelBody(settings));
    }
    const auto& [tx, rx] = settings;
    const auto text = [](std::int32_t number) { return std::to_string(number); };
    return line("tx", list(std::array{tx.power, tx.slew, tx.mode, tx.p0, tx.p1, tx.p2, tx.p3}, text)) +
           line("rx", list(std::array{rx.mode, rx.p0, rx.p1, rx.p2, rx.p3}, text));
  }

  static bool isIndex(std::int32_t number, std::size_t count) {
    return number >= 0 && static_cast<std::size_t>(number) < count;
  }
  static bool isNamed(const simulator::Settings& s) {
    return isIndex(s.tx.slew, simulator::kSlewPs.size()) && isIndex(s.tx.mode, ffeModeNames.size()) &&
           isIndex(s.rx.mode, dfeModeNames.size()) && s.rx.p3 == 0;
  }
  // What has no name is as it always is.
  static bool isNamedEthernet(const simulator::Settings& settings) {
    const auto unnamed = [](const simulator::Settings& s) {
      return std::tie(s.tx.slew, s.tx.mode, s.tx.p1, s.tx.p2, s.tx.p3, s.rx.p1, s.rx.p2, s.rx.p3);
    };
    return unnamed(settings) == unnamed(simulator::kPlainEthernetSettings);
  }

  static std::string fibreChannelBody(const simulator::Settings& s) {
    const auto text = [](std::int32_t number) { return std::to_string(number); };
    return line("power", s.tx.power) + line("ffe", tomlText(ffeModeNames[static_cast<std::size_t>(s.tx.mode)].name)) +
           line("taps", list(std::array{s.tx.p0, s.tx.p1, s.tx.p2, s.tx.p3}, text)) +
           line("slew", simulator::kSlewPs[static_cast<std::size_t>(s.tx.slew)]) +
           line("dfe", tomlText(dfeModeNames[static_cast<std::size_t>(s.rx.mode)].name)) + line("pole", s.rx.p0) +
           line("peak", s.rx.p1) + line("amax", s.rx.p2);
  }
  static std::string ethernetBody(const simulator::Settings& s) {
    return line("power", s.tx.power) + line("pre_emphasis", s.tx.p0) + line("cdr_mode", s.rx.mode) +
           line("eq_mode", s.rx.p0);
  }

  std::map<std::string, std::string> names_;
  std::string text_;
};

// Whether all that can be written of the registers is the same. Taps that adapt are not kept.
bool sameRegisters(const RegisterMap& map, const RegisterFile& a, const RegisterFile& b) {
  const bool held = map.read(a, Field::kHold) != 0;
  RegisterFile differing{};
  for (std::size_t i = 0; i < a.size(); ++i)
    differing[i] = map.isReadOnly(static_cast<unsigned>(i)) ? 0 : a[i] ^ b[i];
  for (const simulator::FieldPlace& place : map.fields)
    if (simulator::isTap(place.field) && !held)
      differing[place.address] &= static_cast<std::uint16_t>(~placeMask(place));
  return std::all_of(differing.begin(), differing.end(), [](std::uint16_t bits) { return bits == 0; });
}

std::string registerList(const RegisterMap& map, const RegisterFile& registers, std::size_t count) {
  std::string text;
  for (unsigned i = 0; i < count; ++i) {
    std::array<char, 8> number;
    std::snprintf(number.data(), number.size(), "0x%04x", map.isReadOnly(i) ? 0U : registers[i]);
    text += (i == 0 ? "" : ", ") + std::string(number.data());
  }
  return "[" + text + "]";
}

// Up to the last that counts.
std::size_t countToWrite(const RegisterMap& map, const RegisterFile& registers, const RegisterFile& start) {
  std::size_t count = registers.size();
  while (count > map.count && registers[count - 1] == start[count - 1])
    --count;
  return count;
}

class Writer {
 public:
  Writer(const SwitchState& state, const SwitchModel& model, const std::vector<std::vector<PortFit>>& fits)
      : state_(state), model_(model), fits_(fits), notes_(model.notes) {}

  Description write(const std::string& origin) {
    std::string asics;
    for (std::size_t asic = 0; asic < model_.asics.size(); ++asic)
      asics += asicText(model_.asics[asic], fits_[asic]);
    for (const Unread& unread : state_.unread)
      notes_.push_back(textOf(unread));
    std::string text = "# A twin of " + origin + ", for the simulated switch.\n" + kAbout;
    for (const std::string& note : notes_)
      text += "# Not said here: " + printable(note) + "\n";
    text += "\n" + hardwareText() + "\n" + library_.text() + channels_ + asics;
    return {text, notes_};
  }

 private:
  static constexpr const char* kAbout =
      "# What a port hears and through what is not shown by a switch. It is chosen so that taps, Ap and Amin read as\n"
      "# they did; a port is taken to hear itself unless somebody who is set otherwise explains them better.\n";

  static std::string textOf(const Unread& unread) {
    const std::string port = unread.port ? "port " + std::to_string(*unread.port) + " of " : "";
    return port + "ASIC " + std::to_string(unread.asic) + ": " + unread.what + " could not be read";
  }

  std::string hardwareText() {
    std::array<std::string, simulator::kSerDesTypes> names;
    for (const ModelAsic& asic : model_.asics) {
      if (asic.state == nullptr) continue;
      const auto& types = asic.state->config.types;
      for (std::size_t type = 0; type < std::min(names.size(), types.size()); ++type)
        names[type] = nameOf(types[type].name);
    }
    return line("slots", state_.hardware.slots) + line("user_ports", state_.hardware.userPorts) +
           line("aux_ports", state_.hardware.auxPorts) + line("type_names", list(names, tomlText));
  }

  std::string nameOf(const std::string& name) {
    if (name.size() <= kMaxTypeName) return name;
    notes_.push_back("the name of a SerDes type, " + name + ", is cut after " + std::to_string(kMaxTypeName) +
                     " characters");
    return name.substr(0, kMaxTypeName);
  }

  std::string asicText(const ModelAsic& asic, const std::vector<PortFit>& fits) {
    std::string text = "[[asics]]\n\n";
    if (asic.state == nullptr) {
      notes_.push_back("ASIC " + std::to_string(asic.number) + ", which is not in the save");
      return text;
    }
    std::uint32_t unsaved = 0;
    for (const ModelPort& port : asic.ports) {
      if (port.state == nullptr) unsaved |= std::uint32_t{1} << port.config->port;
    }
    if (unsaved != 0) {
      notes_.push_back("ports " + listOf(unsaved) + " of ASIC " + std::to_string(asic.number) +
                       ", which are not in the save");
    }
    for (const FoundCore& core : asic.state->cores)
      text += coreText(*asic.state, core);
    for (std::size_t port = 0; port < asic.ports.size(); ++port)
      text += portText(asic, asic.ports[port], fits[port]);
    return text;
  }

  template <typename Number>
  std::string limited(const char* key, Number value, Number least, Number greatest, const std::string& place) {
    const Number said = std::clamp(value, least, greatest);
    if (said != value) {
      notes_.push_back(place + ": " + key + " of " + std::to_string(value) + " is " + std::to_string(said) + " here");
    }
    return line(key, said);
  }

  std::string coreText(const AsicState& asic, const FoundCore& core) {
    const std::string place = "core " + std::to_string(core.core) + " of ASIC " + std::to_string(asic.asic);
    const auto registers = [&](const char* key, std::uint32_t count) {
      return limited<std::uint32_t>(key, count, 0, simulator::kMaxRegisters, place);
    };
    const auto parameters = [&](const char* key, std::uint32_t count) {
      return limited<std::uint32_t>(key, count, 0, 255, place);
    };
    return "[[asics.cores]]\n" + line("cores", core.core) +
           limited<std::uint32_t>("type", core.serDesType, 0, simulator::kSerDesTypes - 1, place) +
           registers("pll_registers", core.pllRegisters) + registers("rx_registers", core.rxRegisters) +
           registers("tx_registers", core.txRegisters) + parameters("rx_params", core.rxParams) +
           parameters("tx_params", core.txParams) +
           limited<std::int32_t>("first_port", core.firstPort, 0, UINT16_MAX, place) + pllText(asic, core) + "\n";
  }

  static std::string pllText(const AsicState& asic, const FoundCore& core) {
    if (!asic.registers || core.serDesType >= simulator::kSerDesTypes) return "";
    const auto dump = asic.registers->pll.find(core.core);
    if (dump == asic.registers->pll.end()) return "";
    const RegisterMap& map = simulator::serDesTraits(core.serDesType).pll;
    RegisterFile registers = map.resetValues();
    std::copy_n(dump->second.begin(), std::min(dump->second.size(), registers.size()), registers.begin());
    // Another maker's registers may lie otherwise; a twin without clocks would be of no use.
    if (map.read(registers, Field::kPllEnable) == 0 || sameRegisters(map, registers, map.resetValues())) return "";
    return line("pll_values", registerList(map, registers, dump->second.size()));
  }

  std::string portText(const ModelAsic& asic, const ModelPort& port, const PortFit& fit) {
    const ConfigPort& config = *port.config;
    const bool misplaced =
        port.rxTraits().isEthernet != port.isEthernet() || port.txTraits().isEthernet != port.isEthernet();
    const std::string place = placeOf(asic, port);
    const auto links = [&](const char* key, std::uint32_t count) {
      return limited<std::uint32_t>(key, count, 0, simulator::kMaxLinks, place);
    };
    std::string text = "[[asics.ports]]" + remark(fit) + "\n" + line("ports", config.port) +
                       line("kind", tomlText(kKindWords[port.kind])) + userPortText(config, place) +
                       links("rx_links", config.rx.links) + links("tx_links", config.tx.links) +
                       line("rx_core", config.rx.core) + line("tx_core", config.tx.core);
    if (misplaced) text += line("misplaced", "true");
    if (!port.present) text += line("present", "false");
    if (port.state != nullptr) text += stateText(asic, port, fit);
    return text + "\n";
  }

  static std::string remark(const PortFit& fit) {
    std::string text;
    if (fit.channel) text = textOf(*fit.channel);
    if (!fit.note.empty()) text += (text.empty() ? "" : "; ") + fit.note;
    return text.empty() ? "" : "  # " + text;
  }

  // "board of 20.31 in (19.20 to 21.50), 0.12 steps off"
  static std::string textOf(const ChannelFit& channel) {
    const MediumRow& row = mediumRow(channel.medium);
    return std::string(row.name) + " of " + fixed(channel.length) + " " + row.unit + " (" + fixed(channel.shortest) +
           " to " + fixed(channel.longest) + "), " + fixed(channel.residual) + " steps off";
  }

  std::string userPortText(const ConfigPort& config, const std::string& place) {
    if (!config.userPort) return "";
    const bool taken = !userPorts_.insert(*config.userPort).second;
    if (!taken && *config.userPort < kNoUserPort) return line("user_port", *config.userPort);
    notes_.push_back(place + ": its user port " + std::to_string(*config.userPort) +
                     (taken ? " is that of another port too" : " is none"));
    return "";
  }

  std::string stateText(const ModelAsic& asic, const ModelPort& port, const PortFit& fit) {
    std::string text = line("media", tomlText(kMediaWords[port.media])) +
                       line("media_speeds", speedList(mediaSpeeds(port, fit))) +
                       line("speeds", speedList(port.speeds)) + line("speed", tomlText(rateName(port.configuredSpeed)));
    if (!port.sends) text += line("sends", "false");
    if (port.media != MEDIA_NONE) text += line("channel", tomlText(addChannel(asic, port, fit)));
    return text + farEndText(port, fit) + cacheText(port) + liveText(port, fit);
  }

  // AUTO finds the highest speed that the medium takes: it has to be the one at which the port runs.
  static simulator::SpeedSet mediaSpeeds(const ModelPort& port, const PortFit& fit) {
    if (port.configuredSpeed != SPEED_AUTO) return kAllSpeeds;
    if (fit.speed != SPEED_AUTO) return kAllSpeeds & (speedBit(fit.speed + 1) - 1);
    if (fit.partnerSpeed != SPEED_AUTO) return kAllSpeeds & ~speedBit(fit.partnerSpeed);
    return kAllSpeeds;
  }

  std::string addChannel(const ModelAsic& asic, const ModelPort& port, const PortFit& fit) {
    std::string name = "asic" + std::to_string(asic.number) + "_port" + std::to_string(port.config->port);
    channels_ += "[channels." + name + "]\n" + line(mediumRow(fit.medium).lengthKey, fixed(fit.length)) +
                 (fit.medium == Medium::kBoard ? line("connectors", 2) : "") + "\n";
    return name;
  }

  std::string farEndText(const ModelPort& port, const PortFit& fit) {
    if (fit.farEnd == FarEnd::kNothing) return "";
    if (fit.farEnd == FarEnd::kItself) return line("far_end", tomlText("loop"));
    simulator::Settings settings = port.isEthernet() ? simulator::kPlainEthernetSettings : simulator::kPlainSettings;
    settings.tx = fit.partner;
    simulator::SpeedSet speeds = port.speeds;
    std::string speed;
    if (fit.speed == SPEED_AUTO) {
      speeds = speedBit(fit.partnerSpeed);
    } else if (fit.partnerSpeed != SPEED_AUTO) {
      speeds |= speedBit(fit.partnerSpeed);
      speed = ", speed = " + tomlText(rateName(fit.partnerSpeed));
    }
    return line("partner", "{ settings = " + library_.nameOf(settings, port.isEthernet()) + speed +
                               ", speeds = " + speedList(speeds) + " }");
  }

  std::string cacheText(const ModelPort& port) {
    std::string text;
    for (std::uint32_t speed = SPEED_1G; speed < simulator::kSpeeds; ++speed) {
      text += (text.empty() ? "" : ", ") + std::string(rateName(speed)) + " = " +
              library_.nameOf(port.caches[speed], port.isEthernet());
    }
    return line("cache", "{ " + text + " }");
  }

  // Nothing where the caches say it all, one name for all links where that does, and registers otherwise.
  std::string liveText(const ModelPort& port, const PortFit& fit) {
    const LinkRegisters start = startOf(port, fit.speed);
    if (areAll(port, start)) return "";
    if (!port.dumped) {
      simulator::Settings live;
      live.tx = port.tx.empty() ? port.caches[SPEED_1G].tx : settingsIn(port.txTraits(), port.tx.front());
      live.rx = port.rx.empty() ? port.caches[SPEED_1G].rx : rxSettingsIn(port.rxTraits(), port.rx.front());
      LinkRegisters after = start;
      simulator::applyCache(port.txTraits(), after.tx, live.tx);
      simulator::applyCache(port.rxTraits(), after.rx, live.rx);
      if (areAll(port, after)) return line("live", library_.nameOf(live, port.isEthernet()));
    }
    return valuesText("tx_values", port.txTraits().tx, port.tx, start.tx) +
           valuesText("rx_values", port.rxTraits().rx, port.rx, start.rx);
  }

  static bool areAll(const ModelPort& port, const LinkRegisters& registers) {
    const auto tx = [&](const RegisterFile& link) {
      return port.dumped ? sameRegisters(port.txTraits().tx, link, registers.tx)
                         : sameTxSettings(port.txTraits(), link, registers.tx);
    };
    const auto rx = [&](const RegisterFile& link) {
      return port.dumped ? sameRegisters(port.rxTraits().rx, link, registers.rx)
                         : sameRxSettings(port.rxTraits(), link, registers.rx);
    };
    return std::all_of(port.tx.begin(), port.tx.end(), tx) && std::all_of(port.rx.begin(), port.rx.end(), rx);
  }

  static std::string valuesText(const char* key, const RegisterMap& map, const std::vector<RegisterFile>& links,
                                const RegisterFile& start) {
    if (links.empty()) return "";
    return line(key, list(links, [&](const RegisterFile& registers) {
                  return registerList(map, registers, countToWrite(map, registers, start));
                }));
  }

  const SwitchState& state_;
  const SwitchModel& model_;
  const std::vector<std::vector<PortFit>>& fits_;
  std::vector<std::string> notes_;
  SettingsLibrary library_;
  std::string channels_;
  std::set<std::uint32_t> userPorts_;
};

}  // namespace

Description descriptionOf(const SwitchState& state, const SwitchModel& model,
                          const std::vector<std::vector<PortFit>>& fits, const std::string& origin) {
  return Writer(state, model, fits).write(origin);
}

std::string tomlText(const std::string& text) {
  std::string result = "\"";
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t length = characterLength(std::string_view(text).substr(i));
    if (length == 0) {
      result += '?';
    } else if (isControlCharacter(text[i])) {
      result += escaped(text[i]);
    } else {
      if (text[i] == '"' || text[i] == '\\') result += '\\';
      result += text.substr(i, length);
    }
    i += std::max<std::size_t>(length, 1);
  }
  return result + "\"";
}

const char* farEndName(FarEnd farEnd) {
  constexpr std::array<const char*, 3> kNames = {"nothing", "itself", "partner"};
  return kNames[static_cast<std::size_t>(farEnd)];
}

}  // namespace serdesctl
