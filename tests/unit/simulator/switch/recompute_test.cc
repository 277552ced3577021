// What a command changes answers anew, and nothing else is worked out again.
#include <algorithm>
#include <map>
#include <set>

#include "tests/unit/simulator/switch/switch_bench.h"

namespace simulator {
namespace {

// A receive link of the one ASIC there is.
struct Place {
  unsigned port;
  unsigned link;
  auto operator<=>(const Place&) const = default;
};
using Places = std::set<Place>;

void PrintTo(const Place& place, std::ostream* stream) {
  *stream << place.port << '/' << place.link;
}

class Recompute : public SwitchTest {
 protected:
  explicit Recompute(const std::string& more = "") : SwitchTest(more) {
    (void)ask();
  }

  static Places linksOf(std::initializer_list<unsigned> ports) {
    Places places;
    for (const unsigned port : ports) {
      for (unsigned link = 0; link < (port == 6 ? 4U : 1U); ++link)
        places.insert({port, link});
    }
    return places;
  }
  // Asks every link, and gives those that were worked out for it.
  Places ask() {
    Places evaluated;
    for (const Place place : linksOf({0, 1, 2, 3, 4, 5, 6, 7})) {
      const unsigned before = sw.evaluations();
      answers_[place] = statsOf(place.port, static_cast<int>(place.link));
      if (sw.evaluations() != before) evaluated.insert(place);
    }
    return evaluated;
  }
  // Asks every link, and gives those that answer otherwise than the last time.
  Places differing() {
    const std::map<Place, SerDesRxDFEStats> before = answers_;
    (void)ask();
    Places places;
    for (const auto& [place, stats] : answers_) {
      const SerDesRxDFEStats& old = before.at(place);
      if (stats.h != old.h || stats.Ap != old.Ap || stats.Amin != old.Amin || stats.An != old.An) places.insert(place);
    }
    return places;
  }
  // Exactly `places` and those that are disturbed in another way are worked out anew. The first answer otherwise, and
  // of the others those that it matters to.
  void expectChange(const Places& places, const Places& disturbed = {}) {
    Places all = places;
    all.insert(disturbed.begin(), disturbed.end());
    const std::map<Place, SerDesRxDFEStats> before = answers_;
    const unsigned evaluations = sw.evaluations();
    EXPECT_EQ(ask(), all);
    EXPECT_EQ(sw.evaluations() - evaluations, all.size());
    answers_ = before;
    const Places others = differing();
    EXPECT_TRUE(std::includes(others.begin(), others.end(), places.begin(), places.end()));
    EXPECT_TRUE(std::includes(all.begin(), all.end(), others.begin(), others.end()));
  }
  // `places` answer otherwise without having been worked out, for nothing arrives; `relieved` are worked out anew.
  void expectSilence(const Places& places, const Places& relieved) {
    const std::map<Place, SerDesRxDFEStats> before = answers_;
    EXPECT_EQ(ask(), relieved);
    answers_ = before;
    const Places others = differing();
    EXPECT_TRUE(std::includes(others.begin(), others.end(), places.begin(), places.end()));
    for (const Place& place : places)
      EXPECT_LT(answers_[place].Ap, 5);
  }

