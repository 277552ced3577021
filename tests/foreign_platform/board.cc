// libswbApi.so: cores' registers, tests, and what ports run at.
#include <string.h>

#include "chassis.h"

int AsicControl::ReadSerDesPLLRegister(u32 chip, u32 core, u8 first, u16* to, u8 how_many) {
  if (chip != 0 || core >= CORES || first + how_many > REGISTERS) return NO_SUCH_THING;
  memcpy(to, &the_chassis().pll[core][first], how_many * sizeof *to);
  return 0;
}

int AsicControl::WriteSerDesPLLRegister(u32 chip, u32 core, u8 at, u16 value) {
  if (chip != 0 || core >= CORES || at >= REGISTERS) return NO_SUCH_THING;
  the_chassis().pll[core][at] = value;
  return settle(0);
}

int AsicControl::SetSerDesTestOption(u32 chip, u32 port, int lane, SerDesTestOption option, int mode) {
  if (!is_lane(chip, port, lane)) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n)
    the_chassis().ports[port].receives[n].options[option] = mode;
  return settle(0);
}

int AsicControl::GetSerDesTestStatus(u32 chip, u32 port, int lane, SerDesTestOption option, int* status) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  *status = the_chassis().ports[port].receives[lane].options[option];
  return 0;
}

int PortControl::GetPortInfo(port_id_t id, port_info_t what, unsigned long* value) {
  if (!is_port(id) || what != INFO_STATE) return NO_SUCH_THING;
  *value = id.chip_port == 2 ? 4 : 11;
  return 0;
}

int PortControl::SetPortCfgSpeed(port_id_t id, u32 speed) {
  if (!is_port(id)) return NO_SUCH_THING;
  the_chassis().ports[id.chip_port].speed = speed;
  return settle(0);
}

int PortControl::GetPortCfgSpeed(port_id_t id, u32* speed) {
  if (!is_port(id)) return NO_SUCH_THING;
  *speed = the_chassis().ports[id.chip_port].speed;
  return 0;
}

int PortControl::GetPortSpeed(port_id_t id, u32* speed) {
  if (!is_port(id)) return NO_SUCH_THING;
  const u32 configured = the_chassis().ports[id.chip_port].speed;
  *speed = configured == RATE_NEGOTIATED ? static_cast<u32>(RATE_8) : configured;
  return 0;
}

int PortControl::GetMediaHwFcXmtrType(port_id_t id, MediaHwFcXmtrType* type) {
  if (!is_port(id)) return NO_SUCH_THING;
  *type = id.chip_port < 4 ? XMTR_LASER : XMTR_COPPER;
  return 0;
}

int PortControl::TxStreamEnable(port_id_t id, bool on) {
  if (!is_port(id)) return NO_SUCH_THING;
  the_chassis().ports[id.chip_port].streams = on;
  return settle(0);
}

int PortControl::TxStreamState(port_id_t id, bool* on) {
  if (!is_port(id)) return NO_SUCH_THING;
  *on = the_chassis().ports[id.chip_port].streams;
  return 0;
}
