// Injected faults: a call that a fault matches fails with the fault's code, or succeeds and hands back another answer
// than the switch gave. Everything random comes from one small generator, so that a seed repeats a run anywhere.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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

// The mutable part of one fault.
struct FaultState {
  std::uint32_t matches = 0;
  std::uint32_t fired = 0;
};

// Marsaglia's 32-bit xorshift with shifts 13, 17 and 5; a seed of 0 stands for 1.
class RandomNumbers {
 public:
  explicit RandomNumbers(std::uint32_t seed) : state_(seed == 0 ? 1 : seed) {}
  std::uint32_t next();
  // Evenly spread over 0 to `bound` - 1; `bound` above 0.
  std::uint32_t below(std::uint32_t bound);
  std::uint32_t state() const {
    return state_;
  }

 private:
  std::uint32_t state_;
};

class Faults {
 public:
  Faults(std::vector<FaultDescription> descriptions, std::uint32_t seed);
  // The fault that applies to this call, the first in the order of the description; null when none does. Every fault
  // that matches counts the call.
  const FaultDescription* onCall(const CallSite& call);

  const std::vector<FaultState>& states() const {
    return states_;
  }
  const RandomNumbers& random() const {
    return random_;
  }
  // `states` has one entry for each fault.
  void restore(const std::vector<FaultState>& states, RandomNumbers random) {
    states_ = states;
    random_ = random;
  }

 private:
  std::vector<FaultDescription> descriptions_;
  std::vector<FaultState> states_;
  RandomNumbers random_;
};

}  // namespace simulator
