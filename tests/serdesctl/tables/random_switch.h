// Switches as nobody builds them: every number may be any that the tool prints.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>

#include "tests/serdesctl/random.h"
#include "tests/support/recording_platform.h"
#include "topology/serdes_topology.h"

namespace recording {

inline Side randomSide(Random& random, unsigned coreCount) {
  const unsigned links = random.oneIn(2) ? 1 : random.below(kMaxLinks + 1);
  return {.linkCount = links, .type = random.below(kSerDesTypeCount), .core = random.below(std::max(coreCount, 1U))};
}

inline void fillLinks(Random& random, Port& port) {
  for (TxLink& link : port.txLinks) {
    link = {.mode = random.named(4), .k = static_cast<std::uint8_t>(random.number()), .c = {}, .slew = random.named(8)};
    for (signed char& tap : link.c)
      tap = static_cast<signed char>(random.number());
  }
  for (RxLink& link : port.rxLinks) {
    link.mode = random.named(4);
    link.pole = static_cast<signed char>(random.number());
    link.peak = static_cast<signed char>(random.number());
    link.amax = static_cast<signed char>(random.number());
    for (std::int16_t& tap : link.stats.h)
      tap = static_cast<std::int16_t>(random.number());
    link.stats.Ap = static_cast<std::int16_t>(random.number());
    link.stats.Amin = static_cast<std::int16_t>(random.number());
    link.stats.An = static_cast<std::int16_t>(random.number());
  }
}

inline void fillPort(Random& random, Port& port, unsigned coreCount) {
  port.rx = randomSide(random, coreCount);
  port.tx = random.oneIn(2) ? port.rx : randomSide(random, coreCount);
  auto& id = port.hwConfig.portId;
  id.userPort = static_cast<std::uint16_t>(random.oneIn(4) ? kNoUserPort : random.number());
  port.hwConfig.presence = random.oneIn(8) ? 0 : 1;
  port.hwConfig.portType = random.below(5);
  port.state = random.oneIn(2) ? kPortStateRunning : random.below(12);
  port.configuredSpeed = random.oneIn(2) ? SPEED_AUTO : random.named(8);
  port.runningSpeed = random.named(8);
  port.media = random.named(9);
  port.streamState = random.oneIn(2) ? 1 : 0;
  port.decodeErrors = random.count();
  port.crcErrors = random.count();
  fillLinks(random, port);
  port.txCache = {.power = random.number(),
                  .slew = static_cast<std::int32_t>(random.named(8)),
                  .mode = static_cast<std::int32_t>(random.named(4)),
                  .p0 = random.number(),
                  .p1 = random.number(),
                  .p2 = random.number(),
                  .p3 = random.number()};
  port.rxCache = {.mode = static_cast<std::int32_t>(random.named(4)),
                  .p0 = random.number(),
                  .p1 = random.number(),
                  .p2 = random.number(),
                  .p3 = random.number()};
}

// Fills the platform. Types have names of their own unless they may share them.
inline void makeRandomSwitch(Random& random, bool sharedNames) {
  resetPlatform();
  platform.portCount = random.oneIn(10) ? 0 : random.below(kMaxPorts + 1);
  platform.coreCount = random.below(kMaxCores + 1);
  std::set<std::string> taken;
  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    std::string name = random.name();
    while (!sharedNames && !taken.insert(name.substr(0, name.find_last_not_of(' ') + 1)).second)
      name += "x";
    platform.typeNames[type] = name;
  }
  for (unsigned p = 0; p < kMaxPorts; ++p)
    fillPort(random, platform.ports[p], platform.coreCount);
  for (unsigned c = 0; c < kMaxCores; ++c) {
    platform.cores[c] = {.firstPort = static_cast<unsigned short>(random.number()),
                         .type = random.below(kSerDesTypeCount),
                         .pllRegisters = random.below(kMaxRegisters + 1),
                         .rxRegisters = random.below(kMaxRegisters + 1),
                         .txRegisters = random.below(kMaxRegisters + 1)};
  }
  platform.linkRegister = [](unsigned port, int link, SerDesLinkType side, unsigned address) {
    return static_cast<unsigned short>((port * 4 + static_cast<unsigned>(link)) * 2654435761U + address * 40503U +
                                       side);
  };
  platform.pllRegister = [](unsigned core, unsigned address) {
    return static_cast<unsigned short>(core * 40503U + address * 257U);
  };
}

// A list of ports or cores as it may be typed.
inline std::string randomList(Random& random) {
  constexpr std::array<const char*, 5> kKeywords = {"all", "gl", "XG", "exg", "0-23"};
  if (random.oneIn(2)) return kKeywords[random.below(kKeywords.size())];
  std::string list;
  for (std::uint32_t words = 1 + random.below(4); words > 0; --words) {
    const std::uint32_t first = random.below(26);
    list += (list.empty() ? "" : " ") + std::to_string(first);
    if (random.oneIn(3)) list += "-" + std::to_string(first + random.below(5));
  }
  return list;
}

}  // namespace recording
