// Settings in TOML. Everything wrong is collected, so that a file can be mended at once.
#include "serdesctl/settings/settings_file.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>

#include <toml++/toml.h>

#include "arguments/keywords.h"
#include "serdesctl/base/errors.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/number_list.h"
#include "serdesctl/base/text.h"
#include "serdesctl/base/tool_facts.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::size_t kMostBytes = 1U << 20;

constexpr std::array<ValueName, 3> kKinds = {{{"gl"}, {"xg"}, {"exg"}}};
constexpr const char* kLive = "live";
constexpr const char* kAllCaches = "caches";

// What the live commands carry; caches hold any number.
struct Range {
  std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
  std::int64_t highest = std::numeric_limits<std::int32_t>::max();
};
constexpr Range kByte = {0, 255};
constexpr Range kSignedByte = {-128, 127};

std::vector<std::string> namesOf(std::span<const ValueName> names, const char* ValueName::*which = &ValueName::name) {
  std::vector<std::string> words;
  words.reserve(names.size());
  for (const ValueName& name : names) {
    if (std::find(words.begin(), words.end(), name.*which) == words.end()) words.emplace_back(name.*which);
  }
  return words;
}

// Rates that have a cache: all but AUTO.
std::vector<std::string> cacheRates() {
  return namesOf(std::span(rateNames).subspan(SPEED_1G));
}

// The name as the tool writes it, whatever the case.
std::optional<std::string> findName(const std::vector<std::string>& names, const std::string& word) {
  const auto same = [&](const std::string& name) { return sameWord(name.c_str(), word.c_str()); };
  const auto found = std::find_if(names.begin(), names.end(), same);
  return found == names.end() ? std::nullopt : std::optional(*found);
}

// What stands there, for a message.
std::string shown(const toml::node& node) {
  if (const auto text = node.value_exact<std::string>()) return "'" + *text + "' is ";
  if (const auto number = node.value_exact<std::int64_t>()) return std::to_string(*number) + " is ";
  return "this is ";
}

// A table of the file. What is read of it is taken note of: the rest is unknown.
class TableReader {
 public:
  TableReader(const toml::table& table, std::string prefix, const std::string& file, std::vector<std::string>& problems)
      : table_(table), prefix_(std::move(prefix)), file_(file), problems_(problems) {}

  const toml::node* find(const char* key) {
    known_.emplace_back(key);
    return table_.get(key);
  }

  bool has(const char* key) const {
    return table_.contains(key);
  }

  void complain(const toml::node& at, const std::string& key, const std::string& what) const {
    problems_.push_back(file_ + ":" + std::to_string(at.source().begin.line) + ": " + prefix_ + key + ": " + what);
  }
  void complain(const std::string& what) const {
    problems_.push_back(file_ + ":" + std::to_string(table_.source().begin.line) + ": " + what);
  }

  void number(const char* key, Range range, std::optional<std::int32_t>& value) {
    const toml::node* const node = find(key);
    if (node == nullptr) return;
    const auto found = node->value_exact<std::int64_t>();
    if (found && range.lowest <= *found && *found <= range.highest) {
      value = static_cast<std::int32_t>(*found);
    } else {
      complain(
          *node, key,
          shown(*node) + "no number from " + std::to_string(range.lowest) + " to " + std::to_string(range.highest));
    }
  }

  void name(const char* key, const std::vector<std::string>& names, std::optional<std::string>& value) {
    const toml::node* const node = find(key);
    if (node == nullptr) return;
    const auto word = node->value_exact<std::string>();
    value = word ? findName(names, *word) : std::nullopt;
    if (!value) complain(*node, key, shown(*node) + "none of " + listed(names));
  }

  // One name, or a list of them. Any text where no names are given.
  void names(const char* key, const std::vector<std::string>& names, std::set<std::string>& values) {
    const toml::node* const node = find(key);
    if (node == nullptr) return;
    if (const toml::array* const array = node->as_array()) {
      if (array->empty()) complain(*node, key, "an empty list");
      for (const toml::node& element : *array)
        addName(element, key, names, values);
    } else {
      addName(*node, key, names, values);
    }
  }

  void flag(const char* key, std::optional<bool>& value) {
    const toml::node* const node = find(key);
    if (node == nullptr) return;
    value = node->value_exact<bool>();
    if (!value) complain(*node, key, shown(*node) + "neither true nor false");
  }

