// Records that say something of some of their values: what they say, laid over what is.
#pragma once

#include <optional>

#include "serdesctl/state/switch_state.h"

namespace serdesctl {

// Whether a record of optional values says any of them.
template <typename Group>
bool saysAny(const Group& group) {
  bool any = false;
  eachField(group, [&](const char*, const auto& value) { any = any || value.has_value(); });
  return any;
}

// Whether it says all of them.
template <typename Group>
bool saysAll(const Group& group) {
  bool all = true;
  eachField(group, [&](const char*, const auto& value) { all = all && value.has_value(); });
  return all;
}

template <typename Value>
void overlay(Value& under, const std::optional<Value>& over) {
  if (over) under = *over;
}
template <typename Value>
void overlay(std::optional<Value>& under, const std::optional<Value>& over) {
  if (over) under = over;
}

inline void overlay(LiveTx& under, const LiveTx& over) {
  overlay(under.ffeMode, over.ffeMode);
  overlay(under.k, over.k);
  overlay(under.c0, over.c0);
  overlay(under.c1, over.c1);
  overlay(under.c2, over.c2);
  overlay(under.c3, over.c3);
  if (over.slewPs || over.slewUnnamed) static_cast<LiveSlew&>(under) = static_cast<const LiveSlew&>(over);
}

inline void overlay(LiveRx& under, const LiveRx& over) {
  overlay(under.dfeMode, over.dfeMode);
  overlay(under.pole, over.pole);
  overlay(under.peak, over.peak);
  overlay(under.amax, over.amax);
}

}  // namespace serdesctl
