// Looking at ports.
#include "serdesctl/health/looking.h"

#include <utility>

#include "serdesctl/tables/config_records.h"
#include "topology/serdes_topology.h"

namespace serdesctl {
namespace {

using Looks = std::map<std::uint32_t, PortLook>;

void readRates(AskedSwitch& asked, std::uint32_t ports, Looks& looks) {
  const Shown shown = asked.ask(splitWords("showRate " + listOf(ports)));
  for (const Rate& record : std::get<std::vector<Rate>>(shown.records)) {
    PortLook& look = looks[record.port];
    look.rate = record;
    look.runningRate = record.runningRate;
    look.media = record.media;
  }
}

void readStatistics(AskedSwitch& asked, std::uint32_t ports, Looks& looks, const std::function<double()>& secondsNow) {
  std::vector<DfeStats> records = asked.statistics(ports);
  const double now = secondsNow();
  for (DfeStats& record : records) {
    PortLook& look = looks[record.port];
    look.atS = now;
    look.links.push_back(std::move(record));
  }
}

}  // namespace

PortPlace placeOf(const ConfigText& config, std::uint32_t port) {
  const PortRecord record = portRecords(config).at(port);
  return {.asic = config.asic,
          .port = port,
          .userPort = record.config.userPort,
          .portType = record.portType,
          .serDesType = record.config.rx.serDesType};
}

std::map<std::uint32_t, PortLook> lookAt(AskedSwitch& asked, std::uint32_t ports,
                                         const std::function<double()>& secondsNow) {
  Looks looks;
  if (ports == 0) return looks;
  forEachBit(ports, kMaxPorts, [&](std::uint32_t port) { looks[port] = {}; });
  const auto complain = [&](std::uint32_t port, const std::string& why) { looks[port].complaint = why; };
  readTogether(
      ports, [&](std::uint32_t together) { readRates(asked, together, looks); }, complain);
  for (const std::uint32_t ofOneType : asked.portsByType(ports)) {
    readTogether(
        ofOneType, [&](std::uint32_t together) { readStatistics(asked, together, looks, secondsNow); }, complain);
  }
  return looks;
}

}  // namespace serdesctl
