// Port lists of the current ASIC.
#include "arguments/port_lists.h"

#include "arguments/argument_parsers.h"
#include "topology/serdes_topology.h"

CmdStatus parsePorts(int wordCount, char* words[], int first, std::uint32_t& portMask) {
  return parsePortList(wordCount - first, words + first, portMask, serdesTopology.glPortList, serdesTopology.xgPortList,
                       serdesTopology.exgPortList);
}

CmdStatus requireFibreChannel(std::uint32_t portMask) {
  return (portMask & serdesTopology.exgPortList) != 0 ? CMD_FC_ONLY : CMD_OK;
}

CmdStatus requireEthernet(std::uint32_t portMask) {
  return (portMask & (serdesTopology.glPortList | serdesTopology.xgPortList)) != 0 ? CMD_ETHERNET_ONLY : CMD_OK;
}

CmdStatus requireOnePortType(std::uint32_t portMask) {
  const bool gl = (portMask & serdesTopology.glPortList) != 0;
  const bool xg = (portMask & serdesTopology.xgPortList) != 0;
  const bool exg = (portMask & serdesTopology.exgPortList) != 0;
  return (exg && (xg || gl)) || (xg && gl) ? CMD_MIXED_PORT_TYPES : CMD_OK;
}
