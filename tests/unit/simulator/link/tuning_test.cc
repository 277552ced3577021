// What tuning a link teaches: the orderings that an engineer knows from hardware. The medium is common circuit board
// with two connectors at 8G unless said otherwise.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/unit/simulator/link/links.h"

namespace simulator {
namespace {

Transmitter ffe3(int c0, int c2) {
  return {.ffeMode = 2, .k = 115, .c = {c0, 55, c2, 0}, .slewPs = 36};
}

LinkResult with(int c2, const Receiver& receiver, const Channel& channel = backplane(20)) {
  return amidItsLike(ffe3(-4, c2), channel, receiver);
}

double decodeErrors(const LinkResult& result) {
  return decodeErrorRate(result.ber, kBaud8G, LineCode::k8b10b);
}

// Falls to the floor and rises again, without a second dip; gives the post cursor in the middle of the floor.
int middleOfValley(const Receiver& receiver, const Channel& channel) {
  constexpr int kFirst = 10;
  constexpr int kLast = -50;
  double lowest = 1;
  int from = kFirst;
  int to = kFirst;
  for (int c2 = kFirst; c2 >= kLast; --c2) {
    const double ber = with(c2, receiver, channel).ber;
    if (ber < lowest) from = c2;
    if (ber <= lowest) to = c2;
    lowest = std::min(lowest, ber);
  }
  for (int c2 = kFirst; c2 > from; --c2) {
    EXPECT_GE(with(c2, receiver, channel).ber, with(c2 - 1, receiver, channel).ber) << c2;
  }
  for (int c2 = to; c2 > kLast; --c2) {
    EXPECT_LE(with(c2, receiver, channel).ber, with(c2 - 1, receiver, channel).ber) << c2;
  }
  return (from + to) / 2;
}

TEST(PostCursorValley, HasItsFloorNearMinusTwenty) {
  const Receiver receiver{.dfeTaps = 1, .peak = 0};
  EXPECT_NEAR(middleOfValley(receiver, backplane(20)), -20, 4);
  EXPECT_GT(decodeErrors(with(10, receiver)), 1e3);
  EXPECT_LT(decodeErrors(with(-20, receiver)), 1e-6);
  EXPECT_GT(decodeErrors(with(-55, receiver)), 1e3);
}

TEST(PostCursorValley, LosesLockAtBothEndsWithoutFeedback) {
  const Receiver receiver{.dfeTaps = 0, .peak = 0};
  EXPECT_NEAR(middleOfValley(receiver, backplane(20)), -20, 4);
  EXPECT_FALSE(with(10, receiver).locked);
  EXPECT_LT(decodeErrors(with(-20, receiver)), 1e-6);
  EXPECT_FALSE(with(-50, receiver).locked);
}

TEST(PostCursorValley, LongChannelWithPeakingAndThreeTaps) {
  const Receiver receiver{.dfeTaps = 3, .pole = 6, .peak = 4, .amax = 0x4e};
  EXPECT_NEAR(middleOfValley(receiver, backplane(42)), -30, 4);
  EXPECT_GT(decodeErrors(with(10, receiver, backplane(42))), 1e3);
  EXPECT_LT(decodeErrors(with(-30, receiver, backplane(42))), 1);
  EXPECT_GT(decodeErrors(with(-50, receiver, backplane(42))), 1e3);
}

TEST(PostCursor, UnderEqualisedShowsLargePositiveTapsAndSmallAmin) {
  const Receiver receiver{.dfeTaps = 3, .peak = 0};
  const LinkResult under = with(0, receiver);
  const LinkResult tuned = with(-20, receiver);
  for (const unsigned tap : {0u, 2u, 4u})
    EXPECT_GT(under.taps[tap], 3) << tap;
  EXPECT_GT(under.taps[0], 20);
  for (const unsigned tap : {0u, 2u, 4u})
    EXPECT_LT(std::fabs(tuned.taps[tap]), 5) << tap;
  EXPECT_LT(under.amin, tuned.amin - 10);
}

TEST(PostCursor, OverEqualisedShowsNegativeFirstTapAndLostSwing) {
  const Receiver receiver{.dfeTaps = 3, .peak = 0};
  const LinkResult tuned = with(-20, receiver);
  const LinkResult over = with(-50, receiver);
  EXPECT_LT(over.taps[0], -20);
  EXPECT_LT(over.h0, 0.7 * tuned.h0);
  EXPECT_GT(over.gain, 1.4 * tuned.gain);
  EXPECT_LT(over.amin, tuned.amin - 5);
}

TEST(PostCursor, TapsFallSteadilyAsItGrows) {
  const Receiver receiver{.dfeTaps = 3, .peak = 0};
  for (int c2 = 5; c2 > -45; c2 -= 5)
    EXPECT_GE(with(c2, receiver).taps[0], with(c2 - 5, receiver).taps[0]) << c2;
}

TEST(Feedback, EveryModeIsBetterThanTheLast) {
  for (const int c2 : {5, 10}) {
    LinkResult last = with(c2, {.dfeTaps = 0, .peak = 0}, backplane(24));
    for (const unsigned taps : {1u, 3u, 5u}) {
      const LinkResult more = with(c2, {.dfeTaps = taps, .peak = 0}, backplane(24));
      EXPECT_LT(more.ber, last.ber / 10) << taps;
      EXPECT_GT(more.amin, last.amin + 2) << taps;
      EXPECT_GE(more.eyeHeightV, last.eyeHeightV) << taps;
      last = more;
    }
  }
}

TEST(PreCursor, IsRepairedByFirstTapOfTheTransmitterOnly) {
  const double inches = 36;
  const auto link = [&](int c0, unsigned taps) {
    return amidItsLike(ffe3(c0, -20), backplane(inches), {.dfeTaps = taps, .peak = 0});
  };
  const auto precursor = [&](int c0) {
    const Cursors cursors = cursorsOf(ffe3(c0, -20), backplane(inches), {.peak = 0});
    return cursors[-1] / cursors[0];
  };
  EXPECT_GT(precursor(0), 0.15);
  EXPECT_LT(precursor(-8), 0.5 * precursor(0));
  for (const unsigned taps : {0u, 1u, 3u, 5u}) {
    EXPECT_LT(link(-8, taps).ber, link(0, taps).ber) << taps;
    EXPECT_GT(link(-8, taps).amin, link(0, taps).amin + 3) << taps;
  }
}

TEST(PreCursor, TooMuchOrOfTheWrongSignHurts) {
  const auto link = [](int c0) { return amidItsLike(ffe3(c0, -20), backplane(28), {.peak = 0}); };
  EXPECT_GT(link(8).ber, link(0).ber);
  EXPECT_GT(link(-25).ber, link(-8).ber);
}

TEST(Slew, SlowestRuinsEightGigabitAndIsHarmlessAtTwo) {
  const Receiver receiver{.dfeTaps = 3, .peak = 0};
  const auto link = [&](double slewPs, double baud, double inches) {
    Transmitter transmitter = ffe3(-4, -20);
    transmitter.slewPs = slewPs;
    return amidItsLike(transmitter, backplane(inches), receiver, baud);
  };
  EXPECT_LT(link(100, kBaud8G, 20).amin, 0.6 * link(36, kBaud8G, 20).amin);
  EXPECT_GT(link(100, kBaud8G, 34).ber, 1e5 * link(36, kBaud8G, 34).ber);
  EXPECT_GT(decodeErrors(link(100, kBaud8G, 34)), 100);
  EXPECT_LT(decodeErrors(link(36, kBaud8G, 34)), 0.01);
  EXPECT_EQ(link(100, kBaud2G, 20).ber, kBerFloor);
  EXPECT_NEAR(link(100, kBaud2G, 20).amin, link(36, kBaud2G, 20).amin, 2);
}

TEST(Slew, FasterEdgesRaiseCrosstalk) {
  double last = 1;
  for (const double slewPs : {24.0, 30.0, 36.0, 50.0, 60.0, 75.0, 100.0}) {
    Transmitter transmitter = ffe3(-4, -20);
    transmitter.slewPs = slewPs;
    const double crosstalk = amidItsLike(transmitter, backplane(20), Receiver{}).crosstalk;
    EXPECT_LT(crosstalk, 0.98 * last) << slewPs;
    last = crosstalk;
  }
}

// The neighbours stay as strong as they are.
TEST(Power, TooLittleRailsTheGainAndCostsErrorsUntilThereIsNoSignal) {
  const auto link = [](unsigned k) {
    Transmitter transmitter = ffe3(-4, -8);
    const std::vector<Aggressor> around = neighbours(transmitter, kBaud8G);
    transmitter.k = k;
    return evaluateLink(transmitter, backplane(36), Receiver{}, kBaud8G, around);
  };
  EXPECT_TRUE(link(115).gainInRange);
  EXPECT_NEAR(link(115).ap, 0x4e, 1e-9);
  LinkResult last = link(66);
  EXPECT_EQ(last.gain, kMaxGain);
  EXPECT_LT(last.ap, 0x4e);
  for (const unsigned k : {60u, 50u, 40u}) {
    const LinkResult weaker = link(k);
    EXPECT_EQ(weaker.gain, kMaxGain) << k;
    EXPECT_LT(weaker.ap, last.ap) << k;
    EXPECT_LT(weaker.amin, last.amin) << k;
    EXPECT_GT(weaker.ber, last.ber) << k;
    last = weaker;
  }
  EXPECT_GT(decodeErrors(last), 1e3);
  EXPECT_FALSE(link(30).signalDetected);
}

// The best post cursor of one rate is not that of the other, so that each rate needs its own cache.
TEST(Rate, GoodSettingsAtEightAreNotGoodAtTen) {
  const Receiver receiver{.dfeTaps = 0, .peak = 0};
  const double inches = 28;
  const auto ber = [&](int c2, double baud) {
    return amidItsLike(ffe3(-4, c2), backplane(inches), receiver, baud).ber;
  };
  const auto best = [&](double baud) {
    int found = 0;
    for (int c2 = 10; c2 >= -50; --c2) {
      if (ber(c2, baud) < ber(found, baud)) found = c2;
    }
    return found;
  };
  const int best8 = best(kBaud8G);
  const int best10 = best(kBaud10G);
  EXPECT_LT(best10, best8);
  EXPECT_GT(ber(best8, kBaud10G), 1e4 * ber(best8, kBaud8G));
  EXPECT_GT(ber(best8, kBaud10G), ber(best10, kBaud10G));
  EXPECT_GT(ber(best10, kBaud8G), ber(best8, kBaud8G));
}

TEST(Length, LongerChannelsAreWorse) {
  double last = 0;
  for (const double inches : {34.0, 38.0, 42.0, 46.0, 50.0, 54.0}) {
    const LinkResult result = with(-20, {.dfeTaps = 3, .peak = 2}, backplane(inches));
    EXPECT_GT(result.ber, last) << inches;
    last = result.ber;
  }
}

TEST(Medium, OfAnotherRateDoesNotLock) {
  EXPECT_FALSE(evaluateLink(ffe3(-4, -20), backplane(20), Receiver{}, kBaud8G, kBaud10G).locked);
}

TEST(Medium, CableAndOpticsWorkWithSensibleSettings) {
  EXPECT_LT(amidItsLike(ffe3(-4, -15), directAttachCopper(3), Receiver{.peak = 2}, kBaud10G).ber, 1e-12);
  EXPECT_LT(amidItsLike(ffe3(0, -5), opticalModule(8), Receiver{.peak = 1}, kBaud10G).ber, 1e-12);
  EXPECT_LT(amidItsLike(ffe3(0, -5), opticalModule(12), Receiver{.peak = 1}, kBaud8G).ber, 1e-12);
}

}  // namespace
}  // namespace simulator
