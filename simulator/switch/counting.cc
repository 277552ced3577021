// From bit error rates to counts.
#include "simulator/switch/counting.h"

#include "simulator/link/errors.h"
#include "simulator/switch/speed.h"

namespace simulator {
namespace {

constexpr double kFrameBytes = 2148;
constexpr double kEthernetFrameBytes = 1518;

// Decode errors a second of a link.
double decodeRate(Reception& reception, unsigned link, double baud, LineCode code) {
  if (!reception.listens(link)) return 0;
  if (!reception.result(link).locked) return violationRate(baud, code);
  return reception.incoming(link).pattern == 0 ? decodeErrorRate(reception.result(link).ber, baud, code) : 0;
}

// CRC errors a second of the frames that arrive.
double crcRate(Reception& reception, double baud, LineCode code) {
  if (!reception.takesFrames()) return 0;
  const PortDescription& described = reception.port().description;
  const unsigned links = reception.port().rx.links;
  const double frameBits = lineBits(described.portType == kPortTypeExg ? kEthernetFrameBytes : kFrameBytes, code);
  const double framesPerSecond = baud * links * 1e9 / frameBits * described.loadPercent / 100;
  double rate = 0;
  for (unsigned link = 0; link < links; ++link)
    rate += crcErrorRate(reception.result(link).ber, frameBits / links, framesPerSecond);
  return rate;
}

}  // namespace

void settle(const Port& port, Reception& reception, std::uint64_t now) {
  const std::uint64_t elapsed = now - port.state.settledAt;
  if (elapsed == 0) return;
  port.state.settledAt = now;
  const double baud = linkBaud(port, port.rx);
  const LineCode code = lineCode(port);
  double decodeErrors = 0;
  // Each counter has a seed of its own.
  std::uint64_t seed = port.description.errorSeed;
  for (unsigned link = 0; link < port.rx.links; ++link, ++seed) {
    decodeErrors += decodeRate(reception, link, baud, code);
    if (!reception.findsPattern(link)) continue;
    port.state.rx[link].checkErrors.accumulate(errorRate(reception.result(link).ber * baud * 1e9), elapsed, seed);
  }
  port.state.decodeErrors.accumulate(errorRate(decodeErrors), elapsed, seed);
  port.state.crcErrors.accumulate(errorRate(crcRate(reception, baud, code)), elapsed, seed + 1);
}

void settle(const Port& port, LinkResults& results, std::uint64_t now) {
  Reception reception(port, results);
  settle(port, reception, now);
}

void settleAround(const Port& port, LinkResults& results, std::uint64_t now) {
  settle(port, results, now);
  if (const auto far = port.cabled()) settle(*far, results, now);
  for (const unsigned number : neighboursOf(port))
    settle(Port(port.asic, number), results, now);
}

void settleCore(const Asic& asic, unsigned core, LinkResults& results, std::uint64_t now) {
  for (unsigned number = 0; number < asic.state.ports.size(); ++number) {
    const Port port(asic, number);
    if (port.rx.coreId == core || port.tx.coreId == core) settleAround(port, results, now);
  }
}

void receiveErrors(const Port& port, unsigned link, std::uint32_t errors, LinkResults& results) {
  Reception reception(port, results);
  if (reception.takesFrames()) {
    port.state.decodeErrors.count += errors;
    port.state.crcErrors.count += errors;
  }
  if (reception.findsPattern(link)) port.state.rx[link].checkErrors.count += errors;
}

}  // namespace simulator
