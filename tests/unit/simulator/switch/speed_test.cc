#include "simulator/switch/speed.h"

#include "simulator/description/line_rates.h"
#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

using Speed = SwitchTest;

unsigned configured(Switch& sw, port_id_t port) {
  unsigned speed = 999;
  EXPECT_EQ(sw.getConfiguredSpeed(port, &speed), kOk);
  return speed;
}

TEST_F(Speed, AFixedSpeedRunsWhereTheFarEndRunsIt) {
  EXPECT_EQ(configured(sw, id(0)), SPEED_8G);
  EXPECT_EQ(speedOf(0), SPEED_8G);
  EXPECT_EQ(statusOf(0), kPortStateRunning);
}

TEST_F(Speed, AutoPicksTheHighestThatBothEndsAndTheMediaSupport) {
  EXPECT_EQ(configured(sw, id(2)), SPEED_AUTO);
  EXPECT_EQ(speedOf(2), SPEED_8G);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_2G), kOk);
  EXPECT_EQ(speedOf(2), SPEED_2G);
  EXPECT_EQ(statusOf(2), kPortStateRunning);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_AUTO), kOk);
  EXPECT_EQ(speedOf(2), SPEED_8G);
}

TEST_F(Speed, AutoOfFourLinksFindsTheirHighestToo) {
  ASSERT_EQ(sw.setPortSpeed(id(6), SPEED_AUTO), kOk);
  EXPECT_EQ(speedOf(6), SPEED_20G);
}

TEST_F(Speed, AutoBringsTheCachesOfTheSpeedItFindsIntoForce) {
  ASSERT_EQ(sw.setRxRateParams(0, 2, SPEED_4G, {DFE_1, 1, 2, 33, 0}), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_4G), kOk);
  EXPECT_EQ(dfeAt(2), DFE_1);
  EXPECT_EQ(vgaAt(2).amax, 33);
}

TEST_F(Speed, AutoThatFindsTheSameSpeedLeavesTheLiveSettings) {
  ASSERT_EQ(sw.setRxDfe(0, 2, -1, DFE_NONE), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  EXPECT_EQ(dfeAt(2), DFE_NONE);
}

TEST_F(Speed, EndsThatDoNotAgreeStayDown) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  EXPECT_EQ(statusOf(2), kStatusNoSpeed);
  EXPECT_EQ(statusOf(3), kStatusNoSpeed);
  EXPECT_EQ(speedOf(2), SPEED_4G);  // a configured speed is what the port is set to, up or down
  EXPECT_EQ(readRx(2, 2) & 0x3U, 0x1U);
}

TEST_F(Speed, AMediumThatCannotCarryTheSpeedKeepsThePortDown) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_10G), kOk);
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_10G), kOk);
  EXPECT_EQ(statusOf(2), kStatusNoSpeed);
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_AUTO), kOk);
  EXPECT_EQ(statusOf(2), kStatusNoSpeed);
  EXPECT_EQ(speedOf(2), SPEED_INVALID);
}

TEST_F(Speed, ThePortsOwnSpeedsAreItsLimit) {
  EXPECT_EQ(sw.setPortSpeed(id(0), SPEED_20G), kNotSupported);
  EXPECT_EQ(sw.setPortSpeed(id(6), SPEED_8G), kNotSupported);
  EXPECT_EQ(sw.setPortSpeed(id(6), SPEED_20G), kOk);
  EXPECT_EQ(configured(sw, id(0)), SPEED_8G);
}

TEST_F(Speed, OtherValuesAndPortsAreRefused) {
  EXPECT_EQ(sw.setPortSpeed(id(0), SPEED_INVALID), kOutOfRange);
  EXPECT_EQ(sw.setPortSpeed(id(0), 0xffffffff), kOutOfRange);
  EXPECT_EQ(sw.setPortSpeed(id(9), SPEED_8G), kBadPort);
}

TEST_F(Speed, APartnerFollows) {
  EXPECT_EQ(speedOf(4), SPEED_10G);
  ASSERT_EQ(sw.setPortSpeed(id(4), SPEED_4G), kOk);
  EXPECT_EQ(statusOf(4), kPortStateRunning);
}

TEST_F(Speed, APortThatNothingIsConnectedToStaysDown) {
  EXPECT_EQ(statusOf(5), kStatusNoSignal);
  EXPECT_EQ(speedOf(5), SPEED_INVALID);
}

TEST_F(Speed, APortWithoutLinksIsNeverUp) {
  EXPECT_EQ(statusOf(8), kStatusNoLinks);
  EXPECT_EQ(sw.setPortSpeed(id(8), SPEED_1G), kOk);
  EXPECT_EQ(configured(sw, id(8)), SPEED_1G);
}

TEST_F(Speed, FourLinksCarryAQuarterEach) {
  // At the port's whole baud this line would show far more loss.
  EXPECT_EQ(statusOf(6), kPortStateRunning);
  EXPECT_EQ(speedOf(6), SPEED_10G);
}

TEST_F(Speed, OnlyTheStateCanBeAskedFor) {
  unsigned long value = 0;
  EXPECT_EQ(sw.getPortInfo(id(0), static_cast<port_info_t>(1), &value), kOutOfRange);
}

TEST_F(Speed, MediaAreWhatTheDescriptionSays) {
  MediaHwFcXmtrType media{};
  ASSERT_EQ(sw.getMedia(id(0), &media), kOk);
  EXPECT_EQ(media, MEDIA_OPTICAL);
  ASSERT_EQ(sw.getMedia(id(7), &media), kOk);
  EXPECT_EQ(media, MEDIA_10G_ETHERNET);
  EXPECT_EQ(sw.getMedia(id(9), &media), kBadPort);
}

