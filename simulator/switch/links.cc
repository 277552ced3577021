// What the links show, how the ports stand, and what they count.
#include "simulator/switch/switch.h"

namespace simulator {
namespace {

// Gigabaud by port_speed_type; ethernet runs at its own where they differ.
constexpr std::array<double, kSpeeds> kBaud = {1.0625, 1.0625, 2.125, 4.25, 8.5, 10.51875, 21.0375};
constexpr std::array<double, kSpeeds> kEthernetBaud = {1.25, 1.25, 2.5, 5, 10.3125, 10.3125, 20.625};

constexpr double kFrameBytes = 2148;
constexpr double kEthernetFrameBytes = 1518;

LineCode lineCodeOf(std::uint32_t speed) {
  return speed >= SPEED_10G ? LineCode::k64b66b : LineCode::k8b10b;
}

// The way back inside the SerDes that loopback takes.
const Channel& loopbackChannel() {
  static const Channel channel = fr4Trace(2);
  return channel;
}

// A small fixed imperfection of each link: no two need be alike, and none may change.
double mismatchOf(unsigned asic, unsigned port, unsigned link) {
  return 0.005 * (static_cast<int>((asic * 5 + port * 7 + link * 3) % 9) - 4);
}
double offsetOf(unsigned asic, unsigned port, unsigned link) {
  return static_cast<int>((asic * 3 + port * 5 + link * 2) % 7) - 3;
}

// How many kilobaud, so that bauds can be compared and kept as whole numbers.
int kilobaud(double gigabaud) {
  return static_cast<int>(gigabaud * 1e6 + 0.5);
}

}  // namespace

bool Switch::pllLocked(unsigned asic, unsigned core) const {
  const RegisterMap& map = serDesTraits(description_.asics[asic].cores[core].type).pll;
  return map.read(asics_[asic].plls[core], Field::kPllEnable) != 0;
}

bool Switch::sends(PortPlace place) const {
  const unsigned links = linkCount(place, SERDES_LINK_TX);
  if (links == 0) return stateOf(place).sends;
  const RegisterMap& map = traitsOf(place, SERDES_LINK_TX).tx;
  for (unsigned link = 0; link < links; ++link) {
    if (map.read(stateOf(place).tx[link].registers, Field::kTxEnable) == 0) return false;
  }
  return true;
}

bool Switch::linkSends(PortPlace place, unsigned link) const {
  if (link >= linkCount(place, SERDES_LINK_TX)) return false;
  const RegisterMap& map = traitsOf(place, SERDES_LINK_TX).tx;
  return map.read(stateOf(place).tx[link].registers, Field::kTxEnable) != 0 &&
         pllLocked(place.asic, coreOf(place, SERDES_LINK_TX));
}

double Switch::baudOf(PortPlace place, std::uint32_t speed, SerDesLinkType side) const {
  const bool isEthernet = describe(place).portType == kPortTypeExg;
  return (isEthernet ? kEthernetBaud : kBaud)[speed] / linkCount(place, side);
}

Switch::Incoming Switch::sentBy(PortPlace place, unsigned link) const {
  if (!linkSends(place, link)) return {};
  const SerDesTraits& traits = traitsOf(place, SERDES_LINK_TX);
  const RegisterFile& registers = stateOf(place).tx[link].registers;
  return {.arrives = true,
          .transmitter = transmitterOf(traits, registers),
          .baudGbd = baudOf(place, lineSpeed(place), SERDES_LINK_TX),
          .pattern = static_cast<unsigned>(traits.tx.read(registers, Field::kPattern))};
}

Switch::Incoming Switch::sentByPartner(PortPlace place) const {
  const PartnerDescription& partner = describe(place).partner;
  if (!partner.sends) return {};
  // The partner has a SerDes like the port's own, with nothing set but what the description says.
  const SerDesTraits& traits = traitsOf(place, SERDES_LINK_TX);
  RegisterFile registers = traits.tx.resetValues();
  applyCache(traits, registers, partner.tx);
  return {.arrives = true,
          .transmitter = transmitterOf(traits, registers),
          .baudGbd = baudOf(place, partnerLineSpeed(place), SERDES_LINK_RX),
          .pattern = partner.pattern};
}

Switch::Incoming Switch::incomingOf(PortPlace place, unsigned link) const {
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  Incoming incoming;
  if (map.read(stateOf(place).rx[link].registers, Field::kLoopback) != 0) {
    incoming = sentBy(place, link);
    incoming.channel = &loopbackChannel();
    return incoming;
  }
  const PortDescription& port = describe(place);
  PortPlace far;
  if (port.media == MEDIA_NONE) return {};
  if (cabledTo(place, &far)) {
    if (describe(far).media != MEDIA_NONE) incoming = sentBy(far, link);
  } else if (port.farEnd == FarEnd::kPartner) {
    incoming = sentByPartner(place);
  }
  incoming.channel = &port.channel;
  return incoming;
}

const LinkResult& Switch::resultOf(PortPlace place, unsigned link) {
  const SerDesTraits& traits = traitsOf(place, SERDES_LINK_RX);
  const RegisterFile& registers = stateOf(place).rx[link].registers;
  const bool isOn = traits.rx.read(registers, Field::kRxEnable) != 0;
  const bool isClocked = pllLocked(place.asic, coreOf(place, SERDES_LINK_RX));
  const Incoming incoming = incomingOf(place, link);
  Receiver receiver = receiverOf(traits, registers);
  const double baud = baudOf(place, lineSpeed(place), SERDES_LINK_RX);
  receiver.evenOddMismatch = traits.hasEvenAndOddTaps ? mismatchOf(place.asic, place.port, link) : 0;
  receiver.offsetLsb = offsetOf(place.asic, place.port, link);

  // Everything that the result depends on and that can change.
  std::array<int, kMemoInputs> inputs = {isOn,
                                         isClocked,
                                         incoming.arrives,
                                         incoming.channel == &loopbackChannel(),
                                         static_cast<int>(incoming.transmitter.ffeMode),
                                         static_cast<int>(incoming.transmitter.k),
                                         incoming.transmitter.c[0],
                                         incoming.transmitter.c[1],
                                         incoming.transmitter.c[2],
                                         incoming.transmitter.c[3],
                                         static_cast<int>(incoming.transmitter.slewPs),
                                         kilobaud(incoming.baudGbd),
                                         kilobaud(baud),
                                         static_cast<int>(receiver.dfeTaps),
                                         receiver.pole,
                                         receiver.peak,
                                         receiver.amax,
                                         receiver.adapt};
  static_assert(kMemoInputs == 18 + kTaps);
  for (std::size_t i = 0; i < kTaps; ++i)
    inputs[18 + i] = static_cast<int>(receiver.heldTaps[i]);

  Memo& memo = memos_[place.asic][place.port][link];
  if (memo.valid && memo.inputs == inputs) return memo.result;
  if (!isOn) {
    memo.result = {};
  } else if (!incoming.arrives || !isClocked) {
    memo.result = silentLink(receiver);
    memo.result.signalDetected = incoming.arrives;
  } else {
    memo.result = evaluateLink(incoming.transmitter, *incoming.channel, receiver, baud, incoming.baudGbd);
    ++evaluations_;
  }
  memo.inputs = inputs;
  memo.valid = true;
  return memo.result;
}

unsigned long Switch::portStatus(PortPlace place) {
  const PortDescription& port = describe(place);
  const std::uint32_t speed = stateOf(place).operatingSpeed;
  const bool looped = allLooped(place);
  if (port.rxLinks == 0 || port.txLinks == 0) return kStatusNoLinks;
  if (!looped && port.media == MEDIA_NONE) return kStatusNoMedia;
  if (!sends(place)) return kStatusNotSending;
  if (!pllLocked(place.asic, port.rxCore) || !pllLocked(place.asic, port.txCore)) return kStatusNoPll;
  // What can be said without working out a link comes first.
  for (unsigned link = 0; link < port.rxLinks; ++link) {
    if (!incomingOf(place, link).arrives) return kStatusNoSignal;
  }
  if (speed == SPEED_AUTO) return kStatusNoSpeed;
  if (!looped && (!carries(place, speed) || farOperatingSpeed(place) != speed)) return kStatusNoSpeed;
  for (unsigned link = 0; link < port.rxLinks; ++link) {
    const LinkResult& result = resultOf(place, link);
    if (!result.signalDetected) return kStatusNoSignal;
    if (!result.locked) return kStatusNoLock;
  }
  for (unsigned link = 0; link < port.rxLinks; ++link) {
    if (incomingOf(place, link).pattern != 0) return kStatusPattern;
  }
  return kPortStateRunning;
}

void Switch::settle(PortPlace place) {
  PortState& state = stateOf(place);
  const std::uint64_t elapsed = clock_.now() - state.settledAt;
  if (elapsed == 0) return;
  state.settledAt = clock_.now();

  const PortDescription& port = describe(place);
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  double decodeRate = 0;
  double crcRate = 0;
  const bool running = portStatus(place) == kPortStateRunning;
  for (unsigned link = 0; link < port.rxLinks; ++link) {
    RxLinkState& rx = state.rx[link];
    const double baud = baudOf(place, lineSpeed(place), SERDES_LINK_RX);
    if (running) {
      const LineCode code = lineCodeOf(state.operatingSpeed);
      const double frameBits = lineBits(port.portType == kPortTypeExg ? kEthernetFrameBytes : kFrameBytes, code);
      const double framesPerSecond = baud * port.rxLinks * 1e9 / frameBits * port.loadPercent / 100;
      const double ber = resultOf(place, link).ber;
      decodeRate += decodeErrorRate(ber, baud, code);
      crcRate += crcErrorRate(ber, frameBits / port.rxLinks, framesPerSecond);
    }
    const auto pattern = static_cast<unsigned>(map.read(rx.registers, Field::kCheckPattern));
    if (pattern != 0 && incomingOf(place, link).pattern == pattern && resultOf(place, link).locked) {
      rx.checkErrors.accumulate(errorRate(resultOf(place, link).ber * baud * 1e9), elapsed);
    }
  }
  if (!running) return;
  state.decodeErrors.accumulate(errorRate(decodeRate), elapsed);
  state.crcErrors.accumulate(errorRate(crcRate), elapsed);
}

void Switch::settleAround(PortPlace place) {
  settle(place);
  PortPlace far;
  if (cabledTo(place, &far)) settle(far);
}

void Switch::settleCore(unsigned asic, unsigned core) {
  for (unsigned port = 0; port < asics_[asic].ports.size(); ++port) {
    const PortPlace place{asic, port};
    if (coreOf(place, SERDES_LINK_RX) == core || coreOf(place, SERDES_LINK_TX) == core) settleAround(place);
  }
}

int Switch::getPortInfo(port_id_t port, port_info_t selector, unsigned long* value) {
  if (value == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  if (selector != PORT_INFO_STATE) return kOutOfRange;
  *value = portStatus(placeOf(port));
  return kOk;
}

int Switch::setStream(port_id_t port, bool enable) {
  if (const int code = findPort(port); code != kOk) return code;
  const PortPlace place = placeOf(port);
  settleAround(place);
  PortState& state = stateOf(place);
  state.sends = enable;
  const RegisterMap& map = traitsOf(place, SERDES_LINK_TX).tx;
  for (TxLinkState& link : state.tx)
    map.write(link.registers, Field::kTxEnable, enable ? 1 : 0);
  return kOk;
}

int Switch::getStream(port_id_t port, bool* enabled) const {
  if (enabled == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  *enabled = sends(placeOf(port));
  return kOk;
}

int Switch::getCounters(port_id_t port, drv_counters_t* counters) {
  if (counters == nullptr) return kBadArgument;
  if (const int code = findPort(port); code != kOk) return code;
  const PortPlace place = placeOf(port);
  settle(place);
  *counters = {};
  const auto words = [](std::uint64_t count) {
    return WordPairCounter{.high = static_cast<std::uint32_t>(count >> 32), .low = static_cast<std::uint32_t>(count)};
  };
  counters->decodeErrors = words(stateOf(place).decodeErrors.count);
  counters->crcErrors = words(stateOf(place).crcErrors.count);
  return kOk;
}

int Switch::clearCounters(port_id_t port) {
  if (const int code = findPort(port); code != kOk) return code;
  const PortPlace place = placeOf(port);
  settle(place);
  stateOf(place).decodeErrors = {};
  stateOf(place).crcErrors = {};
  return kOk;
}

}  // namespace simulator
