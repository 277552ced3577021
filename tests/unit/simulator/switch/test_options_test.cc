#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Loopback = SwitchTest;
using Pattern = SwitchTest;
using HoldDfe = SwitchTest;
using Margin = SwitchTest;
using InjectErrors = SwitchTest;
using Temperature = SwitchTest;
using TestOptions = SwitchTest;

TEST_F(Loopback, LetsAPortHearItself) {
  ASSERT_EQ(statusOf(5), kStatusNoSignal);
  EXPECT_EQ(testStatus(5, kTestLoopback), 0);
  ASSERT_EQ(sw.setTestOption(0, 5, 0, kTestLoopback, 1), kOk);
  EXPECT_EQ(testStatus(5, kTestLoopback), 1);
  EXPECT_EQ(statusOf(5), kPortStateRunning);
  EXPECT_EQ(speedOf(5), SPEED_10G);
  ASSERT_EQ(sw.setTestOption(0, 5, 0, kTestLoopback, 0), kOk);
  EXPECT_EQ(statusOf(5), kStatusNoSignal);
}

class FourLinksInTheAir : public SwitchTest {
 protected:
  FourLinksInTheAir() : SwitchTest("[[asics.ports]]\nports = 6\nmedia = \"none\"\n") {}
};

TEST_F(FourLinksInTheAir, RunByThemselvesWhenEachIsLooped) {
  for (int link = 0; link < 4; ++link) {
    EXPECT_EQ(statusOf(6), kStatusNoMedia) << link;
    ASSERT_EQ(sw.setTestOption(0, 6, link, kTestLoopback, 1), kOk);
  }
  EXPECT_EQ(statusOf(6), kPortStateRunning);
}

TEST_F(Loopback, ReportsALoopThatCarriesNothing) {
  ASSERT_EQ(sw.setTestOption(0, 5, 0, kTestLoopback, 1), kOk);
  ASSERT_EQ(sw.setStream(id(5), false), kOk);
  EXPECT_EQ(testStatus(5, kTestLoopback), 2);
}

TEST_F(Loopback, IsABitOfTheReceiveRegisters) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestLoopback, 1), kOk);
  EXPECT_EQ(readRx(0, 1), 0x0011U);
  ASSERT_EQ(writeRx(5, 2, 0x0003), kOk);
  EXPECT_EQ(testStatus(5, kTestLoopback), 1);
  EXPECT_EQ(speedOf(5), SPEED_10G);
}

TEST_F(Loopback, LeavesTheFarEndItsSignal) {
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestLoopback, 1), kOk);
  EXPECT_EQ(readRx(3, 2), 0x0007U);
}

TEST_F(Pattern, InPlaceOfFramesTakesTheFarEndDown) {
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestSendPattern, 2), kOk);
  EXPECT_EQ(testStatus(3, kTestSendPattern), 2);
  EXPECT_EQ(statusOf(2), kStatusPattern);
  EXPECT_EQ(statusOf(3), kPortStateRunning);
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestSendPattern, 0), kOk);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
}

TEST_F(Pattern, CheckingCountsBitErrors) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), 0);
  passSeconds(2);
  const int errors = testStatus(1, kTestCheckPattern);
  EXPECT_GT(errors, 1000);
  EXPECT_EQ(readRx(1, 11), errors > 65535 ? 65535U : static_cast<unsigned>(errors));
  EXPECT_EQ(decodeErrors(1), 0U);  // there are no frames to err in
}

TEST_F(Pattern, CheckingStopsAndKeepsItsCountUntilItIsStartedAgain) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  passSeconds(1);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 0), kOk);
  const int errors = testStatus(1, kTestCheckPattern);
  EXPECT_GT(errors, 0);
  passSeconds(1);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), errors);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), 0);
}

TEST_F(Pattern, CheckingFindsNothingInFramesOrInAnotherPattern) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), -1);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 2), kOk);
  passSeconds(1);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), -1);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), 0);
}

TEST_F(Pattern, CheckingThatIsStartedAgainWhileItRunsCountsFromThere) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  passSeconds(9);
  const int errors = testStatus(1, kTestCheckPattern);
  ASSERT_GT(errors, 9000);
  passSeconds(9);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), 0);
  passSeconds(3);
  EXPECT_NEAR(testStatus(1, kTestCheckPattern), errors / 3.0, errors / 30.0);
}

