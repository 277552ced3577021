// Configured, agreed and running speed, and the caches that a speed brings into force.
#include "simulator/switch/switch.h"

namespace simulator {
namespace {

constexpr SpeedSet kEverySpeed = ~SpeedSet{0};

std::uint32_t highest(SpeedSet speeds) {
  for (std::uint32_t speed = kSpeeds - 1; speed > SPEED_AUTO; --speed) {
    if ((speeds & speedBit(speed)) != 0) return speed;
  }
  return SPEED_AUTO;
}

std::uint32_t lowest(SpeedSet speeds) {
  for (std::uint32_t speed = SPEED_1G; speed < kSpeeds; ++speed) {
    if ((speeds & speedBit(speed)) != 0) return speed;
  }
  return SPEED_1G;
}

SpeedSet configured(std::uint32_t speed) {
  return speed == SPEED_AUTO ? kEverySpeed : speedBit(speed);
}

}  // namespace

SpeedSet Switch::allowedSpeeds(PortPlace place) const {
  const PortDescription& port = describe(place);
  return port.speeds & port.mediaSpeeds & configured(stateOf(place).configuredSpeed);
}

SpeedSet Switch::farSpeeds(PortPlace place) const {
  const PortDescription& port = describe(place);
  PortPlace far;
  if (cabledTo(place, &far)) return allowedSpeeds(far);
  if (port.farEnd == FarEnd::kPartner) return port.partner.speeds & configured(port.partner.speed);
  return 0;
}

// Whether the medium takes the speed, and that of the port at the far end too.
bool Switch::carries(PortPlace place, std::uint32_t speed) const {
  SpeedSet speeds = describe(place).mediaSpeeds;
  PortPlace far;
  if (cabledTo(place, &far)) speeds &= describe(far).mediaSpeeds;
  return (speeds & speedBit(speed)) != 0;
}

bool Switch::cabledTo(PortPlace place, PortPlace* far) const {
  const PortDescription& port = describe(place);
  *far = {place.asic, port.farPort};
  return port.farEnd == FarEnd::kPort;
}

// A port whose receivers all hear its own transmitters needs no far end and no medium.
bool Switch::allLooped(PortPlace place) const {
  const unsigned links = linkCount(place, SERDES_LINK_RX);
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  for (unsigned link = 0; link < links; ++link) {
    if (map.read(stateOf(place).rx[link].registers, Field::kLoopback) == 0) return false;
  }
  return links > 0;
}

std::uint32_t Switch::agreedSpeed(PortPlace place) const {
  const std::uint32_t own = stateOf(place).configuredSpeed;
  if (own != SPEED_AUTO) return own;
  const std::uint32_t agreed = highest(allowedSpeeds(place) & farSpeeds(place));
  // In loopback a port agrees with itself, but not so as to lose the far end.
  return agreed == SPEED_AUTO && allLooped(place) ? highest(describe(place).speeds) : agreed;
}

std::uint32_t Switch::farOperatingSpeed(PortPlace place) const {
  const PortDescription& port = describe(place);
  PortPlace far;
  if (cabledTo(place, &far)) return stateOf(far).operatingSpeed;
  if (port.farEnd != FarEnd::kPartner) return SPEED_AUTO;
  if (port.partner.speed != SPEED_AUTO) return port.partner.speed;
  const std::uint32_t own = stateOf(place).operatingSpeed;
  return (port.partner.speeds & speedBit(own)) != 0 ? own : std::uint32_t{SPEED_AUTO};
}

// Without an agreed speed a port sends and listens at its lowest.
std::uint32_t Switch::lineSpeed(PortPlace place) const {
  const std::uint32_t speed = stateOf(place).operatingSpeed;
  return speed != SPEED_AUTO ? speed : lowest(describe(place).speeds);
}

std::uint32_t Switch::partnerLineSpeed(PortPlace place) const {
  const std::uint32_t speed = farOperatingSpeed(place);
  return speed != SPEED_AUTO ? speed : lowest(describe(place).partner.speeds);
}

void Switch::applyCaches(PortPlace place) {
  PortState& state = stateOf(place);
  if (state.operatingSpeed == SPEED_AUTO) return;
  const Settings& cache = state.caches[state.operatingSpeed];
  for (TxLinkState& link : state.tx)
    applyCache(traitsOf(place, SERDES_LINK_TX), link.registers, cache.tx);
  for (RxLinkState& link : state.rx)
    applyCache(traitsOf(place, SERDES_LINK_RX), link.registers, cache.rx);
}

void Switch::renegotiate(PortPlace place) {
  PortState& state = stateOf(place);
  const std::uint32_t speed = agreedSpeed(place);
  if (speed == state.operatingSpeed) return;
  state.operatingSpeed = speed;
  applyCaches(place);
}

void Switch::renegotiateAround(PortPlace place) {
  renegotiate(place);
  PortPlace far;
  if (cabledTo(place, &far)) renegotiate(far);
}

int Switch::setPortSpeed(port_id_t port, unsigned speed) {
  if (const int code = findPort(port); code != kOk) return code;
  if (speed >= kSpeeds) return kOutOfRange;
  const PortPlace place = placeOf(port);
  if (speed != SPEED_AUTO && (describe(place).speeds & speedBit(speed)) == 0) return kNotSupported;
  settleAround(place);
  PortState& state = stateOf(place);
  state.configuredSpeed = speed;
  // Applied even if the speed stays what it was: setting it anew is how a changed cache is put into force.
  state.operatingSpeed = agreedSpeed(place);
  applyCaches(place);
  renegotiateAround(place);
  return kOk;
}

int Switch::getConfiguredSpeed(port_id_t port, unsigned* speed) const {
  if (speed == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *speed = stateOf(placeOf(port)).configuredSpeed;
  return kOk;
}

int Switch::getRunningSpeed(port_id_t port, unsigned* speed) {
  if (speed == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const PortPlace place = placeOf(port);
  const PortState& state = stateOf(place);
  const bool isSet = state.configuredSpeed != SPEED_AUTO || portStatus(place) == kPortStateRunning;
  *speed = isSet ? state.operatingSpeed : std::uint32_t{SPEED_INVALID};
  return kOk;
}

int Switch::getMedia(port_id_t port, MediaHwFcXmtrType* media) const {
  if (media == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *media = static_cast<MediaHwFcXmtrType>(describe(placeOf(port)).media);
  return kOk;
}

}  // namespace simulator