class SpeedByPartner : public SwitchTest {
 protected:
  SpeedByPartner()
      : SwitchTest(R"(
[[asics.ports]]
ports = 4
partner = { settings = "good", speeds = ["2G", "4G"] }
[[asics.ports]]
ports = 5
media = "none"
[[asics.ports]]
ports = 0
partner = { settings = "good", speed = "4G" }
[[asics.ports]]
ports = 1
partner = { settings = "good", sends = false }
)") {}
};

TEST_F(SpeedByPartner, AutoTakesWhatThePartnerHas) {
  EXPECT_EQ(speedOf(4), SPEED_4G);
  EXPECT_EQ(statusOf(4), kPortStateRunning);
  ASSERT_EQ(sw.setPortSpeed(id(4), SPEED_8G), kOk);
  EXPECT_EQ(statusOf(4), kStatusNoSpeed);
}

TEST_F(SpeedByPartner, APartnerWithAFixedSpeedKeepsIt) {
  EXPECT_EQ(statusOf(0), kStatusNoSpeed);
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_AUTO), kOk);
  EXPECT_EQ(speedOf(0), SPEED_4G);
  EXPECT_EQ(statusOf(0), kPortStateRunning);
}

TEST_F(SpeedByPartner, ASilentPartnerGivesNoSignal) {
  EXPECT_EQ(statusOf(1), kStatusNoSignal);
  EXPECT_EQ(readRx(1, 2), 0U);
}

TEST_F(SpeedByPartner, WithoutMediaAPortIsDownAndReportsNone) {
  MediaHwFcXmtrType media{};
  ASSERT_EQ(sw.getMedia(id(5), &media), kOk);
  EXPECT_EQ(media, MEDIA_NONE);
  EXPECT_EQ(statusOf(5), kStatusNoMedia);
  EXPECT_LT(statsOf(5).Ap, 5);
}

class OneEndWithoutMedia : public SwitchTest {
 protected:
  OneEndWithoutMedia() : SwitchTest("[[asics.ports]]\nports = 3\nmedia = \"none\"\nmedia_speeds = []\n") {}
};

TEST_F(OneEndWithoutMedia, SilencesTheOther) {
  EXPECT_EQ(statusOf(3), kStatusNoMedia);
  EXPECT_EQ(statusOf(2), kStatusNoSignal);
}

class FarMediaThatCarryLess : public SwitchTest {
 protected:
  FarMediaThatCarryLess() : SwitchTest("[[asics.ports]]\nports = 3\nmedia_speeds = [\"2G\"]\nspeed = \"8G\"\n") {}
};

TEST_F(FarMediaThatCarryLess, KeepBothEndsDown) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_8G), kOk);
  EXPECT_EQ(statusOf(2), kStatusNoSpeed);
  EXPECT_EQ(statusOf(3), kStatusNoSpeed);
}

// Gbd of each link of a port that is set to a speed, and the line code there.
struct LineAt {
  std::uint32_t speed;
  double fibreChannel;
  double ethernet;
  LineCode code;
};

TEST(Baud, IsThatOfTheSpeedAndKindOfPortAndSharedByItsLinks) {
  const SwitchDescription description = readDescription(kBenchSwitch, "bench.toml");
  const AsicDescription& asic = description.asics[0];
  AsicState state{.ports = std::vector<PortState>(asic.ports.size()),
                  .plls = std::vector<RegisterFile>(asic.cores.size())};
  for (const LineAt& line : {LineAt{SPEED_1G, 1.0625, 1.25, LineCode::k8b10b},
                             {SPEED_2G, 2.125, 2.5, LineCode::k8b10b},
                             {SPEED_4G, 4.25, 5, LineCode::k8b10b},
                             {SPEED_8G, 8.5, 10.3125, LineCode::k8b10b},
                             {SPEED_10G, 10.51875, 10.3125, LineCode::k64b66b},
                             {SPEED_20G, 21.0375, 20.625, LineCode::k64b66b}}) {
    EXPECT_EQ(lineRateOf(line.speed).code, line.code) << line.speed;
    for (PortState& port : state.ports)
      port.operatingSpeed = line.speed;
    const PortView gl({0, asic, state}, 0), partnered({0, asic, state}, 4), xg({0, asic, state}, 6),
        exg({0, asic, state}, 7);
    EXPECT_EQ(linkBaud(gl, gl.rx), line.fibreChannel) << line.speed;
    EXPECT_EQ(linkBaud(gl, gl.tx), line.fibreChannel) << line.speed;
    EXPECT_EQ(linkBaud(xg, xg.rx), line.fibreChannel / 4) << line.speed;
    EXPECT_EQ(linkBaud(xg, xg.tx), line.fibreChannel / 4) << line.speed;
    EXPECT_EQ(linkBaud(exg, exg.rx), line.ethernet) << line.speed;
    // A partner follows to the speeds that it has; otherwise it sends at its lowest.
    EXPECT_EQ(partnerBaud(partnered), line.speed == SPEED_20G ? 1.0625 : line.fibreChannel) << line.speed;
  }
  for (PortState& port : state.ports)
    port.operatingSpeed = SPEED_AUTO;
  const PortView xg({0, asic, state}, 6), exg({0, asic, state}, 7);
  EXPECT_EQ(linkBaud(xg, xg.rx), 10.51875 / 4);  // the lowest of each
  EXPECT_EQ(linkBaud(exg, exg.rx), 1.25);
}

}  // namespace
}  // namespace simulator