TEST_F(Pattern, TheCountIsTheSameWhetherTheRegisterOrTheStatusIsReadFirst) {
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  for (Switch* each : {&sw, &other}) {
    ASSERT_EQ(each->setTxSlew(0, 1, 0, true, SLEW_75PS), kOk);
    ASSERT_EQ(each->setTestOption(0, 1, 0, kTestSendPattern, 1), kOk);
    ASSERT_EQ(each->setTestOption(0, 1, 0, kTestCheckPattern, 1), kOk);
  }
  passSeconds(2);
  (void)other.beginCall({});
  (void)other.beginCall({});
  const unsigned byRegister = readRx(1, 11);
  EXPECT_GT(byRegister, 0U);
  EXPECT_LT(byRegister, 65535U);
  int byStatus = 0;
  ASSERT_EQ(other.getTestStatus(0, 1, 0, kTestCheckPattern, &byStatus), kOk);
  EXPECT_EQ(static_cast<unsigned>(byStatus), byRegister);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), byStatus);
}

TEST_F(Pattern, CheckingWithoutLockFindsAndCountsNothing) {
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestSendPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestCheckPattern, 1), kOk);
  ASSERT_EQ(testStatus(3, kTestCheckPattern), 0);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);  // a signal that the far end cannot follow
  ASSERT_EQ(readRx(3, 2) & 0x3U, 0x1U);
  EXPECT_EQ(testStatus(3, kTestCheckPattern), -1);
  passSeconds(10);
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestInjectErrors, 5), kOk);
  EXPECT_EQ(readRx(3, 11), 0U);
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_8G), kOk);
  EXPECT_EQ(testStatus(3, kTestCheckPattern), 0);
}

TEST_F(Pattern, TheCheckersCountCanBeCleared) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestSendPattern, 3), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestCheckPattern, 3), kOk);
  passSeconds(1);
  ASSERT_GT(testStatus(1, kTestCheckPattern), 0);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestClearCheck, 0), kOk);
  EXPECT_EQ(testStatus(1, kTestCheckPattern), 0);
}

TEST_F(HoldDfe, KeepsTheTapsWhileTheLinkChanges) {
  const SerDesRxDFEStats adapted = statsOf(1);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 1), kOk);
  EXPECT_EQ(testStatus(1, kTestHoldDfe), 1);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  EXPECT_EQ(statsOf(1).h, adapted.h);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 0), kOk);
  EXPECT_EQ(testStatus(1, kTestHoldDfe), 0);
  EXPECT_NE(statsOf(1).h, adapted.h);
}

TEST_F(HoldDfe, HoldingWhatIsHeldKeepsIt) {
  SerDesRxDFEState state{};
  state.h[0] = 9;
  state.h[9] = 5;  // beyond the mode
  ASSERT_EQ(sw.setRxDfeState(0, 1, 0, &state), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 1), kOk);
  EXPECT_EQ(statsOf(1).h[0], 9);
  EXPECT_EQ(readRx(1, 9), 0x0500U);
}

TEST_F(HoldDfe, HeldAgainItKeepsTheTapsOfTheFirstTime) {
  const SerDesRxDFEStats adapted = statsOf(1);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 1), kOk);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 1), kOk);
  EXPECT_EQ(statsOf(1).h, adapted.h);
}

TEST_F(HoldDfe, AdaptingAnewTakesTheTapsOfNowAndHoldsThem) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestHoldDfe, 1), kOk);
  const SerDesRxDFEStats before = statsOf(1);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_36PS), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestReadapt, 0), kOk);
  const SerDesRxDFEStats after = statsOf(1);
  EXPECT_NE(after.h, before.h);
  EXPECT_EQ(testStatus(1, kTestHoldDfe), 1);
  ASSERT_EQ(sw.setTxSlew(0, 1, -1, true, SLEW_100PS), kOk);
  EXPECT_EQ(statsOf(1).h, after.h);
}

TEST_F(HoldDfe, AdaptingAnewLeavesAFreeOneFree) {
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestReadapt, 0), kOk);
  EXPECT_EQ(testStatus(1, kTestHoldDfe), 0);
}

