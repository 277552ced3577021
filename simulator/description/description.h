// A whole switch as a description file states it; the switch is built from these records and from nothing else.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/api.h"
#include "simulator/description/clock.h"
#include "simulator/description/faults.h"
#include "simulator/link/channel.h"
#include "simulator/link/ends.h"
#include "simulator/serdes/register_map.h"

namespace simulator {

// What the tool can address.
inline constexpr unsigned kMaxAsics = 2;
inline constexpr unsigned kMaxPorts = 24;
inline constexpr unsigned kMaxCores = 18;
inline constexpr unsigned kMaxLinks = 4;
inline constexpr std::size_t kMaxTypeName = 19;

inline constexpr unsigned kSpeeds = 7;  // SPEED_AUTO to SPEED_20G

// A set of speeds: bit n for port_speed_type n.
using SpeedSet = std::uint32_t;
constexpr SpeedSet speedBit(std::uint32_t speed) {
  return SpeedSet{1} << speed;
}

// Transmit and receive settings under one name.
struct Settings {
  SerDesTxRateParams tx{};
  SerDesRxRateParams rx{};
};

// Settings of a port that names none: those after a reset.
inline constexpr Settings kPlainSettings = {
    .tx = {.power = 115, .slew = SLEW_36PS, .mode = FFE_NONE, .p0 = 0, .p1 = 63, .p2 = 0, .p3 = 0},
    .rx = {.mode = DFE_3, .p0 = 6, .p1 = 4, .p2 = 0x4e, .p3 = 0}};
inline constexpr Settings kPlainEthernetSettings = {
    .tx = {.power = 7, .slew = SLEW_UNKNOWN, .mode = FFE_NONE, .p0 = 0, .p1 = 0, .p2 = 0, .p3 = 0},
    .rx = {.mode = 0, .p0 = 2, .p1 = 0, .p2 = 0, .p3 = 0}};

// What a port's cable ends at.
enum class FarEnd : std::uint8_t {
  kNothing,
  kPort,     // a port of the same ASIC; the port itself for a loop-back plug
  kPartner,  // a device outside the switch
};

struct PartnerDescription {
  SerDesTxRateParams tx{};
  std::uint32_t speed = SPEED_AUTO;
  SpeedSet speeds = 0;
  bool sends = true;
  unsigned pattern = 0;  // 0 frames, 1 to 3 a test pattern
};

// Registers at the start, from address 0 on: of a core's PLL, or of each of some links.
using RegisterValues = std::vector<std::uint16_t>;
using LinkValues = std::vector<RegisterValues>;

struct PortDescription {
  std::uint32_t portType = 0;              // kPortTypeGl, kPortTypeXg, kPortTypeExg
  std::optional<std::uint32_t> shownType;  // what the hardware record says instead
  bool present = true;
  std::uint16_t userPort = kNoUserPort;
  unsigned rxLinks = 1;
  unsigned txLinks = 1;
  unsigned rxCore = 0;
  unsigned txCore = 0;
  std::uint32_t media = MEDIA_OPTICAL;
  SpeedSet mediaSpeeds = 0;
  SpeedSet speeds = 0;
  Channel channel;  // what this port's receive links hear through
  FarEnd farEnd = FarEnd::kNothing;
  unsigned farPort = 0;
  PartnerDescription partner;
  std::uint32_t speed = SPEED_AUTO;
  bool sends = true;
  double signalDetectMv = kSignalDetectMv;  // below it a receive link takes what arrives for no signal
  std::uint64_t errorSeed = 0;              // of the errors that it counts: the switch's seed, and the port's place
  unsigned loadPercent = 100;               // share of the line rate that frames take
  std::array<Settings, kSpeeds> caches{};   // by port_speed_type; AUTO has none
  std::optional<Settings> live = {};        // in force at start instead of the cache's
  LinkValues txValues = {};                 // registers at start, whatever the settings say
  LinkValues rxValues = {};
};

struct CoreDescription {
  unsigned type = 0;
  unsigned pllRegisters = 0;
  unsigned rxRegisters = 0;
  unsigned txRegisters = 0;
  unsigned rxParams = 0;
  unsigned txParams = 0;
  unsigned firstPort = 0;
  int temperature = 45;  // degrees Celsius, with all transmitters off
  RegisterValues pllValues = {};
};

struct AsicDescription {
  std::vector<CoreDescription> cores;
  std::vector<PortDescription> ports;
};

struct SwitchDescription {
  int slots = 1;
  int userPorts = 0;
  int auxPorts = 0;
  ClockDescription clock;
  std::uint32_t seed = 1;
  std::array<std::string, kSerDesTypes> typeNames;
  std::vector<AsicDescription> asics;
  std::vector<FaultDescription> faults;
  // Of the text that was read: state kept from one run belongs to one description.
  std::uint64_t fingerprint = 0;
};

// What is wrong with a description, as "FILE:LINE: KEY: what".
class DescriptionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws DescriptionError. `fileName` is for messages only.
SwitchDescription readDescription(std::string_view text, const std::string& fileName);
// Reads the file; a file that cannot be read is a DescriptionError too.
SwitchDescription readDescriptionFile(const std::string& fileName);

}  // namespace simulator
