// What one command prints, recognised by its text and read to its end.
#pragma once

#include <string>
#include <vector>

#include "serdesctl/base/command_words.h"
#include "serdesctl/tables/port_table.h"
#include "serdesctl/tables/records.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

// Read without the topology: the records of tables by port do not have their places yet.
struct AnswerText {
  Records records;
  std::vector<TableHead> heads;  // of the tables by port, in order: their cells are the records, one after the other
  std::string complaint;         // about a platform call that failed, such as "setFFECmdHandler: serdes err -5"
};

// Reads what a command printed, up to its status message. `words` are the command's where they are known, else empty;
// they decide where the text does not. Throws ParseError.
AnswerText readAnswerText(TextCursor& text, const Words& words);

// Whether the command, when it succeeds, prints something that can be read; false for one that prints nothing.
bool printsRecords(const Words& words);

// Throws ParseError when the command, which succeeded, prints something else. Tables by SerDes type that have no port
// become no records of their kind.
void requireOutputOf(const Words& words, const TextCursor& text, AnswerText& answer);

// The records with their places.
Records placedRecords(AnswerText answer, const TableContext& context);

}  // namespace serdesctl