 private:
  std::map<Place, SerDesRxDFEStats> answers_;
};

constexpr FfeSettings kOther = {.mode = FFE_3, .k = 90, .c = {-3, 50, -30, 0}};

TEST_F(Recompute, AtFirstEveryLinkThatHearsSomething) {
  Switch fresh(readDescription(kBenchSwitch, "bench.toml"));
  EXPECT_EQ(fresh.evaluations(), 0U);
  EXPECT_EQ(sw.evaluations(), 10U);  // six ports with one link and one with four; port 5 hears nothing
  EXPECT_EQ(ask(), Places{});
}

TEST_F(Recompute, SetFfeChangesWhatTheFarEndHears) {
  ASSERT_EQ(sw.setTxFfe(0, 2, -1, kOther), kOk);
  expectChange(linksOf({3}), linksOf({0, 1, 4}));
  ASSERT_EQ(sw.setTxFfe(0, 0, -1, kOther), kOk);  // a loop-back plug: its own
  expectChange(linksOf({0}), linksOf({1, 2}));
}

TEST_F(Recompute, SetFfeTowardsAPartnerReachesTheNeighboursAlone) {
  ASSERT_EQ(sw.setTxFfe(0, 4, -1, kOther), kOk);
  expectChange({}, linksOf({2, 3, 6}));
}

TEST_F(Recompute, SetFfeOfOneLinkOfFourChangesThatLink) {
  ASSERT_EQ(sw.setTxFfe(0, 6, 2, kOther), kOk);
  expectChange({{6, 2}});
  ASSERT_EQ(sw.setTxFfe(0, 6, -1, {.mode = FFE_2, .k = 80, .c = {0, 50, -10, 0}}), kOk);
  expectChange(linksOf({6}), linksOf({4, 7}));  // which are beside its first link
}

TEST_F(Recompute, SetSlewChangesWhatTheFarEndHears) {
  ASSERT_EQ(sw.setTxSlew(0, 3, -1, true, SLEW_75PS), kOk);
  expectChange(linksOf({2}), linksOf({0, 1, 4}));
}

TEST_F(Recompute, SetDfeAndSetVgaChangeThePortItself) {
  ASSERT_EQ(sw.setRxDfe(0, 2, -1, DFE_NONE), kOk);
  expectChange(linksOf({2}));
  ASSERT_EQ(sw.setRxVga(0, 3, -1, {.pole = 1, .peak = 1, .amax = 50}), kOk);
  expectChange(linksOf({3}));
  ASSERT_EQ(sw.setRxVga(0, 6, 3, {.pole = 1, .peak = 1, .amax = 50}), kOk);
  expectChange({{6, 3}});
}

TEST_F(Recompute, SetDfeStateChangesThePortItself) {
  SerDesRxDFEState state{};
  state.mode = DFE_3;
  state.h = {9, -9, 8, -8, 7, -7};
  ASSERT_EQ(sw.setRxDfeState(0, 0, -1, &state), kOk);
  expectChange(linksOf({0}));
}

TEST_F(Recompute, SetRateChangesBothEndsOfACable) {
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_2G), kOk);  // port 2 is on AUTO and follows
  expectChange(linksOf({2, 3}), linksOf({0, 1, 4}));
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_4G), kOk);
  expectChange(linksOf({0}), linksOf({1, 2}));
  ASSERT_EQ(sw.setPortSpeed(id(4), SPEED_8G), kOk);  // so does a partner
  expectChange(linksOf({4}), linksOf({2, 3, 6}));
}

TEST_F(Recompute, SetRateOfOneEndAloneBreaksBoth) {
  ASSERT_EQ(sw.setPortSpeed(id(2), SPEED_4G), kOk);
  (void)ask();
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_8G), kOk);
  expectChange(linksOf({2, 3}), linksOf({0, 1, 4}));
  EXPECT_EQ(statusOf(2), kStatusNoSpeed);
  EXPECT_EQ(readRx(2, 2) & 0x3U, 0x1U);  // a signal without lock
}

TEST_F(Recompute, ACacheAloneChangesNothingUntilASpeedPutsItIntoForce) {
  ASSERT_EQ(sw.setTxRateParams(0, 0, SPEED_8G, {90, SLEW_60PS, FFE_2, 0, 50, -20, 0}), kOk);
  ASSERT_EQ(sw.setRxRateParams(0, 2, SPEED_4G, {DFE_1, 1, 2, 33, 0}), kOk);
  expectChange({});
  ASSERT_EQ(sw.setPortSpeed(id(0), SPEED_8G), kOk);  // the same speed again
  expectChange(linksOf({0}), linksOf({1, 2}));
  ASSERT_EQ(sw.setPortSpeed(id(3), SPEED_4G), kOk);
  expectChange(linksOf({2, 3}), linksOf({0, 1, 4}));
  EXPECT_EQ(vgaAt(2).amax, 33);
}

TEST_F(Recompute, SetTxEnableSilencesTheFarEndAndLetsItSpeakAgain) {
  const SerDesRxDFEStats before = statsOf(2);
  ASSERT_EQ(sw.setStream(id(3), false), kOk);
  expectSilence(linksOf({2}), linksOf({0, 1, 4}));
  ASSERT_EQ(sw.setStream(id(3), true), kOk);
  expectChange(linksOf({2}), linksOf({0, 1, 4}));
  EXPECT_EQ(statsOf(2).h, before.h);
}

TEST_F(Recompute, ARegisterChangesWhatItsBitsMean) {
  ASSERT_EQ(writeTx(2, 4, 9), kOk);  // k
  expectChange(linksOf({3}), linksOf({0, 1, 4}));
  ASSERT_EQ(writeRx(2, 4, 50), kOk);  // amax
  expectChange(linksOf({2}));
  ASSERT_EQ(writeRx(2, 20, 0xffff), kOk);  // storage
  ASSERT_EQ(writeTx(2, 14, 0xffff), kOk);
  expectChange({});
  ASSERT_EQ(writeTx(6, 1, 5, 1), kOk);  // k of one link of four
  expectChange({{6, 1}});
  ASSERT_EQ(writeRx(0, 1, 0x0000), kOk);  // the receiver off
  EXPECT_EQ(differing(), linksOf({0}));
}

