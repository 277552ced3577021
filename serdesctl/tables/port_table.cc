// Heads of tables, and the places of cells.
#include "serdesctl/tables/port_table.h"

#include <algorithm>
#include <array>
#include <bit>

#include "display/name_tables.h"
#include "serdesctl/base/tool_facts.h"
#include "serdesctl/tables/cells.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

constexpr std::string_view kRule = "=================== ";
constexpr std::string_view kRuleCell = "==== ";
constexpr std::string_view kNoUserPortCell = " N/A ";

bool isTitle(std::string_view line) {
  return line.size() > kRule.size() - 1 && line.ends_with(' ');
}

std::size_t readRule(TextCursor& text) {
  std::size_t cells = 0;
  text.expect(kRule);
  while (text.skip(kRuleCell))
    ++cells;
  text.expect("\n");
  return cells;
}

// One row of the head: read(column) for each.
template <typename Read>
void readHeadRow(TextCursor& text, const std::string& label, std::vector<HeadColumn>& columns, Read read) {
  text.expect(label);
  for (HeadColumn& column : columns)
    read(column);
  text.expect("\n");
}

std::optional<std::uint32_t> userPortCell(TextCursor& text) {
  if (text.skip(kNoUserPortCell)) return std::nullopt;
  const TextCursor before = text;
  const std::int32_t port = numberCell(text);
  if (port < 0 || port >= kNoUserPort) before.fail("a user port");
  return static_cast<std::uint32_t>(port);
}

std::uint32_t asicPortCell(TextCursor& text) {
  const TextCursor before = text;
  const std::int32_t port = numberCell(text);
  if (port < 0 || port >= static_cast<std::int32_t>(kMaxPorts)) before.fail("an ASIC port");
  return static_cast<std::uint32_t>(port);
}

// Ports ascend, and each port's links count from 0.
bool follows(const HeadColumn& column, const HeadColumn* previous) {
  if (previous == nullptr || column.port > previous->port) return column.link == 0;
  return column.port == previous->port && column.link == previous->link + 1 && column.link < kMaxLinks &&
         column.userPort == previous->userPort;
}

void readLinkNumbers(TextCursor& text, std::vector<HeadColumn>& columns) {
  const HeadColumn* previous = nullptr;
  readHeadRow(text, padded("link num"), columns, [&](HeadColumn& column) {
    const TextCursor before = text;
    column.link = static_cast<std::uint32_t>(numberCell(text));
    if (!follows(column, previous)) before.fail("ports and links in ascending order");
    previous = &column;
  });
}

bool runAlike(const HeadColumn& a, const HeadColumn& b) {
  return a.port != b.port || (a.runningRate == b.runningRate && a.media == b.media);
}

std::uint32_t linksOf(const TableHead& head, std::uint32_t port) {
  return static_cast<std::uint32_t>(
      std::count_if(head.columns.begin(), head.columns.end(), [&](const HeadColumn& c) { return c.port == port; }));
}

// Finds the cells' places; everything that it decides on stands in one place.
class Placing {
 public:
  Placing(const TableHead& head, const TableContext& context) : head_(head), context_(context) {}

  std::vector<Link> places() {
    for (const HeadColumn& column : head_.columns)
      headPorts_ |= bit(column.port);
    checkAgainstCommand();
    const bool whole = head_.side == SERDES_LINK_TX && !context_.configIsOfThen;
    if (context_.config != nullptr && whole && !agreesWithTopology()) context_.config = nullptr;
    if (context_.config != nullptr) checkAgainstTopology();
    return head_.side == SERDES_LINK_TX ? transmitPlaces() : receivePlaces();
  }

 private:
  static std::uint32_t bit(std::uint32_t port) {
    return std::uint32_t{1} << port;
  }

  [[noreturn]] void fail(const std::string& what) const {
    throw ParseError(context_.name, head_.place, what);
  }

  const ConfigSide& side(std::uint32_t port) const {
    const ConfigPort& config = context_.config->ports[port];
    return head_.side == SERDES_LINK_TX ? config.tx : config.rx;
  }

  std::uint32_t topologyLinks(std::uint32_t port, SerDesLinkType which) const {
    const ConfigPort& config = context_.config->ports[port];
    return std::min(which == SERDES_LINK_TX ? config.tx.links : config.rx.links, kMaxLinks);
  }

