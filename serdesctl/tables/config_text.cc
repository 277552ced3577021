// The topology, read back. Names of SerDes types are the platform's and may hold anything but a newline.
#include "serdesctl/tables/config_text.h"

#include <algorithm>
#include <charconv>
#include <tuple>
#include <utility>

#include "serdesctl/base/tool_facts.h"
#include "serdesctl/tables/cells.h"
#include "serdesctl/tables/text_cursor.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

FoundCore readFoundCore(TextCursor& text) {
  FoundCore core;
  text.expect("asicNum:");
  core.asic = text.unsignedNumber();
  text.expect(", coreNum:");
  core.core = text.unsignedNumber();
  text.expect(", firstPort:");
  core.firstPort = text.number();
  text.expect(", serDesType:");
  core.serDesType = text.unsignedNumber();
  text.expect(":\npllRegisterCount:");
  core.pllRegisters = text.unsignedNumber();
  text.expect(", rxRegisterCount:");
  core.rxRegisters = text.unsignedNumber();
  text.expect(", txRegisterCount:");
  core.txRegisters = text.unsignedNumber();
  text.expect("\nrxParamCount:");
  core.rxParams = text.unsignedNumber();
  text.expect(", txParamCount:");
  core.txParams = text.unsignedNumber();
  text.expect("\n");
  return core;
}

// The line that both setAsicNum and showConfig print.
template <typename Result>
void readCounts(TextCursor& text, Result& result) {
  text.expect("current asicNum:");
  result.asic = text.unsignedNumber();
  text.expect(", coreCount:");
  result.coreCount = text.unsignedNumber();
  text.expect(", portCount:");
  result.portCount = text.unsignedNumber();
  text.expect("\n");
}

// "linkCount:1, SERDES_11G, coreId:0"; nothing for another text.
std::optional<ConfigSide> sideOf(std::string_view text, const std::string& name) {
  try {
    ConfigSide side;
    TextCursor cursor(text, name);
    cursor.expect("linkCount:");
    side.links = cursor.unsignedNumber();
    cursor.expect(", ");
    side.serDesType = cursor.untilLast(", coreId:");
    side.core = cursor.unsignedNumber();
    cursor.expectEnd();
    return side;
  } catch (const ParseError&) {
    return std::nullopt;
  }
}

using Sides = std::pair<ConfigSide, ConfigSide>;

// Where a type's name looks like the middle of the line, there is more than one way to read it.
std::vector<Sides> waysToRead(std::string_view line, const std::string& name) {
  constexpr std::string_view kMiddle = ") TX(";
  std::vector<Sides> ways;
  for (std::size_t at = line.find(kMiddle); at != std::string_view::npos; at = line.find(kMiddle, at + 1)) {
    const auto rx = sideOf(line.substr(0, at), name);
    const auto tx = sideOf(line.substr(at + kMiddle.size()), name);
    if (rx && tx) ways.emplace_back(*rx, *tx);
  }
  return ways;
}

ConfigPort readPort(TextCursor& text) {
  ConfigPort port;
  text.expect("portNum ");
  const TextCursor before = text;
  port.port = text.unsignedNumber();
  if (port.port >= kMaxPorts) before.fail("an ASIC port");
  text.expect(port.port < 10 ? "  : RX(" : " : RX(");
  const TextCursor sides = text;
  std::string_view line = text.line();
  if (!line.ends_with(')')) sides.fail("both sides of a port");
  line.remove_suffix(1);
  const auto ways = waysToRead(line, text.name());
  if (ways.empty()) sides.fail("both sides of a port");
  if (ways.size() > 1) {
    throw ParseError(text.name(), sides.place(), "the names of SerDes types can be read in more than one way");
  }
  std::tie(port.rx, port.tx) = ways.front();
  return port;
}

// Takes "P3_TX_RX(N/A) " off the end of the line, after a blank; false when it ends otherwise.
bool takeServed(std::string_view& line, std::uint32_t port, const char* sides, std::optional<std::uint32_t>& userPort) {
  const std::string begin = " P" + std::to_string(port) + "_" + sides + "(";
  const std::size_t at = line.rfind(begin);
  if (at == std::string_view::npos) return false;
  std::string_view number = line.substr(at + begin.size());
  if (!number.ends_with(") ")) return false;
  number.remove_suffix(2);
  std::uint32_t user = kNoUserPort;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), user);
  const bool isNumber = error == std::errc() && end == number.data() + number.size() && user < kNoUserPort;
  if (!isNumber && number != "N/A") return false;
  userPort = isNumber ? std::optional(user) : std::nullopt;
  line = line.substr(0, at + 1);
  return true;
}

