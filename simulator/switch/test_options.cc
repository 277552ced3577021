// The test options, a row each.
#include "simulator/switch/test_options.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <optional>

#include "simulator/switch/counting.h"
#include "simulator/switch/registers.h"
#include "simulator/switch/speed.h"

namespace simulator {
namespace {

using enum Field;

constexpr int kMaxPattern = 3;

int statusOf(std::uint64_t count) {
  return static_cast<int>(std::min<std::uint64_t>(count, INT_MAX));
}

// The n of an error rate x * 10^-n with x from 1 to 10: how often it can be multiplied by ten before it reaches 1.
int exponentOf(double ber) {
  int exponent = 0;
  for (double rate = ber; rate < 1 && exponent < 18; rate *= 10)
    ++exponent;
  return exponent;
}

struct EyePoint {
  int phase;
  int level;
};
std::optional<EyePoint> pointOf(int mode) {
  constexpr int kBias = 128;
  const int fromFirst = mode - static_cast<int>(kMarginPoint) + 256 * kBias + kBias;
  const EyePoint point = {.phase = fromFirst / 256 - kBias, .level = fromFirst % 256 - kBias};
  const bool isInEye = std::abs(point.phase) <= EyeScan::kMaxPhase && std::abs(point.level) <= EyeScan::kMaxLevel;
  return isInEye ? std::optional(point) : std::nullopt;
}

int marginOf(Reception& reception, unsigned link) {
  const std::uint32_t shown = reception.port().state.rx[link].marginShown;
  if (const auto point = pointOf(static_cast<int>(shown))) {
    return reception.eye(link).exponent(point->phase, point->level);
  }
  if (shown == kMarginWidth) return reception.eye(link).widthMilliUi();
  const LinkResult& result = reception.result(link);
  return shown == kMarginErrorRate ? exponentOf(result.ber) : eyeReading(result);
}

// Errors on the way from a transmitter go to the one receiver that hears it.
void injectErrors(const TestedLink& from, std::uint32_t errors) {
  const Port& port = from.port;
  const unsigned link = from.number;
  std::uint32_t& injected = port.state.tx[link].injectedErrors;
  injected = errors > UINT32_MAX - injected ? UINT32_MAX : injected + errors;
  if (!linkSends(port, link)) return;
  const auto isLooped = [&](const PortView& at) { return at.rxField(link, kLoopback) != 0; };
  if (link < port.rx.links && isLooped(port)) receiveErrors(port, link, errors, from.results);
  const auto far = port.cabled();
  if (far && link < far->rx.links && !isLooped(*far)) receiveErrors(*far, link, errors, from.results);
}

constexpr TestOptionRow kRows[] = {
    {.option = kTestLoopback,
     .side = SERDES_LINK_RX,
     .greatestMode = 1,
     .set =
         [](const TestedLink& link, int mode) {
           link.port.setRxField(link.number, kLoopback, mode);
           renegotiateAround(link.port);
         },
     .status =
         [](Reception& reception, unsigned link) {
           if (reception.port().rxField(link, kLoopback) == 0) return 0;
           return reception.result(link).locked ? 1 : 2;
         }},
    {.option = kTestSendPattern,
     .side = SERDES_LINK_TX,
     .greatestMode = kMaxPattern,
     .set = [](const TestedLink& link, int mode) { link.port.setTxField(link.number, kPattern, mode); },
     .status = [](Reception& reception, unsigned link) { return reception.port().txField(link, kPattern); }},
    {.option = kTestHoldDfe,
     .side = SERDES_LINK_RX,
     .greatestMode = 1,
     .needsDfe = true,
     .set =
         [](const TestedLink& link, int mode) {
           if (mode == 0) link.port.setRxField(link.number, kHold, 0);
           if (mode == 1 && link.port.rxField(link.number, kHold) == 0) holdTaps(link.port, link.number, link.results);
         },
     .status = [](Reception& reception, unsigned link) { return reception.port().rxField(link, kHold); }},
    {.option = kTestCheckPattern,
     .side = SERDES_LINK_RX,
     .greatestMode = kMaxPattern,
     .set =
         [](const TestedLink& link, int mode) {
           link.port.setRxField(link.number, kCheckPattern, mode);
           if (mode != 0) link.rx().checkErrors.clear();
         },
     .status =
         [](Reception& reception, unsigned link) {
           const bool checks = reception.port().rxField(link, kCheckPattern) != 0;
           if (checks && !reception.findsPattern(link)) return -1;
           return statusOf(reception.port().state.rx[link].checkErrors.count);
         }},
    {.option = kTestMargin,
     .side = SERDES_LINK_RX,
     .greatestMode = kMaxMarginMode,
     .takes = [](int mode) { return mode <= static_cast<int>(kMarginWidth) || pointOf(mode).has_value(); },
     .set = [](const TestedLink& link, int mode) { link.rx().marginShown = static_cast<std::uint32_t>(mode); },
     .status = marginOf},
    {.option = kTestInjectErrors,
     .side = SERDES_LINK_TX,
     .greatestMode = 65535,
     .set = [](const TestedLink& link, int mode) { injectErrors(link, static_cast<std::uint32_t>(mode)); },
     .status = [](Reception& reception,
                  unsigned link) { return statusOf(reception.port().state.tx[link].injectedErrors); }},
    {.option = kTestReadapt,
     .side = SERDES_LINK_RX,
     .greatestMode = 0,
     .needsDfe = true,
     // A free DFE stands adapted at all times; one that is held takes new taps and stays held.
     .set =
         [](const TestedLink& link, int) {
           if (link.port.rxField(link.number, kHold) == 0) return;
           link.port.setRxField(link.number, kHold, 0);
           holdTaps(link.port, link.number, link.results);
         }},
    {.option = kTestClearCheck,
     .side = SERDES_LINK_RX,
     .greatestMode = 0,
     .set = [](const TestedLink& link, int) { link.rx().checkErrors.clear(); }},
    {.option = kTestTemperature,
     .side = SERDES_LINK_RX,
     .greatestMode = 1,
     .set = [](const TestedLink& link, int mode) { link.rx().sensor = static_cast<std::uint8_t>(mode); },
     .status =
         [](Reception& reception, unsigned link) {
           const PortView& port = reception.port();
           return temperatureOf(port.asic, (port.state.rx[link].sensor == 0 ? port.rx : port.tx).coreId);
         }},
};

}  // namespace

const TestOptionRow* findTestOption(std::uint32_t option) {
  for (const TestOptionRow& row : kRows) {
    if (row.option == option) return &row;
  }
  return nullptr;
}

}  // namespace simulator