TEST_F(HoldDfe, IsForSerDesThatHaveADfe) {
  EXPECT_EQ(sw.setTestOption(0, 7, 0, kTestHoldDfe, 0), kNotSupported);
  EXPECT_EQ(sw.setTestOption(0, 7, 0, kTestReadapt, 0), kNotSupported);
  EXPECT_EQ(sw.setTestOption(0, 8, kAllLinks, kTestHoldDfe, 0), kOk);  // of no links
  int status = 0;
  EXPECT_EQ(sw.getTestStatus(0, 7, 0, kTestHoldDfe, &status), kNotSupported);
  EXPECT_EQ(sw.setTestOption(0, 6, -1, kTestHoldDfe, 0), kOk);
  EXPECT_EQ(sw.setTestOption(0, 8, -1, kTestHoldDfe, 0), kOk) << "no link, and so none that has none";
}

// The exponent, in tenths, at a point of a port's eye.
class Scan : public SwitchTest {
 protected:
  int at(unsigned port, int phase, int level) {
    EXPECT_EQ(sw.setTestOption(0, port, 0, kTestMargin, 0x18080 + 256 * phase + level), kOk) << phase << ' ' << level;
    return testStatus(port, kTestMargin);
  }
  int margin(unsigned port, MarginMode mode) {
    EXPECT_EQ(sw.setTestOption(0, port, 0, kTestMargin, static_cast<int>(mode)), kOk);
    return testStatus(port, kTestMargin);
  }
};

TEST_F(Scan, InTheMiddleIsTheLinksOwnErrorRate) {
  for (const unsigned port : {0U, 1U, 2U, 4U, 6U, 7U})
    EXPECT_NEAR(at(port, 0, 0) / 10.0, margin(port, kMarginErrorRate) - 0.5, 0.55) << port;
  for (int k = 60; k <= 120; k += 4) {
    ASSERT_EQ(sw.setTxFfe(0, 1, 0, {.mode = FFE_3, .k = k, .c = {-2, 58, -10, 0}}), kOk);
    EXPECT_NEAR(at(1, 0, 0) / 10.0, margin(1, kMarginErrorRate) - 0.5, 0.55) << k;
  }
}

TEST_F(Scan, OnlyClosesOutwards) {
  for (const unsigned port : {0U, 1U}) {
    for (const int phase : {0, 3, -3, 9, -9, 16, -16, 31, -31}) {
      for (const int level : {0, 5, -5, 20, -20, 60, -60, 126, -126}) {
        const int here = at(port, phase, level);
        EXPECT_LE(at(port, phase + (phase < 0 ? -1 : 1), level), here) << phase << ' ' << level;
        EXPECT_LE(at(port, phase, level + (level < 0 ? -1 : 1)), here) << phase << ' ' << level;
      }
    }
  }
}

TEST_F(Scan, AgreesWithTheEyesWidthAndHeight) {
  constexpr int kEye = 120;
  for (const unsigned port : {0U, 2U, 4U}) {
    int early = 0;
    int late = 0;
    int up = 0;
    while (at(port, early - 1, 0) > kEye)
      --early;
    while (at(port, late + 1, 0) > kEye)
      ++late;
    while (at(port, 0, up + 1) > kEye)
      ++up;
    const double step = 1000.0 / 64;
    EXPECT_NEAR(margin(port, kMarginWidth), step * (late - early + 1), step + 1) << port;
    EXPECT_NEAR(margin(port, kMarginHeight), 2 * up + 1, 2) << port;
    EXPECT_GT(up, 5);
  }
}

TEST_F(Scan, OfALinkWithoutSignalIsClosed) {
  EXPECT_EQ(margin(5, kMarginWidth), 0);
  EXPECT_EQ(at(5, 0, 0), 3);  // every second bit is wrong
  EXPECT_EQ(at(5, 7, 7), 3);
}

TEST_F(Scan, FollowsTheSettings) {
  const int before = at(0, 8, 10);
  ASSERT_EQ(sw.setTxSlew(0, 0, -1, true, SLEW_100PS), kOk);
  EXPECT_LT(at(0, 8, 10), before);
}

