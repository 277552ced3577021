// Saves as JSON.
#include "serdesctl/state/state_json.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "display/name_tables.h"
#include "serdesctl/base/files.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/state/json_place.h"
#include "serdesctl/tables/config_records.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr int kSchemaVersion = 1;
constexpr std::size_t kMostBytes = 64U << 20;
constexpr std::int64_t kMostUnsigned = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kMostSigned = std::numeric_limits<std::int32_t>::max();

// Writing.

Json withLink(std::size_t link, const Json& fields) {
  Json result = {{"link", link}};
  result.update(fields);
  return result;
}

Json jsonOf(const LiveTx& link) {
  Json result = object(static_cast<const FfeValues&>(link));
  result["slew_ps"] = link.slewUnnamed ? Json(kUnnamed) : json(link.slewPs);
  return result;
}

Json jsonOf(const LiveRx& link) {
  Json result = object(static_cast<const DfeModeValue&>(link));
  result.update(object(static_cast<const VgaValues&>(link)));
  return result;
}

bool isCount(std::string_view field) {
  return field.starts_with("decode_errors") || field.starts_with("crc_errors");
}

void addCount(Json& result, const std::string& name, const std::optional<Count>& count) {
  result[name] = count ? json(count->number) : Json();
  result[name + "_min"] = count ? Json(count->lowest) : Json();
  result[name + "_max"] = count ? Json(count->highest) : Json();
}

Json jsonOf(const DfeStatsValues& link) {
  Json result = Json::object();
  eachField(link, [&](const char* name, const auto& value) {
    if (!isCount(name)) result[name] = json(value);
  });
  addCount(result, "decode_errors", link.decodeErrors);
  addCount(result, "crc_errors", link.crcErrors);
  return result;
}

template <typename Links>
Json linksJson(const Links& links) {
  Json result = Json::array();
  for (std::size_t link = 0; link < links.size(); ++link)
    result.push_back(withLink(link, jsonOf(links[link])));
  return result;
}

template <typename Caches>
Json cachesJson(const Caches& caches) {
  Json result = Json::object();
  for (const ValueName& rate : rateNames) {
    const auto found = caches.find(rate.name);
    if (found != caches.end()) result[rate.name] = object(found->second);
  }
  return result;
}

Json settingsJson(const PortState& port) {
  return {{"port", port.port},
          {"config_rate", json(port.configRate)},
          {"stream_enabled", json(port.streamEnabled)},
          {"tx", linksJson(port.tx)},
          {"rx", linksJson(port.rx)},
          {"tx_caches", cachesJson(port.txCaches)},
          {"rx_caches", cachesJson(port.rxCaches)}};
}

Json observationsJson(const PortState& port) {
  return {{"port", port.port},
          {"running_rate", json(port.observed.runningRate)},
          {"media", json(port.observed.media)},
          {"unread", port.observed.unread.empty() ? Json() : Json(port.observed.unread)},
          {"links", linksJson(port.observed.links)}};
}

Json topologyPortJson(const PortRecord& record) {
  Json port = object(record);
  port.erase("asic");
  return port;
}

Json topologyJson(const AsicState& asic) {
  Json types = Json::array(), cores = Json::array(), ports = Json::array();
  for (const ConfigType& type : asic.config.types)
    types.push_back({{"number", types.size()}, {"name", type.name}, {"use_count", type.useCount}});
  for (const ConfigCore& core : asic.config.cores) {
    cores.push_back({{"core", core.core},
                     {"serdes_type", core.serDesType},
                     {"rx_ports", bitsOf(core.rxPorts)},
                     {"tx_ports", bitsOf(core.txPorts)}});
  }
  for (const PortRecord& record : portRecords(asic.config))
    ports.push_back(topologyPortJson(record));
  return {{"core_count", asic.config.coreCount},
          {"port_count", asic.config.portCount},
          {"serdes_types", types},
          {"cores", cores},
          {"found_cores", objects(asic.cores)},
          {"ports", ports}};
}

Json dumpsJson(const std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>>& dumps) {
  Json result = Json::array();
  for (const auto& [port, links] : dumps) {
    for (std::size_t link = 0; link < links.size(); ++link)
      result.push_back({{"port", port}, {"link", link}, {"registers", links[link]}});
  }
  return result;
}

Json registersJson(const RegisterDumps& dumps) {
  Json plls = Json::array();
  for (const auto& [core, registers] : dumps.pll)
    plls.push_back({{"core", core}, {"registers", registers}});
  return {{"pll", plls}, {"tx", dumpsJson(dumps.tx)}, {"rx", dumpsJson(dumps.rx)}};
}

