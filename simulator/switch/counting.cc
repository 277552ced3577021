// From bit error rates to counts.
#include "simulator/switch/counting.h"

#include "simulator/link/errors.h"
#include "simulator/switch/speed.h"

namespace simulator {
namespace {

constexpr double kFrameBytes = 2148;
constexpr double kEthernetFrameBytes = 1518;

// What a port that runs takes in of decode and CRC errors.
void countFrames(const Port& port, Reception& reception, double baud, std::uint64_t elapsed) {
  const PortDescription& described = port.description;
  const LineCode code = lineCodeOf(port.state.operatingSpeed);
  const double frameBits = lineBits(described.portType == kPortTypeExg ? kEthernetFrameBytes : kFrameBytes, code);
  const double framesPerSecond = baud * port.rx.links * 1e9 / frameBits * described.loadPercent / 100;
  double decodeRate = 0;
  double crcRate = 0;
  for (unsigned link = 0; link < port.rx.links; ++link) {
    const double ber = reception.result(link).ber;
    decodeRate += decodeErrorRate(ber, baud, code);
    crcRate += crcErrorRate(ber, frameBits / port.rx.links, framesPerSecond);
  }
  port.state.decodeErrors.accumulate(errorRate(decodeRate), elapsed);
  port.state.crcErrors.accumulate(errorRate(crcRate), elapsed);
}

}  // namespace

void settle(const Port& port, Reception& reception, std::uint64_t now) {
  const std::uint64_t elapsed = now - port.state.settledAt;
  if (elapsed == 0) return;
  port.state.settledAt = now;
  const double baud = linkBaud(port, port.rx);
  if (reception.portStatus() == kPortStateRunning) countFrames(port, reception, baud, elapsed);
  for (unsigned link = 0; link < port.rx.links; ++link) {
    if (!reception.findsPattern(link)) continue;
    port.state.rx[link].checkErrors.accumulate(errorRate(reception.result(link).ber * baud * 1e9), elapsed);
  }
}

void settle(const Port& port, LinkResults& results, std::uint64_t now) {
  Reception reception(port, results);
  settle(port, reception, now);
}

void settleAround(const Port& port, LinkResults& results, std::uint64_t now) {
  settle(port, results, now);
  if (const auto far = port.cabled()) settle(*far, results, now);
}

void settleCore(const Asic& asic, unsigned core, LinkResults& results, std::uint64_t now) {
  for (unsigned number = 0; number < asic.state.ports.size(); ++number) {
    const Port port(asic, number);
    if (port.rx.coreId == core || port.tx.coreId == core) settleAround(port, results, now);
  }
}

void receiveErrors(const Port& port, unsigned link, std::uint32_t errors, LinkResults& results) {
  Reception reception(port, results);
  if (reception.portStatus() == kPortStateRunning) {
    port.state.decodeErrors.count += errors;
    port.state.crcErrors.count += errors;
  }
  if (reception.findsPattern(link)) port.state.rx[link].checkErrors.count += errors;
}

}  // namespace simulator
