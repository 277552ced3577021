// The topology as records.
#include "serdesctl/tables/config_records.h"

#include "topology/serdes_topology.h"

namespace serdesctl {

std::vector<std::uint32_t> bitsOf(std::uint32_t mask) {
  std::vector<std::uint32_t> bits;
  forEachBit(mask, 32, [&](std::uint32_t bit) { bits.push_back(bit); });
  return bits;
}

std::vector<PortRecord> portRecords(const ConfigText& config) {
  std::vector<PortRecord> records;
  for (const ConfigPort& port : config.ports) {
    PortRecord& record = records.emplace_back();
    record.asic = config.asic;
    record.config = port;
    const auto isIn = [&](std::uint32_t ports) { return (ports >> port.port & 1) != 0; };
    if (isIn(config.glPorts)) {
      record.portType = "gl";
    } else if (isIn(config.xgPorts)) {
      record.portType = "xg";
    } else if (isIn(config.exgPorts)) {
      record.portType = "exg";
    }
  }
  return records;
}

}  // namespace serdesctl