TEST_F(Scan, TakesPointsOfTheEyeAlone) {
  for (const int mode : {3, 0xffff, 0x18080 - 256 * 33, 0x18080 + 256 * 33, 0x18080 + 128, 0x18080 - 128,
                         0x18080 + 256 * 32 + 128, -0x18080}) {
    EXPECT_EQ(sw.setTestOption(0, 0, 0, kTestMargin, mode), kOutOfRange) << mode;
  }
  for (const int phase : {-32, 32}) {
    for (const int level : {-127, 127})
      EXPECT_EQ(at(0, phase, level), 3);
  }
}

TEST_F(Margin, ShowsTheEyeOrTheDecadesOfTheErrorRate) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestMargin, 0), kOk);
  const int eye = testStatus(0, kTestMargin);
  EXPECT_EQ(static_cast<unsigned>(eye), readRx(0, 15));
  EXPECT_LT(testStatus(1, kTestMargin), eye);
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestMargin, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 1, 0, kTestMargin, 1), kOk);
  EXPECT_EQ(testStatus(0, kTestMargin), 18);
  EXPECT_GT(testStatus(1, kTestMargin), 3);
  EXPECT_LT(testStatus(1, kTestMargin), 9);
  EXPECT_EQ(testStatus(5, kTestMargin), 0);
}

TEST_F(InjectErrors, ArriveAtTheFarEnd) {
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestInjectErrors, 2), kOk);
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestInjectErrors, 5), kOk);
  EXPECT_EQ(testStatus(3, kTestInjectErrors), 7);
  EXPECT_EQ(readTx(3, 10), 7U);
  EXPECT_EQ(decodeErrors(2), 7U);
  EXPECT_EQ(crcErrors(2), 7U);
  EXPECT_EQ(decodeErrors(3), 0U);
}

TEST_F(InjectErrors, ComeBackThroughALoop) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestInjectErrors, 3), kOk);
  EXPECT_EQ(decodeErrors(0), 3U);
  ASSERT_EQ(sw.setTestOption(0, 5, 0, kTestLoopback, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 5, 0, kTestInjectErrors, 4), kOk);
  EXPECT_EQ(decodeErrors(5), 4U);
}

TEST_F(InjectErrors, AreFoundByTheChecker) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestSendPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestCheckPattern, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestInjectErrors, 6), kOk);
  EXPECT_EQ(testStatus(0, kTestCheckPattern), 6);
  EXPECT_EQ(decodeErrors(0), 0U);
}

TEST_F(InjectErrors, AreNotSeenWithoutLock) {
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);
  ASSERT_EQ(readRx(3, 2) & 0x3U, 0x1U);
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestInjectErrors, 5), kOk);
  EXPECT_EQ(decodeErrors(3), 0U);
  EXPECT_EQ(readTx(2, 10), 5U);
}

TEST_F(InjectErrors, GoNowhereFromASilentTransmitterOrIntoALoopedFarEnd) {
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestLoopback, 1), kOk);
  ASSERT_EQ(sw.setTestOption(0, 3, 0, kTestInjectErrors, 5), kOk);
  EXPECT_EQ(decodeErrors(2), 0U);
  ASSERT_EQ(sw.setStream(id(0), false), kOk);
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestInjectErrors, 5), kOk);
  ASSERT_EQ(sw.setStream(id(0), true), kOk);
  ASSERT_EQ(sw.setTestOption(0, 4, 0, kTestInjectErrors, 5), kOk);  // to a partner
  EXPECT_EQ(decodeErrors(0), 0U);
}

TEST_F(InjectErrors, AreNotInFramesWhereTheMediumDoesNotTakeTheSpeed) {
  for (const unsigned port : {2U, 3U})
    ASSERT_EQ(sw.setPortSpeed(id(port), SPEED_10G), kOk);
  ASSERT_EQ(statusOf(3), kStatusNoSpeed);
  ASSERT_EQ(readRx(3, 2) & 0x3U, 0x3U);
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestInjectErrors, 5), kOk);
  EXPECT_EQ(decodeErrors(3), 0U);
}

TEST_F(InjectErrors, OnAllLinksAreCountedOnEach) {
  ASSERT_EQ(sw.setTestOption(0, 6, -1, kTestInjectErrors, 2), kOk);
  EXPECT_EQ(decodeErrors(6), 8U);
}