  void numbers(const char* key, std::uint32_t most, std::set<std::uint32_t>& values) {
    const toml::node* const node = find(key);
    if (node == nullptr) return;
    std::string text = node->value_exact<std::string>().value_or("");
    if (const auto number = node->value_exact<std::int64_t>()) text = std::to_string(*number);
    if (const auto found = numbersOf(text, most)) {
      values = *found;
    } else {
      complain(*node, key, shown(*node) + "no list of numbers up to " + std::to_string(most) + " as \"1-5,7\"");
    }
  }

  // A table within; null where there is none.
  const toml::table* table(const char* key) {
    const toml::node* const node = find(key);
    if (node == nullptr) return nullptr;
    if (!node->is_table()) complain(*node, key, shown(*node) + "no table such as { ... }");
    return node->as_table();
  }

  // To be called when all that may be there has been looked for, of a table within.
  void finish() const {
    if (table_.empty()) complain(prefix_.substr(0, prefix_.size() - 1) + ": empty: none of " + listed(known_));
    refuseUnknown();
  }
  void refuseUnknown() const {
    for (const auto& [key, value] : table_) {
      if (std::find(known_.begin(), known_.end(), key.str()) != known_.end()) continue;
      complain(value, std::string(key.str()), "unknown: none of " + listed(known_));
    }
  }

 private:
  void addName(const toml::node& node, const char* key, const std::vector<std::string>& names,
               std::set<std::string>& values) const {
    const auto word = node.value_exact<std::string>();
    const auto found = word && !names.empty() ? findName(names, *word) : word;
    if (found) {
      values.insert(*found);
    } else {
      complain(node, key, shown(node) + (names.empty() ? "no text" : "none of " + listed(names)));
    }
  }

  const toml::table& table_;
  std::string prefix_;
  const std::string& file_;
  std::vector<std::string>& problems_;
  std::vector<std::string> known_;
};

class EntryReader {
 public:
  EntryReader(const toml::table& table, const std::string& file, std::vector<std::string>& problems)
      : table_(table), file_(file), problems_(problems), reader_(table, "", file, problems) {}

  SettingsEntry read() {
    entry_.line = table_.source().begin.line;
    readSelector();
    readPort();
    readDestinations();
    if (const toml::table* const table = reader_.table("transmit")) readTransmit(*table);
    if (const toml::table* const table = reader_.table("receive")) readReceive(*table);
    if (const toml::table* const table = reader_.table("ethernet")) readEthernet(*table);
    reader_.refuseUnknown();
    if (!hasLinkSettings() && !reader_.has("speed") && !reader_.has("stream")) {
      reader_.complain("sets nothing: none of speed, stream, transmit, receive, ethernet");
    }
    return std::move(entry_);
  }

 private:
  void readSelector() {
    PortSelector& selector = entry_.selector;
    reader_.numbers("ports", kMaxPorts - 1, selector.ports);
    reader_.numbers("user_ports", kNoUserPort - 1, selector.userPorts);
    reader_.names("kind", namesOf(kKinds), selector.kinds);
    reader_.names("serdes_type", {}, selector.serDesTypes);
    reader_.names("media", namesOf(mediaNames), selector.media);
    reader_.names("rate", namesOf(rateNames), selector.rates);
    reader_.names("running_rate", cacheRates(), selector.runningRates);
    std::optional<std::int32_t> asic;
    reader_.number("asic", {0, kMostAsics - 1}, asic);
    if (asic) selector.asic = static_cast<std::uint32_t>(*asic);
    if (!selector.asic && !selector.ports.empty()) selector.asic = 0;
    std::optional<bool> optional;
    reader_.flag("optional", optional);
    entry_.optional = optional.value_or(false);
  }

  void readPort() {
    reader_.name("speed", namesOf(rateNames), entry_.speed);
    reader_.flag("stream", entry_.stream);
  }

  void readDestinations() {
    std::vector<std::string> allowed = cacheRates();
    allowed.insert(allowed.begin(), {kLive, kAllCaches});
    std::set<std::string> words;
    reader_.names("to", allowed, words);
    entry_.live = words.erase(kLive) != 0 || (!reader_.has("to") && !reader_.has("ethernet"));
    if (words.erase(kAllCaches) != 0) {
      for (const std::string& rate : cacheRates())
        words.insert(rate);
    }
    entry_.caches = std::move(words);
    if (reader_.has("to") && !hasLinkSettings()) reader_.complain("to: there is no transmit, receive or ethernet here");
    if (!reader_.has("ethernet")) return;
    if (!reader_.has("to")) reader_.complain("ethernet: to is missing: it names the rates whose caches are meant");
    if (!entry_.live) return;
    reader_.complain(*table_.get("to"), "to", "'live' is none of the caches, which alone can be set of ethernet ports");
  }

