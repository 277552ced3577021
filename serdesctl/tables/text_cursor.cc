// Reading text of a fixed form.
#include "serdesctl/tables/text_cursor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace serdesctl {
namespace {

constexpr std::size_t kMostShown = 40;

// What a message shows of a text that people may see on a terminal.
std::string shown(std::string_view text) {
  std::string result;
  for (const char c : text.substr(0, kMostShown)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == '\n') return result.empty() ? "the end of the line" : "'" + result + "'";
    result += byte < ' ' || byte >= 0x7F ? '?' : c;
  }
  return result.empty() ? "the end" : "'" + result + "'";
}

}  // namespace

ParseError::ParseError(const std::string& name, TextPlace place, const std::string& what)
    : AnswerError(name + ", line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " +
                  what),
      place_(place) {}

void TextCursor::expect(std::string_view expected) {
  if (skip(expected)) return;
  // A line that ends as expected is none of the trouble.
  while (startsWith("\n") && expected.size() > 1 && expected[0] == '\n') {
    ++at_;
    expected.remove_prefix(1);
  }
  fail(shown(expected));
}

bool TextCursor::skip(std::string_view expected) {
  if (!startsWith(expected)) return false;
  at_ += expected.size();
  return true;
}

std::int32_t TextCursor::number() {
  std::int32_t value = 0;
  const char* const begin = text_.data() + at_;
  const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
  const auto length = static_cast<std::size_t>(end - begin);
  if (error != std::errc() || std::to_string(value) != text_.substr(at_, length)) fail("a number");
  at_ += length;
  return value;
}

std::uint32_t TextCursor::hexNumber(int leastDigits) {
  std::uint32_t value = 0;
  const std::size_t digits = at_ + 2;
  if (startsWith("0x")) {
    (void)std::from_chars(text_.data() + digits, text_.data() + text_.size(), value, 16);
  }
  std::array<char, 16> printed;
  std::snprintf(printed.data(), printed.size(), "0x%0*x", leastDigits, value);
  if (!skip(printed.data())) fail("a hexadecimal number");
  return value;
}

std::string_view TextCursor::line() {
  return until("\n");
}

std::string_view TextCursor::until(std::string_view end) {
  const std::size_t length = rest().find(end);
  if (length == std::string_view::npos) fail(shown(end) + " in it");
  return take(length, end.size());
}

std::string_view TextCursor::untilLast(std::string_view end) {
  const std::size_t length = rest().substr(0, rest().find('\n')).rfind(end);
  if (length == std::string_view::npos) fail(shown(end) + " in it");
  return take(length, end.size());
}

std::string_view TextCursor::take(std::size_t length, std::size_t behind) {
  const std::string_view taken = rest().substr(0, length);
  at_ += length + behind;
  return taken;
}

void TextCursor::expectEnd() {
  if (!atEnd()) fail("the end");
}

TextPlace TextCursor::place() const {
  const std::string_view before = text_.substr(0, at_);
  const auto newlines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  return {.line = 1 + newlines, .column = at_ - (before.rfind('\n') + 1) + 1};
}

void TextCursor::fail(const std::string& expected) const {
  throw ParseError(name_, place(), expected + " was expected before " + shown(rest()));
}

}  // namespace serdesctl