TEST_F(Temperature, IsThatOfTheCoreOfEitherSide) {
  EXPECT_EQ(testStatus(7, kTestTemperature), 45);
  ASSERT_EQ(sw.setTestOption(0, 7, 0, kTestTemperature, 1), kOk);
  EXPECT_EQ(testStatus(7, kTestTemperature), 47);
}

// One tap for both decision paths is right for both only if these have the same gain.
TEST_F(HoldDfe, ChangesNothingWhereATapServesBothPaths) {
  ASSERT_EQ(sw.setTxFfe(0, 6, 0, {.mode = FFE_NONE, .k = 115, .c = {0, 63, 0, 0}}), kOk);
  const SerDesRxDFEStats adapted = statsOf(6);
  ASSERT_EQ(sw.setTestOption(0, 6, 0, kTestHoldDfe, 1), kOk);
  ASSERT_LT(adapted.h[0], -10);
  EXPECT_NEAR(statsOf(6).Amin, adapted.Amin, 1);
}

class FourLinksOnTwoCores : public SwitchTest {
 protected:
  FourLinksOnTwoCores()
      : SwitchTest(
            "[[asics.cores]]\ncores = 5\ntype = 3\ntemperature = 30\n"
            "[[asics.ports]]\nports = 6\ntx_core = 5\n") {}
};

