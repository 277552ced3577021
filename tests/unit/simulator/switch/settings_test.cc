#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using LiveSettings = SwitchTest;
using RateCaches = SwitchTest;

constexpr FfeSettings kFfe = {.mode = FFE_2, .k = 90, .c = {0, 50, -12, 0}};
constexpr VgaSettings kVga = {.pole = 3, .peak = 2, .amax = 0x33};

port_speed_type speed(unsigned value) {
  return static_cast<port_speed_type>(value);
}

TEST_F(LiveSettings, LinkMinusOneSetsAllLinks) {
  ASSERT_EQ(sw.setTxFfe(0, 6, -1, kFfe), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 6, -1, true, SLEW_75PS), kOk);
  ASSERT_EQ(sw.setRxVga(0, 6, -1, kVga), kOk);
  ASSERT_EQ(sw.setRxDfe(0, 6, -1, DFE_1), kOk);
  for (int link = 0; link < 4; ++link) {
    EXPECT_TRUE(ffeAt(6, link) == kFfe);
    EXPECT_EQ(slewAt(6, link), SLEW_75PS);
    EXPECT_TRUE(vgaAt(6, link) == kVga);
    EXPECT_EQ(dfeAt(6, link), DFE_1);
  }
}

TEST_F(LiveSettings, OneLinkIsSetAlone) {
  const FfeSettings before = ffeAt(6, 0);
  ASSERT_EQ(sw.setTxFfe(0, 6, 3, kFfe), kOk);
  EXPECT_TRUE(ffeAt(6, 3) == kFfe);
  EXPECT_TRUE(ffeAt(6, 0) == before);
}

TEST_F(LiveSettings, APortWithoutLinksTakesSetsForAllAndDoesNothing) {
  EXPECT_EQ(sw.setTxFfe(0, 8, -1, kFfe), kOk);
  EXPECT_EQ(sw.setTxSlew(0, 8, -1, true, SLEW_24PS), kOk);
  EXPECT_EQ(sw.setRxVga(0, 8, -1, kVga), kOk);
  EXPECT_EQ(sw.setRxDfe(0, 8, -1, DFE_5), kOk);
  EXPECT_EQ(sw.setTestOption(0, 8, -1, kTestLoopback, 1), kOk);
  EXPECT_EQ(sw.setTxFfe(0, 8, 0, kFfe), kBadLink);
}