  bool isInTable(std::uint32_t port) const {
    return !head_.ofOneType || padded(side(port).serDesType) == head_.title;
  }

  void checkAgainstCommand() const {
    if (!context_.ports || (headPorts_ & ~*context_.ports) == 0) return;
    fail("the table shows port " + std::to_string(lowestPort(headPorts_ & ~*context_.ports)) +
         ", which the command does not name");
  }

  bool agreesWithTopology(std::uint32_t port) const {
    const bool shown = (headPorts_ & bit(port)) != 0;
    if (port >= context_.config->ports.size()) return !shown;
    const std::uint32_t links = topologyLinks(port, SERDES_LINK_TX);
    if (shown) return linksOf(head_, port) == links;
    const bool named = context_.ports && (*context_.ports & bit(port)) != 0;
    return !named || head_.ofOneType || links == 0;
  }

  bool agreesWithTopology() const {
    std::uint32_t port = 0;
    while (port < kMaxPorts && agreesWithTopology(port))
      ++port;
    return port == kMaxPorts;
  }

  void checkAgainstTopology() const {
    for (std::uint32_t port = 0; port < kMaxPorts; ++port) {
      if (agreesWithTopology(port)) continue;
      fail("the table shows " + std::to_string(linksOf(head_, port)) + " transmit links of port " +
           std::to_string(port) + ", and the topology others");
    }
  }

  Link placeOf(std::uint32_t port, std::uint32_t link) const {
    Link place;
    place.asic = context_.config != nullptr ? context_.config->asic : context_.asic;
    place.port = port;
    place.link = link;
    // A title's own blanks at its end cannot be told from those that fill its column; in the topology they can.
    if (head_.ofOneType) place.serDesType = trimmed(head_.title);
    if (context_.config != nullptr) {
      if (isInTable(port)) place.serDesType = side(port).serDesType;
      place.userPort = context_.config->ports[port].userPort;
    }
    for (const HeadColumn& column : head_.columns) {
      if (column.port != port) continue;
      place.userPort = column.userPort;
      place.runningRate = column.runningRate;
      place.media = column.media;
      break;
    }
    return place;
  }

  std::vector<Link> transmitPlaces() const {
    if (head_.cells && *head_.cells != head_.columns.size()) {
      fail("the table has " + std::to_string(head_.columns.size()) + " columns and " + std::to_string(*head_.cells) +
           " cells in a row");
    }
    std::vector<Link> places;
    for (const HeadColumn& column : head_.columns)
      places.push_back(placeOf(column.port, column.link));
    return places;
  }

  std::vector<Link> receivePlaces() const {
    std::vector<Link> places;
    if (context_.config == nullptr) {
      if (head_.cells == 0U) return places;
      const std::uint32_t port = onlyPort();
      addPlaces(places, port, cellsOfOnlyPort());
      return places;
    }
    forEachBit(receivePorts(), kMaxPorts,
               [&](std::uint32_t port) { addPlaces(places, port, topologyLinks(port, SERDES_LINK_RX)); });
    return places;
  }

  void addPlaces(std::vector<Link>& places, std::uint32_t port, std::uint32_t links) const {
    for (std::uint32_t link = 0; link < links; ++link)
      places.push_back(placeOf(port, link));
  }

  // Without the topology a row's cells can be counted, but not shared out to several ports.
  std::uint32_t onlyPort() const {
    const std::uint32_t ports = context_.ports.value_or(0) & ((std::uint32_t{1} << kMaxPorts) - 1);
    if (std::popcount(ports) == 1 && head_.cells) return lowestPort(ports);
    fail("how many receive links each port has is not in the table: the answer to showConfig tells");
  }

  std::uint32_t cellsOfOnlyPort() const {
    if (*head_.cells > kMaxLinks) fail("a port with " + std::to_string(*head_.cells) + " receive links");
    return static_cast<std::uint32_t>(*head_.cells);
  }

  // Ports that may have cells without having columns.
  std::uint32_t hiddenPorts() const {
    std::uint32_t ports = 0;
    for (std::uint32_t port = 0; port < context_.config->ports.size() && port < kMaxPorts; ++port) {
      const bool hidden = topologyLinks(port, SERDES_LINK_TX) == 0 && topologyLinks(port, SERDES_LINK_RX) != 0;
      if (hidden && isInTable(port)) ports |= bit(port);
    }
    return ports & context_.ports.value_or(~std::uint32_t{0});
  }

