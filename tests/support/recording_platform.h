// A platform for tests: it answers from plain fields, fails where a test says so, and keeps every call as a line of
// text such as "SetSerDesTxFFE(0, 3, -1, 2, 115, -4, 55, -25, 0)". A port identifier is written user/ASIC/port.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/platform.h"

namespace recording {

inline constexpr unsigned kPorts = 40;  // more than the tool's model holds
inline constexpr unsigned kLinks = 4;
inline constexpr unsigned kCores = 40;

struct Side {
  unsigned linkCount = 1;
  std::uint32_t type = 2;
  unsigned core = 0;
};

struct TxLink {
  std::uint32_t mode = 0;
  std::uint8_t k = 0;
  std::array<signed char, 4> c{};
  std::uint32_t slew = 0;
};

struct RxLink {
  std::uint32_t mode = 0;
  signed char pole = 0;
  signed char peak = 0;
  signed char amax = 0;
  SerDesRxDFEStats stats{};
};

struct Port {
  Side rx;
  Side tx;
  Port_HW_Config_t hwConfig{};
  unsigned long state = kPortStateRunning;
  unsigned configuredSpeed = SPEED_8G;
  unsigned runningSpeed = SPEED_8G;
  std::uint32_t media = MEDIA_OPTICAL;
  std::uint8_t streamState = 1;  // written as it is into the caller's bool
  std::uint64_t decodeErrors = 0;
  std::uint64_t crcErrors = 0;
  std::array<TxLink, kLinks> txLinks{};
  std::array<RxLink, kLinks> rxLinks{};
  SerDesTxRateParams txCache{};
  SerDesRxRateParams rxCache{};
};

struct Core {
  unsigned short firstPort = 0;
  std::uint32_t type = 2;
  unsigned pllRegisters = 3;
  unsigned rxRegisters = 6;
  unsigned txRegisters = 5;
  unsigned rxParams = 4;
  unsigned txParams = 7;
};

struct Platform {
  Switch_HW_Config_t switchConfig{};
  unsigned portCount = 0;
  unsigned coreCount = 0;
  std::array<Port, kPorts> ports;
  std::array<Core, kCores> cores;
  std::map<std::uint32_t, std::string> typeNames;  // a type that is not named here has a null name
  int testStatus = 0;
  // The value of a link register and of a PLL register.
  std::function<unsigned short(unsigned port, int link, SerDesLinkType side, unsigned address)> linkRegister;
  std::function<unsigned short(unsigned core, unsigned address)> pllRegister;
  // When set, gives the whole record of a port's frame statistics instead of the port's two counts.
  std::function<drv_counters_t(port_id_t port)> frameStatistics;

  // Set: operations succeed without writing any of their values.
  bool silent = false;
  // Set: calls for a port's state and configured speed that fail write them all the same.
  bool answersThoughFailing = false;
  // Set: overwrites every value that an operation hands back, its record's reserved room included.
  std::function<void(std::span<std::byte> value)> corrupt;

  // Set: asked at every call for its result, before the faults below.
  std::function<int()> failing;

  std::vector<std::string> calls;
  // What the sets handed over last, for what a call's text does not show.
  SerDesRxDFEState lastDfeState{};

  // The n-th call from now on of the operation (1 is the next one) returns `code`; all later ones too if `forever`.
  void fail(const std::string& operation, int code, unsigned ordinal = 1, bool forever = false);
  // The n-th call of any operation from now on.
  void failCall(unsigned ordinal, int code, bool forever = false);

  // Enters a call and gives its result.
  int record(const std::string& operation, const std::string& arguments);

  struct Fault {
    std::string operation;  // empty: any
    int code = 0;
    unsigned remaining = 0;  // calls until it strikes
    bool forever = false;
  };
  std::vector<Fault> faults;
};

// The platform behind AsicControl and PortControl.
extern Platform platform;

// A switch with 2 ASICs. Each has 12 ports: 0 to 5 GL (type 2, core 0 up to port 3, then core 1), 6 and 7 XG (type 3,
// four links, core 2 and 3), 8 to 11 EXG (type 4, receive on core 4, transmit on core 5). User port numbers are 100 +
// port; ports 3 and 9 have none. All run at 8G over optics.
void resetPlatform();

}  // namespace recording
