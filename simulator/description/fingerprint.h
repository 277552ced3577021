// A number that tells texts apart and finds damage: FNV-1a with 64 bits.
#pragma once

#include <cstdint>
#include <string_view>

namespace simulator {

inline constexpr std::uint64_t kEmptyFingerprint = 0xcbf29ce484222325;

// Of `text` behind what `before` is the fingerprint of.
constexpr std::uint64_t fingerprintOf(std::string_view text, std::uint64_t before = kEmptyFingerprint) {
  std::uint64_t hash = before;
  for (const char c : text)
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  return hash;
}

}  // namespace simulator
