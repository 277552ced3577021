// A port's receive links as they stand: what arrives at each, what each makes of it, and how the port fares. Worked out
// when asked for, once each; good until anything is changed.
#pragma once

#include <array>
#include <optional>

#include "simulator/switch/link_results.h"

namespace simulator {

// What GetPortInfo gives for a port; kPortStateRunning when frames pass.
enum PortStatus : unsigned long {
  kStatusNoLinks = 0,
  kStatusNoMedia = 1,
  kStatusNotSending = 2,  // the transmit stream is off
  kStatusNoPll = 3,       // the PLL of a core of the port is off
  kStatusNoSpeed = 4,     // no speed that both ends run at and the media carries
  kStatusNoSignal = 5,
  kStatusNoLock = 6,   // a receive link cannot follow what arrives
  kStatusPattern = 7,  // a test pattern arrives in place of frames
};

class Reception {
 public:
  // Both must stay where they are.
  Reception(const PortView& port, LinkResults& results) : port_(port), results_(results) {}

  const PortView& port() const {
    return port_;
  }
  const Incoming& incoming(unsigned link);
  const LinkResult& result(unsigned link);
  EyeScan& eye(unsigned link) {
    return results_.eyeOf(port_, link, incoming(link));
  }
  // Whether the receiver works and something is sent to it, be it too weak to be told from noise.
  bool listens(unsigned link);
  // Whether the link checks for a pattern, and that arrives.
  bool findsPattern(unsigned link);
  // Whether frames arrive: all links follow what they hear, at a speed of both ends, and that is no test pattern. What
  // the port itself sends has nothing to do with it.
  bool takesFrames();
  // kPortStateRunning or a PortStatus.
  unsigned long portStatus();

 private:
  struct Link {
    std::optional<Incoming> incoming;
    const LinkResult* result = nullptr;
  };

  const PortView& port_;
  LinkResults& results_;
  std::array<Link, kMaxLinks> links_;
};

}  // namespace simulator
