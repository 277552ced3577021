// The cells of a table row, one per link of the selected ports. Labels and formats stay with the commands.
#pragma once

#include <cstdint>
#include <cstdio>

#include "topology/serdes_topology.h"

// Calls print(*values) per link, where valuesOf(port, link) gives a std::optional; a column without values stays blank.
template <typename ValuesOf, typename Print>
void printCells(std::uint32_t portMask, SerDesLinkType side, ValuesOf valuesOf, Print print) {
  forEachLink(portMask, side, [&](std::uint32_t port, std::uint32_t link) {
    if (const auto values = valuesOf(port, link); values) {
      print(*values);
    } else {
      std::printf("%4s ", "");
    }
  });
}