  std::uint32_t receiveLinksOf(std::uint32_t ports) const {
    std::uint32_t links = 0;
    forEachBit(ports, kMaxPorts, [&](std::uint32_t port) { links += topologyLinks(port, SERDES_LINK_RX); });
    return links;
  }

  std::uint32_t receivePorts() const {
    const std::uint32_t hidden = hiddenPorts();
    if (!head_.cells) {
      if (hidden != 0 && !context_.ports) failAmbiguous();
      return headPorts_ | hidden;
    }
    const std::uint32_t shown = receiveLinksOf(headPorts_);
    if (*head_.cells < shown) failMiscounted();
    const std::uint32_t ports = portsOfLinks(hidden, static_cast<std::uint32_t>(*head_.cells) - shown);
    if (context_.ports && !head_.ofOneType && ports != hidden) failMiscounted();
    return headPorts_ | ports;
  }

  // Those of the ports whose receive links are so many.
  std::uint32_t portsOfLinks(std::uint32_t ports, std::uint32_t links) const {
    std::array<std::uint32_t, kMaxPorts * kMaxLinks + 1> found{};  // a set of ports for each number of links
    std::array<unsigned, kMaxPorts * kMaxLinks + 1> ways{};        // 2 stands for more, too
    ways[0] = 1;
    forEachBit(ports, kMaxPorts, [&](std::uint32_t port) {
      const std::uint32_t more = topologyLinks(port, SERDES_LINK_RX);
      for (std::size_t sum = ways.size() - 1; sum >= more; --sum) {
        if (ways[sum] == 0) found[sum] = found[sum - more] | bit(port);
        ways[sum] = std::min(2U, ways[sum] + ways[sum - more]);
      }
    });
    if (links >= ways.size() || ways[links] == 0) failMiscounted();
    if (ways[links] > 1) failAmbiguous();
    return found[links];
  }

  [[noreturn]] void failMiscounted() const {
    fail("the row's " + std::to_string(head_.cells.value_or(0)) +
         " cells are not as many as the topology has receive links");
  }

  [[noreturn]] void failAmbiguous() const {
    fail("ports without transmit links have cells here and no columns: the command with its port list tells which");
  }

  const TableHead& head_;
  TableContext context_;
  std::uint32_t headPorts_ = 0;
};

}  // namespace

bool atTableHead(const TextCursor& text) {
  std::string_view rest = text.rest();
  if (!rest.starts_with('\n')) return false;
  rest.remove_prefix(1);
  const std::size_t end = rest.find('\n');
  return end != std::string_view::npos && isTitle(rest.substr(0, end)) && rest.substr(end + 1).starts_with(kRule);
}

TableHead readTableHead(TextCursor& text) {
  TableHead head;
  text.expect("\n");
  head.place = text.place();
  const TextCursor before = text;
  head.title = text.line();
  if (!isTitle(head.title)) before.fail("a table's title");
  head.columns.resize(readRule(text));
  auto& columns = head.columns;
  readHeadRow(text, padded("ASIC port"), columns, [&](HeadColumn& c) { c.port = asicPortCell(text); });
  readHeadRow(text, padded("user port"), columns, [&](HeadColumn& c) { c.userPort = userPortCell(text); });
  readLinkNumbers(text, columns);
  readHeadRow(text, padded("running rate", 18), columns,
              [&](HeadColumn& c) { c.runningRate = rightNameCell(text, rateNames, "INV"); });
  readHeadRow(text, padded("media type", 18), columns,
              [&](HeadColumn& c) { c.media = rightNameCell(text, mediaNames, "UNK"); });
  const TextCursor rule = text;
  if (readRule(text) != columns.size()) rule.fail("a rule as wide as the first one");
  const auto unlike = [](const HeadColumn& a, const HeadColumn& b) { return !runAlike(a, b); };
  if (std::adjacent_find(columns.begin(), columns.end(), unlike) != columns.end()) {
    before.fail("a table in which the links of a port run alike");
  }
  return head;
}

std::vector<Link> placesOfCells(const TableHead& head, const TableContext& context) {
  return Placing(head, context).places();
}

}  // namespace serdesctl
