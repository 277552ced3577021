#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Links = SwitchTest;
using Counters = SwitchTest;
using Stream = SwitchTest;

constexpr FfeSettings kTuned = {.mode = FFE_3, .k = 115, .c = {-4, 55, -25, 0}};

TEST_F(Links, TheFarTransmitterShapesWhatAReceiverShows) {
  const SerDesRxDFEStats before = statsOf(2);
  ASSERT_EQ(sw.setTxFfe(0, 3, -1, {.mode = FFE_2, .k = 115, .c = {0, 50, -30, 0}}), kOk);
  EXPECT_LT(statsOf(2).h[0], before.h[0]);
  ASSERT_EQ(sw.setTxFfe(0, 2, -1, {.mode = FFE_2, .k = 5, .c = {0, 50, -30, 0}}), kOk);
  EXPECT_EQ(statsOf(2).Ap, before.Ap);  // a cable has two directions
  EXPECT_LT(statsOf(3).Ap, before.Ap);
}

TEST_F(Links, OwnReceiveSettingsShapeItToo) {
  ASSERT_EQ(sw.setRxVga(0, 0, -1, {.pole = 6, .peak = 4, .amax = 40}), kOk);
  EXPECT_EQ(statsOf(0).Ap, 40);
  ASSERT_EQ(sw.setRxDfe(0, 0, -1, DFE_NONE), kOk);
  for (const std::int16_t h : statsOf(0).h)
    EXPECT_EQ(h, 0);
}

TEST_F(Links, AreWorkedOutWhenAskedAndOnlyWhenSomethingChanged) {
  (void)statsOf(0);
  (void)statsOf(0);
  (void)readRx(0, 2);
  EXPECT_EQ(sw.evaluations(), 1U);
  ASSERT_EQ(sw.setRxVga(0, 0, -1, vgaAt(0)), kOk);  // the same again
  (void)statsOf(0);
  EXPECT_EQ(sw.evaluations(), 1U);
  ASSERT_EQ(sw.setRxVga(0, 0, -1, {.pole = 1, .peak = 1, .amax = 50}), kOk);
  EXPECT_EQ(sw.evaluations(), 1U);
  (void)statsOf(0);
  EXPECT_EQ(sw.evaluations(), 2U);
  (void)statsOf(1);
  EXPECT_EQ(sw.evaluations(), 3U);
}

TEST_F(Links, OfOtherPortsAreNotWorkedOutByTheWay) {
  passSeconds(1);
  EXPECT_EQ(statusOf(0), kPortStateRunning);
  EXPECT_EQ(sw.evaluations(), 1U);
}

TEST_F(Counters, CountDecodeAndCrcErrorsOverTime) {
  ASSERT_EQ(statusOf(1), kPortStateRunning);
  EXPECT_EQ(decodeErrors(1), 0U);
  passSeconds(1);
  const std::uint64_t aSecond = decodeErrors(1);
  EXPECT_GT(aSecond, 1000U);
  EXPECT_GT(crcErrors(1), 1000U);
  passSeconds(9);
  EXPECT_NEAR(static_cast<double>(decodeErrors(1)), 10.0 * static_cast<double>(aSecond), 10);
}

TEST_F(Counters, DoNotDependOnHowOftenTheyAreRead) {
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  for (int i = 0; i < 100; ++i) {
    (void)other.beginCall({});
    passSeconds(1);
    (void)decodeErrors(1);
  }
  drv_counters_t counters;
  ASSERT_EQ(other.getCounters(id(1), &counters), kOk);
  EXPECT_EQ(whole(counters.decodeErrors), decodeErrors(1));
  EXPECT_EQ(whole(counters.crcErrors), crcErrors(1));
}

TEST_F(Counters, TuningTakesTheErrorsToNone) {
  passSeconds(10);
  EXPECT_GT(decodeErrors(1), 10000U);
  ASSERT_EQ(sw.setTxFfe(0, 1, -1, kTuned), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  const std::uint64_t soFar = decodeErrors(1);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), soFar);
}

TEST_F(Counters, WhatWasBadUntilAChangeIsCountedEvenIfNobodyLooked) {
  passSeconds(10);
  ASSERT_EQ(sw.setTxFfe(0, 1, -1, kTuned), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  EXPECT_GT(decodeErrors(1), 10000U);
}

TEST_F(Counters, StandStillWithoutSignal) {
  ASSERT_EQ(sw.setStream(id(1), false), kOk);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
  EXPECT_LT(statsOf(1).Ap, 5);
}

TEST_F(Counters, StandStillWhileThePortIsDown) {
  passSeconds(1);
  const std::uint64_t soFar = decodeErrors(1);
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 0), kOk);
  passSeconds(10);
  EXPECT_EQ(decodeErrors(1), soFar);
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 1), kOk);
  passSeconds(1);
  EXPECT_GT(decodeErrors(1), soFar);
}

