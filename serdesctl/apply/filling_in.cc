// Filling in, value by value.
#include "serdesctl/apply/filling_in.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "serdesctl/plan/places.h"
#include "serdesctl/state/saying.h"

namespace serdesctl {
namespace {

template <typename Value>
void fillIn(Value& known, const Value& predicted) {
  Value whole = predicted;
  overlay(whole, known);
  known = whole;
}

template <typename Link>
void fillIn(std::vector<Link>& known, const std::vector<Link>& predicted) {
  known.resize(std::max(known.size(), predicted.size()));
  for (std::size_t i = 0; i < predicted.size(); ++i)
    fillIn(known[i], predicted[i]);
}

void fillIn(PortState& known, const PortState& predicted) {
  fillIn(known.configRate, predicted.configRate);
  fillIn(known.streamEnabled, predicted.streamEnabled);
  fillIn(known.observed.runningRate, predicted.observed.runningRate);
  fillIn(known.tx, predicted.tx);
  fillIn(known.rx, predicted.rx);
  known.txCaches.insert(predicted.txCaches.begin(), predicted.txCaches.end());
  known.rxCaches.insert(predicted.rxCaches.begin(), predicted.rxCaches.end());
}

}  // namespace

void fillIn(SwitchState& known, const SwitchState& predicted) {
  for (const AsicState& asic : predicted.asics) {
    AsicState* const found = findAsic(known, asic.asic);
    if (found == nullptr) {
      known.asics.push_back(asic);
      continue;
    }
    for (const PortState& port : asic.ports) {
      if (PortState* const same = findPort(*found, port.port)) {
        fillIn(*same, port);
      } else {
        found->ports.push_back(port);
      }
    }
  }
}

}  // namespace serdesctl
