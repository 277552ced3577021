// The topology as records.
#include "serdesctl/tables/config_records.h"

#include "topology/serdes_topology.h"

namespace serdesctl {

std::vector<std::uint32_t> bitsOf(std::uint32_t mask) {
  std::vector<std::uint32_t> bits;
  forEachBit(mask, 32, [&](std::uint32_t bit) { bits.push_back(bit); });
  return bits;
}

std::optional<std::string> portTypeOf(const ConfigText& config, std::uint32_t port) {
  const auto isIn = [&](std::uint32_t ports) { return (ports >> port & 1) != 0; };
  if (isIn(config.glPorts)) return "gl";
  if (isIn(config.xgPorts)) return "xg";
  return isIn(config.exgPorts) ? std::optional<std::string>("exg") : std::nullopt;
}

std::vector<PortRecord> portRecords(const ConfigText& config) {
  std::vector<PortRecord> records;
  for (const ConfigPort& port : config.ports) {
    PortRecord& record = records.emplace_back();
    record.asic = config.asic;
    record.config = port;
    record.portType = portTypeOf(config, port.port);
  }
  return records;
}

}  // namespace serdesctl