TEST_F(Counters, AreClearedByThePort) {
  passSeconds(1);
  ASSERT_GT(decodeErrors(1), 0U);
  ASSERT_EQ(sw.clearCounters(id(1)), kOk);
  EXPECT_EQ(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
  EXPECT_EQ(sw.clearCounters(id(9)), kBadPort);
}

TEST_F(Counters, FillTheWholeRecord) {
  drv_counters_t counters;
  counters.beforeDecodeErrors.fill(0xaa);
  counters.rest.fill(0xaa);
  passSeconds(1);
  ASSERT_EQ(sw.getCounters(id(1), &counters), kOk);
  for (const std::uint8_t byte : counters.rest)
    ASSERT_EQ(byte, 0);
  for (const std::uint8_t byte : counters.beforeDecodeErrors)
    ASSERT_EQ(byte, 0);
  EXPECT_EQ(counters.decodeErrors.high, 0U);
  EXPECT_GT(counters.decodeErrors.low, 0U);
}

TEST_F(Counters, GoBeyond32Bits) {
  // Sixteen milliard and more: over a million errors a second for hours, with an hour a call.
  Switch slow(readDescription("clock = { kind = \"virtual\", step = 3600000000 }\n" +
                                  kBenchSwitch.substr(kBenchSwitch.find("[settings.good]")) +
                                  "[[asics.ports]]\nports = 1\nlive = \"slack\"\ncache = { 10G = \"slack\" }\n",
                              "slow.toml"));
  for (int i = 0; i < 200; ++i)
    (void)slow.beginCall({});
  drv_counters_t counters;
  ASSERT_EQ(slow.getCounters(id(1), &counters), kOk);
  EXPECT_GT(whole(counters.decodeErrors), std::uint64_t{UINT32_MAX});
  EXPECT_GT(counters.decodeErrors.high, 0U);
}

class IdlePort : public SwitchTest {
 protected:
  IdlePort() : SwitchTest("[[asics.ports]]\nports = 1\nload = 0\n") {}
};

TEST_F(IdlePort, CountsDecodeErrorsButNoFrames) {
  passSeconds(5);
  EXPECT_GT(decodeErrors(1), 0U);
  EXPECT_EQ(crcErrors(1), 0U);
}

TEST_F(Stream, DisabledItSilencesTheFarEnd) {
  bool enabled = false;
  ASSERT_EQ(sw.getStream(id(3), &enabled), kOk);
  EXPECT_TRUE(enabled);
  ASSERT_EQ(sw.setStream(id(3), false), kOk);
  ASSERT_EQ(sw.getStream(id(3), &enabled), kOk);
  EXPECT_FALSE(enabled);
  EXPECT_EQ(statusOf(3), kStatusNotSending);
  EXPECT_EQ(statusOf(2), kStatusNoSignal);
  EXPECT_EQ(readRx(2, 2), 0U);
  ASSERT_EQ(sw.setStream(id(3), true), kOk);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
  EXPECT_EQ(statusOf(3), kPortStateRunning);
}

TEST_F(Stream, IsTheEnableBitOfEachLink) {
  ASSERT_EQ(sw.setStream(id(6), false), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_EQ(readTx(6, 0, link) & 1U, 0U);
  bool enabled = true;
  for (int link = 0; link < 4; ++link) {
    ASSERT_EQ(sw.getStream(id(6), &enabled), kOk);
    EXPECT_FALSE(enabled);
    ASSERT_EQ(writeTx(6, 0, readTx(6, 0, link) | 1U, link), kOk);
  }
  ASSERT_EQ(sw.getStream(id(6), &enabled), kOk);
  EXPECT_TRUE(enabled);
}

TEST_F(Stream, IsKeptByAPortWithoutLinks) {
  bool enabled = true;
  ASSERT_EQ(sw.setStream(id(8), false), kOk);
  ASSERT_EQ(sw.getStream(id(8), &enabled), kOk);
  EXPECT_FALSE(enabled);
  EXPECT_EQ(sw.setStream(id(9), false), kBadPort);
  EXPECT_EQ(sw.getStream(id(9), &enabled), kBadPort);
}

class SilentAtStart : public SwitchTest {
 protected:
  SilentAtStart() : SwitchTest("[[asics.ports]]\nports = 3\nsends = false\n") {}
};

TEST_F(SilentAtStart, IsSilentUntilEnabled) {
  EXPECT_EQ(statusOf(2), kStatusNoSignal);
  ASSERT_EQ(sw.setStream(id(3), true), kOk);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
}

}  // namespace
}  // namespace simulator
