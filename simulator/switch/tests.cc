// Test options: loopback, patterns sent and checked, the DFE held and adapted anew, margin, injected errors,
// temperature.
#include <climits>

#include "simulator/switch/switch.h"

namespace simulator {
namespace {

using enum Field;

constexpr int kMaxInjectedErrors = 65535;
constexpr int kMaxPattern = 3;

int statusOf(std::uint64_t count) {
  return count > INT_MAX ? INT_MAX : static_cast<int>(count);
}

// The n of an error rate x * 10^-n with x from 1 to 10: how often it can be multiplied by ten before it reaches 1.
int exponentOf(double ber) {
  int exponent = 0;
  for (double rate = ber; rate < 1 && exponent < 18; rate *= 10)
    ++exponent;
  return exponent;
}

// The greatest mode of each option; an option that is not here is none.
struct OptionRange {
  std::uint32_t option;
  SerDesLinkType side;
  int greatestMode;
};
constexpr OptionRange kOptions[] = {
    {kTestLoopback, SERDES_LINK_RX, 1},    {kTestSendPattern, SERDES_LINK_TX, kMaxPattern},
    {kTestHoldDfe, SERDES_LINK_RX, 1},     {kTestCheckPattern, SERDES_LINK_RX, kMaxPattern},
    {kTestMargin, SERDES_LINK_RX, 1},      {kTestInjectErrors, SERDES_LINK_TX, kMaxInjectedErrors},
    {kTestReadapt, SERDES_LINK_RX, 0},     {kTestClearCheck, SERDES_LINK_RX, 0},
    {kTestTemperature, SERDES_LINK_RX, 1},
};

const OptionRange* findOption(std::uint32_t option) {
  for (const OptionRange& range : kOptions) {
    if (range.option == option) return &range;
  }
  return nullptr;
}

}  // namespace

// Errors on the way from a transmitter befall the one receiver that hears it.
void Switch::injectErrors(PortPlace place, unsigned link, std::uint32_t errors) {
  std::uint32_t& injected = stateOf(place).tx[link].injectedErrors;
  injected = errors > UINT32_MAX - injected ? UINT32_MAX : injected + errors;
  if (!linkSends(place, link)) return;
  const auto looped = [&](PortPlace at) {
    const RegisterMap& map = traitsOf(at, SERDES_LINK_RX).rx;
    return map.read(stateOf(at).rx[link].registers, kLoopback) != 0;
  };
  if (link < linkCount(place, SERDES_LINK_RX) && looped(place)) receiveErrors(place, link, errors);
  PortPlace far;
  if (cabledTo(place, &far) && link < linkCount(far, SERDES_LINK_RX) && !looped(far)) receiveErrors(far, link, errors);
}

void Switch::receiveErrors(PortPlace place, unsigned link, std::uint32_t errors) {
  const Incoming incoming = incomingOf(place, link);
  if (!incoming.arrives || !resultOf(place, link).locked) return;
  PortState& state = stateOf(place);
  if (portStatus(place) == kPortStateRunning) {
    state.decodeErrors.count += errors;
    state.crcErrors.count += errors;
  }
  const RegisterMap& map = traitsOf(place, SERDES_LINK_RX).rx;
  const auto pattern = static_cast<unsigned>(map.read(state.rx[link].registers, kCheckPattern));
  if (pattern != 0 && pattern == incoming.pattern) state.rx[link].checkErrors.count += errors;
}

int Switch::setTestOption(unsigned asic, unsigned port, int link, std::uint32_t option, int mode) {
  if (const int code = findPort(asic, port); code != kOk) return code;
  const OptionRange* known = findOption(option);
  if (known == nullptr) return kOutOfRange;
  const PortPlace place{asic, port};
  LinkRange range;
  if (const int code = findLinks(place, known->side, link, &range); code != kOk) return code;
  if (mode < 0 || mode > known->greatestMode) return kOutOfRange;
  const RegisterMap& rx = traitsOf(place, SERDES_LINK_RX).rx;
  const RegisterMap& tx = traitsOf(place, SERDES_LINK_TX).tx;
  const bool needsDfe = option == kTestHoldDfe || option == kTestReadapt;
  if (needsDfe && !rx.has(kHold) && range.first < range.last) return kNotSupported;
  settleAround(place);
  for (unsigned l = range.first; l < range.last; ++l) {
    TxLinkState& sender = stateOf(place).tx[l];
    RxLinkState& receiver = stateOf(place).rx[l];
    switch (option) {
      case kTestLoopback:
        rx.write(receiver.registers, kLoopback, mode);
        break;
      case kTestSendPattern:
        tx.write(sender.registers, kPattern, mode);
        break;
      case kTestHoldDfe:
        if (mode == 0) rx.write(receiver.registers, kHold, 0);
        if (mode == 1 && rx.read(receiver.registers, kHold) == 0) holdTaps(place, l);
        break;
      case kTestCheckPattern:
        rx.write(receiver.registers, kCheckPattern, mode);
        if (mode != 0) receiver.checkErrors = {};
        break;
      case kTestMargin:
        receiver.marginShown = static_cast<std::uint8_t>(mode);
        break;
      case kTestInjectErrors:
        injectErrors(place, l, static_cast<std::uint32_t>(mode));
        break;
      case kTestReadapt:
        // A free DFE stands adapted at all times; one that is held takes new taps and stays held.
        if (rx.read(receiver.registers, kHold) == 0) break;
        rx.write(receiver.registers, kHold, 0);
        holdTaps(place, l);
        break;
      case kTestClearCheck:
        receiver.checkErrors = {};
        break;
      default:
        receiver.sensor = static_cast<std::uint8_t>(mode);
        break;
    }
  }
  if (option == kTestLoopback) renegotiateAround(place);
  return kOk;
}

int Switch::getTestStatus(unsigned asic, unsigned port, int link, std::uint32_t option, int* status) {
  if (status == nullptr) return kBadArgument;
  if (const int code = findPort(asic, port); code != kOk) return code;
  const OptionRange* known = findOption(option);
  if (known == nullptr) return kOutOfRange;
  if (option == kTestReadapt || option == kTestClearCheck) return kNotSupported;
  if (const int code = findLink(asic, port, known->side, link); code != kOk) return code;
  const PortPlace place{asic, port};
  const auto index = static_cast<unsigned>(link);
  const RegisterMap& rx = traitsOf(place, SERDES_LINK_RX).rx;
  const RegisterFile& receiver = stateOf(place).rx[index].registers;
  const RxLinkState& state = stateOf(place).rx[index];
  settle(place);
  switch (option) {
    case kTestLoopback:
      *status = rx.read(receiver, kLoopback) == 0 ? 0 : resultOf(place, index).locked ? 1 : 2;
      return kOk;
    case kTestSendPattern:
      *status = traitsOf(place, SERDES_LINK_TX).tx.read(stateOf(place).tx[index].registers, kPattern);
      return kOk;
    case kTestHoldDfe:
      if (!rx.has(kHold)) return kNotSupported;
      *status = rx.read(receiver, kHold);
      return kOk;
    case kTestCheckPattern: {
      const auto pattern = static_cast<unsigned>(rx.read(receiver, kCheckPattern));
      const bool checks = incomingOf(place, index).pattern == pattern && resultOf(place, index).locked;
      *status = pattern != 0 && !checks ? -1 : statusOf(state.checkErrors.count);
      return kOk;
    }
    case kTestMargin: {
      const LinkResult& result = resultOf(place, index);
      *status = state.marginShown == 0 ? readingOf(result.eyeHeightV * result.gain / kLsbV) : exponentOf(result.ber);
      return kOk;
    }
    case kTestInjectErrors:
      *status = statusOf(stateOf(place).tx[index].injectedErrors);
      return kOk;
    default:
      *status = temperatureOf(asic, coreOf(place, state.sensor == 0 ? SERDES_LINK_RX : SERDES_LINK_TX));
      return kOk;
  }
}

}  // namespace simulator
