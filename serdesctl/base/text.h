// Questions about characters.
#pragma once

namespace serdesctl {

// Newlines among them: characters that have no place within a line.
inline bool isControlCharacter(char c) {
  const auto code = static_cast<unsigned char>(c);
  return code < 0x20 || code == 0x7f;
}

}  // namespace serdesctl
