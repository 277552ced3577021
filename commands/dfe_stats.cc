// The showDFEStats command: one table per SerDes type, since the type decides what the tap values mean.
#include "commands/dfe_stats.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <span>

#include "arguments/port_lists.h"
#include "commands/platform_walk.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

namespace {

constexpr std::array<const char*, 10> kEvenOddTaps = {"H1_Even", "H1_Odd",  "H2_Even", "H2_Odd",  "H3_Even",
                                                      "H3_Odd",  "H4_Even", "H4_Odd",  "H5_Even", "H5_Odd"};
constexpr std::array<const char*, 5> kTaps = {"H1", "H2", "H3", "H4", "H5"};

// The largest count that fits a cell as it is.
constexpr std::uint64_t kMaxPlainCount = 9999;

struct LinkStats {
  SerDesRxDFEStats dfe;
  drv_counters_t counters;
};

// The tap rows of a type; none for a type whose statistics cannot be laid out.
std::span<const char* const> tapLabels(std::uint32_t type) {
  switch (type) {
    case 2:
    case 5:
      return kEvenOddTaps;
    case 3:
      return kTaps;
    default:
      return {};
  }
}

std::uint64_t counterValue(const WordPairCounter& counter) {
  return std::uint64_t{counter.high} << 32 | counter.low;
}

void printValueCells(std::uint32_t ports, const PerLink<LinkStats>& stats, std::int16_t SerDesRxDFEStats::*field) {
  forEachLink(ports, SERDES_LINK_RX,
              [&](std::uint32_t port, std::uint32_t link) { std::printf("%4d ", stats[port][link].dfe.*field); });
}

void printCounterCells(std::uint32_t ports, const PerLink<LinkStats>& stats, WordPairCounter drv_counters_t::*field) {
  forEachLink(ports, SERDES_LINK_RX, [&](std::uint32_t port, std::uint32_t link) {
    printCompactCount(counterValue(stats[port][link].counters.*field));
  });
}

// Prints the rows of a table for `ports`, all of one type.
void printRows(std::span<const char* const> taps, std::uint32_t ports, const PerLink<LinkStats>& stats) {
  for (std::size_t tap = 0; tap < taps.size(); ++tap) {
    if (tap != 0) std::printf("\n");
    std::printf("%-19s ", taps[tap]);
    forEachLink(ports, SERDES_LINK_RX,
                [&](std::uint32_t port, std::uint32_t link) { std::printf("%4d ", stats[port][link].dfe.h[tap]); });
  }
  std::printf("\n%-19s ", "Ap");
  printValueCells(ports, stats, &SerDesRxDFEStats::Ap);
  std::printf("\n%-19s ", "Amin");
  printValueCells(ports, stats, &SerDesRxDFEStats::Amin);
  std::printf("\n%-19s ", "An");
  printValueCells(ports, stats, &SerDesRxDFEStats::An);
  std::printf("\n%-19s ", "Decode Errors");
  printCounterCells(ports, stats, &drv_counters_t::decodeErrors);
  std::printf("\n%-19s ", "CRC Errors");
  printCounterCells(ports, stats, &drv_counters_t::crcErrors);
  std::printf("\n\n");
}

}  // namespace

CmdStatus showDFEStatsCmdHandler(int wordCount, char* words[]) {
  std::uint32_t portMask = 0;
  if (const CmdStatus status = parsePorts(wordCount, words, 1, portMask); status != CMD_OK) return status;

  PerLink<LinkStats> stats{};
  const CmdStatus read = onEachLink(portMask, SERDES_LINK_RX, __func__, [&](std::uint32_t port, std::uint32_t link) {
    const int result =
        AsicControl::GetSerDesRxDFEStats(serdesTopology.asicNum, port, static_cast<int>(link), &stats[port][link].dfe);
    return result < 0 ? result : PortControl::GetFrameStatCntrs(portId(port), &stats[port][link].counters);
  });
  if (read != CMD_OK) return read;

  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    const auto serDesType = static_cast<SerDesType>(type);
    const std::uint32_t ports = portsOfType(serDesType, SERDES_LINK_RX, portMask);
    if (ports == 0) continue;
    printLinkTableHeader(serDesType, SERDES_LINK_RX, portMask);
    // A type that cannot be laid out ends the command in silence after its header.
    const std::span<const char* const> taps = tapLabels(type);
    if (taps.empty()) return CMD_EXEC_ERROR;
    printRows(taps, ports, stats);
  }
  return CMD_OK;
}

void printCompactCount(std::uint64_t value) {
  if (value <= kMaxPlainCount) {
    std::printf("%4d ", static_cast<int>(value));
    return;
  }
  // The exponent is cut before the mantissa is rounded: just below a power of ten the mantissa is 10, and stays so.
  const auto number = static_cast<double>(value);
  // Storing the logarithm rounds it to double also where the processor computes with more bits.
  const volatile double logarithm = std::log10(number);
  const auto exponent = static_cast<unsigned>(logarithm);
  const auto mantissa = static_cast<unsigned>(number / std::pow(10.0, exponent) + 0.5);
  std::printf("%1de%02d ", static_cast<int>(mantissa), static_cast<int>(exponent));
}
