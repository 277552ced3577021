// What the transmit and the receive caches have in common: one record per port and rate, read and written per port.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "arguments/cmd_status.h"
#include "commands/platform_walk.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

// Params is SerDesTxRateParams or SerDesRxRateParams throughout.
template <typename Params>
using PortRecords = std::array<Params, kMaxPorts>;

inline int setRateParams(std::uint32_t port, port_speed_type rate, const SerDesTxRateParams& params) {
  return AsicControl::SetSerDesTxRateParams(serdesTopology.asicNum, port, rate, params);
}

inline int setRateParams(std::uint32_t port, port_speed_type rate, const SerDesRxRateParams& params) {
  return AsicControl::SetSerDesRxRateParams(serdesTopology.asicNum, port, rate, params);
}

inline int getRateParams(std::uint32_t port, port_speed_type rate, SerDesTxRateParams& params) {
  return AsicControl::GetSerDesTxRateParams(serdesTopology.asicNum, port, rate, &params);
}

inline int getRateParams(std::uint32_t port, port_speed_type rate, SerDesRxRateParams& params) {
  return AsicControl::GetSerDesRxRateParams(serdesTopology.asicNum, port, rate, &params);
}

// Writes the record to every port of the mask.
template <typename Params>
CmdStatus writeCaches(std::uint32_t portMask, port_speed_type rate, const Params& params, const char* handler) {
  return onEachPort(portMask, handler, [&](std::uint32_t port) { return setRateParams(port, rate, params); });
}

// Reads the record of every port of the mask, whatever its link count.
template <typename Params>
CmdStatus readCaches(std::uint32_t portMask, port_speed_type rate, PortRecords<Params>& records, const char* handler) {
  return onEachPort(portMask, handler, [&](std::uint32_t port) { return getRateParams(port, rate, records[port]); });
}

// Prints a field of each port's record as a plain number under each of the port's links.
template <typename Params>
void printCacheCells(std::uint32_t portMask, SerDesLinkType side, const PortRecords<Params>& records,
                     std::int32_t Params::*field) {
  forEachLink(portMask, side, [&](std::uint32_t port, std::uint32_t) { std::printf("%4d ", records[port].*field); });
}
