// Questions about characters and texts.
#pragma once

#include <cstddef>
#include <string_view>

namespace serdesctl {

// Newlines among them: characters that have no place within a line.
inline bool isControlCharacter(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 0x20 || code == 0x7f;
}

// Saves and plans are JSON objects, which no TOML begins like.
inline bool isJson(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '{';
}

}  // namespace serdesctl
