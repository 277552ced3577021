// Random values for tests, from a seed.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

namespace recording {

class Random {
 public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  std::uint32_t below(std::uint32_t bound) {
    return word() % bound;
  }
  bool oneIn(std::uint32_t bound) {
    return below(bound) == 0;
  }
  // Any number, the smallest and largest ones and those around a cell's width more often than others.
  std::int32_t number() {
    constexpr std::array<std::int32_t, 14> kEdges = {0,
                                                     -1,
                                                     1,
                                                     -999,
                                                     -1000,
                                                     9999,
                                                     10000,
                                                     99999,
                                                     -9999,
                                                     65535,
                                                     std::numeric_limits<std::int32_t>::min(),
                                                     70000,
                                                     65534,
                                                     std::numeric_limits<std::int32_t>::max()};
    return oneIn(2) ? kEdges[below(kEdges.size())] : static_cast<std::int32_t>(word());
  }
  // Of any length.
  std::uint64_t count() {
    const std::uint64_t bits = std::uint64_t{word()} << 32 | word();
    return bits >> below(64);
  }
  // A value that has a name, or hardly ever one that has none.
  std::uint32_t named(std::uint32_t names) {
    return oneIn(10) ? word() : below(names);
  }
  // Any characters but control characters; often none.
  std::string name() {
    std::string text(oneIn(4) ? 0 : below(oneIn(5) ? 40 : 21), ' ');
    for (char& c : text)
      c = static_cast<char>(' ' + below('~' - ' ' + 1));
    return text;
  }

 private:
  std::uint32_t word() {
    return static_cast<std::uint32_t>(engine_());
  }

  std::mt19937 engine_;
};

}  // namespace recording
