// Table heads: who a column is (port, user port, link), and how it runs at this moment (rate, media).
#include "display/table_header.h"

#include <cstdio>

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

// Prints the header rows; `columnPorts` are the ports of the mask that have columns.
void printHeader(const char* title, std::uint32_t columnPorts, const PortStatus& status) {
  const auto forEachColumn = [&](auto print) { forEachLink(columnPorts, SERDES_LINK_TX, print); };

  std::printf("\n%-19s ", title);
  std::printf("\n%-19s ", "===================");
  forEachColumn([](std::uint32_t, std::uint32_t) { std::printf("%-4s ", "===="); });
  std::printf("\n%-19s ", "ASIC port");
  forEachColumn([](std::uint32_t port, std::uint32_t) { std::printf("%4d ", static_cast<int>(port)); });
  std::printf("\n%-19s ", "user port");
  forEachColumn([](std::uint32_t port, std::uint32_t) {
    const std::uint16_t user = portId(port).userPort;
    if (user == kNoUserPort) {
      std::printf("%4s ", "N/A");
    } else {
      std::printf("%4d ", user);
    }
  });
  std::printf("\n%-19s ", "link num");
  forEachColumn([](std::uint32_t, std::uint32_t link) { std::printf("%4d ", static_cast<int>(link)); });
  std::printf("\n%-18s ", "running rate");
  forEachColumn([&](std::uint32_t port, std::uint32_t) { std::printf("%5s", rateName(status.runningRate[port])); });
  std::printf("\n%-18s ", "media type");
  forEachColumn([&](std::uint32_t port, std::uint32_t) { std::printf("%5s", mediaName(status.mediaType[port])); });
  std::printf("\n%-19s ", "===================");
  forEachColumn([](std::uint32_t, std::uint32_t) { std::printf("%-4s ", "===="); });
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
  forEachLink(portsOfType(type, side, portMask), side,
              [](std::uint32_t, std::uint32_t) { std::printf("%-4s ", "----"); });
  std::printf("\n");
}
