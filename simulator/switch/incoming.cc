// Who sends, and what a receiver gets of it.
#include "simulator/switch/incoming.h"

#include <algorithm>

#include "simulator/switch/speed.h"

namespace simulator {
namespace {

// The way back inside the SerDes that loopback takes.
const Channel& loopbackChannel() {
  static const Channel channel = fr4Trace(2);
  return channel;
}

Incoming sentBy(const PortView& port, unsigned link) {
  if (!linkSends(port, link)) return {};
  return {.arrives = true,
          .transmitter = transmitterOf(port.tx.traits, port.state.tx[link].registers),
          .baudGbd = linkBaud(port, port.tx),
          .pattern = static_cast<unsigned>(port.txField(link, Field::kPattern))};
}

Incoming sentByPartner(const PortView& port) {
  const PartnerDescription& partner = port.description.partner;
  if (!partner.sends) return {};
  // The partner has a SerDes like the port's own, with nothing set but what the description says.
  RegisterFile registers = port.tx.map.resetValues();
  applyCache(port.tx.traits, registers, partner.tx);
  return {.arrives = true,
          .transmitter = transmitterOf(port.tx.traits, registers),
          .baudGbd = partnerBaud(port),
          .pattern = partner.pattern};
}

// Onto the medium, for there has to be one.
Incoming sentOut(const PortView& port, unsigned link) {
  return port.description.media == MEDIA_NONE ? Incoming{} : sentBy(port, link);
}

Incoming sentByFarEnd(const PortView& port, unsigned link) {
  if (port.description.media == MEDIA_NONE) return {};
  if (port.description.farEnd == FarEnd::kPartner) return sentByPartner(port);
  const auto far = port.cabled();
  return far ? sentOut(*far, link) : Incoming{};
}

bool leadsTo(const PortView& port, unsigned number) {
  return port.description.farEnd == FarEnd::kPort && port.description.farPort == number;
}

// Calls `visit(port, distance)` for the ports that are near enough to disturb.
template <typename Visit>
void forEachNeighbour(const PortView& port, Visit visit) {
  for (unsigned distance = 1; distance <= kFarthestNeighbour; ++distance) {
    if (port.number >= distance) visit(PortView(port.asic, port.number - distance), distance);
    const unsigned next = port.number + distance;
    if (next < port.asic.state.ports.size()) visit(PortView(port.asic, next), distance);
  }
}

bool isLooped(const PortView& port, unsigned link) {
  return port.rxField(link, Field::kLoopback) != 0;
}

}  // namespace

bool streamOn(const PortView& port) {
  if (port.tx.links == 0) return port.state.sends;
  for (unsigned link = 0; link < port.tx.links; ++link) {
    if (port.txField(link, Field::kTxEnable) == 0) return false;
  }
  return true;
}

bool linkSends(const PortView& port, unsigned link) {
  return link < port.tx.links && port.txField(link, Field::kTxEnable) != 0 && port.tx.pllLocked();
}

Incoming incomingOf(const PortView& port, unsigned link) {
  const bool looped = isLooped(port, link);
  Incoming incoming = looped ? sentBy(port, link) : sentByFarEnd(port, link);
  incoming.channel = looped ? &loopbackChannel() : &port.description.channel;
  return incoming;
}

std::vector<Aggressor> aggressorsOf(const PortView& port, unsigned link) {
  std::vector<Aggressor> aggressors;
  if (isLooped(port, link)) return aggressors;
  const auto add = [&](const Incoming& sent, unsigned distance, bool farEnd) {
    if (!sent.arrives) return;
    aggressors.push_back(
        {.transmitter = sent.transmitter, .baudGbd = sent.baudGbd, .distance = distance, .farEnd = farEnd});
  };
  forEachNeighbour(port, [&](const PortView& neighbour, unsigned distance) {
    const unsigned txLinks = neighbour.tx.links;
    if (!leadsTo(port, neighbour.number) && txLinks > 0)
      add(sentOut(neighbour, std::min(link, txLinks - 1)), distance, false);
    const unsigned rxLinks = neighbour.rx.links;
    if (!leadsTo(neighbour, port.number) && rxLinks > 0)
      add(sentByFarEnd(neighbour, std::min(link, rxLinks - 1)), distance, true);
  });
  return aggressors;
}

std::vector<unsigned> neighboursOf(const PortView& port) {
  std::vector<unsigned> numbers;
  const auto far = port.cabled();
  const auto collect = [&](const PortView& neighbour, unsigned) {
    const unsigned number = neighbour.number;
    if (number == port.number || (far && number == far->number)) return;
    if (std::find(numbers.begin(), numbers.end(), number) == numbers.end()) numbers.push_back(number);
  };
  forEachNeighbour(port, collect);
  if (far) forEachNeighbour(*far, collect);
  return numbers;
}

}  // namespace simulator
