// Counting errors. They are counted up to now just before anything changes that their rate depends on, and when they
// are read; in between nothing is done.
#pragma once

#include "simulator/switch/reception.h"

namespace simulator {

// Counts what the port has taken in up to `now`. `reception` is that port's, of now.
void settle(const Port& port, Reception& reception, std::uint64_t now);
void settle(const Port& port, LinkResults& results, std::uint64_t now);
// Also at the port at the other end of the cable and at the neighbours of both: all depend on what the two send.
void settleAround(const Port& port, LinkResults& results, std::uint64_t now);
// Also at all ports that a core serves.
void settleCore(const Asic& asic, unsigned core, LinkResults& results, std::uint64_t now);

// Bit errors at once in what a receive link hears: nobody sees them without lock.
void receiveErrors(const Port& port, unsigned link, std::uint32_t errors, LinkResults& results);

}  // namespace simulator
