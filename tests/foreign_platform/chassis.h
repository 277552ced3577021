// The one switch behind the three libraries: it keeps what is set, and answers the rest by formulas.
#ifndef CHASSIS_H
#define CHASSIS_H

#include "hal.h"

enum { PORTS = 6, LANES = 4, CORES = 3, REGISTERS = 8, RATES = 8, OPTIONS = 10 };
enum { NO_SUCH_THING = -71 };

struct sending_lane {
  SerDesTxFFEMode tap_mode;
  u8 drive;
  s8 taps[4];
  SerDesTxSlewRate edge;
};

struct receiving_lane {
  SerDesRxDFEMode feedback;
  s8 vga[3];
  s16 weights[10];
  int options[OPTIONS];
};

struct port {
  sending_lane sends[LANES];
  receiving_lane receives[LANES];
  u16 registers[2][LANES][REGISTERS];
  SerDesTxRateParams sends_at[RATES];
  SerDesRxRateParams receives_at[RATES];
  u32 speed;
  bool streams;
  bool counts;
};

struct chassis {
  port ports[PORTS];
  u16 pll[CORES][REGISTERS];
};

chassis& the_chassis();
u32 lanes_of(u32 port);
bool is_port(const port_id_t& id);
bool is_lane(u32 chip, u32 port, int lane);
// Waits until the board has taken a change; in a library that the three need besides.
int settle(int result);

// The lanes that a set addresses: one, or with -1 all of the port.
struct lane_range {
  u32 first, end;
  lane_range(u32 port, int lane)
      : first(lane < 0 ? 0 : static_cast<u32>(lane)), end(lane < 0 ? lanes_of(port) : static_cast<u32>(lane) + 1) {}
};

#endif