  bool hasLinkSettings() const {
    return reader_.has("transmit") || reader_.has("receive") || reader_.has("ethernet");
  }

  Range range(Range ofLive) const {
    return entry_.live ? ofLive : Range{};
  }

  void readTransmit(const toml::table& table) {
    TableReader reader(table, "transmit.", file_, problems_);
    LiveTx& tx = entry_.transmit;
    reader.name("mode", namesOf(ffeModeNames), tx.ffeMode);
    reader.number("k", range(kByte), tx.k);
    reader.number("c0", range(kSignedByte), tx.c0);
    reader.number("c1", range(kSignedByte), tx.c1);
    reader.number("c2", range(kSignedByte), tx.c2);
    reader.number("c3", range(kSignedByte), tx.c3);
    reader.number("slew", {}, tx.slewPs);
    if (tx.slewPs) checkSlew(reader, *table.get("slew"), *tx.slewPs);
    reader.finish();
  }

  static void checkSlew(const TableReader& reader, const toml::node& node, std::int32_t slewPs) {
    const std::vector<std::string> allowed = namesOf(slewRateNames, &ValueName::shortName);
    if (!findName(allowed, std::to_string(slewPs)))
      reader.complain(node, "slew", shown(node) + "none of " + listed(allowed));
  }

  void readReceive(const toml::table& table) {
    TableReader reader(table, "receive.", file_, problems_);
    LiveRx& rx = entry_.receive;
    reader.name("mode", namesOf(dfeModeNames), rx.dfeMode);
    reader.number("pole", range(kSignedByte), rx.pole);
    reader.number("peak", range(kSignedByte), rx.peak);
    reader.number("amax", range(kSignedByte), rx.amax);
    reader.finish();
  }

  void readEthernet(const toml::table& table) {
    TableReader reader(table, "ethernet.", file_, problems_);
    EthernetSettings& ethernet = entry_.ethernet;
    reader.number("power", {}, ethernet.power);
    reader.number("pre_emphasis", {}, ethernet.preEmphasis);
    reader.number("cdr_mode", {}, ethernet.cdrMode);
    reader.number("eq_mode", {}, ethernet.eqMode);
    reader.finish();
  }

  const toml::table& table_;
  const std::string& file_;
  std::vector<std::string>& problems_;
  TableReader reader_;
  SettingsEntry entry_;
};

toml::table parseToml(const std::string& text, const std::string& name) {
  if (isJson(text)) throw UsageError(name + ": JSON, as saves and plans are; settings are TOML");
  try {
    return toml::parse(text, name);
  } catch (const toml::parse_error& error) {
    throw UsageError(name + ":" + std::to_string(error.source().begin.line) + ": " + std::string(error.description()));
  }
}

}  // namespace

SettingsFile parseSettings(const std::string& text, const std::string& name) {
  const toml::table table = parseToml(text, name);
  SettingsFile file = {.name = name, .entries = {}};
  std::vector<std::string> problems;
  TableReader reader(table, "", name, problems);
  const toml::node* const node = reader.find("settings");
  reader.refuseUnknown();
  const toml::array* const entries = node == nullptr ? nullptr : node->as_array();
  if (entries == nullptr || entries->empty()) {
    problems.push_back(name + ":1: settings: no entry: each begins with [[settings]]");
    refuse(problems);
    return file;
  }
  for (const toml::node& entry : *entries) {
    if (const toml::table* const fields = entry.as_table()) {
      file.entries.push_back(EntryReader(*fields, name, problems).read());
    } else {
      reader.complain(entry, "settings", "not a table: an entry begins with [[settings]]");
    }
  }
  refuse(problems);
  return file;
}

SettingsFile readSettings(const std::string& fileName) {
  return parseSettings(readFile(fileName, kMostBytes), fileTitle(fileName));
}

void refuse(const std::vector<std::string>& problems) {
  if (problems.empty()) return;
  std::string text;
  for (const std::string& problem : problems)
    text += (text.empty() ? "" : "\n") + problem;
  throw UsageError(text);
}

}  // namespace serdesctl
