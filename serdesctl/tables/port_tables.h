// The rows of the tables by port.
#pragma once

#include "serdesctl/tables/answer_text.h"

namespace serdesctl {

// Reads the tables of one answer, the first of which begins here.
void readPortTables(TextCursor& text, const Words& words, AnswerText& answer);

// Adds records to those of the answer; throws ParseError when it holds others.
template <typename Record>
void addRecords(const TextCursor& text, std::vector<Record> records, AnswerText& answer) {
  if (std::holds_alternative<std::monostate>(answer.records)) answer.records.emplace<std::vector<Record>>();
  auto* const all = std::get_if<std::vector<Record>>(&answer.records);
  if (all == nullptr) text.fail("another table of the same command");
  all->insert(all->end(), std::make_move_iterator(records.begin()), std::make_move_iterator(records.end()));
}

}  // namespace serdesctl
