// The test options, a row each.
#include "simulator/switch/test_options.h"

#include <algorithm>
#include <climits>

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

void setLoopback(const Port& port, unsigned link, int mode, LinkResults&) {
  port.setRxField(link, kLoopback, mode);
  renegotiateAround(port);
}

int loopbackStatus(Reception& reception, unsigned link) {
  if (reception.port().rxField(link, kLoopback) == 0) return 0;
  return reception.result(link).locked ? 1 : 2;
}

void setSentPattern(const Port& port, unsigned link, int mode, LinkResults&) {
  port.setTxField(link, kPattern, mode);
}

int sentPattern(Reception& reception, unsigned link) {
  return reception.port().txField(link, kPattern);
}

void setHold(const Port& port, unsigned link, int mode, LinkResults& results) {
  if (mode == 0) port.setRxField(link, kHold, 0);
  if (mode == 1 && port.rxField(link, kHold) == 0) holdTaps(port, link, results);
}

int holdStatus(Reception& reception, unsigned link) {
  return reception.port().rxField(link, kHold);
}

void setCheckedPattern(const Port& port, unsigned link, int mode, LinkResults&) {
  port.setRxField(link, kCheckPattern, mode);
  if (mode != 0) port.state.rx[link].checkErrors = {};
}

int checkStatus(Reception& reception, unsigned link) {
  const bool checks = reception.port().rxField(link, kCheckPattern) != 0;
  if (checks && !reception.findsPattern(link)) return -1;
  return statusOf(reception.port().state.rx[link].checkErrors.count);
}

void setMargin(const Port& port, unsigned link, int mode, LinkResults&) {
  port.state.rx[link].marginShown = static_cast<std::uint8_t>(mode);
}

int marginStatus(Reception& reception, unsigned link) {
  const LinkResult& result = reception.result(link);
  if (reception.port().state.rx[link].marginShown != 0) return exponentOf(result.ber);
  return readingOf(result.eyeHeightV * result.gain / kLsbV);
}

// Errors on the way from a transmitter go to the one receiver that hears it.
void injectErrors(const Port& port, unsigned link, int mode, LinkResults& results) {
  const auto errors = static_cast<std::uint32_t>(mode);
  std::uint32_t& injected = port.state.tx[link].injectedErrors;
  injected = errors > UINT32_MAX - injected ? UINT32_MAX : injected + errors;
  if (!linkSends(port, link)) return;
  const auto isLooped = [&](const PortView& at) { return at.rxField(link, kLoopback) != 0; };
  if (link < port.rx.links && isLooped(port)) receiveErrors(port, link, errors, results);
  const auto far = port.cabled();
  if (far && link < far->rx.links && !isLooped(*far)) receiveErrors(*far, link, errors, results);
}

int injectedErrors(Reception& reception, unsigned link) {
  return statusOf(reception.port().state.tx[link].injectedErrors);
}

// A free DFE stands adapted at all times; one that is held takes new taps and stays held.
void readapt(const Port& port, unsigned link, int, LinkResults& results) {
  if (port.rxField(link, kHold) == 0) return;
  port.setRxField(link, kHold, 0);
  holdTaps(port, link, results);
}

void clearCheck(const Port& port, unsigned link, int, LinkResults&) {
  port.state.rx[link].checkErrors = {};
}

void setSensor(const Port& port, unsigned link, int mode, LinkResults&) {
  port.state.rx[link].sensor = static_cast<std::uint8_t>(mode);
}

int temperatureStatus(Reception& reception, unsigned link) {
  const PortView& port = reception.port();
  return temperatureOf(port.asic, (port.state.rx[link].sensor == 0 ? port.rx : port.tx).coreId);
}

constexpr TestOptionRow kRows[] = {
    {.option = kTestLoopback, .side = SERDES_LINK_RX, .greatestMode = 1, .set = setLoopback, .status = loopbackStatus},
    {.option = kTestSendPattern,
     .side = SERDES_LINK_TX,
     .greatestMode = kMaxPattern,
     .set = setSentPattern,
     .status = sentPattern},
    {.option = kTestHoldDfe,
     .side = SERDES_LINK_RX,
     .greatestMode = 1,
     .needsDfe = true,
     .set = setHold,
     .status = holdStatus},
    {.option = kTestCheckPattern,
     .side = SERDES_LINK_RX,
     .greatestMode = kMaxPattern,
     .set = setCheckedPattern,
     .status = checkStatus},
    {.option = kTestMargin, .side = SERDES_LINK_RX, .greatestMode = 1, .set = setMargin, .status = marginStatus},
    {.option = kTestInjectErrors,
     .side = SERDES_LINK_TX,
     .greatestMode = 65535,
     .set = injectErrors,
     .status = injectedErrors},
    {.option = kTestReadapt, .side = SERDES_LINK_RX, .greatestMode = 0, .needsDfe = true, .set = readapt},
    {.option = kTestClearCheck, .side = SERDES_LINK_RX, .greatestMode = 0, .set = clearCheck},
    {.option = kTestTemperature,
     .side = SERDES_LINK_RX,
     .greatestMode = 1,
     .set = setSensor,
     .status = temperatureStatus},
};

}  // namespace

const TestOptionRow* findTestOption(std::uint32_t option) {
  for (const TestOptionRow& row : kRows) {
    if (row.option == option) return &row;
  }
  return nullptr;
}

}  // namespace simulator
