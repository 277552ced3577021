// What a fuzz target shows its replay beside the fuzzer's own interface.
#pragma once

#include <set>
#include <string>

// Adds the platform's operations that the last input reached.
void addReached(std::set<std::string>& operations);
