// The rows of tables.
//
// A row is put together here and written in one go: a stream call costs more than a cell, and dumps have thousands of
// cells. A label has 19 characters and a blank, a cell five characters, or more where its text does not fit. Names that
// stand on the right of their cells ("%5s") take a label of 18, so that they end in the same column as numbers.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "topology/serdes_topology.h"

class Row {
 public:
  Row() = default;
  explicit Row(std::string_view label, std::size_t labelWidth = 19);

  void text(std::string_view text) {
    std::memcpy(&text_[length_], text.data(), text.size());
    length_ += text.size();
  }
  void left(std::string_view text, std::size_t width);   // "%-*s"
  void right(std::string_view text, std::size_t width);  // "%*s"
  void number(std::int32_t value);                       // "%4d "
  void hexByte(std::uint8_t value) {                     // "%02x"
    text({kHexBytes[value].data(), 2});
  }
  void hexWord(std::uint16_t value) {  // "%04x "
    char* const cell = &text_[length_];
    std::memcpy(cell, kHexBytes[value >> 8].data(), 2);
    std::memcpy(cell + 2, kHexBytes[value & 0xFF].data(), 2);
    cell[4] = ' ';
    length_ += 5;
  }

  // Ends the line and writes it to standard output.
  void write();

 private:
  // The two hexadecimal digits of every byte.
  static constexpr auto kHexBytes = [] {
    constexpr char kDigits[] = "0123456789abcdef";
    std::array<std::array<char, 2>, 256> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
      bytes[i] = {kDigits[i / 16], kDigits[i % 16]};
    return bytes;
  }();
  static constexpr std::size_t kLongestLabel = kMaxTypeName + 1;
  static constexpr std::size_t kLongestCell = 12;  // a number with all digits

  void blanks(std::size_t count);

  std::size_t length_ = 0;
  std::array<char, kLongestLabel + kMaxPorts * kMaxLinks * kLongestCell + 1> text_;
};
