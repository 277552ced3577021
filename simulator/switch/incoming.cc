// Who sends, and what a receiver gets of it.
#include "simulator/switch/incoming.h"

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

Incoming sentByFarEnd(const PortView& port, unsigned link) {
  if (port.description.media == MEDIA_NONE) return {};
  if (port.description.farEnd == FarEnd::kPartner) return sentByPartner(port);
  const auto far = port.cabled();
  return far && far->description.media != MEDIA_NONE ? sentBy(*far, link) : Incoming{};
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
  const bool isLooped = port.rxField(link, Field::kLoopback) != 0;
  Incoming incoming = isLooped ? sentBy(port, link) : sentByFarEnd(port, link);
  incoming.channel = isLooped ? &loopbackChannel() : &port.description.channel;
  return incoming;
}

}  // namespace simulator
