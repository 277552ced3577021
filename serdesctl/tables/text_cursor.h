// Reads text of a fixed form from left to right. Whatever is not as expected throws ParseError, naming the place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "serdesctl/base/errors.h"

namespace serdesctl {

// Where something stands in a text; both count from 1.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

// Text that the tool does not print, or that cannot be understood for certain.
class ParseError : public AnswerError {
 public:
  // `name` is what the text is.
  ParseError(const std::string& name, TextPlace place, const std::string& what);

  TextPlace place() const {
    return place_;
  }

 private:
  TextPlace place_;
};

class TextCursor {
 public:
  // `name` is what the text is, for messages.
  TextCursor(std::string_view text, std::string name) : text_(text), name_(std::move(name)) {}

  bool atEnd() const {
    return at_ == text_.size();
  }
  std::string_view rest() const {
    return text_.substr(at_);
  }
  bool startsWith(std::string_view expected) const {
    return rest().starts_with(expected);
  }
  const std::string& name() const {
    return name_;
  }

  // How far reading has come, and going back there.
  std::size_t mark() const {
    return at_;
  }
  void backTo(std::size_t mark) {
    at_ = mark;
  }

  void expect(std::string_view expected);
  // The same, if it is there.
  bool skip(std::string_view expected);

  // A decimal number as %d prints it; the 32 bits behind it are the same for signed and unsigned ones.
  std::int32_t number();
  std::uint32_t unsignedNumber() {
    return static_cast<std::uint32_t>(number());
  }
  // Behind "0x", as %0*x prints it.
  std::uint32_t hexNumber(int leastDigits = 8);

  // The rest of the line, its newline consumed.
  std::string_view line();
  // Up to `end`, which is consumed: the first one, or the last one in this line.
  std::string_view until(std::string_view end);
  std::string_view untilLast(std::string_view end);

  void expectEnd();

  TextPlace place() const;
  [[noreturn]] void fail(const std::string& expected) const;

 private:
  std::string_view take(std::size_t length, std::size_t behind);

  std::string_view text_;
  std::string name_;
  std::size_t at_ = 0;
};

}  // namespace serdesctl
