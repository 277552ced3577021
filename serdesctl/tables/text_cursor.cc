// Reading text of a fixed form.
#include "serdesctl/tables/text_cursor.h"

#include <algorithm>
#include <charconv>

#include "serdesctl/base/errors.h"

namespace serdesctl {

void TextCursor::expect(std::string_view expected) {
  if (!skip(expected)) fail("'" + std::string(expected) + "'");
}

bool TextCursor::skip(std::string_view expected) {
  if (!startsWith(expected)) return false;
  at_ += expected.size();
  return true;
}

void TextCursor::skipBlanks() {
  while (!atEnd() && text_[at_] == ' ')
    ++at_;
}

std::int32_t TextCursor::number() {
  std::int32_t value = 0;
  const char* const begin = text_.data() + at_;
  const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
  if (error != std::errc()) fail("a number");
  at_ += static_cast<std::size_t>(end - begin);
  return value;
}

std::uint32_t TextCursor::hexNumber() {
  expect("0x");
  std::uint32_t value = 0;
  const char* const begin = text_.data() + at_;
  const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value, 16);
  if (error != std::errc() || end - begin != 8) fail("eight hexadecimal digits");
  at_ += 8;
  return value;
}

std::string_view TextCursor::line() {
  return until("\n");
}

std::string_view TextCursor::until(std::string_view end) {
  const std::size_t length = rest().find(end);
  if (length == std::string_view::npos) fail("'" + std::string(end) + "'");
  return take(length, end.size());
}

std::string_view TextCursor::untilLast(std::string_view end) {
  const std::size_t length = rest().substr(0, rest().find('\n')).rfind(end);
  if (length == std::string_view::npos) fail("'" + std::string(end) + "'");
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

void TextCursor::fail(const std::string& expected) const {
  const std::string_view before = text_.substr(0, at_);
  const auto lineNumber = 1 + std::count(before.begin(), before.end(), '\n');
  const std::string_view here = rest().substr(0, std::min<std::size_t>(rest().find('\n'), 40));
  std::string shown = expected == "'\n'" ? "the end of the line" : expected;
  throw AnswerError(name_ + ", line " + std::to_string(lineNumber) + ": " + shown + " was expected before '" +
                    std::string(here) + "'");
}

}  // namespace serdesctl
