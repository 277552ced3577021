#include "simulator/serdes/settings.h"

#include <gtest/gtest.h>

#include "simulator/error_codes.h"
#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

const SerDesTraits& k3G = serDesTraits(0);
const SerDesTraits& k6G = serDesTraits(1);
const SerDesTraits& k11G = serDesTraits(2);
const SerDesTraits& kQuad = serDesTraits(3);
const SerDesTraits& k10GE = serDesTraits(4);

constexpr FfeSettings kFfe = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}};

int tryFfe(const SerDesTraits& traits, const FfeSettings& settings) {
  RegisterFile registers = traits.tx.resetValues();
  const RegisterFile before = registers;
  const int code = setFfe(traits, registers, settings);
  EXPECT_TRUE(code == kOk || registers == before);
  return code;
}

FfeSettings with(FfeSettings settings, std::size_t tap, int value) {
  settings.c[tap] = value;
  return settings;
}

TEST(Ffe, IsReadBackAsItWasSet) {
  for (const unsigned type : {2U, 5U}) {
    const SerDesTraits& traits = serDesTraits(type);
    RegisterFile registers = traits.tx.resetValues();
    const FfeSettings settings{.mode = FFE_4, .k = 255, .c = {-10, 63, -20, 7}};
    EXPECT_EQ(setFfe(traits, registers, settings), kOk);
    EXPECT_TRUE(ffeOf(traits, registers) == settings);
  }
}

TEST(Ffe, TapsEndAt63AndTheirSumAt100) {
  EXPECT_EQ(tryFfe(k11G, with(kFfe, 1, 63)), kOk);
  EXPECT_EQ(tryFfe(k11G, with(kFfe, 1, 64)), kOutOfRange);
  EXPECT_EQ(tryFfe(k11G, with(kFfe, 2, -41)), kOk);
  EXPECT_EQ(tryFfe(k11G, with(kFfe, 2, -42)), kOutOfRange);
  EXPECT_EQ(tryFfe(k11G, {.mode = FFE_2, .k = 1, .c = {0, 0, -64, 0}}), kOutOfRange);
}

TEST(Ffe, ModesEndAt3AndPowerAt255) {
  FfeSettings settings = kFfe;
  settings.mode = 4;
  EXPECT_EQ(tryFfe(k11G, settings), kOutOfRange);
  settings = kFfe;
  settings.k = 256;
  EXPECT_EQ(tryFfe(k11G, settings), kOutOfRange);
  settings.k = -1;
  EXPECT_EQ(tryFfe(k11G, settings), kOutOfRange);
}

TEST(Ffe, ModesAndTapsThatTheSerDesLacksAreNotSupported) {
  EXPECT_EQ(tryFfe(k3G, {.mode = FFE_2, .k = 100, .c = {0, 50, -10, 0}}), kOk);
  EXPECT_EQ(tryFfe(k3G, {.mode = FFE_3, .k = 100, .c = {0, 50, -10, 0}}), kNotSupported);
  EXPECT_EQ(tryFfe(k3G, {.mode = FFE_2, .k = 100, .c = {-1, 50, -10, 0}}), kNotSupported);
  EXPECT_EQ(tryFfe(kQuad, {.mode = FFE_3, .k = 100, .c = {-1, 50, -10, 1}}), kNotSupported);
  EXPECT_EQ(tryFfe(k10GE, kFfe), kNotSupported);
  EXPECT_EQ(tryFfe(k10GE, {.mode = FFE_NONE, .k = 0, .c = {}}), kNotSupported);
}

TEST(Slew, IsReadBackAsItWasSetAndEndsAt100Picoseconds) {
  RegisterFile registers = k11G.tx.resetValues();
  EXPECT_EQ(setSlew(k11G, registers, true, SLEW_100PS), kOk);
  EXPECT_TRUE(slewEnabled(k11G, registers));
  EXPECT_EQ(slewOf(k11G, registers), SLEW_100PS);
  EXPECT_EQ(transmitterOf(k11G, registers).slewPs, 100);
  EXPECT_EQ(setSlew(k11G, registers, true, SLEW_UNKNOWN), kOutOfRange);
  EXPECT_EQ(setSlew(k11G, registers, true, 0xffffffff), kOutOfRange);
  EXPECT_EQ(slewOf(k11G, registers), SLEW_100PS);
}

TEST(Slew, EveryRateHasItsEdge) {
  RegisterFile registers = k11G.tx.resetValues();
  std::uint32_t rate = SLEW_24PS;
  for (const double ps : {24, 30, 36, 50, 60, 75, 100}) {
    EXPECT_EQ(setSlew(k11G, registers, true, rate++), kOk);
    EXPECT_EQ(transmitterOf(k11G, registers).slewPs, ps);
  }
  EXPECT_EQ(setSlew(k11G, registers, false, SLEW_100PS), kOk);
  EXPECT_EQ(transmitterOf(k11G, registers).slewPs, 24);
}

