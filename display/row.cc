// Cells put together by hand, as the formats beside their declarations would.
#include "display/row.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

Row::Row(std::string_view label, std::size_t labelWidth) {
  left(label, labelWidth);
  blanks(1);
}

void Row::blanks(std::size_t count) {
  std::memset(&text_[length_], ' ', count);
  length_ += count;
}

void Row::left(std::string_view text, std::size_t width) {
  this->text(text);
  blanks(width - std::min(text.size(), width));
}

void Row::right(std::string_view text, std::size_t width) {
  blanks(width - std::min(text.size(), width));
  this->text(text);
}

void Row::number(std::int32_t value) {
  std::array<char, kLongestCell> digits;
  const char* const end = std::to_chars(digits.begin(), digits.end(), value).ptr;
  right({digits.data(), static_cast<std::size_t>(end - digits.data())}, 4);
  blanks(1);
}

void Row::write() {
  text("\n");
  (void)std::fwrite(text_.data(), 1, length_, stdout);
}
