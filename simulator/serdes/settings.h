// Settings of one link as the platform's operations, the rate caches and the link model see them. All of them live in
// the link's register file; what the SerDes cannot take is refused and leaves the registers as they were.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/api.h"
#include "simulator/link/ends.h"
#include "simulator/serdes/register_map.h"

namespace simulator {

inline constexpr int kMaxDriveLevel = 15;  // ethernet: transmit power and pre-emphasis
inline constexpr int kMaxCdrMode = 3;      // ethernet: clock recovery mode
inline constexpr int kNativeSlewPs = 24;   // the edge of a driver whose slew control is off
inline constexpr std::array<int, 7> kSlewPs = {24, 30, 36, 50, 60, 75, 100};  // by SerDesTxSlewRate

struct FfeSettings {
  std::uint32_t mode;  // SerDesTxFFEMode
  int k;
  std::array<int, 4> c;
};
struct VgaSettings {
  int pole;
  int peak;
  int amax;
};

// Each setter gives kOk, or kOutOfRange or kNotSupported and changes nothing.
int setFfe(const SerDesTraits& traits, RegisterFile& tx, const FfeSettings& settings);
int setSlew(const SerDesTraits& traits, RegisterFile& tx, bool enable, std::uint32_t slew);
int setDriveLevel(const SerDesTraits& traits, RegisterFile& tx, int level, int preEmphasis);
int setVga(const SerDesTraits& traits, RegisterFile& rx, const VgaSettings& settings);
// A new mode starts the adaptation anew: taps that were held are let go.
int setDfe(const SerDesTraits& traits, RegisterFile& rx, std::uint32_t mode);
// Loads mode and taps; the DFE then stands at them.
int setDfeState(const SerDesTraits& traits, RegisterFile& rx, const SerDesRxDFEState& state);
int setEqualiser(const SerDesTraits& traits, RegisterFile& rx, int cdrMode, int eqMode);

// What an ethernet SerDes has in place of these is shown as the FFE, slew, DFE and VGA settings that come to the same.
FfeSettings ffeOf(const SerDesTraits& traits, const RegisterFile& tx);
VgaSettings vgaOf(const SerDesTraits& traits, const RegisterFile& rx);
bool slewEnabled(const SerDesTraits& traits, const RegisterFile& tx);
std::uint32_t slewOf(const SerDesTraits& traits, const RegisterFile& tx);  // SerDesTxSlewRate
std::uint32_t dfeOf(const SerDesTraits& traits, const RegisterFile& rx);   // SerDesRxDFEMode

// Puts into force what a rate cache holds, group by group (FFE, slew, DFE mode, VGA; power with pre-emphasis, clock
// recovery with equaliser): a group that the SerDes cannot take stays as it was.
void applyCache(const SerDesTraits& traits, RegisterFile& tx, const SerDesTxRateParams& params);
void applyCache(const SerDesTraits& traits, RegisterFile& rx, const SerDesRxRateParams& params);

// The link model's view.
Transmitter transmitterOf(const SerDesTraits& traits, const RegisterFile& tx);
Receiver receiverOf(const SerDesTraits& traits, const RegisterFile& rx);

}  // namespace simulator