TEST(Slew, WithoutControlTheEdgeIsTheDriversOwn) {
  RegisterFile registers = k11G.tx.resetValues();
  EXPECT_EQ(setSlew(k11G, registers, false, SLEW_75PS), kOk);
  EXPECT_EQ(slewOf(k11G, registers), SLEW_75PS);
  EXPECT_EQ(transmitterOf(k11G, registers).slewPs, kNativeSlewPs);
  EXPECT_EQ(slewOf(k10GE, k10GE.tx.resetValues()), SLEW_UNKNOWN);
  EXPECT_EQ(setSlew(k11G, registers, true, SLEW_75PS), kOk);
  k11G.tx.write(registers, Field::kSlew, 7);  // as a register may be written
  EXPECT_EQ(transmitterOf(k11G, registers).slewPs, kNativeSlewPs);
  RegisterFile ethernet = k10GE.tx.resetValues();
  EXPECT_EQ(setSlew(k10GE, ethernet, true, SLEW_24PS), kNotSupported);
}

TEST(Vga, EndsAtItsLimits) {
  RegisterFile registers = k11G.rx.resetValues();
  EXPECT_EQ(setVga(k11G, registers, {.pole = 7, .peak = 7, .amax = 127}), kOk);
  for (const VgaSettings& settings : {VgaSettings{8, 0, 0}, VgaSettings{-1, 0, 0}, VgaSettings{0, 8, 0},
                                      VgaSettings{0, -1, 0}, VgaSettings{0, 0, 128}, VgaSettings{0, 0, -80}}) {
    EXPECT_EQ(setVga(k11G, registers, settings), kOutOfRange);
  }
  EXPECT_TRUE(vgaOf(k11G, registers) == (VgaSettings{7, 7, 127}));
  RegisterFile ethernet = k10GE.rx.resetValues();
  EXPECT_EQ(setVga(k10GE, ethernet, {.pole = 1, .peak = 1, .amax = 1}), kNotSupported);
}

TEST(Dfe, ModesAreThoseOfTheSerDes) {
  RegisterFile eleven = k11G.rx.resetValues();
  for (const std::uint32_t mode : {DFE_1, DFE_NONE, DFE_5, DFE_3}) {
    EXPECT_EQ(setDfe(k11G, eleven, mode), kOk);
    EXPECT_EQ(dfeOf(k11G, eleven), mode);
  }
  EXPECT_EQ(setDfe(k11G, eleven, 4), kOutOfRange);
  RegisterFile six = k6G.rx.resetValues();
  EXPECT_EQ(setDfe(k6G, six, DFE_5), kNotSupported);
  EXPECT_EQ(setDfe(k6G, six, DFE_1), kOk);
  RegisterFile three = k3G.rx.resetValues();
  EXPECT_EQ(setDfe(k3G, three, DFE_NONE), kOk);
  EXPECT_EQ(setDfe(k3G, three, DFE_3), kNotSupported);
  EXPECT_EQ(dfeOf(k3G, three), DFE_NONE);
}

TEST(Dfe, AModeWrittenToRegistersUsesNoMoreTapsThanThereAre) {
  RegisterFile six = k6G.rx.resetValues();
  k6G.rx.write(six, Field::kDfeMode, DFE_5);
  EXPECT_EQ(receiverOf(k6G, six).dfeTaps, 3U);
}

TEST(DfeState, LoadsModeAndTapsAndHoldsThem) {
  for (const unsigned type : {2U, 5U}) {
    const SerDesTraits& traits = serDesTraits(type);
    RegisterFile registers = traits.rx.resetValues();
    SerDesRxDFEState state{};
    state.mode = DFE_5;
    for (std::size_t i = 0; i < kDfeTapCount; ++i)
      state.h[i] = static_cast<std::int16_t>(static_cast<int>(i) * 10 - 45);
    EXPECT_EQ(setDfeState(traits, registers, state), kOk);
    EXPECT_EQ(dfeOf(traits, registers), DFE_5);
    const Receiver receiver = receiverOf(traits, registers);
    EXPECT_FALSE(receiver.adapt);
    EXPECT_EQ(receiver.dfeTaps, 5U);
    for (std::size_t i = 0; i < kDfeTapCount; ++i)
      EXPECT_EQ(receiver.heldTaps[i], state.h[i]);
    EXPECT_EQ(setDfe(traits, registers, DFE_5), kOk);
    EXPECT_TRUE(receiverOf(traits, registers).adapt);
  }
}

TEST(DfeState, RefusesWhatTheRegistersCannotHold) {
  RegisterFile registers = k11G.rx.resetValues();
  SerDesRxDFEState state{};
  for (std::int16_t& h : state.h) {
    h = 128;
    EXPECT_EQ(setDfeState(k11G, registers, state), kOutOfRange);
    h = -128;
  }
  EXPECT_EQ(setDfeState(k11G, registers, state), kOk);
  state.mode = static_cast<SerDesRxDFEMode>(4);
  EXPECT_EQ(setDfeState(k11G, registers, state), kOutOfRange);
  RegisterFile quad = kQuad.rx.resetValues();
  EXPECT_EQ(setDfeState(kQuad, quad, {}), kNotSupported);
}

