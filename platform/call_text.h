// What an operation hands back, by name: the trace prints it, and a fault may replace it. An output is a place in the
// caller's memory or record, whatever its type.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "simulator/api.h"

namespace simulator {

class SIMULATOR_API Output {
 public:
  enum class Form : std::uint8_t { kDecimal, kHex, kTruth };

  template <typename T>
  Output(std::string_view name, T* place, Form form = std::is_same_v<T, bool> ? Form::kTruth : Form::kDecimal)
      : name_(name), place_(place), load_(&loadFrom<T>), store_(&storeTo<T>), form_(form) {}

  std::string_view name() const {
    return name_;
  }
  // Puts as much of the value there as the place holds.
  void replace(std::int64_t value) const {
    store_(place_, value);
  }
  std::string text() const;

 private:
  template <typename T>
  static std::int64_t loadFrom(const void* place) {
    return static_cast<std::int64_t>(*static_cast<const T*>(place));
  }
  template <typename T>
  static void storeTo(void* place, std::int64_t value) {
    *static_cast<T*>(place) = static_cast<T>(value);
  }

  std::string_view name_;
  void* place_;
  std::int64_t (*load_)(const void*);
  void (*store_)(void*, std::int64_t);
  Form form_;
};

template <>
inline std::int64_t Output::loadFrom<WordPairCounter>(const void* place) {
  const auto* counter = static_cast<const WordPairCounter*>(place);
  return static_cast<std::int64_t>((std::uint64_t{counter->high} << 32) | counter->low);
}
template <>
inline void Output::storeTo<WordPairCounter>(void* place, std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  *static_cast<WordPairCounter*>(place) = {.high = static_cast<std::uint32_t>(bits >> 32),
                                           .low = static_cast<std::uint32_t>(bits)};
}

using Outputs = std::vector<Output>;

// The arguments of a call as the trace prints them. Holds a fixed room and never fails: it is filled before anything
// can catch an exception. Numbers are decimal; registers are hexadecimal, as the tool prints them.
class SIMULATOR_API Arguments {
 public:
  Arguments& add(std::int64_t value);
  Arguments& addHex(unsigned value, int digits);
  Arguments& add(bool value);
  Arguments& add(port_id_t port);
  Arguments& add(const SerDesTxRateParams& params);
  Arguments& add(const SerDesRxRateParams& params);
  Arguments& add(const SerDesRxDFEState* state);
  std::string_view text() const {
    return {text_.data(), length_};
  }

 private:
  void separate();
  void addNumber(std::int64_t value);
  void addNumbers(std::span<const std::int32_t> numbers);
  void append(std::string_view text);

  std::array<char, 256> text_{};
  std::size_t length_ = 0;
};

// Arguments of any of the types above, in the order of the call.
template <typename... T>
Arguments arguments(const T&... values) {
  Arguments result;
  const auto addOne = [&result](const auto& value) {
    using V = std::decay_t<decltype(value)>;
    if constexpr (std::is_enum_v<V> || (std::is_integral_v<V> && !std::is_same_v<V, bool>)) {
      result.add(static_cast<std::int64_t>(value));
    } else {
      result.add(value);
    }
  };
  (addOne(values), ...);
  return result;
}

}  // namespace simulator
