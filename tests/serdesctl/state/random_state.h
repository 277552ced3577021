// States as no switch has them: any topology, any values that the tool prints, and gaps where it refused.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "display/name_tables.h"
#include "serdesctl/state/state_json.h"
#include "serdesctl/state/switch_state.h"
#include "tests/serdesctl/random.h"
#include "topology/serdes_topology.h"

namespace serdesctl {

using recording::Random;

inline std::int32_t randomByte(Random& random) {
  return static_cast<signed char>(random.number());
}

template <std::size_t kCount>
std::string randomName(Random& random, const std::array<ValueName, kCount>& names, const char* otherwise) {
  return random.oneIn(20) ? otherwise : names[random.below(kCount)].name;
}

inline LiveTx randomTx(Random& random) {
  LiveTx link;
  link.ffeMode = randomName(random, ffeModeNames, kUnnamed);
  link.k = static_cast<std::uint8_t>(random.number());
  for (auto* tap : {&link.c0, &link.c1, &link.c2, &link.c3})
    *tap = randomByte(random);
  link.slewUnnamed = random.oneIn(20);
  if (!link.slewUnnamed) link.slewPs = std::stoi(slewRateNames[random.below(slewRateNames.size())].shortName);
  return link;
}

inline LiveRx randomRx(Random& random) {
  LiveRx link;
  link.dfeMode = randomName(random, dfeModeNames, kUnnamed);
  for (auto* number : {&link.pole, &link.peak, &link.amax})
    *number = randomByte(random);
  return link;
}

inline TxRawValues randomTxCache(Random& random) {
  TxRawValues cache;
  cache.power = random.number();
  cache.slew = random.oneIn(8) ? random.number() : static_cast<std::int32_t>(random.below(7));
  cache.mode = random.oneIn(8) ? random.number() : static_cast<std::int32_t>(random.below(4));
  for (std::int32_t& p : cache.p)
    p = random.number();
  return cache;
}

inline RxRawValues randomRxCache(Random& random) {
  RxRawValues cache;
  cache.mode = random.oneIn(8) ? random.number() : static_cast<std::int32_t>(random.below(4));
  for (std::int32_t& p : cache.p)
    p = random.number();
  return cache;
}

inline Count randomCount(Random& random) {
  const std::uint64_t lowest = random.below(10000);
  if (random.oneIn(2)) return {.number = static_cast<double>(lowest), .lowest = lowest, .highest = lowest};
  return {.number = 2e15, .lowest = 1950000000000000, .highest = 2499999999999999};
}

inline DfeStatsValues randomStatistics(Random& random) {
  DfeStatsValues link;
  if (random.oneIn(4)) return link;
  for (auto& tap : link.evenOddTaps)
    tap = static_cast<std::int16_t>(random.number());
  for (auto* value : {&link.ap, &link.amin, &link.an})
    *value = static_cast<std::int16_t>(random.number());
  link.decodeErrors = randomCount(random);
  link.crcErrors = randomCount(random);
  return link;
}

inline void fillObservations(Random& random, std::uint32_t rxLinks, PortObservations& observed) {
  if (random.oneIn(10)) {
    observed.unread = "showDFEStats: " + random.name();
    return;
  }
  observed.runningRate = randomName(random, rateNames, "INV");
  observed.media = randomName(random, mediaNames, kUnnamed);
  for (std::uint32_t link = 0; link < rxLinks; ++link)
    observed.links.push_back(randomStatistics(random));
}

// Links of a port often share their settings; now and then one command could not show them.
inline PortState randomPort(Random& random, const ConfigPort& config) {
  PortState port;
  port.port = config.port;
  fillObservations(random, config.rx.links, port.observed);
  const bool same = !random.oneIn(4), readable = !random.oneIn(10);
  const LiveTx tx = randomTx(random);
  const LiveRx rx = randomRx(random);
  for (std::uint32_t link = 0; readable && link < config.tx.links; ++link)
    port.tx.push_back(same ? tx : randomTx(random));
  for (std::uint32_t link = 0; readable && link < config.rx.links; ++link)
    port.rx.push_back(same ? rx : randomRx(random));
  for (LiveTx& link : port.tx) {
    if (random.oneIn(20)) static_cast<FfeValues&>(link) = {};
  }
  const bool alike = random.oneIn(3);
  const TxRawValues txCache = randomTxCache(random);
  const RxRawValues rxCache = randomRxCache(random);
  for (std::size_t rate = SPEED_1G; rate < rateNames.size(); ++rate) {
    if (config.tx.links != 0) port.txCaches[rateNames[rate].name] = alike ? txCache : randomTxCache(random);
    if (config.rx.links != 0) port.rxCaches[rateNames[rate].name] = alike ? rxCache : randomRxCache(random);
  }
  if (config.tx.links == 0) return port;
  port.configRate = randomName(random, rateNames, "INV");
  port.streamEnabled = random.oneIn(2);
  return port;
}

inline ConfigSide randomSide(Random& random) {
  return {.links = random.oneIn(2) ? 1 : random.below(kMaxLinks + 1),
          .serDesType = "TYPE" + std::to_string(random.below(3)),
          .core = random.below(kMaxCores)};
}

inline void addPort(Random& random, AsicState& asic) {
  ConfigPort& port = asic.config.ports.emplace_back();
  port.port = static_cast<std::uint32_t>(asic.config.ports.size() - 1);
  port.rx = randomSide(random);
  port.tx = randomSide(random);
  if (!random.oneIn(4)) port.userPort = asic.asic * 100 + port.port;
  const std::uint32_t bit = std::uint32_t{1} << port.port;
  const std::uint32_t kind = random.below(4);
  if (kind == 0) asic.config.glPorts |= bit;
  if (kind == 1) asic.config.xgPorts |= bit;
  if (kind == 2) asic.config.exgPorts |= bit;
  if (!random.oneIn(10)) asic.ports.push_back(randomPort(random, port));
}

inline RegisterDumps randomRegisters(Random& random, const AsicState& asic) {
  const auto list = [&] {
    return std::vector<std::uint16_t>(random.below(4), static_cast<std::uint16_t>(random.number()));
  };
  RegisterDumps dumps;
  dumps.pll[random.below(kMaxCores)] = list();
  for (const PortState& port : asic.ports) {
    if (!port.tx.empty()) dumps.tx[port.port] = {list()};
    if (!port.rx.empty()) dumps.rx[port.port] = {list()};
  }
  return dumps;
}

inline AsicState randomAsic(Random& random, std::uint32_t number) {
  AsicState asic;
  asic.asic = number;
  asic.config.asic = number;
  asic.config.portCount = random.below(kMaxPorts + 1);
  for (std::uint32_t port = 0; port < asic.config.portCount; ++port)
    addPort(random, asic);
  asic.config.types = {{.name = random.name(), .useCount = random.below(9)}, {.name = "TYPE1", .useCount = 0}};
  asic.config.cores = {{.core = 3, .serDesType = random.name(), .rxPorts = random.below(99), .txPorts = 0xFFFFFFFF}};
  asic.config.coreCount = 1;
  asic.cores = {{.asic = number, .core = 3, .firstPort = random.number(), .serDesType = 2, .pllRegisters = 9}};
  if (random.oneIn(2)) asic.registers = randomRegisters(random, asic);
  return asic;
}

inline Save randomSave(Random& random) {
  Save save;
  save.origin = {.target = random.name(), .time = "2025-11-21T21:13:05Z"};
  save.state.hardware = {.slots = random.number(), .userPorts = random.number(), .auxPorts = 2, .asics = 2};
  for (std::uint32_t asic = random.below(2); asic < 2; ++asic)
    save.state.asics.push_back(randomAsic(random, asic));
  if (random.oneIn(3)) save.state.unread = {{1, std::nullopt, "config", random.name()}, {0, 7, "tx_cache_raw 8G", "x"}};
  return save;
}

}  // namespace serdesctl
