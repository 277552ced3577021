// A platform call as text: "SetSerDesTxSlew(0, 3, -1, true, 2) = 0". Allocates nothing and needs the C library alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

#include "platform/operations.h"
#include "platform/platform.h"

namespace operations {

// A number that is shown as "0x" and at least so many digits, as the tool prints registers.
struct Hex {
  unsigned value;
  int digits;
};

// Text in a fixed room that holds the longest run of registers; what goes beyond is cut.
class CallText {
 public:
  void append(std::string_view text);
  void append(const char* text) {  // or a pointer would pass for a truth
    append(std::string_view(text));
  }
  void append(std::int64_t number);
  void append(bool truth) {
    append(truth ? "true" : "false");
  }
  void append(Hex number);
  void append(port_id_t port);
  void append(const SerDesTxRateParams& params);
  void append(const SerDesRxRateParams& params);
  void append(const SerDesRxDFEState* state);
  template <typename Number>
  requires(std::is_enum_v<Number> || std::is_integral_v<Number>) void append(Number number) {
    append(static_cast<std::int64_t>(number));
  }

  [[nodiscard]] std::string_view text() const {
    return {text_.data(), length_};
  }

 private:
  template <typename... Numbers>
  void appendRecord(Numbers... numbers);

  std::array<char, 4096> text_;
  std::size_t length_ = 0;
};

// Values behind one another, separated by ", ".
template <typename... Values>
void appendList(CallText& text, const Values&... values) {
  std::string_view separator;
  ((text.append(separator), text.append(values), separator = ", "), ...);
}

// The arguments of a call, put into words only when somebody asks: call it with a CallText.
template <typename... Values>
auto arguments(Values... values) {
  return [=](CallText& text) { appendList(text, values...); };
}

// A place in the caller's memory or record that an operation fills, whatever its type; a run of registers is one place.
class Output {
 public:
  Output() = default;
  template <typename Value>
  Output(Value* place) : place_(place), append_(&appendValue<Value>), store_(&storeTo<Value>) {}
  Output(unsigned short* registers, unsigned count) : place_(registers), count_(count) {}

  // Puts as much of the value there as the place holds; into each register of a run.
  void replace(std::int64_t value) const;
  void appendTo(CallText& text) const;

 private:
  template <typename Value>
  static void appendValue(CallText& text, const void* place) {
    text.append(*static_cast<const Value*>(place));
  }
  template <typename Value>
  static void storeTo(void* place, std::int64_t value) {
    *static_cast<Value*>(place) = static_cast<Value>(value);
  }

  void* place_ = nullptr;
  void (*append_)(CallText&, const void*) = nullptr;  // null for a run of registers
  void (*store_)(void*, std::int64_t) = nullptr;
  unsigned count_ = 0;
};

template <>
inline void Output::appendValue<WordPairCounter>(CallText& text, const void* place) {
  const auto* counter = static_cast<const WordPairCounter*>(place);
  text.append(static_cast<std::int64_t>((std::uint64_t{counter->high} << 32) | counter->low));
}
template <>
inline void Output::storeTo<WordPairCounter>(void* place, std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  *static_cast<WordPairCounter*>(place) = {.high = static_cast<std::uint32_t>(bits >> 32),
                                           .low = static_cast<std::uint32_t>(bits)};
}

// What a call handed back, in the order of its operation's row.
struct Outputs {
  static constexpr std::size_t kMost = 14;
  std::array<Output, kMost> places;
  std::size_t count = 0;
};

template <typename... Places>
Outputs outputs(Places... places) {
  static_assert(sizeof...(places) <= Outputs::kMost);
  return {.places = {Output(places)...}, .count = sizeof...(places)};
}
inline Outputs registerOutputs(unsigned short* registers, unsigned count) {
  return {.places = {Output(registers, count)}, .count = count == 0 ? 0U : 1U};
}
// Those of a record.
Outputs outputs(Switch_HW_Config_t* config);
Outputs outputs(Port_HW_Config_t* config);
Outputs outputs(SerDesTxRateParams* params);
Outputs outputs(SerDesRxRateParams* params);
Outputs outputs(SerDesRxDFEStats* stats);
Outputs outputs(drv_counters_t* counters);

// The whole line, without a newline; `putArguments` is what arguments() gave.
template <typename PutArguments>
void appendCall(CallText& text, Operation operation, PutArguments putArguments, const Outputs& outputs, int code) {
  text.append(operationInfo(operation).symbol);
  text.append("(");
  putArguments(text);
  text.append(")");
  for (std::size_t i = 0; i < outputs.count; ++i) {
    text.append(i == 0 ? " -> " : ", ");
    outputs.places[i].appendTo(text);
  }
  text.append(" = ");
  text.append(std::int64_t{code});
}

}  // namespace operations
