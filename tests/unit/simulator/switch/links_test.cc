#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Links = SwitchTest;
using Stream = SwitchTest;

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

TEST_F(Links, OfAPortHaveToWorkEveryOne) {
  for (int link = 0; link < 4; ++link) {
    const unsigned enable = readRx(6, 0, link);
    ASSERT_EQ(writeRx(6, 0, enable & ~1U, link), kOk);
    EXPECT_EQ(statusOf(6), kStatusNoSignal) << link;
    ASSERT_EQ(writeRx(6, 0, enable, link), kOk);
    const FfeSettings ffe = ffeAt(6, link);
    ASSERT_EQ(sw.setTxFfe(0, 6, link, {.mode = FFE_2, .k = ffe.k, .c = {0, -60, 0, 0}}), kOk);
    EXPECT_EQ(statusOf(6), kStatusNoLock) << link;
    ASSERT_EQ(sw.setTestOption(0, 6, (link + 1) % 4, kTestInjectErrors, 1), kOk);
    EXPECT_EQ(crcErrors(6), 0U) << link;
    ASSERT_EQ(sw.setTxFfe(0, 6, link, ffe), kOk);
    ASSERT_EQ(sw.setTestOption(0, 6, link, kTestSendPattern, 1), kOk);
    EXPECT_EQ(statusOf(6), kStatusPattern) << link;
    ASSERT_EQ(sw.setTestOption(0, 6, link, kTestSendPattern, 0), kOk);
    EXPECT_EQ(statusOf(6), kPortStateRunning) << link;
  }
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

class UnevenCable : public SwitchTest {
 protected:
  UnevenCable()
      : SwitchTest(
            "[[asics.ports]]\nports = 2\nlinks = 2\n[[asics.ports]]\nports = 4\nmedia = \"none\"\n"
            "[[asics.ports]]\nports = 5\nrx_links = 0\n") {}
};

TEST_F(UnevenCable, BringsNothingFromALinkThatIsNotOrWithoutAMedium) {
  EXPECT_EQ(readRx(2, 2, 0) & 1U, 1U);
  EXPECT_EQ(readRx(2, 2, 1) & 1U, 0U);
  EXPECT_LT(statsOf(4).Ap, 5);
}

TEST_F(UnevenCable, TellsWhatIsMissingBeforeWhatDoesNotWork) {
  ASSERT_EQ(sw.setTxFfe(0, 3, 0, {.mode = FFE_2, .k = 115, .c = {0, -60, 0, 0}}), kOk);
  EXPECT_EQ(readRx(2, 2) & 0x3U, 0x1U);  // no lock on the first link, no signal on the second
  EXPECT_EQ(statusOf(2), kStatusNoSignal);
  EXPECT_EQ(statusOf(5), kStatusNoLinks);
}

class SilentAtStart : public SwitchTest {
 protected:
  SilentAtStart() : SwitchTest("[[asics.ports]]\nports = \"3,8\"\nsends = false\n") {}
};

TEST_F(SilentAtStart, IsSilentUntilEnabled) {
  for (const unsigned port : {3U, 8U}) {  // the latter has no links, whose registers would tell
    bool enabled = true;
    ASSERT_EQ(sw.getStream(id(port), &enabled), kOk);
    EXPECT_FALSE(enabled) << port;
  }
  EXPECT_EQ(statusOf(2), kStatusNoSignal);
  ASSERT_EQ(sw.setStream(id(3), true), kOk);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
}

}  // namespace
}  // namespace simulator
