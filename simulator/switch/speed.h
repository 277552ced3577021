// Which speed a port's SerDes is set to, and the settings that a speed puts into force.
#pragma once

#include "simulator/link/errors.h"
#include "simulator/switch/port.h"

namespace simulator {

// Of what the port hears and sends; like the baud, that of its lowest speed without an agreed one.
LineCode lineCode(const PortView& port);
// Gbd of each link of a side, at the port's speed; without an agreed speed a port sends and listens at its lowest.
double linkBaud(const PortView& port, const PortSide& side);
// The same of what the partner at the far end sends.
double partnerBaud(const PortView& port);

// Whether all receive links hear the port's own transmitters: it then needs no far end and no medium.
bool allLooped(const PortView& port);
// Whether the port has a speed at which the far end runs too and which the media of both carry.
bool speedAgreed(const PortView& port);

void setSpeed(const Port& port, std::uint32_t speed);
// Agrees on the speed anew; a speed that changes puts its caches into force.
void renegotiate(const Port& port);
// Also that of the port at the other end of the cable.
void renegotiateAround(const Port& port);
// Sets all links as far as their SerDes takes the settings.
void putIntoForce(const Port& port, const Settings& settings);

}  // namespace simulator
