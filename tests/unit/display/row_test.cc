// Rows put together by hand are what the C library's formats would give.
#include "display/row.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "tests/support/tool_test.h"

namespace recording {
namespace {

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...) {
  std::array<char, 64> text;
  std::va_list values;
  va_start(values, format);
  std::vsnprintf(text.data(), text.size(), format, values);
  va_end(values);
  return text.data();
}

// What `add` appends to an empty row.
template <typename Add>
std::string cell(Add add) {
  std::string line = printedBy([&] {
    Row row;
    add(row);
    row.write();
  });
  EXPECT_EQ(line.back(), '\n');
  line.pop_back();
  return line;
}

TEST(Row, LabelFillsItsColumnAndABlank) {
  EXPECT_EQ(printedBy([] { Row("amax").write(); }), "amax                \n");
  EXPECT_EQ(printedBy([] { Row("slew rate (ps)", 18).write(); }), "slew rate (ps)     \n");
  EXPECT_EQ(printedBy([] { Row("nineteen characters").write(); }), "nineteen characters \n");
  EXPECT_EQ(printedBy([] { Row(std::string(255, 'x')).write(); }), std::string(255, 'x') + " \n");
}

TEST(Row, NumberIsAsItsFormat) {
  for (const int value : {0, 7, 12, 999, 9999, 10000, -1, -12, -999, -1000, INT_MAX, INT_MIN})
    EXPECT_EQ(cell([&](Row& row) { row.number(value); }), formatted("%4d ", value));
}

TEST(Row, WordAndByteAreAsTheirFormats) {
  for (const unsigned value : {0x0u, 0xFu, 0x1234u, 0x9ABCu, 0xDEF0u, 0xFFFFu})
    EXPECT_EQ(cell([&](Row& row) { row.hexWord(static_cast<std::uint16_t>(value)); }), formatted("%04x ", value));
  for (unsigned value = 0; value <= 0xFF; ++value)
    EXPECT_EQ(cell([&](Row& row) { row.hexByte(static_cast<std::uint8_t>(value)); }), formatted("%02x", value));
}

TEST(Row, TextIsPaddedOnEitherSideAndNeverCut) {
  for (const char* text : {"", "8G", "FFE3", "FFENone"}) {
    EXPECT_EQ(cell([&](Row& row) { row.left(text, 4); }), formatted("%-4s", text));
    EXPECT_EQ(cell([&](Row& row) { row.right(text, 5); }), formatted("%5s", text));
    EXPECT_EQ(cell([&](Row& row) { row.text(text); }), text);
  }
}

TEST(Row, HoldsTheLongestCellOfEveryLink) {
  std::string cells;
  const std::string line = cell([&](Row& row) {
    row.left(std::string(255, 'x'), 0);
    for (unsigned i = 0; i < kMaxPorts * kMaxLinks; ++i) {
      row.number(INT_MIN);
      cells += "-2147483648 ";
    }
  });
  EXPECT_EQ(line, std::string(255, 'x') + cells);
}

}  // namespace
}  // namespace recording
