// The simulated switch: what every platform operation does. Operations answer kOk or one of the error codes; an
// operation that refuses changes nothing. Whether the platform is open is not asked here.
//
// An operation checks what it is given, finds the port, lets errors be counted up to now if it changes anything, and
// leaves the rest to the parts: speed.h, incoming.h, link_results.h, reception.h, counting.h, registers.h,
// test_options.h and the settings of serdes/.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "simulator/api.h"
#include "simulator/error_codes.h"
#include "simulator/serdes/settings.h"
#include "simulator/switch/clock.h"
#include "simulator/switch/faults.h"
#include "simulator/switch/link_results.h"
#include "simulator/switch/reception.h"
#include "simulator/switch/state.h"
#include "simulator/switch/test_options.h"

namespace simulator {

inline constexpr const char* kUnknownType = "UNKNOWN";  // name of a SerDes type that is not one of the seven

class SIMULATOR_API Switch {
 public:
  explicit Switch(SwitchDescription description);

  // A platform call begins: time passes, and a fault may apply to it (null: none does).
  const FaultDescription* beginCall(const CallSite& call);

  int getSwitchConfig(Switch_HW_Config_t* config) const;
  int getAsicInfo(unsigned asic, unsigned* portCount, unsigned* coreCount) const;
  int getCoreInfo(unsigned asic, unsigned core, unsigned short* firstPort, SerDesType* type,
                  std::array<unsigned*, 5> counts) const;  // PLL, rx, tx registers, rx, tx parameters
  int getPortSideInfo(unsigned asic, unsigned port, SerDesLinkType side, unsigned* linkCount, SerDesType* type,
                      unsigned* coreId) const;
  const char* typeName(SerDesType type) const;

  int readLinkRegisters(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                        unsigned short* values, unsigned count);
  int writeLinkRegister(unsigned asic, unsigned port, int link, SerDesLinkType side, unsigned address,
                        std::uint16_t value);
  int readPllRegisters(unsigned asic, unsigned core, unsigned address, unsigned short* values, unsigned count) const;
  int writePllRegister(unsigned asic, unsigned core, unsigned address, std::uint16_t value);

  int setTxFfe(unsigned asic, unsigned port, int link, const FfeSettings& settings);
  int getTxFfe(unsigned asic, unsigned port, int link, FfeSettings* settings) const;
  int setTxSlew(unsigned asic, unsigned port, int link, bool enable, SerDesTxSlewRate slew);
  int getTxSlew(unsigned asic, unsigned port, int link, bool* enable, SerDesTxSlewRate* slew) const;
  int setTxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesTxRateParams& params);
  int getTxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesTxRateParams* params) const;

  int setRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode mode);
  int getRxDfe(unsigned asic, unsigned port, int link, SerDesRxDFEMode* mode) const;
  int setRxVga(unsigned asic, unsigned port, int link, const VgaSettings& settings);
  int getRxVga(unsigned asic, unsigned port, int link, VgaSettings* settings) const;
  int setRxDfeState(unsigned asic, unsigned port, int link, const SerDesRxDFEState* state);
  int getRxDfeStats(unsigned asic, unsigned port, int link, SerDesRxDFEStats* stats);
  int setRxRateParams(unsigned asic, unsigned port, port_speed_type rate, const SerDesRxRateParams& params);
  int getRxRateParams(unsigned asic, unsigned port, port_speed_type rate, SerDesRxRateParams* params) const;

  int setTestOption(unsigned asic, unsigned port, int link, std::uint32_t option, int mode);
  int getTestStatus(unsigned asic, unsigned port, int link, std::uint32_t option, int* status);

  int getPortHwConfig(port_id_t port, Port_HW_Config_t* config) const;
  int getPortInfo(port_id_t port, port_info_t selector, unsigned long* value);
  int setPortSpeed(port_id_t port, unsigned speed);
  int getConfiguredSpeed(port_id_t port, unsigned* speed) const;
  int getRunningSpeed(port_id_t port, unsigned* speed);
  int getMedia(port_id_t port, MediaHwFcXmtrType* media) const;
  int setStream(port_id_t port, bool enable);
  int getStream(port_id_t port, bool* enabled) const;
  int getCounters(port_id_t port, drv_counters_t* counters);
  int clearCounters(port_id_t port);

  // The seam for a state file. The list's names and lengths follow from the description alone; importState takes a
  // list of exactly that shape with values in range, or refuses it and changes nothing.
  std::vector<StateRecord> exportState() const;
  bool importState(const std::vector<StateRecord>& records);
  std::uint64_t fingerprint() const {
    return description_.fingerprint;
  }

  // How many link results have been worked out so far; for tests and measurements.
  unsigned evaluations() const {
    return results_.evaluations();
  }

 private:
  int findPort(unsigned asic, unsigned port) const;
  int findPort(port_id_t id) const;
  int findLink(unsigned asic, unsigned port, SerDesLinkType side, int link) const;
  int findCore(unsigned asic, unsigned core) const;
  int findCache(unsigned asic, unsigned port, port_speed_type rate) const;
  // Of an ASIC, port or link that has been found.
  Asic at(unsigned asic) {
    return {asic, description_.asics[asic], asics_[asic]};
  }
  AsicView at(unsigned asic) const {
    return {asic, description_.asics[asic], asics_[asic]};
  }
  Port at(unsigned asic, unsigned port) {
    return {at(asic), port};
  }
  PortView at(unsigned asic, unsigned port) const {
    return {at(asic), port};
  }
  Port at(port_id_t id) {
    return at(id.asic, id.asicPort);
  }
  PortView at(port_id_t id) const {
    return at(id.asic, id.asicPort);
  }
  // Settings of one link or all; `set` and `get` are those of serdes/settings.h.
  template <typename Set, typename... Values>
  int setLinks(unsigned asic, unsigned port, SerDesLinkType side, int link, Set set, const Values&... values);
  template <typename Get, typename Value>
  int getLink(unsigned asic, unsigned port, SerDesLinkType side, int link, Get get, Value* value) const;

  SwitchDescription description_;
  Clock clock_;
  Faults faults_;
  std::vector<AsicState> asics_;
  LinkResults results_;
};

}  // namespace simulator
