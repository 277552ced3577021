// What caches come to is predicted as the simulated switch does it.
#include "serdesctl/plan/predicting.h"

#include <gtest/gtest.h>

#include <random>

#include "simulator/error_codes.h"
#include "simulator/serdes/settings.h"

namespace serdesctl {
namespace {

using simulator::kSerDesTypes;
using simulator::SerDesTraits;

LiveTx liveOf(const SerDesTraits& traits, const simulator::RegisterFile& tx) {
  const simulator::FfeSettings ffe = ffeOf(traits, tx);
  LiveTx live;
  static_cast<FfeValues&>(live) = {ffeModeNames[ffe.mode].name, ffe.k, ffe.c[0], ffe.c[1], ffe.c[2], ffe.c[3]};
  const std::uint32_t slew = slewOf(traits, tx);
  live.slewUnnamed = slew >= simulator::kSlewPs.size();
  if (!live.slewUnnamed) live.slewPs = simulator::kSlewPs[slew];
  return live;
}

LiveRx liveOfRx(const SerDesTraits& traits, const simulator::RegisterFile& rx) {
  const simulator::VgaSettings vga = vgaOf(traits, rx);
  return {{dfeModeNames[dfeOf(traits, rx)].name}, {vga.pole, vga.peak, vga.amax}};
}

class Predicting : public testing::TestWithParam<unsigned> {
 protected:
  const SerDesTraits& traits = simulator::serDesTraits(GetParam());
  const SerDesSide side = {&traits, traits.isEthernet};
  std::mt19937 random{GetParam()};

  // Mostly what some types take, and some that none does.
  int from(int least, int greatest) {
    return std::uniform_int_distribution(least, greatest)(random);
  }
  int orOdd(int value) {
    return random() % 8 == 0 ? from(-300, 300) : value;
  }
};

TEST_P(Predicting, TakesFromACacheWhatTheSerDesTakes) {
  PortState port;
  port.tx.push_back(liveOf(traits, traits.tx.resetValues()));
  port.rx.push_back(liveOfRx(traits, traits.rx.resetValues()));
  simulator::RegisterFile tx = traits.tx.resetValues(), rx = traits.rx.resetValues();
  int changes = 0;
  for (int i = 0; i < 3000; ++i) {
    const LiveTx before = port.tx[0];
    const int most = traits.isEthernet ? 15 : 140;
    const SerDesTxRateParams sent = {orOdd(from(0, most)), orOdd(from(0, 6)), orOdd(from(0, 3)), orOdd(from(-2, 8)),
                                     orOdd(from(20, 63)),  from(-30, 0),      orOdd(from(0, 1))};
    const SerDesRxRateParams heard = {orOdd(from(0, 3)), orOdd(from(0, 7)), orOdd(from(0, 7)), orOdd(from(0, 127)), 0};
    applyCache(traits, tx, sent);
    applyCache(traits, rx, heard);
    port.txCaches["4G"] = {sent.power, sent.slew, sent.mode, {sent.p0, sent.p1, sent.p2, sent.p3}};
    port.rxCaches["4G"] = {heard.mode, {heard.p0, heard.p1, heard.p2, heard.p3}};
    putIntoForce(port, "4G", {.tx = side, .rx = side});
    ASSERT_EQ(port.tx[0], liveOf(traits, tx)) << i;
    ASSERT_EQ(port.rx[0], liveOfRx(traits, rx)) << i;
    changes += port.tx[0] == before ? 0 : 1;
  }
  EXPECT_GT(changes, 100);
}

// By way of a cache a link comes back to where it was.
TEST_P(Predicting, FindsTheCacheThatGivesALink) {
  simulator::RegisterFile tx = traits.tx.resetValues();
  const TxRawValues other = {.power = 1, .slew = 1, .mode = 1, .p = {1, 2, 3, 4}};
  for (int i = 0; i < 500; ++i) {
    applyCache(traits, tx, {from(0, 15), from(0, 6), from(0, 3), from(0, 8), from(20, 50), from(-30, 0), 0});
    const LiveTx live = liveOf(traits, tx);
    const auto cache = cacheFor(live, other, side);
    ASSERT_TRUE(cache) << i;
    simulator::RegisterFile again = traits.tx.resetValues();
    applyCache(traits, again,
               {cache->power, cache->slew, cache->mode, cache->p[0], cache->p[1], cache->p[2], cache->p[3]});
    EXPECT_EQ(static_cast<const FfeValues&>(liveOf(traits, again)), live) << i;
  }
  LiveTx beyond = liveOf(traits, tx);
  beyond.k = 256;
  EXPECT_FALSE(cacheFor(beyond, other, side));
}

INSTANTIATE_TEST_SUITE_P(Types, Predicting, testing::Range(0U, kSerDesTypes));

TEST(PredictingForATypeThatIsNotKnown, TakesWhateverSomeTypeMight) {
  PortState port;
  port.tx.resize(1);
  port.rx.resize(1);
  const auto put = [&](const TxRawValues& tx, const RxRawValues& rx) {
    port.txCaches["4G"] = tx;
    port.rxCaches["4G"] = rx;
    putIntoForce(port, "4G", {});
  };
  put({255, 6, 3, {-128, 127, -128, 127}}, {3, {-128, 127, 127, 0}});
  const PortState greatest = port;
  EXPECT_EQ(static_cast<const FfeValues&>(port.tx[0]), (FfeValues{"FFE4", 255, -128, 127, -128, 127}));
  EXPECT_EQ(port.tx[0].slewPs, 100);
  EXPECT_EQ(port.rx[0], (LiveRx{{"DFE1"}, {-128, 127, 127}}));
  put({256, 7, 3, {}}, {4, {128, 0, 0, 0}});
  put({-1, -1, 3, {}}, {-1, {0, -129, 0, 0}});
  put({0, 7, 4, {}}, {4, {0, 0, 128, 0}});
  put({0, 7, -1, {}}, {4, {0, 0, 128, 0}});
  put({0, 7, 0, {0, 0, 0, 128}}, {4, {0, 0, 128, 0}});
  EXPECT_EQ(port.tx, greatest.tx);
  EXPECT_EQ(port.rx, greatest.rx);
}

}  // namespace
}  // namespace serdesctl
