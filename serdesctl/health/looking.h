// Looks at ports: their rates and statistics, as far as they can be read.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "serdesctl/asking/asked_switch.h"
#include "serdesctl/health/judging.h"

namespace serdesctl {

// What a port is, as the topology tells.
PortPlace placeOf(const ConfigText& config, std::uint32_t port);

// A look at each of the ports. A port that cannot be read has a complaint and does not keep the others from being read.
// `secondsNow` is the clock.
std::map<std::uint32_t, PortLook> lookAt(AskedSwitch& asked, std::uint32_t ports,
                                         const std::function<double()>& secondsNow);

}  // namespace serdesctl
