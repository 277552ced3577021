// Table heads: who a column is (port, user port, link), and how it runs at this moment (rate, media).
#include "display/table_header.h"

#include <cstdio>

#include "display/name_tables.h"
#include "display/row.h"

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

// Prints a label and cells that are drawn with one character.
void printRule(std::string_view label, std::uint32_t ports, SerDesLinkType side) {
  const char dash = label.front();
  const std::array cell = {dash, dash, dash, dash, ' '};
  Row row(label);
  forEachLink(ports, side, [&](std::uint32_t, std::uint32_t) { row.text({cell.data(), cell.size()}); });
  row.write();
}

// Prints the header rows; `ports` are the ports of the mask that have columns.
void printHeader(const char* title, std::uint32_t ports, const PortStatus& status) {
  Row asicPorts("ASIC port"), userPorts("user port"), links("link num");
  Row rates("running rate", 18), media("media type", 18);
  forEachLink(ports, SERDES_LINK_TX, [&](std::uint32_t port, std::uint32_t link) {
    asicPorts.number(static_cast<std::int32_t>(port));
    const std::uint16_t user = portId(port).userPort;
    user == kNoUserPort ? userPorts.text(" N/A ") : userPorts.number(user);
    links.number(static_cast<std::int32_t>(link));
    rates.right(rateName(status.runningRate[port]), 5);
    media.right(mediaName(status.mediaType[port]), 5);
  });
  std::printf("\n");
  Row(title).write();
  printRule("===================", ports, SERDES_LINK_TX);
  for (Row* row : {&asicPorts, &userPorts, &links, &rates, &media})
    row->write();
  printRule("===================", ports, SERDES_LINK_TX);
}

}  // namespace

std::uint32_t runningPorts() {
  std::uint32_t ports = 0;
  for (std::uint32_t port = 0; port < kMaxPorts; ++port)
    ports |= std::uint32_t{portRunning[port]} << port;
  return ports;
}

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
  printRule("-------------------", portsOfType(type, side, portMask), side);
}
