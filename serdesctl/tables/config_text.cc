// The topology, read back. Names of SerDes types are the platform's and may hold anything but a newline.
#include "serdesctl/tables/config_text.h"

#include <algorithm>

#include "serdesctl/tables/text_cursor.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::size_t kNameWidth = 19;

SwitchText readSwitch(TextCursor& text) {
  SwitchText result;
  text.expect("switchHwConfig.NumSlots:");
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

DiscoveryText readDiscovery(TextCursor& text) {
  DiscoveryText result;
  while (text.startsWith("asicNum:"))
    result.cores.push_back(readFoundCore(text));
  readCounts(text, result);
  text.expectEnd();
  return result;
}

// "RX(linkCount:1, SERDES_11G, coreId:0)"; `behind` follows it.
ConfigSide readSide(TextCursor& text, const char* side, std::string_view behind) {
  ConfigSide result;
  text.expect(side);
  text.expect("(linkCount:");
  result.links = text.unsignedNumber();
  text.expect(", ");
  TextCursor inside(text.until(behind), "showConfig");
  result.serDesType = inside.untilLast(", coreId:");
  result.core = inside.unsignedNumber();
  inside.expectEnd();
  return result;
}

ConfigPort readPort(TextCursor& text) {
  ConfigPort port;
  text.expect("portNum ");
  port.port = text.unsignedNumber();
  text.skipBlanks();
  text.expect(": ");
  port.rx = readSide(text, "RX", ") ");
  port.tx = readSide(text, "TX", ")\n");
  return port;
}

struct ServedPort {
  std::uint32_t port = 0;
  bool rx = false;
  bool tx = false;
  std::optional<std::uint32_t> userPort;
};

// "P20_RX(28)", "P3_TX_RX(N/A)"; nothing for another word.
std::optional<ServedPort> servedPort(std::string_view word) {
  if (word.size() < 2 || word[0] != 'P' || word[1] < '0' || word[1] > '9') return std::nullopt;
  TextCursor text(word, "showConfig");
  text.expect("P");
  ServedPort served;
  served.port = text.unsignedNumber();
  if (served.port >= kMaxPorts || !text.skip("_")) return std::nullopt;
  served.tx = text.skip("TX");
  served.rx = text.skip(served.tx ? "_RX" : "RX");
  if (!text.skip("(") || !(served.rx || served.tx)) return std::nullopt;
  if (!text.skip("N/A")) served.userPort = text.unsignedNumber();
  if (!text.skip(")") || !text.atEnd()) return std::nullopt;
  return served;
}

// Takes served ports off the end of a line; what is left is the name in its column.
std::vector<ServedPort> takeServedPorts(std::string_view& line) {
  std::vector<ServedPort> ports;
  while (line.size() > kNameWidth + 1 && line.ends_with(' ')) {
    const std::size_t begin = line.rfind(' ', line.size() - 2);
    if (begin == std::string_view::npos) break;
    const auto served = servedPort(line.substr(begin + 1, line.size() - begin - 2));
    if (!served) break;
    ports.push_back(*served);
    line.remove_suffix(line.size() - begin - 1);
  }
  return ports;
}

// A name as "%-19s " prints it.
std::string nameInColumn(std::string_view column) {
  if (column.size() > kNameWidth + 1) return std::string(column.substr(0, column.size() - 1));
  return std::string(column.substr(0, column.find_last_not_of(' ') + 1));
}

ConfigCore readCore(TextCursor& text, std::vector<ConfigPort>& ports) {
  ConfigCore core;
  text.expect("coreId ");
  core.core = text.unsignedNumber();
  text.skipBlanks();
  text.expect(": ");
  std::string_view line = text.line();
  for (const ServedPort& served : takeServedPorts(line)) {
    if (served.rx) core.rxPorts |= std::uint32_t{1} << served.port;
    if (served.tx) core.txPorts |= std::uint32_t{1} << served.port;
    if (served.port < ports.size()) ports[served.port].userPort = served.userPort;
  }
  if (line.size() < kNameWidth + 1 || !line.ends_with(' ')) text.fail("the name of a SerDes type");
  core.serDesType = nameInColumn(line);
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

}  // namespace

StartText parseStart(std::string_view text) {
  TextCursor cursor(text, "start");
  StartText result;
  result.hardware = readSwitch(cursor);
  result.discovery = readDiscovery(cursor);
  return result;
}

DiscoveryText parseDiscovery(std::string_view text) {
  TextCursor cursor(text, "setAsicNum");
  return readDiscovery(cursor);
}

ConfigText parseConfig(std::string_view text) {
  TextCursor cursor(text, "showConfig");
  ConfigText result;
  readCounts(cursor, result);
  cursor.expect("\nportConfig:\n");
  while (cursor.startsWith("portNum ")) {
    result.ports.push_back(readPort(cursor));
    if (result.ports.back().port != result.ports.size() - 1) cursor.fail("ports in ascending order");
  }
  cursor.expect("\ncoreConfig:\n");
  while (cursor.startsWith("coreId "))
    result.cores.push_back(readCore(cursor, result.ports));
  cursor.expect("\nserdesConfig:\n");
  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type)
    result.types.push_back(readType(cursor));
  result.glPorts = readMask(cursor, "\nglPortList: ");
  result.xgPorts = readMask(cursor, "\nxgPortList: ");
  result.exgPorts = readMask(cursor, "\nexgPortList: ");
  cursor.expectEnd();
  return result;
}

}  // namespace serdesctl