template <typename PortJson>
Json portsJson(const AsicState& asic, PortJson portJson) {
  Json ports = Json::array();
  for (const PortState& port : asic.ports)
    ports.push_back(portJson(port));
  return ports;
}

Json asicJson(const AsicState& asic) {
  return {{"asic", asic.asic},
          {"topology", topologyJson(asic)},
          {"ports", portsJson(asic, settingsJson)},
          {"registers", asic.registers ? registersJson(*asic.registers) : Json()}};
}

// Reading.

struct Bounds {
  std::string_view field;
  std::int64_t lowest;
  std::int64_t highest;
};

// Of live settings only 8 bits exist, of statistics 16; other numbers may be any.
constexpr std::array<Bounds, 11> kBounds = {{{"k", 0, 255},
                                             {"c0", -128, 127},
                                             {"c1", -128, 127},
                                             {"c2", -128, 127},
                                             {"c3", -128, 127},
                                             {"pole", -128, 127},
                                             {"peak", -128, 127},
                                             {"amax", -128, 127},
                                             {"ap", INT16_MIN, INT16_MAX},
                                             {"amin", INT16_MIN, INT16_MAX},
                                             {"an", INT16_MIN, INT16_MAX}}};

Bounds boundsOf(std::string_view field) {
  if (field.starts_with('h')) return {field, INT16_MIN, INT16_MAX};
  const auto* const found =
      std::find_if(kBounds.begin(), kBounds.end(), [&](const Bounds& b) { return b.field == field; });
  return found == kBounds.end() ? Bounds{field, -kMostSigned - 1, kMostSigned} : *found;
}

std::string oneOf(const JsonPlace& place, std::span<const ValueName> names, const char* otherwise) {
  std::string text = place.isText() ? place.text() : "";
  std::string allowed;
  for (const ValueName& name : names) {
    if (text == name.name) return text;
    allowed += std::string(name.name) + ", ";
  }
  if (text == otherwise) return text;
  place.fail("none of " + allowed + otherwise);
}

void read(const JsonPlace& place, std::string_view field, std::int32_t& value) {
  const Bounds bounds = boundsOf(field);
  value = static_cast<std::int32_t>(place.integer(bounds.lowest, bounds.highest));
}

void read(const JsonPlace& place, std::string_view field, std::string& value) {
  value = field == "ffe_mode" ? oneOf(place, ffeModeNames, kUnnamed) : oneOf(place, dfeModeNames, kUnnamed);
}

template <typename Value>
void read(const JsonPlace& place, std::string_view field, std::optional<Value>& value) {
  if (!place.isNull()) read(place, field, value.emplace());
}

// What is no field of its own.
void read(const JsonPlace&, std::string_view, std::optional<double>&) {}
void read(const JsonPlace&, std::string_view, std::optional<bool>&) {}

// Fills the fields of a group. eachField() shows them as constants, which they are not here.
template <typename Group>
void fill(const JsonPlace& place, Group& group) {
  eachField(group, [&]<typename Value>(const char* name, const Value& value) {
    if (!isCount(name)) read(place.at(name), name, const_cast<Value&>(value));
  });
}

// Of an object with the fields of the group and these.
template <typename Group>
void fillWhole(const JsonPlace& place, Group& group, std::vector<std::string> names = {}) {
  eachField(group, [&](const char* name, const auto&) { names.emplace_back(name); });
  place.allowOnly(names);
  fill(place, group);
}

std::uint32_t unsignedAt(const JsonPlace& place, std::string_view name, std::int64_t highest = kMostUnsigned) {
  return static_cast<std::uint32_t>(place.at(name).integer(0, highest));
}

std::int32_t signedAt(const JsonPlace& place, std::string_view name) {
  return static_cast<std::int32_t>(place.at(name).integer(-kMostSigned - 1, kMostSigned));
}

std::optional<Count> countAt(const JsonPlace& place, const std::string& name) {
  if (place.at(name).isNull()) return std::nullopt;
  return Count{.number = place.at(name).number(),
               .lowest = place.at(name + "_min").count(),
               .highest = place.at(name + "_max").count()};
}

void readLink(const JsonPlace& place, LiveTx& link) {
  place.allowOnly({"link", "ffe_mode", "k", "c0", "c1", "c2", "c3", "slew_ps"});
  fill<FfeValues>(place, link);
  const JsonPlace slew = place.at("slew_ps");
  link.slewUnnamed = slew.isText() && slew.text() == kUnnamed;
  if (slew.isNull() || link.slewUnnamed) return;
  const std::string number = std::to_string(slew.isNumber() ? slew.integer(0, kMostSigned) : 0);
  const auto named = [&](const ValueName& name) { return number == name.shortName; };
  if (std::none_of(slewRateNames.begin(), slewRateNames.end(), named)) {
    slew.fail("none of 24, 30, 36, 50, 60, 75, 100, \"UNK\"");
  }
  link.slewPs = std::stoi(number);
}

