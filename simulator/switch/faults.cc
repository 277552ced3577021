// Which fault applies to which call.
#include "simulator/switch/faults.h"

#include <utility>

namespace simulator {
namespace {

template <typename T>
bool agrees(const std::optional<T>& wanted, const std::optional<T>& actual) {
  return !wanted || wanted == actual;
}

bool matches(const CallSite& wanted, const CallSite& call) {
  return wanted.operation == call.operation && agrees(wanted.asic, call.asic) && agrees(wanted.port, call.port) &&
         agrees(wanted.link, call.link) && agrees(wanted.core, call.core);
}

}  // namespace

std::uint32_t RandomNumbers::next() {
  state_ ^= state_ << 13;
  state_ ^= state_ >> 17;
  state_ ^= state_ << 5;
  return state_;
}

std::uint32_t RandomNumbers::below(std::uint32_t bound) {
  // The upper half of the product: no division, and no bias that a test could see.
  return static_cast<std::uint32_t>((std::uint64_t{next()} * bound) >> 32);
}

Faults::Faults(std::vector<FaultDescription> descriptions, std::uint32_t seed)
    : descriptions_(std::move(descriptions)), states_(descriptions_.size()), random_(seed) {
  // The first numbers of a small seed are small, and every rare fault would strike at once.
  constexpr int kLeftOut = 8;
  for (int i = 0; i < kLeftOut; ++i)
    (void)random_.next();
}

const FaultDescription* Faults::onCall(const CallSite& call) {
  const FaultDescription* hit = nullptr;
  for (std::size_t i = 0; i < descriptions_.size(); ++i) {
    const FaultDescription& fault = descriptions_[i];
    FaultState& state = states_[i];
    if (!matches(fault.where, call)) continue;
    if (state.matches < UINT32_MAX) ++state.matches;
    if (state.matches < fault.ordinal || (!fault.always && state.fired > 0)) continue;
    if (fault.probability < kCertain && random_.below(kCertain) >= fault.probability) continue;
    if (hit != nullptr) continue;
    if (state.fired < UINT32_MAX) ++state.fired;
    hit = &fault;
  }
  return hit;
}

}  // namespace simulator
