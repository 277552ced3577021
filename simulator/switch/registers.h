// Registers as they are read and written: the settings' other face, with status that is worked out when it is read.
#pragma once

#include "simulator/switch/reception.h"

namespace simulator {

// The eye's height in converter steps.
int eyeReading(const LinkResult& result);
int temperatureOf(const AsicView& asic, unsigned core);

// Registers with what is worked out filled in.
RegisterFile readablePll(const AsicView& asic, unsigned core);
RegisterFile readableTx(const PortView& port, unsigned link);
RegisterFile readableRx(Reception& reception, unsigned link);
// Whether `count` receive registers from `address` on show something of the link that has to be worked out.
bool showsLink(const PortView& port, unsigned link, unsigned address, unsigned count);

// Stops the adaptation of a DFE where it stands.
void holdTaps(const Port& port, unsigned link, LinkResults& results);
// A tap that is written stands, and so do the others: adaptation would take it away again at once.
void writeRxRegister(const Port& port, unsigned link, unsigned address, std::uint16_t value, LinkResults& results);

}  // namespace simulator
