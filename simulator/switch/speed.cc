// Speed agreement: a port's own speeds, those of its medium, and those of the far end.
#include "simulator/switch/speed.h"

#include "simulator/description/line_rates.h"
#include "simulator/serdes/settings.h"

namespace simulator {
namespace {

constexpr SpeedSet kEverySpeed = ~SpeedSet{0};

bool has(SpeedSet speeds, std::uint32_t speed) {
  return (speeds & speedBit(speed)) != 0;
}

std::uint32_t highest(SpeedSet speeds) {
  for (std::uint32_t speed = kSpeeds - 1; speed > SPEED_AUTO; --speed) {
    if (has(speeds, speed)) return speed;
  }
  return SPEED_AUTO;
}

SpeedSet configured(std::uint32_t speed) {
  return speed == SPEED_AUTO ? kEverySpeed : speedBit(speed);
}

SpeedSet allowedSpeeds(const PortView& port) {
  return port.description.speeds & port.description.mediaSpeeds & configured(port.state.configuredSpeed);
}

SpeedSet farSpeeds(const PortView& port) {
  if (const auto far = port.cabled()) return allowedSpeeds(*far);
  const PartnerDescription& partner = port.description.partner;
  return port.description.farEnd == FarEnd::kPartner ? partner.speeds & configured(partner.speed) : 0;
}

std::uint32_t agreedSpeed(const PortView& port) {
  const std::uint32_t own = port.state.configuredSpeed;
  if (own != SPEED_AUTO) return own;
  const std::uint32_t agreed = highest(allowedSpeeds(port) & farSpeeds(port));
  // In loopback a port agrees with itself, but not so as to lose the far end.
  return agreed == SPEED_AUTO && allLooped(port) ? highest(port.description.speeds) : agreed;
}

// AUTO when there is none.
std::uint32_t farOperatingSpeed(const PortView& port) {
  if (const auto far = port.cabled()) return far->state.operatingSpeed;
  if (port.description.farEnd != FarEnd::kPartner) return SPEED_AUTO;
  const PartnerDescription& partner = port.description.partner;
  if (partner.speed != SPEED_AUTO) return partner.speed;
  const std::uint32_t own = port.state.operatingSpeed;
  return has(partner.speeds, own) ? own : std::uint32_t{SPEED_AUTO};
}

// Whether the medium takes the speed, and that of the port at the far end too.
bool carries(const PortView& port, std::uint32_t speed) {
  const auto far = port.cabled();
  return has(port.description.mediaSpeeds, speed) && (!far || has(far->description.mediaSpeeds, speed));
}

// A port without an agreed speed runs at its lowest.
const LineRate& rateAt(std::uint32_t agreed, SpeedSet speeds) {
  return lineRateOf(agreed != SPEED_AUTO ? agreed : lowestSpeed(speeds));
}

double baudAt(const PortView& port, std::uint32_t agreed, SpeedSet speeds, const PortSide& side) {
  return rateAt(agreed, speeds).gigabaud(port.description.portType) / side.links;
}

}  // namespace

LineCode lineCode(const PortView& port) {
  return rateAt(port.state.operatingSpeed, port.description.speeds).code;
}

double linkBaud(const PortView& port, const PortSide& side) {
  return baudAt(port, port.state.operatingSpeed, port.description.speeds, side);
}

double partnerBaud(const PortView& port) {
  return baudAt(port, farOperatingSpeed(port), port.description.partner.speeds, port.rx);
}

bool allLooped(const PortView& port) {
  for (unsigned link = 0; link < port.rx.links; ++link) {
    if (port.rxField(link, Field::kLoopback) == 0) return false;
  }
  return port.rx.links > 0;
}

bool speedAgreed(const PortView& port) {
  const std::uint32_t speed = port.state.operatingSpeed;
  if (speed == SPEED_AUTO) return false;
  return allLooped(port) || (carries(port, speed) && farOperatingSpeed(port) == speed);
}

void putIntoForce(const Port& port, const Settings& settings) {
  for (TxLinkState& link : port.state.tx)
    applyCache(port.tx.traits, link.registers, settings.tx);
  for (RxLinkState& link : port.state.rx)
    applyCache(port.rx.traits, link.registers, settings.rx);
}

void renegotiate(const Port& port) {
  const std::uint32_t speed = agreedSpeed(port);
  if (speed == port.state.operatingSpeed) return;
  port.state.operatingSpeed = speed;
  if (speed != SPEED_AUTO) putIntoForce(port, port.state.caches[speed]);
}

void renegotiateAround(const Port& port) {
  renegotiate(port);
  if (const auto far = port.cabled()) renegotiate(*far);
}

void setSpeed(const Port& port, std::uint32_t speed) {
  port.state.configuredSpeed = speed;
  // Not the speed that it is set to: the same speed set anew is how a changed cache is put into force.
  port.state.operatingSpeed = SPEED_AUTO;
  renegotiateAround(port);
}

}  // namespace simulator