TEST(Ethernet, PowerAndPreEmphasisShowAsTheFfeThatTheyAre) {
  RegisterFile registers = k10GE.tx.resetValues();
  EXPECT_EQ(setDriveLevel(k10GE, registers, 6, 5), kOk);
  EXPECT_TRUE(ffeOf(k10GE, registers) == (FfeSettings{.mode = FFE_2, .k = 102, .c = {0, 53, -10, 0}}));
  EXPECT_EQ(setDriveLevel(k10GE, registers, 15, 0), kOk);
  EXPECT_TRUE(ffeOf(k10GE, registers) == (FfeSettings{.mode = FFE_NONE, .k = 255, .c = {0, 63, 0, 0}}));
  EXPECT_EQ(setDriveLevel(k10GE, registers, 16, 0), kOutOfRange);
  EXPECT_EQ(setDriveLevel(k10GE, registers, 0, -1), kOutOfRange);
  RegisterFile eleven = k11G.tx.resetValues();
  EXPECT_EQ(setDriveLevel(k11G, eleven, 1, 1), kNotSupported);
}

TEST(Ethernet, TheEqualiserModeShowsAsPeaking) {
  RegisterFile registers = k10GE.rx.resetValues();
  EXPECT_EQ(setEqualiser(k10GE, registers, 2, 5), kOk);
  EXPECT_TRUE(vgaOf(k10GE, registers) == (VgaSettings{7, 5, 64}));  // all but the peaking is fixed
  EXPECT_EQ(receiverOf(k10GE, registers).peak, 5);
  EXPECT_EQ(setEqualiser(k10GE, registers, 4, 0), kOutOfRange);
  EXPECT_EQ(setEqualiser(k10GE, registers, 0, 8), kOutOfRange);
  RegisterFile eleven = k11G.rx.resetValues();
  EXPECT_EQ(setEqualiser(k11G, eleven, 1, 1), kNotSupported);
}

TEST(ApplyCache, PutsAllOfItIntoForce) {
  RegisterFile tx = k11G.tx.resetValues();
  applyCache(k11G, tx, SerDesTxRateParams{115, SLEW_50PS, FFE_3, -4, 55, -25, 0});
  EXPECT_TRUE(ffeOf(k11G, tx) == kFfe);
  EXPECT_EQ(slewOf(k11G, tx), SLEW_50PS);
  RegisterFile rx = k11G.rx.resetValues();
  applyCache(k11G, rx, SerDesRxRateParams{DFE_5, 7, 0, 0x4e, 0});
  EXPECT_EQ(dfeOf(k11G, rx), DFE_5);
  EXPECT_TRUE(vgaOf(k11G, rx) == (VgaSettings{7, 0, 0x4e}));
}

TEST(ApplyCache, AGroupThatDoesNotFitStaysAsItWasAndTheOthersDoNot) {
  RegisterFile tx = k11G.tx.resetValues();
  const FfeSettings ffe = ffeOf(k11G, tx);
  applyCache(k11G, tx, SerDesTxRateParams{0, SLEW_50PS, 115, -4, 55, -25, 0});
  EXPECT_TRUE(ffeOf(k11G, tx) == ffe);
  EXPECT_EQ(slewOf(k11G, tx), SLEW_50PS);
  applyCache(k11G, tx, SerDesTxRateParams{115, -1, FFE_3, -4, 55, -25, 0});
  EXPECT_TRUE(ffeOf(k11G, tx) == kFfe);
  EXPECT_EQ(slewOf(k11G, tx), SLEW_50PS);
  RegisterFile rx = k11G.rx.resetValues();
  applyCache(k11G, rx, SerDesRxRateParams{DFE_5, 7, 0, 300, 0});
  EXPECT_EQ(dfeOf(k11G, rx), DFE_5);
  EXPECT_EQ(vgaOf(k11G, rx).amax, 0x4e);
  applyCache(k11G, rx, SerDesRxRateParams{-1, 1, 2, 3, 0});
  EXPECT_EQ(dfeOf(k11G, rx), DFE_5);
  EXPECT_TRUE(vgaOf(k11G, rx) == (VgaSettings{1, 2, 3}));
}

TEST(ApplyCache, EthernetUsesPowerAndPreEmphasisAlone) {
  RegisterFile tx = k10GE.tx.resetValues();
  applyCache(k10GE, tx, SerDesTxRateParams{6, 99, 99, 5, 99, 99, 99});
  EXPECT_EQ(k10GE.tx.read(tx, Field::kDriveLevel), 6);
  EXPECT_EQ(k10GE.tx.read(tx, Field::kPreEmphasis), 5);
  RegisterFile rx = k10GE.rx.resetValues();
  applyCache(k10GE, rx, SerDesRxRateParams{2, 1, 99, 99, 99});
  EXPECT_EQ(k10GE.rx.read(rx, Field::kCdrMode), 2);
  EXPECT_EQ(k10GE.rx.read(rx, Field::kEqMode), 1);
}

}  // namespace
}  // namespace simulator
