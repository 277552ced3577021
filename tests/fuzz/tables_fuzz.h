// What the fuzz target of the tables shows its replay beside the fuzzer's own interface.
#pragma once

#include <string_view>

// Reads an input; true when it holds records, false when it is refused.
bool readTables(std::string_view input);
