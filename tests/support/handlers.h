// Runs handlers past the dispatcher.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "arguments/argument_parsers.h"
#include "shell/command_table.h"
#include "tests/support/expected.h"

namespace recording {

// The row of a command.
inline const CmdTableEntry& rowOf(const std::string& name) {
  const CmdTableEntry* row = cmdTable.data();
  while (row->name != nullptr && row->name != name)
    ++row;
  EXPECT_NE(row->name, nullptr) << "no row is called " << name;
  return *row;
}

// Runs a line past its row: neither the row's bounds nor its set flag hold, so that only the handler's own rules are
// left.
inline Outcome runPastItsRow(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;)
    words.push_back(word);
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  currentCommandSets = false;
  platform.calls.clear();
  Outcome outcome;
  outcome.out =
      printedBy([&] { outcome.status = rowOf(words[0]).handler(static_cast<int>(pointers.size()), pointers.data()); });
  outcome.calls = platform.calls;
  return outcome;
}

}  // namespace recording