// Takes the served ports off the end of a core's line: which they can be is known from the ports. What is left is the
// name in its column.
void takeServedPorts(std::string_view& line, ConfigCore& core, std::vector<ConfigPort>& ports) {
  for (std::size_t i = ports.size(); i-- > 0;) {
    ConfigPort& port = ports[i];
    const std::uint32_t bit = std::uint32_t{1} << port.port;
    const bool rx = port.rx.core == core.core;
    const bool tx = port.tx.core == core.core;
    if (rx && tx && takeServed(line, port.port, "TX_RX", port.userPort)) {
      core.rxPorts |= bit;
      core.txPorts |= bit;
    } else if (rx && takeServed(line, port.port, "RX", port.userPort)) {
      core.rxPorts |= bit;
    } else if (tx && takeServed(line, port.port, "TX", port.userPort)) {
      core.txPorts |= bit;
    }
  }
}

// A name as "%-19s " prints it.
std::string nameInColumn(TextCursor& text, std::string_view column) {
  if (column.size() < padded("").size() || !column.ends_with(' ')) text.fail("the name of a SerDes type");
  return trimmed(column);
}

ConfigCore readCore(TextCursor& text, std::vector<ConfigPort>& ports) {
  ConfigCore core;
  text.expect("coreId ");
  const TextCursor before = text;
  core.core = text.unsignedNumber();
  if (core.core >= kMaxCores) before.fail("a core");
  text.expect(core.core < 10 ? "  : " : " : ");
  TextCursor name = text;
  std::string_view line = text.line();
  takeServedPorts(line, core, ports);
  core.serDesType = nameInColumn(name, line);
  return core;
}

ConfigType readType(TextCursor& text) {
  ConfigType type;
  type.name = text.untilLast(" useCount:");
  type.useCount = text.unsignedNumber();
  text.expect("\n");
  return type;
}

std::uint32_t readMask(TextCursor& text, const char* label) {
  text.expect(label);
  const std::uint32_t mask = text.hexNumber();
  text.expect("\n");
  return mask;
}

DiscoveryText readWholeDiscovery(TextCursor& text) {
  DiscoveryText result = readDiscovery(text);
  if (!result.complete) text.fail("'current asicNum:'");
  text.expectEnd();
  return result;
}

// In a core's line a name's own blanks at its end cannot be told from those that fill the column; elsewhere they can.
void nameCores(ConfigText& config) {
  for (ConfigCore& core : config.cores) {
    const auto named = [&](const ConfigType& type) { return trimmed(type.name) == core.serDesType; };
    const auto type = std::find_if(config.types.begin(), config.types.end(), named);
    if (type != config.types.end()) core.serDesType = type->name;
  }
}

}  // namespace

SwitchText readSwitch(TextCursor& text) {
  SwitchText result;
  text.expect(kStartBegin);
  result.slots = text.number();
  text.expect("\nswitchHwConfig.NumUserPorts:");
  result.userPorts = text.number();
  text.expect("\nswitchHwConfig.NumAuxPorts:");
  result.auxPorts = text.number();
  text.expect("\nswitchHwConfig.NumASICs:");
  result.asics = text.unsignedNumber();
  text.expect("\n");
  return result;
}

DiscoveryText readDiscovery(TextCursor& text) {
  DiscoveryText result;
  while (text.startsWith("asicNum:"))
    result.cores.push_back(readFoundCore(text));
  result.complete = text.startsWith("current asicNum:");
  if (result.complete) readCounts(text, result);
  return result;
}

ConfigText readConfig(TextCursor& text) {
  ConfigText result;
  readCounts(text, result);
  text.expect("\nportConfig:\n");
  while (text.startsWith("portNum ")) {
    const TextCursor before = text;
    result.ports.push_back(readPort(text));
    if (result.ports.back().port != result.ports.size() - 1) before.fail("ports in ascending order");
  }
  text.expect("\ncoreConfig:\n");
  while (text.startsWith("coreId ")) {
    const TextCursor before = text;
    result.cores.push_back(readCore(text, result.ports));
    if (result.cores.back().core != result.cores.size() - 1) before.fail("cores in ascending order");
  }
  text.expect("\nserdesConfig:\n");
  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type)
    result.types.push_back(readType(text));
  result.glPorts = readMask(text, "\nglPortList: ");
  result.xgPorts = readMask(text, "\nxgPortList: ");
  result.exgPorts = readMask(text, "\nexgPortList: ");
  nameCores(result);
  return result;
}

StartText parseStart(std::string_view text) {
  TextCursor cursor(text, "start");
  StartText result;
  result.hardware = readSwitch(cursor);
  result.discovery = readWholeDiscovery(cursor);
  return result;
}

DiscoveryText parseDiscovery(std::string_view text) {
  TextCursor cursor(text, "setAsicNum");
  return readWholeDiscovery(cursor);
}

ConfigText parseConfig(std::string_view text) {
  TextCursor cursor(text, "showConfig");
  ConfigText result = readConfig(cursor);
  cursor.expectEnd();
  return result;
}

}  // namespace serdesctl
