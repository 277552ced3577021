// Injected faults: a call that a fault matches fails with the fault's code, or succeeds and hands back another answer
// than the switch gave.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "simulator/api.h"
#include "simulator/error_codes.h"

namespace simulator {

inline constexpr std::uint32_t kCertain = 1'000'000;  // of a probability, in millionths

// What a call addresses; what an operation does not name is absent.
struct CallSite {
  Operation operation{};
  std::optional<unsigned> asic = {};
  std::optional<unsigned> port = {};
  std::optional<int> link = {};
  std::optional<unsigned> core = {};
};

// An output that is replaced, by a number or, for a name, by a text.
struct FaultAnswer {
  std::string output;
  std::int64_t value = 0;
  std::string text;
};

struct FaultDescription {
  CallSite where;  // matches calls that agree in everything that is present here
  std::uint32_t ordinal = 1;
  bool always = false;  // on every matching call from the ordinal on, or only once
  std::uint32_t probability = kCertain;
  int code = kInjectedFault;
  std::optional<FaultAnswer> answer = {};  // instead of the code
};

}  // namespace simulator