TEST_F(FourLinksOnTwoCores, EachLinkHasASensorOfItsOwn) {
  ASSERT_EQ(sw.setTestOption(0, 6, 2, kTestTemperature, 1), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_EQ(testStatus(6, kTestTemperature, link), link == 2 ? 30 + 8 : 45) << link;
  ASSERT_EQ(sw.setTestOption(0, 6, kAllLinks, kTestTemperature, 1), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_EQ(testStatus(6, kTestTemperature, link), 30 + 8) << link;
}

TEST_F(FourLinksOnTwoCores, EachLinkThatSendsWarmsTheCoreItSendsFrom) {
  ASSERT_EQ(sw.setTestOption(0, 6, 0, kTestTemperature, 1), kOk);
  for (int sending = 3; sending >= 0; --sending) {
    ASSERT_EQ(writeTx(6, 0, 0x0038, sending), kOk);  // its enable bit off
    EXPECT_EQ(testStatus(6, kTestTemperature), 30 + 2 * sending);
    EXPECT_EQ(testStatus(6, kTestTemperature, 1), 45);
  }
}

TEST_F(FourLinksOnTwoCores, EachLinkHasAMarginOfItsOwn) {
  ASSERT_EQ(sw.setTestOption(0, 6, 1, kTestMargin, 1), kOk);
  for (int link = 0; link < 4; ++link)
    EXPECT_EQ(static_cast<unsigned>(testStatus(6, kTestMargin, link)) == readRx(6, 8, link), link != 1) << link;
}

TEST_F(FourLinksOnTwoCores, ErrorsAreInjectedAndFoundOnTheirLinkAlone) {
  ASSERT_EQ(sw.setTestOption(0, 6, kAllLinks, kTestSendPattern, 3), kOk);
  ASSERT_EQ(sw.setTestOption(0, 6, kAllLinks, kTestCheckPattern, 3), kOk);
  ASSERT_EQ(sw.setTestOption(0, 6, 2, kTestInjectErrors, 7), kOk);
  for (int link = 0; link < 4; ++link) {
    EXPECT_EQ(testStatus(6, kTestInjectErrors, link), link == 2 ? 7 : 0) << link;
    EXPECT_EQ(testStatus(6, kTestCheckPattern, link), link == 2 ? 7 : 0) << link;
  }
}

// What an option set again changes is what it counts or adds anew: nothing else.
TEST_F(TestOptions, SetTwiceComeToTheSameAsSetOnce) {
  for (const auto& [option, mode] : std::vector<std::pair<std::uint32_t, int>>{{kTestLoopback, 1},
                                                                               {kTestSendPattern, 2},
                                                                               {kTestHoldDfe, 1},
                                                                               {kTestCheckPattern, 2},
                                                                               {kTestMargin, 1},
                                                                               {kTestReadapt, 0},
                                                                               {kTestClearCheck, 0},
                                                                               {kTestTemperature, 1}}) {
    ASSERT_EQ(sw.setTestOption(0, 1, 0, option, mode), kOk) << option;
    const std::vector<StateRecord> once = sw.exportState();
    ASSERT_EQ(sw.setTestOption(0, 1, 0, option, mode), kOk) << option;
    EXPECT_EQ(sw.exportState(), once) << option;
  }
}

TEST_F(TestOptions, OthersAndOtherModesAreOutOfRange) {
  int status = 0;
  for (const std::uint32_t option : {5U, 10U, 100U, 0xffffffffU}) {
    EXPECT_EQ(sw.setTestOption(0, 0, 0, option, 0), kOutOfRange) << option;
    EXPECT_EQ(sw.getTestStatus(0, 0, 0, option, &status), kOutOfRange) << option;
  }
  const std::vector<std::pair<std::uint32_t, int>> greatest = {
      {kTestLoopback, 1},         {kTestSendPattern, 3},         {kTestHoldDfe, 1},
      {kTestCheckPattern, 3},     {kTestMargin, kMaxMarginMode}, {kTestReadapt, 0},
      {kTestInjectErrors, 65535}, {kTestClearCheck, 0},          {kTestTemperature, 1}};
  for (const auto& [option, mode] : greatest) {
    EXPECT_EQ(sw.setTestOption(0, 0, 0, option, mode + 1), kOutOfRange) << option;
    EXPECT_EQ(sw.setTestOption(0, 0, 0, option, -1), kOutOfRange) << option;
    EXPECT_EQ(sw.setTestOption(0, 0, 0, option, mode), kOk) << option;
  }
}

TEST_F(TestOptions, CommandsWithoutAStatusHaveNone) {
  int status = 0;
  EXPECT_EQ(sw.getTestStatus(0, 0, 0, kTestReadapt, &status), kNotSupported);
  EXPECT_EQ(sw.getTestStatus(0, 0, 0, kTestClearCheck, &status), kNotSupported);
}

TEST_F(TestOptions, AreForLinksThatExist) {
  int status = 0;
  EXPECT_EQ(sw.setTestOption(1, 0, 0, kTestLoopback, 0), kBadAsic);
  EXPECT_EQ(sw.setTestOption(0, 9, 0, kTestLoopback, 0), kBadPort);
  EXPECT_EQ(sw.setTestOption(0, 0, 1, kTestLoopback, 0), kBadLink);
  EXPECT_EQ(sw.getTestStatus(0, 0, -1, kTestLoopback, &status), kBadLink);
  EXPECT_EQ(sw.getTestStatus(0, 9, 0, kTestLoopback, &status), kBadPort);
  EXPECT_EQ(sw.getTestStatus(1, 0, 0, 100, &status), kBadAsic) << "the ASIC is looked for first";
}

class PartnerPattern : public SwitchTest {
 protected:
  PartnerPattern()
      : SwitchTest("[[asics.ports]]\nports = 4\npartner = { settings = \"good\", speed = \"10G\", pattern = 1 }\n") {}
};

TEST_F(PartnerPattern, IsFoundByTheChecker) {
  EXPECT_EQ(statusOf(4), kStatusPattern);
  ASSERT_EQ(sw.setTestOption(0, 4, 0, kTestCheckPattern, 1), kOk);
  EXPECT_EQ(testStatus(4, kTestCheckPattern), 0);
}

class TestOptionsOfASide : public SwitchTest {
 protected:
  TestOptionsOfASide() : SwitchTest("[[asics.ports]]\nports = 6\ntx_links = 2\n") {}
};

TEST_F(TestOptionsOfASide, TakeItsLinks) {
  for (const unsigned option :
       {kTestLoopback, kTestHoldDfe, kTestCheckPattern, kTestMargin, kTestReadapt, kTestClearCheck, kTestTemperature}) {
    EXPECT_NE(sw.setTestOption(0, 6, 3, option, 0), kBadLink) << option;
    EXPECT_EQ(sw.setTestOption(0, 6, 4, option, 0), kBadLink) << option;
  }
  for (const unsigned option : {kTestSendPattern, kTestInjectErrors}) {
    EXPECT_EQ(sw.setTestOption(0, 6, 1, option, 0), kOk) << option;
    EXPECT_EQ(sw.setTestOption(0, 6, 2, option, 0), kBadLink) << option;
  }
}

}  // namespace
}  // namespace simulator
