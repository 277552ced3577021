// Text of arguments and outputs.
#include "platform/call_text.h"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace simulator {

std::string Output::text() const {
  const std::int64_t value = load_(place_);
  if (form_ == Form::kTruth) return value != 0 ? "true" : "false";
  if (form_ == Form::kDecimal) return std::to_string(value);
  std::array<char, 32> hex;
  std::snprintf(hex.data(), hex.size(), "0x%04x", static_cast<unsigned>(value));
  return hex.data();
}

void Arguments::append(std::string_view text) {
  const std::size_t count = std::min(text.size(), text_.size() - length_);
  std::memcpy(text_.data() + length_, text.data(), count);
  length_ += count;
}

void Arguments::separate() {
  if (length_ > 0) append(", ");
}

void Arguments::addNumber(std::int64_t value) {
  std::array<char, 24> digits;
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  append({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

void Arguments::addNumbers(std::span<const std::int32_t> numbers) {
  separate();
  append("{");
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (i > 0) append(", ");
    addNumber(numbers[i]);
  }
  append("}");
}

Arguments& Arguments::add(std::int64_t value) {
  separate();
  addNumber(value);
  return *this;
}

Arguments& Arguments::addHex(unsigned value, int digits) {
  std::array<char, 16> hex;
  const int length = std::snprintf(hex.data(), hex.size(), "0x%0*x", digits, value);
  separate();
  append({hex.data(), static_cast<std::size_t>(length)});
  return *this;
}

Arguments& Arguments::add(bool value) {
  separate();
  append(value ? "true" : "false");
  return *this;
}

Arguments& Arguments::add(port_id_t port) {
  const std::array<std::int32_t, 3> numbers = {port.userPort, port.asic, port.asicPort};
  addNumbers(numbers);
  return *this;
}

Arguments& Arguments::add(const SerDesTxRateParams& params) {
  const std::array numbers = {params.power, params.slew, params.mode, params.p0, params.p1, params.p2, params.p3};
  addNumbers(numbers);
  return *this;
}

Arguments& Arguments::add(const SerDesRxRateParams& params) {
  const std::array numbers = {params.mode, params.p0, params.p1, params.p2, params.p3};
  addNumbers(numbers);
  return *this;
}

Arguments& Arguments::add(const SerDesRxDFEState* state) {
  if (state == nullptr) {
    separate();
    append("null");
    return *this;
  }
  std::array<std::int32_t, 2 + kDfeTapCount> numbers = {static_cast<std::int32_t>(state->leadingWord),
                                                        static_cast<std::int32_t>(state->mode)};
  for (std::size_t i = 0; i < kDfeTapCount; ++i)
    numbers[2 + i] = state->h[i];
  addNumbers(numbers);
  return *this;
}

}  // namespace simulator