void readLink(const JsonPlace& place, LiveRx& link) {
  place.allowOnly({"link", "dfe_mode", "pole", "peak", "amax"});
  fill<DfeModeValue>(place, link);
  fill<VgaValues>(place, link);
}

void readLink(const JsonPlace& place, DfeStatsValues& link) {
  fillWhole(place, link, {"link", "decode_errors_min", "decode_errors_max", "crc_errors_min", "crc_errors_max"});
  link.decodeErrors = countAt(place, "decode_errors");
  link.crcErrors = countAt(place, "crc_errors");
}

// A list of all links of the port's side, or of none. What a port says of itself may be more than there can be.
template <typename Link>
std::vector<Link> readLinks(const JsonPlace& place, std::uint32_t count) {
  std::vector<Link> links;
  for (const JsonPlace& element : place.elements()) {
    element.at("link").expect(links.size());
    readLink(element, links.emplace_back());
  }
  const bool whole = links.size() == count || (count > kMaxLinks && links.size() <= kMaxLinks);
  if (!links.empty() && !whole) place.fail("not of the port's " + std::to_string(count) + " links");
  return links;
}

template <typename Values>
std::map<std::string, Values> readCaches(const JsonPlace& place) {
  std::map<std::string, Values> caches;
  for (const auto& [rate, cache] : place.members()) {
    const auto named = [&, &name = rate](const ValueName& one) { return name == one.name; };
    if (std::none_of(rateNames.begin(), rateNames.end(), named)) cache.fail("no rate of the tool's");
    fillWhole(cache, caches[rate]);
  }
  return caches;
}

const ConfigPort& topologyOf(const JsonPlace& place, const ConfigText& config) {
  if (config.ports.empty()) place.fail("the topology has no ports");
  return config.ports[unsignedAt(place, "port", static_cast<std::int64_t>(config.ports.size()) - 1)];
}

PortState readSettings(const JsonPlace& place, const ConfigText& config) {
  place.allowOnly({"port", "config_rate", "stream_enabled", "tx", "rx", "tx_caches", "rx_caches"});
  const ConfigPort& topology = topologyOf(place, config);
  PortState port;
  port.port = topology.port;
  if (!place.at("config_rate").isNull()) port.configRate = oneOf(place.at("config_rate"), rateNames, "INV");
  if (!place.at("stream_enabled").isNull()) port.streamEnabled = place.at("stream_enabled").flag();
  port.tx = readLinks<LiveTx>(place.at("tx"), topology.tx.links);
  port.rx = readLinks<LiveRx>(place.at("rx"), topology.rx.links);
  port.txCaches = readCaches<TxRawValues>(place.at("tx_caches"));
  port.rxCaches = readCaches<RxRawValues>(place.at("rx_caches"));
  return port;
}

void readObservations(const JsonPlace& place, const ConfigText& config, PortState& port) {
  place.allowOnly({"port", "running_rate", "media", "unread", "links"});
  place.at("port").expect(port.port);
  PortObservations& observed = port.observed;
  if (!place.at("running_rate").isNull()) observed.runningRate = oneOf(place.at("running_rate"), rateNames, "INV");
  if (!place.at("media").isNull()) observed.media = oneOf(place.at("media"), mediaNames, kUnnamed);
  if (!place.at("unread").isNull()) observed.unread = place.at("unread").text();
  observed.links = readLinks<DfeStatsValues>(place.at("links"), config.ports[port.port].rx.links);
}

std::uint32_t readMask(const JsonPlace& place) {
  std::uint32_t mask = 0;
  for (const JsonPlace& bit : place.elements())
    mask |= std::uint32_t{1} << bit.integer(0, 31);
  return mask;
}

ConfigSide readSide(const JsonPlace& place, const std::string& side) {
  return {.links = unsignedAt(place, side + "_links"),
          .serDesType = place.at(side + "_serdes_type").text(),
          .core = unsignedAt(place, side + "_core")};
}

