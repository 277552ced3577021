// Writing settings: every port's entries as text without their selectors, and ports with the same text put together.
#include "serdesctl/settings/as_settings.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "display/name_tables.h"
#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/base/text.h"

namespace serdesctl {
namespace {

constexpr std::size_t kCacheCount = rateNames.size() - 1;  // AUTO has none

std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

// "{ mode = "FFE3", k = 115 }", as far as there are values.
class InlineTable {
 public:
  void add(const char* key, const std::optional<std::string>& name) {
    if (name) addText(key, quoted(*name));
  }
  void add(const char* key, const std::optional<std::int32_t>& number) {
    if (number) addText(key, std::to_string(*number));
  }

  // As the tool shows it; negative numbers have no such form.
  void addHex(const char* key, const std::optional<std::int32_t>& number) {
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "0x%02x", static_cast<unsigned>(number.value_or(0)));
    if (number && *number >= 0) {
      addText(key, text.data());
    } else {
      add(key, number);
    }
  }

  std::string line(const char* key) const {
    return text_.empty() ? "" : std::string(key) + " = { " + text_ + " }\n";
  }

 private:
  void addText(const char* key, const std::string& value) {
    text_ += (text_.empty() ? "" : ", ") + std::string(key) + " = " + value;
  }

  std::string text_;
};

std::string transmitLine(const LiveTx& tx) {
  InlineTable table;
  table.add("mode", tx.ffeMode);
  table.add("k", tx.k);
  table.add("c0", tx.c0);
  table.add("c1", tx.c1);
  table.add("c2", tx.c2);
  table.add("c3", tx.c3);
  table.add("slew", tx.slewPs);
  return table.line("transmit");
}

std::string receiveLine(const LiveRx& rx) {
  InlineTable table;
  table.add("mode", rx.dfeMode);
  table.add("pole", rx.pole);
  table.add("peak", rx.peak);
  table.addHex("amax", rx.amax);
  return table.line("receive");
}

std::string ethernetLine(const TxRawValues* tx, const RxRawValues* rx) {
  InlineTable table;
  if (tx != nullptr) table.add("power", tx->power);
  if (tx != nullptr) table.add("pre_emphasis", tx->p[0]);
  if (rx != nullptr) table.add("cdr_mode", rx->mode);
  if (rx != nullptr) table.add("eq_mode", rx->p[0]);
  return table.line("ethernet");
}

template <std::size_t kCount>
std::optional<std::string> nameOf(const std::array<ValueName, kCount>& names, std::int32_t number,
                                  const char* ValueName::*which = &ValueName::name) {
  const auto index = static_cast<std::uint32_t>(number);
  return index < kCount ? std::optional<std::string>(names[index].*which) : std::nullopt;
}

// A cache in the terms of the settings in use; without what has no name.
LiveTx named(const TxRawValues& cache) {
  LiveTx tx;
  tx.ffeMode = nameOf(ffeModeNames, cache.mode);
  tx.k = cache.power;
  tx.c0 = cache.p[0];
  tx.c1 = cache.p[1];
  tx.c2 = cache.p[2];
  tx.c3 = cache.p[3];
  if (const auto slew = nameOf(slewRateNames, cache.slew, &ValueName::shortName)) tx.slewPs = std::stoi(*slew);
  return tx;
}

LiveRx named(const RxRawValues& cache) {
  LiveRx rx;
  rx.dfeMode = nameOf(dfeModeNames, cache.mode);
  rx.pole = cache.p[0];
  rx.peak = cache.p[1];
  rx.amax = cache.p[2];
  return rx;
}

// A port's entries without their selectors, and what they leave out.
struct PortText {
  std::vector<std::string> entries;
  std::vector<std::string> leftOut;
};

class PortWriter {
 public:
  PortWriter(const PortState& port, bool ethernet) : port_(port), ethernet_(ethernet) {}

  PortText write() {
    writeLive();
    writeCaches();
    return std::move(text_);
  }

 private:
  void writeLive() {
    std::string entry;
    if (port_.configRate && *port_.configRate != "INV") entry += "speed = " + quoted(*port_.configRate) + "\n";
    if (port_.streamEnabled) entry += std::string("stream = ") + (*port_.streamEnabled ? "true" : "false") + "\n";
    if (port_.configRate == "INV") leaveOut("the speed, which has no name");
    if (!ethernet_) entry += liveLine(port_.tx, "transmit", liveTx) + liveLine(port_.rx, "receive", liveRx);
    if (!entry.empty()) text_.entries.push_back(entry);
  }

  static std::string liveTx(LiveTx link) {
    if (link.ffeMode == kUnnamed) link.ffeMode.reset();
    return transmitLine(link);
  }
  static std::string liveRx(LiveRx link) {
    if (link.dfeMode == kUnnamed) link.dfeMode.reset();
    return receiveLine(link);
  }

