// The simulated switch: its state, and what every platform operation does to it. Operations answer kOk or one of the
// error codes; an operation that refuses changes nothing. Whether the platform is open is not asked here.
//
// Link results are worked out when somebody asks and kept until an input of theirs changes. Errors are counted up to
// now just before anything changes that their rate depends on, and when they are read.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/api.h"
#include "simulator/description/clock.h"
#include "simulator/description/description.h"
#include "simulator/description/faults.h"
#include "simulator/error_codes.h"
#include "simulator/link/model.h"
#include "simulator/serdes/settings.h"
#include "simulator/switch/state.h"

namespace simulator {

// What GetPortInfo gives for a port; kPortStateRunning when frames pass.
enum PortStatus : unsigned long {
  kStatusNoLinks = 0,
  kStatusNoMedia = 1,
  kStatusNotSending = 2,  // the transmit stream is off
  kStatusNoPll = 3,       // the PLL of a core of the port is off
  kStatusNoSpeed = 4,     // no speed that both ends run at and the media carries
  kStatusNoSignal = 5,
  kStatusNoLock = 6,   // a receive link cannot follow what arrives
  kStatusPattern = 7,  // a test pattern arrives in place of frames
};

// Test options of SetSerDesTestOption; the numbers are the tool's.
enum TestOption : std::uint32_t {
  kTestLoopback = 0,
  kTestSendPattern = 1,
  kTestHoldDfe = 2,
  kTestCheckPattern = 3,
  kTestMargin = 4,
  kTestInjectErrors = 6,
  kTestReadapt = 7,
  kTestClearCheck = 8,
  kTestTemperature = 9,
};

inline constexpr int kAllLinks = -1;
inline constexpr const char* kUnknownType = "UNKNOWN";  // name of a SerDes type that is not one of the seven

class SIMULATOR_API Switch {
 public:
  explicit Switch(SwitchDescription description);

  // A platform call begins: time passes, and a fault may befall it (null: none does).
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
    return evaluations_;
  }

 private:
  // A port that exists.
  struct PortPlace {
    unsigned asic;
    unsigned port;
  };
  // Links first to last - 1 of a side.
  struct LinkRange {
    unsigned first;
    unsigned last;
  };
  // What arrives at a receive link.
  struct Incoming {
    bool arrives = false;
    Transmitter transmitter;
    const Channel* channel = nullptr;
    double baudGbd = 0;
    unsigned pattern = 0;
  };
  static constexpr std::size_t kMemoInputs = 28;
  // A link result with the inputs that it belongs to.
  struct Memo {
    std::array<int, kMemoInputs> inputs{};
    bool valid = false;
    LinkResult result;
  };

  // switch.cc: start, addressing, discovery.
  void resetPort(PortPlace place);
  void startPort(PortPlace place);
  static PortPlace placeOf(port_id_t id) {
    return {id.asic, id.asicPort};
  }
  int findPort(unsigned asic, unsigned port) const;
  int findPort(port_id_t id) const;
  int findLinks(PortPlace place, SerDesLinkType side, int link, LinkRange* range) const;
  int findLink(unsigned asic, unsigned port, SerDesLinkType side, int link) const;
  const PortDescription& describe(PortPlace place) const;
  PortState& stateOf(PortPlace place);
  const PortState& stateOf(PortPlace place) const;
  unsigned coreOf(PortPlace place, SerDesLinkType side) const;
  unsigned linkCount(PortPlace place, SerDesLinkType side) const;
  const SerDesTraits& traitsOf(PortPlace place, SerDesLinkType side) const;

  // switch_settings.cc: sets that address one link or all.
  template <typename Set>
  int setTx(unsigned asic, unsigned port, int link, Set set);
  template <typename Set>
  int setRx(unsigned asic, unsigned port, int link, Set set);
  int findCache(unsigned asic, unsigned port, port_speed_type rate) const;

  // switch_speed.cc: which speed a port's SerDes is set to.
  SpeedSet allowedSpeeds(PortPlace place) const;
  SpeedSet farSpeeds(PortPlace place) const;
  std::uint32_t agreedSpeed(PortPlace place) const;
  std::uint32_t farOperatingSpeed(PortPlace place) const;
  std::uint32_t lineSpeed(PortPlace place) const;
  std::uint32_t partnerLineSpeed(PortPlace place) const;
  bool allLooped(PortPlace place) const;
  void applyCaches(PortPlace place);
  void renegotiate(PortPlace place);
  void renegotiateAround(PortPlace place);
  bool cabledTo(PortPlace place, PortPlace* far) const;
  bool carries(PortPlace place, std::uint32_t speed) const;

  // switch_links.cc: what links show and how ports stand.
  bool pllLocked(unsigned asic, unsigned core) const;
  bool sends(PortPlace place) const;
  bool linkSends(PortPlace place, unsigned link) const;
  double baudOf(PortPlace place, std::uint32_t speed, SerDesLinkType side) const;
  Incoming sentBy(PortPlace place, unsigned link) const;
  Incoming sentByPartner(PortPlace place) const;
  Incoming incomingOf(PortPlace place, unsigned link) const;
  const LinkResult& resultOf(PortPlace place, unsigned link);
  unsigned long portStatus(PortPlace place);
  void settle(PortPlace place);
  void settleAround(PortPlace place);
  void settleCore(unsigned asic, unsigned core);

  // switch_registers.cc.
  RegisterFile readableTx(PortPlace place, unsigned link) const;
  RegisterFile readableRx(PortPlace place, unsigned link, unsigned address, unsigned count);
  void holdTaps(PortPlace place, unsigned link);
  void writeRxRegister(PortPlace place, unsigned link, unsigned address, std::uint16_t value);
  int temperatureOf(unsigned asic, unsigned core) const;

  // switch_tests.cc.
  void injectErrors(PortPlace place, unsigned link, std::uint32_t errors);
  void receiveErrors(PortPlace place, unsigned link, std::uint32_t errors);

  SwitchDescription description_;
  Clock clock_;
  Faults faults_;
  std::vector<AsicState> asics_;
  std::vector<std::vector<std::array<Memo, kMaxLinks>>> memos_;
  unsigned evaluations_ = 0;
};

}  // namespace simulator
