// The topology as records: a record per port, and a record per core of those that setAsicNum finds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "serdesctl/tables/config_text.h"

namespace serdesctl {

struct PortRecord {
  std::uint32_t asic = 0;
  ConfigPort config;
  std::optional<std::string> portType;
};

// "gl", "xg", "exg"; nothing for a port of no known type.
std::optional<std::string> portTypeOf(const ConfigText& config, std::uint32_t port);

std::vector<PortRecord> portRecords(const ConfigText& config);

// The numbers of the bits that are set.
std::vector<std::uint32_t> bitsOf(std::uint32_t mask);

template <typename Visit>
void eachField(const PortRecord& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("port", r.config.port);
  visit("user_port", r.config.userPort);
  visit("port_type", r.portType);
  visit("rx_links", r.config.rx.links);
  visit("rx_serdes_type", r.config.rx.serDesType);
  visit("rx_core", r.config.rx.core);
  visit("tx_links", r.config.tx.links);
  visit("tx_serdes_type", r.config.tx.serDesType);
  visit("tx_core", r.config.tx.core);
}

template <typename Visit>
void eachField(const FoundCore& r, Visit&& visit) {
  visit("asic", r.asic);
  visit("core", r.core);
  visit("first_port", r.firstPort);
  visit("serdes_type_number", r.serDesType);
  visit("pll_registers", r.pllRegisters);
  visit("rx_registers", r.rxRegisters);
  visit("tx_registers", r.txRegisters);
  visit("rx_params", r.rxParams);
  visit("tx_params", r.txParams);
}

}  // namespace serdesctl
