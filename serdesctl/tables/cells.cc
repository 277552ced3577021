// Cells, read by printing what was read once more.
#include "serdesctl/tables/cells.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <system_error>

namespace serdesctl {
namespace {

constexpr std::int32_t kMostPlainCount = 9999;
constexpr unsigned kLeastExponent = 4;
constexpr unsigned kMostExponent = 19;

// The number behind `offset` characters; nothing where there is none.
template <typename Number>
std::optional<Number> numberAt(const TextCursor& text, std::size_t offset, int base) {
  Number value = 0;
  const std::string_view rest = text.rest();
  if (offset > rest.size()) return std::nullopt;
  const auto result = std::from_chars(rest.data() + offset, rest.data() + rest.size(), value, base);
  if (result.ec != std::errc()) return std::nullopt;
  return value;
}

// A cell as printed, in place.
struct Cell {
  std::array<char, 24> text{};
};

template <typename Number>
bool skipAsPrinted(TextCursor& text, const char* (*print)(Cell&, Number), Number value) {
  Cell cell;
  return text.skip(print(cell, value));
}

const char* printNumber(Cell& cell, std::int32_t value) {
  std::snprintf(cell.text.data(), cell.text.size(), "%4d ", value);
  return cell.text.data();
}

const char* printHex(Cell& cell, std::uint32_t value) {
  std::snprintf(cell.text.data(), cell.text.size(), "0x%02x ", value);
  return cell.text.data();
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::uint64_t powerOfTen(unsigned exponent) {
  std::uint64_t power = 1;
  for (; exponent > 0; --exponent)
    power *= 10;
  return power;
}

// The bounds are wider than those of the rounding, since the tool computes in floating point.
Count shortenedCount(std::uint64_t mantissa, unsigned exponent) {
  const std::uint64_t half = powerOfTen(exponent) / 2;
  const std::uint64_t slack = powerOfTen(exponent) / 1'000'000'000 + 1;
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  const std::uint64_t lowest = std::max(half * (2 * mantissa - 1), 2 * half) - slack;
  const bool beyond = 2 * mantissa + 1 > (kMost - slack) / half;
  return {.number = static_cast<double>(mantissa) * std::pow(10.0, exponent),
          .lowest = lowest,
          .highest = beyond ? kMost : half * (2 * mantissa + 1) + slack};
}

// "2e05 "; nothing, and nothing consumed, where there is none.
std::optional<Count> skipShortenedCount(TextCursor& text) {
  const auto mantissa = numberAt<std::uint32_t>(text, 0, 10);
  if (!mantissa || *mantissa < 1 || *mantissa > 10) return std::nullopt;
  const auto exponent = numberAt<std::uint32_t>(text, *mantissa == 10 ? 3 : 2, 10);
  if (!exponent || *exponent < kLeastExponent || *exponent > kMostExponent) return std::nullopt;
  if (*exponent == kMostExponent && *mantissa > 2) return std::nullopt;  // 64 bits end there
  Cell cell;
  std::snprintf(cell.text.data(), cell.text.size(), "%de%02d ", static_cast<int>(*mantissa),
                static_cast<int>(*exponent));
  if (!text.skip(cell.text.data())) return std::nullopt;
  return shortenedCount(*mantissa, *exponent);
}

template <typename Print>
std::string nameCell(TextCursor& text, std::span<const ValueName> names, const char* ValueName::*which,
                     const char* otherwise, Print print) {
  std::string allowed;
  for (const ValueName& name : names) {
    if (text.skip(print(name.*which))) return name.*which;
    if (std::string_view(name.*which) != otherwise) allowed += std::string(name.*which) + ", ";
  }
  if (text.skip(print(otherwise))) return otherwise;
  text.fail("one of " + allowed + otherwise);
}

// What `read` gives, if it fits a smaller number.
template <typename Fits>
std::int32_t fittingCell(TextCursor& text, std::int32_t (*read)(TextCursor&)) {
  const TextCursor before = text;
  const std::int32_t value = read(text);
  using Limits = std::numeric_limits<Fits>;
  if (value < Limits::min() || value > Limits::max()) {
    before.fail("a number from " + std::to_string(Limits::min()) + " to " + std::to_string(Limits::max()));
  }
  return value;
}

std::string rightAligned(std::string_view name) {
  constexpr std::size_t kWidth = 5;
  return std::string(kWidth - std::min(kWidth, name.size()), ' ') + std::string(name);
}

std::string leftAligned(std::string_view name) {
  return padded(name, 4);
}

}  // namespace

std::int32_t numberCell(TextCursor& text) {
  const std::size_t blanks = std::min(text.rest().find_first_not_of(' '), kBlankCell.size());
  const auto value = numberAt<std::int32_t>(text, blanks, 10);
  if (!value || !skipAsPrinted(text, printNumber, *value)) text.fail("a number in its column");
  return *value;
}

std::int32_t signedByteCell(TextCursor& text) {
  return fittingCell<std::int8_t>(text, numberCell);
}

std::int32_t byteCell(TextCursor& text) {
  return fittingCell<std::uint8_t>(text, numberCell);
}

std::int32_t signedHalfwordCell(TextCursor& text) {
  return fittingCell<std::int16_t>(text, numberCell);
}

std::int32_t signedByteHexCell(TextCursor& text) {
  return fittingCell<std::int8_t>(text, hexCell);
}

std::int32_t hexCell(TextCursor& text) {
  const auto value = numberAt<std::uint32_t>(text, 2, 16);
  if (!value || !skipAsPrinted(text, printHex, *value)) text.fail("a hexadecimal number in its column");
  return static_cast<std::int32_t>(*value);
}

std::uint16_t registerCell(TextCursor& text) {
  constexpr std::size_t kDigits = 4;
  const std::string_view cell = text.rest().substr(0, kDigits + 1);  // shorter at the end of the text
  int value = 0;
  for (std::size_t i = 0; i < kDigits; ++i) {
    const int digit = i < cell.size() ? hexDigit(cell[i]) : -1;
    if (digit < 0) text.fail("four hexadecimal digits");
    value = value * 16 + digit;
  }
  if (!text.skip(cell) || !cell.ends_with(' ')) text.fail("four hexadecimal digits and a blank");
  return static_cast<std::uint16_t>(value);
}

std::string leftNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise) {
  return nameCell(text, names, &ValueName::name, otherwise, leftAligned);
}

std::string rightNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise) {
  return nameCell(text, names, &ValueName::name, otherwise, rightAligned);
}

std::string shortNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise) {
  return nameCell(text, names, &ValueName::shortName, otherwise, rightAligned);
}

Count countCell(TextCursor& text) {
  if (const auto shortened = skipShortenedCount(text)) return *shortened;
  const TextCursor before = text;
  const std::int32_t value = numberCell(text);
  if (value < 0 || value > kMostPlainCount) before.fail("a count in its column");
  const auto count = static_cast<std::uint64_t>(value);
  return {.number = static_cast<double>(value), .lowest = count, .highest = count};
}

std::string padded(std::string_view text, std::size_t width) {
  return std::string(text) + std::string(width - std::min(width, text.size()) + 1, ' ');
}

std::string trimmed(std::string_view text) {
  return std::string(text.substr(0, text.find_last_not_of(' ') + 1));
}

}  // namespace serdesctl
