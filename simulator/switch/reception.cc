// What arrives, and whether frames pass.
#include "simulator/switch/reception.h"

#include "simulator/switch/speed.h"

namespace simulator {

const Incoming& Reception::incoming(unsigned link) {
  std::optional<Incoming>& incoming = links_[link].incoming;
  if (!incoming) incoming = incomingOf(port_, link);
  return *incoming;
}

const LinkResult& Reception::result(unsigned link) {
  const LinkResult*& result = links_[link].result;
  if (result == nullptr) result = &results_.of(port_, link, incoming(link));
  return *result;
}

bool Reception::listens(unsigned link) {
  return port_.rxField(link, Field::kRxEnable) != 0 && port_.rx.pllLocked() && incoming(link).arrives;
}

bool Reception::findsPattern(unsigned link) {
  const auto pattern = static_cast<unsigned>(port_.rxField(link, Field::kCheckPattern));
  return pattern != 0 && incoming(link).pattern == pattern && result(link).locked;
}

bool Reception::takesFrames() {
  const unsigned links = port_.rx.links;
  if (links == 0 || !speedAgreed(port_)) return false;
  for (unsigned link = 0; link < links; ++link) {
    if (incoming(link).pattern != 0 || !result(link).locked) return false;
  }
  return true;
}

unsigned long Reception::portStatus() {
  const unsigned links = port_.rx.links;
  if (links == 0 || port_.tx.links == 0) return kStatusNoLinks;
  if (port_.description.media == MEDIA_NONE && !allLooped(port_)) return kStatusNoMedia;
  if (!streamOn(port_)) return kStatusNotSending;
  if (!port_.rx.pllLocked() || !port_.tx.pllLocked()) return kStatusNoPll;
  // What can be said without working out a link comes first.
  for (unsigned link = 0; link < links; ++link) {
    if (!incoming(link).arrives) return kStatusNoSignal;
  }
  if (!speedAgreed(port_)) return kStatusNoSpeed;
  for (unsigned link = 0; link < links; ++link) {
    if (!result(link).signalDetected) return kStatusNoSignal;
    if (!result(link).locked) return kStatusNoLock;
  }
  for (unsigned link = 0; link < links; ++link) {
    if (incoming(link).pattern != 0) return kStatusPattern;
  }
  return kPortStateRunning;
}

}  // namespace simulator
