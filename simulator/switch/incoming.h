// What arrives at a receive link: from the far end of its cable, from a partner, or through loopback.
#pragma once

#include "simulator/serdes/settings.h"
#include "simulator/switch/port.h"

namespace simulator {

struct Incoming {
  bool arrives = false;
  Transmitter transmitter;
  const Channel* channel = nullptr;
  double baudGbd = 0;
  unsigned pattern = 0;  // 0 frames, 1 to 3 a test pattern
};

// Whether the port's transmit stream is on: the enable bits of all its links.
bool streamOn(const PortView& port);
// Whether the transmit link exists and sends.
bool linkSends(const PortView& port, unsigned link);
Incoming incomingOf(const PortView& port, unsigned link);

}  // namespace simulator