TEST_F(Recompute, APllTakesTheLinksOfItsCoreDownAndUpAgain) {
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 0), kOk);  // ports 0 to 3
  expectSilence(linksOf({0, 1, 2, 3}), linksOf({4}));
  ASSERT_EQ(sw.writePllRegister(0, 0, 1, 1), kOk);
  expectChange(linksOf({0, 1, 2, 3}), linksOf({4}));
  ASSERT_EQ(sw.writePllRegister(0, 0, 5, 0x1234), kOk);  // storage
  expectChange({});
  ASSERT_EQ(sw.writePllRegister(0, 4, 0, 0), kOk);  // the transmit core of port 7
  expectSilence(linksOf({7}), linksOf({6}));
}

TEST_F(Recompute, LoopbackTurnsAReceiverToItsOwnTransmitter) {
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestLoopback, 1), kOk);
  expectChange(linksOf({2}));
  ASSERT_EQ(sw.setTxFfe(0, 3, -1, kOther), kOk);  // nobody hears it now
  expectChange({}, linksOf({0, 1, 4}));
  ASSERT_EQ(sw.setTxFfe(0, 2, -1, kOther), kOk);  // and these are heard at both ends
  expectChange(linksOf({2, 3}), linksOf({0, 1, 4}));
  ASSERT_EQ(sw.setTestOption(0, 2, 0, kTestLoopback, 0), kOk);
  expectChange(linksOf({2}));
  ASSERT_EQ(sw.setTestOption(0, 6, 1, kTestLoopback, 1), kOk);
  expectChange({{6, 1}});
}

TEST_F(Recompute, ASelfTestChangesNoOtherLink) {
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestHoldDfe, 1), kOk);
  EXPECT_TRUE(ask() == linksOf({0}) || ask().empty());
  for (const std::uint32_t option :
       {kTestSendPattern, kTestCheckPattern, kTestMargin, kTestInjectErrors, kTestTemperature}) {
    ASSERT_EQ(sw.setTestOption(0, 0, 0, option, 1), kOk);
    (void)testStatus(0, option);
    expectChange({});
  }
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestClearCheck, 0), kOk);
  expectChange({});
  ASSERT_EQ(sw.setTxFfe(0, 0, -1, kOther), kOk);
  (void)ask();
  ASSERT_EQ(sw.setTestOption(0, 0, 0, kTestReadapt, 0), kOk);
  EXPECT_EQ(differing(), linksOf({0}));
}

TEST_F(Recompute, RefusedSetsChangeNothing) {
  EXPECT_EQ(sw.setTxFfe(0, 0, -1, {.mode = FFE_3, .k = 115, .c = {-60, 60, -60, 0}}), kOutOfRange);
  EXPECT_EQ(sw.setTxFfe(0, 0, 1, kOther), kBadLink);
  EXPECT_EQ(sw.setRxDfe(0, 7, -1, DFE_5), kNotSupported);
  EXPECT_EQ(sw.setPortSpeed(id(0), SPEED_20G), kNotSupported);
  EXPECT_EQ(writeRx(0, 2, 1), kReadOnlyRegister);
  EXPECT_EQ(sw.setTestOption(0, 0, 0, kTestLoopback, 2), kOutOfRange);
  expectChange({});
}

TEST_F(Recompute, TimeAndReadsChangeNothing) {
  passSeconds(10);
  for (unsigned port = 0; port < 9; ++port) {
    (void)countersOf(port);
    (void)statusOf(port);
    (void)speedOf(port);
  }
  (void)sw.exportState();
  EXPECT_EQ(sw.evaluations(), 10U);
  expectChange({});
}

TEST_F(Recompute, CountingUpToAChangeAsksForTheLinksThatItReachesAlone) {
  Switch other(readDescription(kBenchSwitch, "bench.toml"));
  (void)other.beginCall({});
  ASSERT_EQ(other.setRxDfe(0, 0, -1, DFE_1), kOk);
  EXPECT_EQ(other.evaluations(), 1U);
  ASSERT_EQ(other.setTxFfe(0, 2, -1, kOther), kOk);
  EXPECT_EQ(other.evaluations(), 5U);  // 1 to 4 too; 0 is counted up to now
}

}  // namespace
}  // namespace simulator
