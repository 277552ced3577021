// Reads text of a fixed form from left to right. Whatever is not as expected throws AnswerError, naming the place.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace serdesctl {

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

  void expect(std::string_view expected);
  // The same, if it is there.
  bool skip(std::string_view expected);
  void skipBlanks();

  // A decimal number as %d prints it; the 32 bits behind it are the same for signed and unsigned ones.
  std::int32_t number();
  std::uint32_t unsignedNumber() {
    return static_cast<std::uint32_t>(number());
  }
  // Eight digits behind "0x".
  std::uint32_t hexNumber();

  // The rest of the line, its newline consumed.
  std::string_view line();
  // Up to `end`, which is consumed: the first one, or the last one in this line.
  std::string_view until(std::string_view end);
  std::string_view untilLast(std::string_view end);

  void expectEnd();

  [[noreturn]] void fail(const std::string& expected) const;

 private:
  std::string_view take(std::size_t length, std::size_t behind);

  std::string_view text_;
  std::string name_;
  std::size_t at_ = 0;
};

}  // namespace serdesctl
