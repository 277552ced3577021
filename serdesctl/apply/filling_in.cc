// Filling in, value by value.
#include "serdesctl/apply/filling_in.h"

#include <cstddef>
#include <optional>

#include "serdesctl/plan/places.h"

namespace serdesctl {
namespace {

template <typename Value>
void fillIn(std::optional<Value>& known, const std::optional<Value>& predicted) {
  if (!known) known = predicted;
}

template <typename List>
void fillInMissing(List& known, const List& predicted) {
  if (known.size() < predicted.size()) known = predicted;
}

void fillIn(PortState& known, const PortState& predicted) {
  fillIn(known.configRate, predicted.configRate);
  fillIn(known.streamEnabled, predicted.streamEnabled);
  fillIn(known.observed.runningRate, predicted.observed.runningRate);
  fillInMissing(known.tx, predicted.tx);
  fillInMissing(known.rx, predicted.rx);
  for (std::size_t i = 0; i < predicted.tx.size(); ++i) {
    if (!known.tx[i].ffeMode) static_cast<FfeValues&>(known.tx[i]) = predicted.tx[i];
    if (known.tx[i].slewPs || known.tx[i].slewUnnamed) continue;
    known.tx[i].slewPs = predicted.tx[i].slewPs;
    known.tx[i].slewUnnamed = predicted.tx[i].slewUnnamed;
  }
  for (std::size_t i = 0; i < predicted.rx.size(); ++i) {
    fillIn(known.rx[i].dfeMode, predicted.rx[i].dfeMode);
    if (!known.rx[i].pole) static_cast<VgaValues&>(known.rx[i]) = predicted.rx[i];
  }
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
