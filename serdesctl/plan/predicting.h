// What a switch makes of what is set, as far as that can be known beforehand. Where the hardware decides otherwise,
// reading back shows it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "display/name_tables.h"
#include "serdesctl/plan/serdes_limits.h"
#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// Whether the tool can set it for a port: a rate with caches, not AUTO and not what it prints for others.
bool isRate(const std::string& name);

// The rate whose caches setting this speed puts into force; empty when it is not known. AUTO stays at the rate that the
// port runs at, or that the wanted state was seen to run at; a port that is to go back to AUTO and was seen not to run
// there may find no rate again.
std::string rateInForce(const PortState& port, const std::string& configRate, const PortState& wanted);

// A rate's caches become the live settings of all links. What the SerDes does not take leaves them as they are; where
// its type is not known, what has no name or more than 8 bits.
void putIntoForce(PortState& port, const std::string& rate, const SerDesSides& sides);

// The number of a name; nothing for another one.
std::optional<std::int32_t> valueOf(std::span<const ValueName> names, const std::optional<std::string>& name);

// The cache that gives these live settings when it is put into force, the rest as it is; nothing where none does.
std::optional<TxRawValues> cacheFor(const LiveTx& live, const TxRawValues& otherwise, const SerDesSide& side);
std::optional<RxRawValues> cacheFor(const LiveRx& live, const RxRawValues& otherwise, const SerDesSide& side);

}  // namespace serdesctl
