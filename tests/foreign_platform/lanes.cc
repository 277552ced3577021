// libasicApi.so: what lanes are set to, their registers, and the counters of frames.
#include <string.h>

#include "chassis.h"

int AsicControl::ReadSerDesLinkRegister(u32 chip, u32 port, int lane, SerDesLinkType side, u8 first, u16* to,
                                        u8 how_many) {
  if (!is_lane(chip, port, lane) || lane < 0 || first + how_many > REGISTERS) return NO_SUCH_THING;
  memcpy(to, &the_chassis().ports[port].registers[side][lane][first], how_many * sizeof *to);
  return 0;
}

int AsicControl::WriteSerDesLinkRegister(u32 chip, u32 port, int lane, SerDesLinkType side, u8 at, u16 value) {
  if (!is_lane(chip, port, lane) || at >= REGISTERS) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n)
    the_chassis().ports[port].registers[side][n][at] = value;
  return settle(0);
}

int AsicControl::SetSerDesTxFFE(u32 chip, u32 port, int lane, SerDesTxFFEMode mode, u8 drive, s8 c0, s8 c1, s8 c2,
                                s8 c3) {
  if (!is_lane(chip, port, lane)) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n) {
    sending_lane& sends = the_chassis().ports[port].sends[n];
    sends.tap_mode = mode;
    sends.drive = drive;
    sends.taps[0] = c0;
    sends.taps[1] = c1;
    sends.taps[2] = c2;
    sends.taps[3] = c3;
  }
  return settle(0);
}

int AsicControl::GetSerDesTxFFE(u32 chip, u32 port, int lane, SerDesTxFFEMode* mode, u8* drive, s8* c0, s8* c1, s8* c2,
                                s8* c3) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  const sending_lane& sends = the_chassis().ports[port].sends[lane];
  *mode = sends.tap_mode;
  *drive = sends.drive;
  *c0 = sends.taps[0];
  *c1 = sends.taps[1];
  *c2 = sends.taps[2];
  *c3 = sends.taps[3];
  return 0;
}

int AsicControl::SetSerDesTxSlew(u32 chip, u32 port, int lane, bool on, SerDesTxSlewRate edge) {
  if (!is_lane(chip, port, lane)) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n)
    the_chassis().ports[port].sends[n].edge = on ? edge : EDGE_OTHER;
  return settle(0);
}

int AsicControl::GetSerDesTxSlew(u32 chip, u32 port, int lane, bool* on, SerDesTxSlewRate* edge) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  *on = true;
  *edge = the_chassis().ports[port].sends[lane].edge;
  return 0;
}

int AsicControl::SetSerDesTxRateParams(u32 chip, u32 port, port_speed_type rate, SerDesTxRateParams params) {
  if (!is_lane(chip, port, -1)) return NO_SUCH_THING;
  the_chassis().ports[port].sends_at[rate] = params;
  return settle(0);
}

int AsicControl::GetSerDesTxRateParams(u32 chip, u32 port, port_speed_type rate, SerDesTxRateParams* params) {
  if (!is_lane(chip, port, -1)) return NO_SUCH_THING;
  *params = the_chassis().ports[port].sends_at[rate];
  return 0;
}

int AsicControl::SetSerDesRxDFE(u32 chip, u32 port, int lane, SerDesRxDFEMode feedback) {
  if (!is_lane(chip, port, lane)) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n)
    the_chassis().ports[port].receives[n].feedback = feedback;
  return settle(0);
}

int AsicControl::GetSerDesRxDFE(u32 chip, u32 port, int lane, SerDesRxDFEMode* feedback) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  *feedback = the_chassis().ports[port].receives[lane].feedback;
  return 0;
}

int AsicControl::SetSerDesRxVGA(u32 chip, u32 port, int lane, s8 pole, s8 peak, s8 amax) {
  if (!is_lane(chip, port, lane)) return NO_SUCH_THING;
  const lane_range lanes(port, lane);
  for (u32 n = lanes.first; n < lanes.end; ++n) {
    s8* vga = the_chassis().ports[port].receives[n].vga;
    vga[0] = pole;
    vga[1] = peak;
    vga[2] = amax;
  }
  return settle(0);
}

int AsicControl::GetSerDesRxVGA(u32 chip, u32 port, int lane, s8* pole, s8* peak, s8* amax) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  const s8* vga = the_chassis().ports[port].receives[lane].vga;
  *pole = vga[0];
  *peak = vga[1];
  *amax = vga[2];
  return 0;
}

int AsicControl::SetSerDesRxDFEState(u32 chip, u32 port, int lane, SerDesRxDFEState* state) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  receiving_lane& receives = the_chassis().ports[port].receives[lane];
  receives.feedback = state->feedback;
  memcpy(receives.weights, state->weights, sizeof receives.weights);
  return settle(0);
}

int AsicControl::GetSerDesRxDFEStats(u32 chip, u32 port, int lane, SerDesRxDFEStats* stats) {
  if (!is_lane(chip, port, lane) || lane < 0) return NO_SUCH_THING;
  memset(stats, 0xA5, sizeof *stats);
  memcpy(stats->weights, the_chassis().ports[port].receives[lane].weights, sizeof stats->weights);
  stats->mean_one = static_cast<s16>(100 + port);
  stats->least_one = static_cast<s16>(10 + lane);
  stats->mean_zero = static_cast<s16>(-100 - static_cast<int>(port));
  return 0;
}

int AsicControl::SetSerDesRxRateParams(u32 chip, u32 port, port_speed_type rate, SerDesRxRateParams params) {
  if (!is_lane(chip, port, -1)) return NO_SUCH_THING;
  the_chassis().ports[port].receives_at[rate] = params;
  return settle(0);
}

int AsicControl::GetSerDesRxRateParams(u32 chip, u32 port, port_speed_type rate, SerDesRxRateParams* params) {
  if (!is_lane(chip, port, -1)) return NO_SUCH_THING;
  *params = the_chassis().ports[port].receives_at[rate];
  return 0;
}

int PortControl::GetFrameStatCntrs(port_id_t id, drv_counters_t* counters) {
  if (!is_port(id)) return NO_SUCH_THING;
  memset(counters, 0xA5, sizeof *counters);
  const bool counts = the_chassis().ports[id.chip_port].counts;
  // Ports 1 to 3 have counted past 32 bits.
  counters->undecodable.upper = counts ? id.chip_port % 4 : 0;
  counters->undecodable.lower = counts ? 7 : 0;
  counters->bad_crc.upper = 0;
  counters->bad_crc.lower = counts ? 1200u + id.chip_port : 0;
  return 0;
}

int PortControl::ClrFrameStatCntrs(port_id_t id) {
  if (!is_port(id)) return NO_SUCH_THING;
  the_chassis().ports[id.chip_port].counts = false;
  return settle(0);
}
