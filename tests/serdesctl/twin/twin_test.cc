// What ports hear, told from little: speeds that are not shown, links and sides that are not there.
#include "serdesctl/twin/twin.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "tests/serdesctl/twin/one_port.h"

namespace serdesctl {
namespace {

Twin twinOf(const SwitchState& state) {
  return makeTwin(state, "a test");
}

bool says(const Twin& twin, const std::string& text) {
  return twin.description.find(text) != std::string::npos;
}

// A port that would find its speed if it sent.
SwitchState hiddenSpeed() {
  SwitchState state = onePort();
  PortState& port = state.asics[0].ports[0];
  port.configRate = "AUTO";
  port.streamEnabled = false;
  port.txCaches["4G"] = {.power = 90, .slew = 2, .mode = 1, .p = {0, 58, -8, 0}};
  port.rxCaches["4G"] = {.mode = 0, .p = {3, 4, 78, 0}};
  return state;
}

TEST(Twin, AHiddenSpeedIsTheOneWhoseCachesAreInForce) {
  const std::string upTo2 = R"(media_speeds = ["1G", "2G"])", upTo4 = R"(media_speeds = ["1G", "2G", "4G"])";
  const std::string all = R"(media_speeds = ["1G", "2G", "4G", "8G", "10G"])";
  const auto tx = [](PortState& port, std::int32_t power) {
    static_cast<FfeValues&>(port.tx.emplace_back()) = {"FFE2", power, 0, 58, -8, 0};
  };
  using Make = std::function<void(ConfigPort&, PortState&)>;
  const std::vector<std::tuple<Make, std::string, bool>> cases = {
      {[&](ConfigPort&, PortState& port) {
         tx(port, 90);
         port.rx.emplace_back().pole = 3;
       },
       upTo4, false},
      {[&](ConfigPort&, PortState& port) { tx(port, 90); }, all, true},
      {[&](ConfigPort&, PortState& port) {
         tx(port, 100);
         port.txCaches["2G"] = {.power = 100, .slew = 2, .mode = 1, .p = {0, 58, -8, 0}};
       },
       upTo2, false},
      {[&](ConfigPort& config, PortState& port) {
         config.tx.links = 0;
         port.rx.emplace_back().pole = 3;
       },
       upTo4, false},
      {[&](ConfigPort& config, PortState& port) {
         config.rx.links = 0;
         tx(port, 90);
       },
       upTo4, false},
  };
  for (const auto& [make, speeds, live] : cases) {
    SwitchState state = hiddenSpeed();
    make(state.asics[0].config.ports[0], state.asics[0].ports[0]);
    const Twin twin = twinOf(state);
    EXPECT_TRUE(says(twin, speeds + "\n")) << twin.description;
    EXPECT_EQ(says(twin, "\nlive = "), live) << twin.description;
  }
}

SerDesTxRateParams settingsAfterReset() {
  const simulator::SerDesTraits& traits = simulator::serDesTraits(2);
  return settingsIn(traits, traits.tx.resetValues());
}

TEST(Twin, AHiddenSpeedIsHeard) {
  SwitchState state = hiddenSpeed();
  state.asics[0].ports[0].observed.links = {statisticsOf(state, settingsAfterReset(), 30, SPEED_8G)};
  const Twin twin = twinOf(state);
  EXPECT_TRUE(says(twin, R"(media_speeds = ["1G", "2G", "4G", "8G"])")) << twin.description;
  ASSERT_EQ(twin.links.size(), 1U);
  EXPECT_EQ(twin.links[0].farEnd, "partner");
  EXPECT_NEAR(twin.links[0].length, 30, 3);
  EXPECT_NEAR(*twin.links[0].aminTwin, *twin.links[0].amin, 2);
}

TEST(Twin, ALinkThatShowsNothingDoesNotHideTheOther) {
  SwitchState state = onePort();
  AsicState& asic = state.asics[0];
  asic.config.ports[0].rx.links = asic.config.ports[0].tx.links = 2;
  asic.ports[0].observed.links = {DfeStatsValues(), statisticsOf(state, kOwnSettings, 20)};
  const Twin twin = twinOf(state);
  ASSERT_EQ(twin.links.size(), 2U);
  EXPECT_FALSE(twin.links[0].ap || twin.links[0].apTwin);
  ASSERT_TRUE(twin.links[1].ap && twin.links[1].apTwin);
  EXPECT_NEAR(*twin.links[1].apTwin, *twin.links[1].ap, 1);
  EXPECT_NEAR(twin.links[1].length, 20, 2);
}

TEST(Twin, APortThatOnlyReceivesHearsAPartner) {
  SwitchState state = onePort();
  PortState& port = state.asics[0].ports[0];
  port.observed.links = {statisticsOf(state, settingsAfterReset(), 12)};
  state.asics[0].config.ports[0].tx.links = 0;
  Twin twin = twinOf(state);
  EXPECT_EQ(twin.links[0].farEnd, "partner");
  EXPECT_EQ(twin.links[0].note, "");
  EXPECT_NEAR(twin.links[0].length, 12, 1.5);
  EXPECT_TRUE(says(twin, "partner = { settings = \"set")) << twin.description;

  // A level without anything else; a partner without power would not give it.
  DfeStatsValues level;
  level.taps.fill(0);
  level.ap = 78;
  level.amin = 0;
  port.observed.links = {level};
  twin = twinOf(state);
  EXPECT_EQ(twin.links[0].note, "what arrives comes at another speed: the line is not known");
  EXPECT_TRUE(says(twin, "speed = \"20G\""));
  EXPECT_FALSE(says(twin, "power = 0\n")) << twin.description;
}

TEST(Twin, AWeakEthernetSignalIsThatOfALowerDrive) {
  SwitchState state = onePort();
  AsicState& asic = state.asics[0];
  asic.config.glPorts = 0;
  asic.config.exgPorts = 1;
  asic.cores[0].serDesType = 4;
  asic.ports[0].configRate = "10G";
  asic.ports[0].txCaches.clear();
  asic.ports[0].rxCaches.clear();
  SerDesTxRateParams far = simulator::kPlainEthernetSettings.tx;
  far.power = 1;
  asic.ports[0].observed.links = {statisticsOf(state, far, 10, SPEED_10G)};
  const Twin twin = twinOf(state);
  EXPECT_EQ(twin.links[0].farEnd, "partner") << twin.description;
  EXPECT_NEAR(twin.links[0].length, 10, 0.5);
  EXPECT_TRUE(says(twin, "power = 1\n")) << twin.description;
  EXPECT_NEAR(*twin.links[0].apTwin, *twin.links[0].ap, 1);
}

TEST(Twin, CopperIsCopper) {
  SwitchState state = onePort();
  state.asics[0].ports[0].observed.media = "COP";
  const Twin twin = twinOf(state);
  EXPECT_EQ(twin.links[0].medium, "copper");
  EXPECT_TRUE(says(twin, "copper_metres = 3.00\n"));
}

TEST(Twin, LinksBeyondThoseThatThereCanBeAreLeftOut) {
  SwitchState state = onePort();
  state.asics[0].config.ports[0].rx.links = 4294967295;
  const Twin twin = twinOf(state);
  EXPECT_EQ(twin.links.size(), 4U);
  const std::string note = "port 0 of ASIC 0: rx_links of 4294967295 is 4 here";
  EXPECT_EQ(twin.notes, std::vector<std::string>{note});
  const std::string report = textReport(twin);
  EXPECT_TRUE(report.ends_with("\nNot said by the twin: " + note + "\n")) << report;
}

}  // namespace
}  // namespace serdesctl