TEST_F(LiveSettings, ReadsAskForOneLink) {
  FfeSettings ffe{};
  VgaSettings vga{};
  SerDesRxDFEMode mode{};
  SerDesRxDFEStats stats;
  bool enable = false;
  SerDesTxSlewRate slew{};
  for (const int link : {-1, 1, 4, -2, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(sw.getTxFfe(0, 0, link, &ffe), kBadLink) << link;
    EXPECT_EQ(sw.getTxSlew(0, 0, link, &enable, &slew), kBadLink) << link;
    EXPECT_EQ(sw.getRxVga(0, 0, link, &vga), kBadLink) << link;
    EXPECT_EQ(sw.getRxDfe(0, 0, link, &mode), kBadLink) << link;
    EXPECT_EQ(sw.getRxDfeStats(0, 0, link, &stats), kBadLink) << link;
  }
}

TEST_F(LiveSettings, RefuseOtherAsicsPortsAndLinks) {
  EXPECT_EQ(sw.setTxFfe(1, 0, -1, kFfe), kBadAsic);
  EXPECT_EQ(sw.setTxFfe(0, 9, -1, kFfe), kBadPort);
  EXPECT_EQ(sw.setTxFfe(0, 0, 1, kFfe), kBadLink);
  EXPECT_EQ(sw.setTxFfe(0, 0, -2, kFfe), kBadLink);
  EXPECT_EQ(sw.setRxVga(1, 0, -1, kVga), kBadAsic);
  EXPECT_EQ(sw.setRxVga(0, 9, -1, kVga), kBadPort);
  EXPECT_EQ(sw.setRxVga(0, 6, 4, kVga), kBadLink);
  SerDesRxDFEState state{};
  EXPECT_EQ(sw.setRxDfeState(0, 24, 0, &state), kBadPort);
}

TEST_F(LiveSettings, ARefusedSetLeavesTheLinkAsItWas) {
  const FfeSettings before = ffeAt(0);
  EXPECT_EQ(sw.setTxFfe(0, 0, -1, {.mode = FFE_3, .k = 1, .c = {0, 63, -63, 0}}), kOutOfRange);
  EXPECT_TRUE(ffeAt(0) == before);
}

TEST_F(LiveSettings, EthernetShowsItsOwnAndTakesOnlyWhatItHas) {
  EXPECT_TRUE(ffeAt(7) == (FfeSettings{.mode = FFE_2, .k = 119, .c = {0, 59, -4, 0}}));
  EXPECT_EQ(slewAt(7), SLEW_UNKNOWN);
  EXPECT_EQ(dfeAt(7), DFE_NONE);
  EXPECT_EQ(vgaAt(7).peak, 2);
  EXPECT_EQ(sw.setTxFfe(0, 7, -1, kFfe), kNotSupported);
  EXPECT_EQ(sw.setTxSlew(0, 7, -1, true, SLEW_24PS), kNotSupported);
  EXPECT_EQ(sw.setRxVga(0, 7, -1, kVga), kNotSupported);
  EXPECT_EQ(sw.setRxDfe(0, 7, -1, DFE_3), kNotSupported);
  EXPECT_EQ(sw.setRxDfe(0, 7, -1, DFE_NONE), kOk);
}

TEST_F(LiveSettings, StatisticsHaveTenTapsFiveOrNone) {
  const SerDesRxDFEStats ten = statsOf(1);
  EXPECT_NE(ten.h[0], 0);
  EXPECT_NE(ten.h[2], 0);
  EXPECT_NEAR(ten.h[0], ten.h[1], 3);
  ASSERT_EQ(sw.setTxFfe(0, 6, -1, {.mode = FFE_2, .k = 115, .c = {0, 55, -30, 0}}), kOk);
  ASSERT_EQ(sw.setRxDfe(0, 6, -1, DFE_5), kOk);
  const SerDesRxDFEStats five = statsOf(6);
  EXPECT_NE(five.h[0], 0);
  EXPECT_NE(five.h[1], five.h[0]);
  for (std::size_t i = 5; i < kDfeTapCount; ++i)
    EXPECT_EQ(five.h[i], 0);
  for (const std::int16_t h : statsOf(7).h)
    EXPECT_EQ(h, 0);
  EXPECT_GT(statsOf(7).Ap, 0);
}

TEST_F(LiveSettings, ALoadedDfeStateStandsUntilTheModeIsSet) {
  SerDesRxDFEState state{};
  state.mode = DFE_3;
  for (std::size_t i = 1; i < kDfeTapCount; i += 2)
    state.h[i] = 1;
  const SerDesRxDFEStats adapted = statsOf(1);
  ASSERT_EQ(sw.setRxDfeState(0, 1, 0, &state), kOk);
  const SerDesRxDFEStats loaded = statsOf(1);
  EXPECT_EQ(loaded.h[0], 0);
  EXPECT_EQ(loaded.h[1], 1);
  EXPECT_EQ(loaded.h[6], 0);  // beyond DFE3
  EXPECT_LT(loaded.Amin, adapted.Amin);
  ASSERT_EQ(sw.setRxDfe(0, 1, -1, DFE_3), kOk);
  EXPECT_EQ(statsOf(1).h, adapted.h);
}

TEST_F(LiveSettings, ALoadedDfeStateHasAnyOfTheModes) {
  for (const SerDesRxDFEMode mode : {DFE_3, DFE_5, DFE_NONE, DFE_1}) {
    const SerDesRxDFEState state = {.leadingWord = 0, .mode = mode, .h = {}, .reserved = {}};
    EXPECT_EQ(sw.setRxDfeState(0, 1, 0, &state), kOk);
    EXPECT_EQ(dfeAt(1), mode);
  }
  const SerDesRxDFEState beyond = {.leadingWord = 0, .mode = static_cast<SerDesRxDFEMode>(4), .h = {}, .reserved = {}};
  EXPECT_EQ(sw.setRxDfeState(0, 1, 0, &beyond), kOutOfRange);
}

TEST_F(LiveSettings, DfeStateIsForTheTypesWithTenTaps) {
  SerDesRxDFEState state{};
  EXPECT_EQ(sw.setRxDfeState(0, 4, 0, &state), kOk);
  EXPECT_EQ(sw.setRxDfeState(0, 6, 0, &state), kNotSupported);
  EXPECT_EQ(sw.setRxDfeState(0, 7, 0, &state), kNotSupported);
}

TEST_F(RateCaches, KeepNumbersWhole) {
  const SerDesTxRateParams tx{300, -7, 115, INT32_MIN, INT32_MAX, -25, 1 << 20};
  const SerDesRxRateParams rx{-1, 300, INT32_MAX, INT32_MIN, 5};
  ASSERT_EQ(sw.setTxRateParams(0, 0, speed(SPEED_8G), tx), kOk);
  ASSERT_EQ(sw.setRxRateParams(0, 0, speed(SPEED_8G), rx), kOk);
  SerDesTxRateParams readTxParams{};
  SerDesRxRateParams readRxParams{};
  ASSERT_EQ(sw.getTxRateParams(0, 0, speed(SPEED_8G), &readTxParams), kOk);
  ASSERT_EQ(sw.getRxRateParams(0, 0, speed(SPEED_8G), &readRxParams), kOk);
  EXPECT_EQ(readTxParams.power, 300);
  EXPECT_EQ(readTxParams.slew, -7);
  EXPECT_EQ(readTxParams.mode, 115);
  EXPECT_EQ(readTxParams.p0, INT32_MIN);
  EXPECT_EQ(readTxParams.p1, INT32_MAX);
  EXPECT_EQ(readTxParams.p2, -25);
  EXPECT_EQ(readTxParams.p3, 1 << 20);
  EXPECT_EQ(readRxParams.mode, -1);
  EXPECT_EQ(readRxParams.p0, 300);
  EXPECT_EQ(readRxParams.p1, INT32_MAX);
  EXPECT_EQ(readRxParams.p2, INT32_MIN);
  EXPECT_EQ(readRxParams.p3, 5);
}

TEST_F(RateCaches, AreOfOnePortAndOneRate) {
  SerDesTxRateParams params{};
  ASSERT_EQ(sw.setTxRateParams(0, 0, speed(SPEED_4G), {77, 0, 0, 0, 0, 0, 0}), kOk);
  ASSERT_EQ(sw.getTxRateParams(0, 0, speed(SPEED_8G), &params), kOk);
  EXPECT_NE(params.power, 77);
  ASSERT_EQ(sw.getTxRateParams(0, 1, speed(SPEED_4G), &params), kOk);
  EXPECT_NE(params.power, 77);
}

TEST_F(RateCaches, ThereIsOneForEachFixedSpeed) {
  SerDesTxRateParams tx{};
  SerDesRxRateParams rx{};
  for (unsigned rate = SPEED_1G; rate <= SPEED_20G; ++rate) {
    EXPECT_EQ(sw.setTxRateParams(0, 0, speed(rate), tx), kOk);
    EXPECT_EQ(sw.getRxRateParams(0, 0, speed(rate), &rx), kOk);
  }
  for (const unsigned rate : {0U, 7U, 0xffffffffU}) {
    EXPECT_EQ(sw.setTxRateParams(0, 0, speed(rate), tx), kOutOfRange);
    EXPECT_EQ(sw.getTxRateParams(0, 0, speed(rate), &tx), kOutOfRange);
    EXPECT_EQ(sw.setRxRateParams(0, 0, speed(rate), rx), kOutOfRange);
    EXPECT_EQ(sw.getRxRateParams(0, 0, speed(rate), &rx), kOutOfRange);
  }
  EXPECT_EQ(sw.setTxRateParams(0, 9, speed(SPEED_8G), tx), kBadPort);
  EXPECT_EQ(sw.setRxRateParams(2, 0, speed(SPEED_8G), rx), kBadAsic);
}

TEST_F(RateCaches, ChangingOneLeavesTheLiveSettings) {
  const FfeSettings before = ffeAt(0);
  ASSERT_EQ(sw.setTxRateParams(0, 0, speed(SPEED_8G), {77, SLEW_75PS, FFE_2, 0, 50, 0, 0}), kOk);
  EXPECT_TRUE(ffeAt(0) == before);
}

TEST_F(RateCaches, SettingASpeedPutsItsCacheIntoForce) {
  ASSERT_EQ(sw.setTxRateParams(0, 0, speed(SPEED_4G),
                               {.power = 77, .slew = SLEW_75PS, .mode = FFE_2, .p0 = 0, .p1 = 50, .p2 = -9, .p3 = 0}),
            kOk);
  ASSERT_EQ(sw.setRxRateParams(0, 0, speed(SPEED_4G), {.mode = DFE_1, .p0 = 2, .p1 = 1, .p2 = 0x22, .p3 = 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_4G), kOk);
  EXPECT_TRUE(ffeAt(0) == (FfeSettings{.mode = FFE_2, .k = 77, .c = {0, 50, -9, 0}}));
  EXPECT_EQ(slewAt(0), SLEW_75PS);
  EXPECT_EQ(dfeAt(0), DFE_1);
  EXPECT_TRUE(vgaAt(0) == (VgaSettings{.pole = 2, .peak = 1, .amax = 0x22}));
}

TEST_F(RateCaches, SettingTheSameSpeedAgainPutsAChangedCacheIntoForce) {
  ASSERT_EQ(sw.setRxRateParams(0, 0, speed(SPEED_8G), {.mode = DFE_5, .p0 = 1, .p1 = 1, .p2 = 50, .p3 = 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_8G), kOk);
  EXPECT_EQ(dfeAt(0), DFE_5);
}

TEST_F(RateCaches, WhatCannotBeAppliedLeavesTheLiveSettingAsItWas) {
  const FfeSettings ffe = ffeAt(0);
  const VgaSettings vga = vgaAt(0);
  ASSERT_EQ(sw.setTxRateParams(0, 0, speed(SPEED_8G), {0, SLEW_50PS, 115, -4, 55, -25, 0}), kOk);
  ASSERT_EQ(sw.setRxRateParams(0, 0, speed(SPEED_8G), {DFE_1, 7, 0, 300, 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_8G), kOk);
  EXPECT_TRUE(ffeAt(0) == ffe);
  EXPECT_EQ(slewAt(0), SLEW_50PS);
  EXPECT_EQ(dfeAt(0), DFE_1);
  EXPECT_TRUE(vgaAt(0) == vga);
}

TEST_F(RateCaches, EveryLinkOfAPortGetsThem) {
  ASSERT_EQ(sw.setRxRateParams(0, 6, speed(SPEED_20G), {.mode = DFE_5, .p0 = 4, .p1 = 3, .p2 = 40, .p3 = 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(6), SPEED_20G), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_TRUE(vgaAt(6, link) == (VgaSettings{.pole = 4, .peak = 3, .amax = 40}));
}

class LiveAtStart : public SwitchTest {
 protected:
  LiveAtStart() : SwitchTest("[[asics.ports]]\nports = 0\nlive = \"slack\"\n") {}
};

TEST_F(LiveAtStart, TakesThePlaceOfTheCache) {
  EXPECT_EQ(slewAt(0), SLEW_100PS);
  SerDesTxRateParams cache{};
  ASSERT_EQ(sw.getTxRateParams(0, 0, speed(SPEED_8G), &cache), kOk);
  EXPECT_EQ(cache.slew, SLEW_36PS);
}

}  // namespace
}  // namespace simulator
