// What the tables by port have in common: their head, and which port and link each cell belongs to.
//
// The head has a column per transmit link of each selected port, above receive tables too. The cells of a receive table
// are one per receive link, so the topology tells where a port's cells end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "serdesctl/tables/records.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

struct HeadColumn {
  std::uint32_t port = 0;
  std::optional<std::uint32_t> userPort;
  std::uint32_t link = 0;
  std::string runningRate;
  std::string media;
};

struct TableHead {
  TextPlace place;
  std::string title;  // with the blanks that fill its column
  std::vector<HeadColumn> columns;
  SerDesLinkType side = SERDES_LINK_TX;  // of the table's cells
  bool ofOneType = false;                // of SerDes: the title is the type's name
  std::optional<std::size_t> cells;      // in each row; nothing in a table without rows
};

// Whether a table's head begins here.
bool atTableHead(const TextCursor& text);

// Reads a head up to its first row; `side`, `ofOneType` and `cells` are left to the reader of the rows.
TableHead readTableHead(TextCursor& text);

// What is known about the command and the switch besides the text.
struct TableContext {
  std::string name;                    // of the text, for messages
  const ConfigText* config = nullptr;  // the topology; null: not known
  bool configIsOfThen = true;          // false: it is of another moment, and only decides what the text leaves open
  std::optional<std::uint32_t> asic;
  std::optional<std::uint32_t> ports;  // the ports that the command named; nothing: not known
};

// The place of every cell of a row, in order. Throws ParseError where text and context do not tell, or contradict each
// other.
std::vector<Link> placesOfCells(const TableHead& head, const TableContext& context);

}  // namespace serdesctl
