// Range checks and the translation between registers, platform records and the link model.
#include "simulator/serdes/settings.h"

#include <algorithm>
#include <cstdlib>

#include "simulator/error_codes.h"

namespace simulator {
namespace {

using enum Field;

constexpr std::array<Field, 4> kCoefficients = {kC0, kC1, kC2, kC3};
constexpr std::array<unsigned, 4> kDfeTaps = {3, 5, 0, 1};

// Ethernet: a step of power is 17 of the 255 of k; pre-emphasis moves swing from the main to the first postcursor.
constexpr int kStepOfK = 17;
constexpr int kEthernetMain = 63;
constexpr int kStepOfPreEmphasis = 2;
constexpr int kEthernetAmax = 0x40;

bool fits(int value, int least, int greatest) {
  return least <= value && value <= greatest;
}

}  // namespace

int setFfe(const SerDesTraits& traits, RegisterFile& tx, const FfeSettings& settings) {
  if (traits.isEthernet) return kNotSupported;
  if (settings.mode > FFE_4 || !fits(settings.k, 0, 255)) return kOutOfRange;
  int sum = 0;
  for (const int c : settings.c) {
    if (!fits(c, -traits.maxTap, traits.maxTap)) return kOutOfRange;
    sum += std::abs(c);
  }
  if (sum > traits.maxTapSum) return kOutOfRange;
  if (((traits.ffeModes >> settings.mode) & 1) == 0) return kNotSupported;
  for (std::size_t i = 0; i < kCoefficients.size(); ++i) {
    if (settings.c[i] != 0 && !traits.tx.has(kCoefficients[i])) return kNotSupported;
  }
  traits.tx.write(tx, kFfeMode, static_cast<int>(settings.mode));
  traits.tx.write(tx, kPower, settings.k);
  for (std::size_t i = 0; i < kCoefficients.size(); ++i)
    traits.tx.write(tx, kCoefficients[i], settings.c[i]);
  return kOk;
}

int setSlew(const SerDesTraits& traits, RegisterFile& tx, bool enable, std::uint32_t slew) {
  if (slew >= kSlewPs.size()) return kOutOfRange;
  if (!traits.tx.has(kSlew)) return kNotSupported;
  traits.tx.write(tx, kSlewEnable, enable ? 1 : 0);
  traits.tx.write(tx, kSlew, static_cast<int>(slew));
  return kOk;
}

int setDriveLevel(const SerDesTraits& traits, RegisterFile& tx, int level, int preEmphasis) {
  if (!traits.isEthernet) return kNotSupported;
  if (!fits(level, 0, kMaxDriveLevel) || !fits(preEmphasis, 0, kMaxDriveLevel)) return kOutOfRange;
  traits.tx.write(tx, kDriveLevel, level);
  traits.tx.write(tx, kPreEmphasis, preEmphasis);
  return kOk;
}

int setVga(const SerDesTraits& traits, RegisterFile& rx, const VgaSettings& settings) {
  if (traits.isEthernet) return kNotSupported;
  if (!fits(settings.pole, 0, kMaxPole) || !fits(settings.peak, 0, kMaxPeak) || !fits(settings.amax, 0, kMaxAmax)) {
    return kOutOfRange;
  }
  traits.rx.write(rx, kPole, settings.pole);
  traits.rx.write(rx, kPeak, settings.peak);
  traits.rx.write(rx, kAmax, settings.amax);
  return kOk;
}

int setDfe(const SerDesTraits& traits, RegisterFile& rx, std::uint32_t mode) {
  if (mode > DFE_1) return kOutOfRange;
  if (((traits.dfeModes >> mode) & 1) == 0) return kNotSupported;
  traits.rx.write(rx, kDfeMode, static_cast<int>(mode));
  traits.rx.write(rx, kHold, 0);
  return kOk;
}

int setDfeState(const SerDesTraits& traits, RegisterFile& rx, const SerDesRxDFEState& state) {
  if (!traits.rx.has(kTap9)) return kNotSupported;  // all ten, or they are not loaded
  if (state.mode > DFE_1) return kOutOfRange;
  for (unsigned i = 0; i < kTaps; ++i) {
    const FieldPlace& place = *traits.rx.find(tapField(i));
    if (!fits(state.h[i], leastValue(place), greatestValue(place))) return kOutOfRange;
  }
  traits.rx.write(rx, kDfeMode, static_cast<int>(state.mode));
  for (unsigned i = 0; i < kTaps; ++i)
    traits.rx.write(rx, tapField(i), state.h[i]);
  traits.rx.write(rx, kHold, 1);
  return kOk;
}

int setEqualiser(const SerDesTraits& traits, RegisterFile& rx, int cdrMode, int eqMode) {
  if (!traits.isEthernet) return kNotSupported;
  if (!fits(cdrMode, 0, kMaxCdrMode) || !fits(eqMode, 0, kMaxPeak)) return kOutOfRange;
  traits.rx.write(rx, kCdrMode, cdrMode);
  traits.rx.write(rx, kEqMode, eqMode);
  return kOk;
}

FfeSettings ffeOf(const SerDesTraits& traits, const RegisterFile& tx) {
  if (traits.isEthernet) {
    const int shifted = kStepOfPreEmphasis * traits.tx.read(tx, kPreEmphasis);
    return {.mode = shifted == 0 ? FFE_NONE : FFE_2,
            .k = kStepOfK * traits.tx.read(tx, kDriveLevel),
            .c = {0, kEthernetMain - shifted, -shifted, 0}};
  }
  FfeSettings settings{
      .mode = static_cast<std::uint32_t>(traits.tx.read(tx, kFfeMode)), .k = traits.tx.read(tx, kPower), .c = {}};
  for (std::size_t i = 0; i < kCoefficients.size(); ++i)
    settings.c[i] = traits.tx.read(tx, kCoefficients[i]);
  return settings;
}

VgaSettings vgaOf(const SerDesTraits& traits, const RegisterFile& rx) {
  if (traits.isEthernet) return {.pole = kMaxPole, .peak = traits.rx.read(rx, kEqMode), .amax = kEthernetAmax};
  return {.pole = traits.rx.read(rx, kPole), .peak = traits.rx.read(rx, kPeak), .amax = traits.rx.read(rx, kAmax)};
}

bool slewEnabled(const SerDesTraits& traits, const RegisterFile& tx) {
  return traits.tx.read(tx, kSlewEnable) != 0;
}

std::uint32_t slewOf(const SerDesTraits& traits, const RegisterFile& tx) {
  if (!traits.tx.has(kSlew)) return SLEW_UNKNOWN;
  return static_cast<std::uint32_t>(traits.tx.read(tx, kSlew));
}

std::uint32_t dfeOf(const SerDesTraits& traits, const RegisterFile& rx) {
  if (!traits.rx.has(kDfeMode)) return DFE_NONE;
  return static_cast<std::uint32_t>(traits.rx.read(rx, kDfeMode));
}

void applyCache(const SerDesTraits& traits, RegisterFile& tx, const SerDesTxRateParams& params) {
  if (traits.isEthernet) {
    (void)setDriveLevel(traits, tx, params.power, params.p0);
    return;
  }
  // A negative mode or slew is a large one here, and refused like it.
  (void)setFfe(traits, tx,
               {.mode = static_cast<std::uint32_t>(params.mode),
                .k = params.power,
                .c = {params.p0, params.p1, params.p2, params.p3}});
  (void)setSlew(traits, tx, true, static_cast<std::uint32_t>(params.slew));
}

void applyCache(const SerDesTraits& traits, RegisterFile& rx, const SerDesRxRateParams& params) {
  if (traits.isEthernet) {
    (void)setEqualiser(traits, rx, params.mode, params.p0);
    return;
  }
  (void)setDfe(traits, rx, static_cast<std::uint32_t>(params.mode));
  (void)setVga(traits, rx, {.pole = params.p0, .peak = params.p1, .amax = params.p2});
}

Transmitter transmitterOf(const SerDesTraits& traits, const RegisterFile& tx) {
  const FfeSettings ffe = ffeOf(traits, tx);
  const std::uint32_t slew = slewOf(traits, tx);
  const bool controlled = slewEnabled(traits, tx) && slew < kSlewPs.size();
  return {.ffeMode = ffe.mode,
          .k = static_cast<unsigned>(ffe.k),
          .c = ffe.c,
          .slewPs = static_cast<double>(controlled ? kSlewPs[slew] : kNativeSlewPs)};
}

Receiver receiverOf(const SerDesTraits& traits, const RegisterFile& rx) {
  const VgaSettings vga = vgaOf(traits, rx);
  Receiver receiver{.pole = vga.pole, .peak = vga.peak, .amax = vga.amax};
  receiver.adapt = traits.rx.read(rx, kHold) == 0;
  // A mode that asks for more taps than the SerDes has gets those that there are.
  unsigned present = 0;
  while (present < kTaps / 2 && traits.rx.has(tapField(2 * present)))
    ++present;
  receiver.dfeTaps = std::min(kDfeTaps[dfeOf(traits, rx)], present);
  if (receiver.adapt) return receiver;
  for (unsigned i = 0; i < kTaps; ++i) {
    const unsigned held = traits.hasEvenAndOddTaps ? i : i & ~1U;
    receiver.heldTaps[i] = traits.rx.read(rx, tapField(held));
  }
  return receiver;
}

}  // namespace simulator
