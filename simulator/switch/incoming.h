// What arrives at a receive link: from the far end of its cable, from a partner, or through loopback.
#pragma once

#include <vector>

#include "simulator/link/crosstalk.h"
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

// The transmitters that disturb a receive link: of the ports beside it, and of what their cables lead to. Link 2 of a
// port is beside link 2 of the next, or beside its last. A port's own transmitter and the one that it hears are none of
// them, and inside the SerDes, in loopback, there are none.
std::vector<Aggressor> aggressorsOf(const PortView& port, unsigned link);
// The same the other way round: the ports that may be disturbed by the port or by what its cable leads to, without
// these two.
std::vector<unsigned> neighboursOf(const PortView& port);

}  // namespace simulator