void readTopologyPort(const JsonPlace& place, ConfigText& config) {
  place.allowOnly({"port", "user_port", "port_type", "rx_links", "rx_serdes_type", "rx_core", "tx_links",
                   "tx_serdes_type", "tx_core"});
  const std::size_t number = config.ports.size();
  place.at("port").expect(number);
  ConfigPort& port = config.ports.emplace_back();
  port.port = static_cast<std::uint32_t>(number);
  port.rx = readSide(place, "rx");
  port.tx = readSide(place, "tx");
  if (!place.at("user_port").isNull()) port.userPort = unsignedAt(place, "user_port");
  const JsonPlace type = place.at("port_type");
  if (type.isNull()) return;
  const std::string name = type.text();
  if (name != "gl" && name != "xg" && name != "exg") type.fail("none of gl, xg, exg");
  (name == "gl" ? config.glPorts : name == "xg" ? config.xgPorts : config.exgPorts) |= std::uint32_t{1} << number;
}

FoundCore readFoundCore(const JsonPlace& place) {
  place.allowOnly({"asic", "core", "first_port", "serdes_type_number", "pll_registers", "rx_registers", "tx_registers",
                   "rx_params", "tx_params"});
  return {.asic = unsignedAt(place, "asic"),
          .core = unsignedAt(place, "core"),
          .firstPort = signedAt(place, "first_port"),
          .serDesType = unsignedAt(place, "serdes_type_number"),
          .pllRegisters = unsignedAt(place, "pll_registers"),
          .rxRegisters = unsignedAt(place, "rx_registers"),
          .txRegisters = unsignedAt(place, "tx_registers"),
          .rxParams = unsignedAt(place, "rx_params"),
          .txParams = unsignedAt(place, "tx_params")};
}

void readTopology(const JsonPlace& place, AsicState& asic) {
  place.allowOnly({"core_count", "port_count", "serdes_types", "cores", "found_cores", "ports"});
  ConfigText& config = asic.config;
  config.asic = asic.asic;
  config.coreCount = unsignedAt(place, "core_count");
  config.portCount = unsignedAt(place, "port_count");
  for (const JsonPlace& type : place.at("serdes_types").elements()) {
    type.allowOnly({"number", "name", "use_count"});
    type.at("number").expect(config.types.size());
    config.types.push_back({.name = type.at("name").text(), .useCount = unsignedAt(type, "use_count")});
  }
  for (const JsonPlace& core : place.at("cores").elements()) {
    core.allowOnly({"core", "serdes_type", "rx_ports", "tx_ports"});
    config.cores.push_back({.core = unsignedAt(core, "core"),
                            .serDesType = core.at("serdes_type").text(),
                            .rxPorts = readMask(core.at("rx_ports")),
                            .txPorts = readMask(core.at("tx_ports"))});
  }
  for (const JsonPlace& core : place.at("found_cores").elements())
    asic.cores.push_back(readFoundCore(core));
  for (const JsonPlace& port : place.at("ports").elements()) {
    if (config.ports.size() == kMaxPorts) port.fail("more ports than an ASIC can have");
    readTopologyPort(port, config);
  }
}

std::vector<std::uint16_t> readRegisterList(const JsonPlace& place) {
  std::vector<std::uint16_t> registers;
  for (const JsonPlace& value : place.elements())
    registers.push_back(static_cast<std::uint16_t>(value.integer(0, UINT16_MAX)));
  return registers;
}

std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>> readDumps(const JsonPlace& place) {
  std::map<std::uint32_t, std::vector<std::vector<std::uint16_t>>> dumps;
  for (const JsonPlace& dump : place.elements()) {
    dump.allowOnly({"port", "link", "registers"});
    auto& links = dumps[unsignedAt(dump, "port", kMaxPorts - 1)];
    dump.at("link").expect(links.size());
    links.push_back(readRegisterList(dump.at("registers")));
  }
  return dumps;
}

RegisterDumps readRegisters(const JsonPlace& place) {
  place.allowOnly({"pll", "tx", "rx"});
  RegisterDumps dumps;
  for (const JsonPlace& pll : place.at("pll").elements()) {
    pll.allowOnly({"core", "registers"});
    dumps.pll[unsignedAt(pll, "core", kMaxCores - 1)] = readRegisterList(pll.at("registers"));
  }
  dumps.tx = readDumps(place.at("tx"));
  dumps.rx = readDumps(place.at("rx"));
  return dumps;
}

AsicState readAsic(const JsonPlace& place) {
  place.allowOnly({"asic", "topology", "ports", "registers"});
  AsicState asic;
  asic.asic = unsignedAt(place, "asic", kMostAsics - 1);
  readTopology(place.at("topology"), asic);
  for (const JsonPlace& port : place.at("ports").elements()) {
    PortState state = readSettings(port, asic.config);
    if (!asic.ports.empty() && asic.ports.back().port >= state.port) port.at("port").fail("not in order");
    asic.ports.push_back(std::move(state));
  }
  if (!place.at("registers").isNull()) asic.registers = readRegisters(place.at("registers"));
  return asic;
}