  template <typename Link>
  std::string liveLine(const std::vector<Link>& links, const char* side, std::string (*line)(Link)) {
    if (links.empty()) return "";
    std::string first = line(links.front());
    const auto differs = [&](const Link& link) { return line(link) != first; };
    if (std::any_of(links.begin(), links.end(), differs)) {
      leaveOut("live " + std::string(side) + " settings, since its links differ");
      return "";
    }
    if (std::any_of(links.begin(), links.end(), [](const Link& link) { return hasUnnamed(link); }))
      leaveOut("a live " + std::string(side) + " setting without a name");
    return first;
  }
  static bool hasUnnamed(const LiveTx& link) {
    return link.slewUnnamed || link.ffeMode == kUnnamed;
  }
  static bool hasUnnamed(const LiveRx& link) {
    return link.dfeMode == kUnnamed;
  }

  // Rates whose caches are the same share an entry.
  void writeCaches() {
    std::vector<std::pair<std::string, std::vector<std::string>>> entries;  // and their rates
    for (const ValueName& rate : rateNames) {
      const std::string lines = cacheLines(rate.name);
      if (lines.empty()) continue;
      const auto same = std::find_if(entries.begin(), entries.end(), [&](const auto& e) { return e.first == lines; });
      auto& entry = same == entries.end() ? entries.emplace_back(lines, std::vector<std::string>()) : *same;
      entry.second.push_back(quoted(rate.name));
    }
    for (const auto& [lines, rates] : entries)
      text_.entries.push_back("to = " + destinations(rates) + "\n" + lines);
    if (!unnamed_.empty()) leaveOut("a setting without a name in the caches for " + unnamed_);
  }

  static std::string destinations(const std::vector<std::string>& rates) {
    if (rates.size() == kCacheCount) return quoted("caches");
    std::string text;
    for (const std::string& rate : rates)
      text += (text.empty() ? "" : ", ") + rate;
    return rates.size() == 1 ? text : "[" + text + "]";
  }

  std::string cacheLines(const std::string& rate) {
    const auto tx = port_.txCaches.find(rate);
    const auto rx = port_.rxCaches.find(rate);
    const TxRawValues* const txCache = tx == port_.txCaches.end() ? nullptr : &tx->second;
    const RxRawValues* const rxCache = rx == port_.rxCaches.end() ? nullptr : &rx->second;
    if (ethernet_) return ethernetLine(txCache, rxCache);
    std::string lines;
    if (txCache != nullptr) lines += transmitLine(named(*txCache));
    if (rxCache != nullptr) lines += receiveLine(named(*rxCache));
    const bool whole = (txCache == nullptr || isNamed(*txCache)) && (rxCache == nullptr || isNamed(*rxCache));
    if (!whole) unnamed_ += (unnamed_.empty() ? "" : ", ") + rate;
    return lines;
  }

  static bool isNamed(const TxRawValues& cache) {
    const LiveTx tx = named(cache);
    return tx.ffeMode && tx.slewPs;
  }
  static bool isNamed(const RxRawValues& cache) {
    return named(cache).dfeMode.has_value();
  }

  void leaveOut(const std::string& what) {
    text_.leftOut.push_back(what);
  }

  const PortState& port_;
  bool ethernet_;
  PortText text_;
  std::string unnamed_;  // the rates whose caches have something without a name
};

// "0-3,7"
std::string portList(std::uint32_t ports) {
  std::string list = listOf(ports);
  std::replace(list.begin(), list.end(), ' ', ',');
  return list;
}

std::string selector(std::uint32_t asic, std::uint32_t ports) {
  return (asic == 0 ? "" : "asic = " + std::to_string(asic) + "\n") + "ports = " + quoted(portList(ports)) + "\n";
}

std::string comment(const std::string& text) {
  return "# " + printable(text) + "\n";
}

std::string asicText(const AsicState& asic) {
  std::vector<std::pair<std::string, std::uint32_t>> entries, leftOut;  // and their ports
  const auto add = [](auto& list, const std::string& text, std::uint32_t port) {
    const auto same = std::find_if(list.begin(), list.end(), [&](const auto& e) { return e.first == text; });
    (same == list.end() ? list.emplace_back(text, 0) : *same).second |= std::uint32_t{1} << port;
  };
  for (const PortState& port : asic.ports) {
    const PortText text = PortWriter(port, (asic.config.exgPorts >> port.port & 1) != 0).write();
    for (const std::string& entry : text.entries)
      add(entries, entry, port.port);
    for (const std::string& what : text.leftOut)
      add(leftOut, what, port.port);
  }
  std::string text;
  for (const auto& [what, ports] : leftOut)
    text += comment("Left out of ports " + portList(ports) + " of ASIC " + std::to_string(asic.asic) + ": " + what);
  for (const auto& [lines, ports] : entries)
    text += "\n[[settings]]\n" + selector(asic.asic, ports) + lines;
  return text;
}

}  // namespace

std::string settingsText(const Save& save) {
  std::string text = comment("Settings of " + save.origin.target.value_or("a switch") + ", " +
                             save.origin.time.value_or("") + ". Entries without \"to\" are of settings in use.");
  for (const AsicState& asic : save.state.asics)
    text += asicText(asic);
  for (const Unread& one : save.state.unread)
    text += comment("Not read: " + one.what + ": " + one.why);
  return text;
}

}  // namespace serdesctl
