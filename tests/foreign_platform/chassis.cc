// libswServerApi.so: the state, and finding out what there is.
#include "chassis.h"

#include <string.h>

namespace {

// Four GL ports on core 0, an XG port of four lanes on core 1, an EXG port that receives on core 2 and sends on core 1.
const u32 KIND[PORTS] = {1, 1, 1, 1, 2, 3};
const u32 CORE[2][PORTS] = {{0, 0, 0, 0, 1, 2}, {0, 0, 0, 0, 1, 1}};
const SerDesType TYPE[CORES] = {LANE_B, LANE_C, LANE_D};

}  // namespace

chassis& the_chassis() {
  static chassis state;
  return state;
}

u32 lanes_of(u32 port) {
  return KIND[port] == 2 ? 4 : 1;
}

bool is_port(const port_id_t& id) {
  return id.chip == 0 && id.chip_port < PORTS && (id.front_panel == 0xFFFF || id.front_panel == 40 + id.chip_port);
}

bool is_lane(u32 chip, u32 port, int lane) {
  return chip == 0 && port < PORTS && lane >= -1 && lane < static_cast<int>(lanes_of(port));
}

int AsicControl::AsicCtlOpen() {
  chassis& all = the_chassis();
  memset(&all, 0, sizeof all);
  for (u32 p = 0; p < PORTS; ++p) {
    all.ports[p].speed = KIND[p] == 3 ? RATE_10 : RATE_8;
    all.ports[p].streams = true;
    all.ports[p].counts = true;
    for (u32 r = 0; r < REGISTERS; ++r)
      for (u32 side = 0; side < 2; ++side)
        for (u32 lane = 0; lane < LANES; ++lane)
          all.ports[p].registers[side][lane][r] = static_cast<u16>(0x8000 * side + 0x100 * p + 0x10 * lane + r);
  }
  for (u32 core = 0; core < CORES; ++core)
    for (u32 r = 0; r < REGISTERS; ++r)
      all.pll[core][r] = static_cast<u16>(0xC000 + 0x10 * core + r);
  return 1;  // any result from 0 on is success
}

int AsicControl::AsicCtlClose() {
  return 0;
}

int PortControl::PortCtlOpen() {
  return 2;
}

int PortControl::PortCtlClose() {
  return 0;
}

int AsicControl::GetSwitchConfig(Switch_HW_Config_t* config) {
  memset(config, 0xA5, sizeof *config);
  config->slots = 3;
  config->front_ports = 5;
  config->aux_ports = -1;
  config->chips = 1;
  return 0;
}

int AsicControl::GetSerDesInfo(u32 chip, u32* ports, u32* cores) {
  if (chip != 0) return NO_SUCH_THING;
  *ports = PORTS;
  *cores = CORES;
  return 0;
}

int AsicControl::GetSerDesInfo(u32 chip, u32 core, u16* first, SerDesType* type, u32* pll, u32* rx, u32* tx, u32* rxp,
                               u32* txp) {
  if (chip != 0 || core >= CORES) return NO_SUCH_THING;
  *first = static_cast<u16>(core == 0 ? 0 : 3 + core);
  *type = TYPE[core];
  *pll = 2 + core;
  *rx = 4 + core;
  *tx = 3 + core;
  *rxp = 4;
  *txp = 7;
  return 0;
}

int AsicControl::GetSerDesInfo(u32 chip, u32 port, SerDesLinkType side, u32* lanes, SerDesType* type, u32* core) {
  if (chip != 0 || port >= PORTS || (side != LANE_RECEIVES && side != LANE_SENDS)) return NO_SUCH_THING;
  *core = CORE[side][port];
  *type = TYPE[*core];
  *lanes = lanes_of(port);
  return 0;
}

const char* AsicControl::ToString(SerDesType type) {
  static const char* const NAMES[] = {"none", "lane A", "lane B", "lane C", "lane D"};
  return type < LANE_TYPES ? NAMES[type] : NULL;
}

int PortControl::GetPortHwConfig(port_id_t id, Port_HW_Config_t* config) {
  if (!is_port(id)) return NO_SUCH_THING;
  memset(config, 0x5A, sizeof *config);
  config->id = id;
  config->id.front_panel = id.chip_port == 3 ? 0xFFFF : static_cast<u16>(40 + id.chip_port);
  config->fitted = 0x100;
  config->kind = KIND[id.chip_port];
  return 0;
}
