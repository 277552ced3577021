// The showDFEStats command: one table per SerDes type, since the type decides what the tap values mean.
#include "commands/dfe_stats.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <span>

#include "arguments/word_reader.h"
#include "commands/link_table.h"
#include "display/table_header.h"
#include "topology/serdes_topology.h"

namespace {

// The largest count that fits a cell as it is.
constexpr std::uint64_t kMaxPlainCount = 9999;

struct LinkStats {
  SerDesRxDFEStats dfe;
  drv_counters_t counters;
};
using StatsTable = LinkTable<LinkStats, SERDES_LINK_RX>;

// The tap rows of a type; none for a type whose statistics cannot be laid out.
std::span<const char* const> tapLabels(std::uint32_t type) {
  switch (type) {
    case 2:
    case 5:
      return evenOddTapNames;
    case 3:
      return tapNames;
    default:
      return {};
  }
}

std::uint64_t counterValue(const WordPairCounter& counter) {
  return std::uint64_t{counter.high} << 32 | counter.low;
}

void printCountRow(const char* label, const StatsTable& table, WordPairCounter drv_counters_t::*counter) {
  std::printf("%-19s ", label);
  forEachLink(table.ports, SERDES_LINK_RX, [&](std::uint32_t port, std::uint32_t link) {
    printCompactCount(counterValue(table.records[port][link].counters.*counter));
  });
  std::printf("\n");
}

// The rows of a table whose ports are all of one type.
void printRows(const StatsTable& table, std::span<const char* const> taps) {
  for (std::size_t tap = 0; tap < taps.size(); ++tap)
    printRow(table, Row(taps[tap]), [&](Row& row, const LinkStats& link) { row.number(link.dfe.h[tap]); });
  printRow(table, Row("Ap"), [](Row& row, const LinkStats& link) { row.number(link.dfe.Ap); });
  printRow(table, Row("Amin"), [](Row& row, const LinkStats& link) { row.number(link.dfe.Amin); });
  printRow(table, Row("An"), [](Row& row, const LinkStats& link) { row.number(link.dfe.An); });
  printCountRow("Decode Errors", table, &drv_counters_t::decodeErrors);
  printCountRow("CRC Errors", table, &drv_counters_t::crcErrors);
  std::printf("\n");
}

int getStats(std::uint32_t port, std::uint32_t link, LinkStats& stats) {
  const int result = AsicControl::GetSerDesRxDFEStats(serdesTopology.asicNum, port, static_cast<int>(link), &stats.dfe);
  return result < 0 ? result : PortControl::GetFrameStatCntrs(portId(port), &stats.counters);
}

}  // namespace

CmdStatus showDFEStatsCmdHandler(int wordCount, char* words[]) {
  WordReader in(wordCount, words);
  const std::uint32_t ports = in.ports();
  if (in.failed()) return in.status();
  StatsTable table = {.ports = ports};
  if (const CmdStatus status = readTable(table, getStats, __func__); status != CMD_OK) return status;

  for (std::uint32_t type = 0; type < kSerDesTypeCount; ++type) {
    const auto serDesType = static_cast<SerDesType>(type);
    table.ports = portsOfType(serDesType, SERDES_LINK_RX, ports);
    if (table.ports == 0) continue;
    printLinkTableHeader(serDesType, SERDES_LINK_RX, ports);
    // A type that cannot be laid out ends the command in silence after its header.
    const std::span<const char* const> taps = tapLabels(type);
    if (taps.empty()) return CMD_EXEC_ERROR;
    printRows(table, taps);
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