std::vector<Unread> readUnread(const JsonPlace& place) {
  std::vector<Unread> unread;
  for (const JsonPlace& one : place.elements()) {
    one.allowOnly({"asic", "port", "what", "why"});
    Unread& added = unread.emplace_back();
    added = {.asic = unsignedAt(one, "asic"), .port = {}, .what = one.at("what").text(), .why = one.at("why").text()};
    if (!one.at("port").isNull()) added.port = unsignedAt(one, "port", kMaxPorts - 1);
  }
  return unread;
}

void readAllObservations(const JsonPlace& place, Save& save) {
  place.allowOnly({"time", "target", "asics"});
  if (!place.at("time").isNull()) save.origin.time = place.at("time").text();
  if (!place.at("target").isNull()) save.origin.target = place.at("target").text();
  const std::vector<JsonPlace> asics = place.at("asics").elements();
  if (asics.size() != save.state.asics.size()) place.at("asics").fail("not of the same ASICs as the settings");
  for (std::size_t i = 0; i < asics.size(); ++i) {
    AsicState& asic = save.state.asics[i];
    asics[i].allowOnly({"asic", "ports"});
    asics[i].at("asic").expect(asic.asic);
    const std::vector<JsonPlace> ports = asics[i].at("ports").elements();
    if (ports.size() != asic.ports.size()) asics[i].at("ports").fail("not of the same ports as the settings");
    for (std::size_t p = 0; p < ports.size(); ++p)
      readObservations(ports[p], asic.config, asic.ports[p]);
  }
}

SwitchText readHardware(const JsonPlace& place) {
  place.allowOnly({"slots", "user_ports", "aux_ports", "asics"});
  return {.slots = signedAt(place, "slots"),
          .userPorts = signedAt(place, "user_ports"),
          .auxPorts = signedAt(place, "aux_ports"),
          .asics = unsignedAt(place, "asics")};
}

void checkKind(const JsonPlace& place) {
  const JsonPlace kind = place.at("kind");
  if (!kind.isText() || kind.text() != "save") kind.fail("not \"save\": this is no save of a switch");
  const JsonPlace schema = place.at("schema");
  const std::int64_t version = schema.integer(0, kMostSigned);
  if (version != kSchemaVersion) {
    schema.fail("this program knows schema " + std::to_string(kSchemaVersion) + " and not " + std::to_string(version));
  }
}

}  // namespace

Json unreadJson(const std::vector<Unread>& unread) {
  Json result = Json::array();
  for (const Unread& one : unread)
    result.push_back({{"asic", one.asic}, {"port", json(one.port)}, {"what", one.what}, {"why", one.why}});
  return result;
}

std::string saveText(const Save& save) {
  Json asics = Json::array();
  Json observed = Json::array();
  for (const AsicState& asic : save.state.asics) {
    asics.push_back(asicJson(asic));
    observed.push_back({{"asic", asic.asic}, {"ports", portsJson(asic, observationsJson)}});
  }
  const SwitchText& hardware = save.state.hardware;
  return readableJson(
      {{"schema", kSchemaVersion},
       {"kind", "save"},
       {"hardware",
        {{"slots", hardware.slots},
         {"user_ports", hardware.userPorts},
         {"aux_ports", hardware.auxPorts},
         {"asics", hardware.asics}}},
       {"asics", asics},
       {"unread", unreadJson(save.state.unread)},
       {"observations",
        {{"time", json(save.origin.time)}, {"target", json(save.origin.target)}, {"asics", observed}}}});
}

Save parseSave(const std::string& text, const std::string& name) {
  const Json parsed = parseJson(text, name);
  const JsonPlace place(name, parsed);
  checkKind(place);
  place.allowOnly({"schema", "kind", "hardware", "asics", "unread", "observations"});
  Save save;
  save.state.hardware = readHardware(place.at("hardware"));
  for (const JsonPlace& asic : place.at("asics").elements()) {
    AsicState state = readAsic(asic);
    if (!save.state.asics.empty() && save.state.asics.back().asic >= state.asic) asic.at("asic").fail("not in order");
    save.state.asics.push_back(std::move(state));
  }
  save.state.unread = readUnread(place.at("unread"));
  readAllObservations(place.at("observations"), save);
  return save;
}

Save readSave(const std::string& fileName) {
  return parseSave(readFile(fileName, kMostBytes), fileTitle(fileName));
}

}  // namespace serdesctl
