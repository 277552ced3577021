// The cells of tables, each read exactly as the tool prints it: what another format would have printed is refused. A
// cell is as wide as its value needs, and every one ends so that the next begins without doubt: rows are read from left
// to right.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "display/name_tables.h"
#include "serdesctl/tables/records.h"
#include "serdesctl/tables/text_cursor.h"

namespace serdesctl {

// What a column without values shows. No cell with a value begins so.
inline constexpr std::string_view kBlankCell = "     ";

// "%4d " of a number of so many bits.
std::int32_t numberCell(TextCursor& text);
std::int32_t signedByteCell(TextCursor& text);
std::int32_t byteCell(TextCursor& text);
std::int32_t signedHalfwordCell(TextCursor& text);

// "0x%02x ": a signed number, of which a negative one shows all its 32 bits.
std::int32_t hexCell(TextCursor& text);
std::int32_t signedByteHexCell(TextCursor& text);

// "%04x " of 16 bits: 1e05 is hexadecimal.
std::uint16_t registerCell(TextCursor& text);

// "%-4s " and "%5s" of one of the names, or of `otherwise`.
std::string leftNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise);
std::string rightNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise);
// "%5s" of one of the short names.
std::string shortNameCell(TextCursor& text, std::span<const ValueName> names, const char* otherwise);

// A count as printCompactCount prints it.
Count countCell(TextCursor& text);

// "%-19s ", "%-18s " of a label or title.
std::string padded(std::string_view text, std::size_t width = 19);

// Without blanks at its end: a column's own cannot be told from those that fill it.
std::string trimmed(std::string_view text);

}  // namespace serdesctl
