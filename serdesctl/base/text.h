// Questions about characters and texts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace serdesctl {

// Newlines among them: characters that have no place within a line.
inline bool isControlCharacter(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 0x20 || code == 0x7f;
}

// Text that somebody else wrote, made fit for a line.
inline std::string printable(std::string text) {
  std::replace_if(text.begin(), text.end(), isControlCharacter, '?');
  return text;
}

// Saves and plans are JSON objects, which no TOML begins like.
inline bool isJson(std::string_view text) {
  if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);  // a byte order mark, of which editors make no word
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

}  // namespace serdesctl
