// Tables of one record per link, all links of a side of the selected ports.
#pragma once

#include <cstdint>

#include "commands/platform_walk.h"
#include "display/row.h"

template <typename LinkRecord, SerDesLinkType kLinkSide>
struct LinkTable {
  using Record = LinkRecord;
  static constexpr SerDesLinkType kSide = kLinkSide;

  std::uint32_t ports = 0;
  std::uint32_t filled = ~std::uint32_t{0};  // the cells of other ports stay blank
  PerLink<Record> records = {};
};

using TxTable = LinkTable<SerDesTxRateParams, SERDES_LINK_TX>;
using RxTable = LinkTable<SerDesRxRateParams, SERDES_LINK_RX>;

// Fills the table by get(port, link, record), which returns a platform result.
template <typename Table, typename Get>
CmdStatus readTable(Table& table, Get get, const char* handler) {
  return onEachLink(table.ports, Table::kSide, handler,
                    [&](std::uint32_t port, std::uint32_t link) { return get(port, link, table.records[port][link]); });
}

// Prints a row whose cells are put into it by add(row, record).
template <typename Table, typename Add>
void printRow(const Table& table, Row row, Add add) {
  forEachLink(table.ports, Table::kSide, [&](std::uint32_t port, std::uint32_t link) {
    if ((table.filled >> port & 1) != 0) {
      add(row, table.records[port][link]);
    } else {
      row.text("     ");
    }
  });
  row.write();
}

// Prints a row of numbers.
template <typename Table, typename Number>
void printRow(const Table& table, const char* label, Number Table::Record::*number) {
  printRow(table, Row(label), [&](Row& row, const auto& record) { row.number(record.*number); });
}
