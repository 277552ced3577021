// Decides which calls fail. Everything random comes from one small generator, so that a seed repeats a run anywhere.
#pragma once

#include <cstdint>
#include <vector>

#include "simulator/description/faults.h"

namespace simulator {

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
