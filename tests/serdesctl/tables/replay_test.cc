// The fuzzer's inputs once more: some are records and some are refused, and none does harm.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/fuzz/tables_fuzz.h"

namespace {

TEST(TablesFuzz, InputsAreRecordsOrErrors) {
  unsigned read = 0;
  unsigned refused = 0;
  for (const auto& entry : std::filesystem::directory_iterator(TABLES_CORPUS)) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string input((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ++(readTables(input) ? read : refused);
  }
  EXPECT_GT(read, 30U);
  EXPECT_GT(refused, 100U);
}

}  // namespace
