// Table heads: who a column is (port, user port, link), and how it runs at this moment (rate, media).
#include "display/table_header.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "display/name_tables.h"

std::array<std::uint8_t, kMaxPorts> portRunning{};

namespace {

// What a header asks the platform about its ports.
struct PortStatus {
  std::array<unsigned int, kMaxPorts> runningRate;
  std::array<MediaHwFcXmtrType, kMaxPorts> mediaType;
};

constexpr unsigned long kStateUnknown = 10;

// The headers never fail: a port that cannot be asked shows no running rate.
void gatherPortStatus(std::uint32_t portMask, PortStatus& status) {
  forEachBit(portMask, kMaxPorts, [&](std::uint32_t port) {
    const port_id_t id = portId(port);
    unsigned long state = 0;
    if (PortControl::GetPortInfo(id, PORT_INFO_STATE, &state) < 0) state = kStateUnknown;
    unsigned int configured = 0;
    if (PortControl::GetPortCfgSpeed(id, &configured) < 0) configured = SPEED_AUTO;
    status.runningRate[port] = SPEED_INVALID;
    const bool running = state == kPortStateRunning || configured != SPEED_AUTO;
    if (running) (void)PortControl::GetPortSpeed(id, &status.runningRate[port]);
    portRunning[port] = running ? 1 : 0;
    status.mediaType[port] = MEDIA_UNKNOWN;
    (void)PortControl::GetMediaHwFcXmtrType(id, &status.mediaType[port]);
  });
}

// Every port's link numbers are the first cells of this text.
constexpr std::string_view kLinkNumbers = "   0    1    2    3 ";
constexpr std::size_t kLinkNumberLength = 5;
static_assert(kLinkNumbers.size() == kMaxLinks * kLinkNumberLength);

// Room for any cell of a header.
using Cell = std::array<char, 8>;

// Prints the same cell for every link, in one go: a stream call costs more than a cell.
void printEqualCells(std::uint32_t ports, SerDesLinkType side, const char* cell) {
  std::array<char, kMaxPorts * kMaxLinks * sizeof(Cell)> cells;
  const std::size_t cellLength = std::strlen(cell);
  std::size_t length = 0;
  forEachLink(ports, side, [&](std::uint32_t, std::uint32_t) {
    std::memcpy(&cells[length], cell, cellLength);
    length += cellLength;
  });
  (void)std::fwrite(cells.data(), 1, length, stdout);
}

// Prints cells that are alike for all links of a port: format(cell, port) puts them together once per port.
template <typename Format>
void printPortCells(std::uint32_t ports, Format format) {
  forEachBit(ports, walkedPortCount(), [&](std::uint32_t port) {
    Cell cell;
    format(cell, port);
    printEqualCells(std::uint32_t{1} << port, SERDES_LINK_TX, cell.data());
  });
}

// Prints the header rows; `columnPorts` are the ports of the mask that have columns.
void printHeader(const char* title, std::uint32_t columnPorts, const PortStatus& status) {
  std::printf("\n%-19s ", title);
  std::printf("\n%-19s ", "===================");
  printEqualCells(columnPorts, SERDES_LINK_TX, "==== ");
  std::printf("\n%-19s ", "ASIC port");
  printPortCells(columnPorts, [](Cell& cell, std::uint32_t port) {
    std::snprintf(cell.data(), cell.size(), "%4d ", static_cast<int>(port));
  });
  std::printf("\n%-19s ", "user port");
  printPortCells(columnPorts, [](Cell& cell, std::uint32_t port) {
    const std::uint16_t user = portId(port).userPort;
    if (user == kNoUserPort) {
      std::snprintf(cell.data(), cell.size(), "%4s ", "N/A");
    } else {
      std::snprintf(cell.data(), cell.size(), "%4d ", user);
    }
  });
  std::printf("\n%-19s ", "link num");
  forEachBit(columnPorts, walkedPortCount(), [](std::uint32_t port) {
    const std::uint32_t linkCount = walkedLinkCount(portSide(port, SERDES_LINK_TX));
    (void)std::fwrite(kLinkNumbers.data(), kLinkNumberLength, linkCount, stdout);
  });
  std::printf("\n%-18s ", "running rate");
  printPortCells(columnPorts, [&](Cell& cell, std::uint32_t port) {
    std::snprintf(cell.data(), cell.size(), "%5s", rateName(status.runningRate[port]));
  });
  std::printf("\n%-18s ", "media type");
  printPortCells(columnPorts, [&](Cell& cell, std::uint32_t port) {
    std::snprintf(cell.data(), cell.size(), "%5s", mediaName(status.mediaType[port]));
  });
  std::printf("\n%-19s ", "===================");
  printEqualCells(columnPorts, SERDES_LINK_TX, "==== ");
  std::printf("\n");
}

}  // namespace

void printPortTableHeader(const char* title, std::uint32_t portMask) {
  PortStatus status{};
  gatherPortStatus(portMask, status);
  printHeader(title, portMask, status);
}

void printLinkTableHeader(SerDesType type, SerDesLinkType side, std::uint32_t portMask) {
  PortStatus status{};
  gatherPortStatus(portMask, status);
  printHeader(serDesTypeName(type), portsOfType(type, side, portMask), status);
}

void printLinkSeparatorRow(SerDesType type, SerDesLinkType side, std::uint32_t portMask) {
  std::printf("%-19s ", "-------------------");
  printEqualCells(portsOfType(type, side, portMask), side, "---- ");
  std::printf("\n");
}
