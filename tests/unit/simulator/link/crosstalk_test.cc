// Crosstalk by its sum, and what neighbours cost.
#include "simulator/link/crosstalk.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/unit/simulator/link/links.h"
#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

const Transmitter kSender{.ffeMode = 2, .k = 115, .c = {-4, 55, -8, 0}};

// A long link that runs, with errors now and then.
LinkResult victim(const std::vector<Aggressor>& aggressors) {
  return evaluateLink(kSender, backplane(37), {.peak = 4}, kBaud8G, aggressors);
}

TEST(Crosstalk, AgreesWithAFineSum) {
  for (const double baud : {1.0625, 2.125, 5.259375, 8.5, 21.0375}) {
    for (const unsigned mode : {0u, 3u}) {
      const std::vector<Aggressor> aggressors = {
          {{.ffeMode = mode, .k = 200, .c = {-8, 50, -20, 6}, .slewPs = 24}, baud, 1, false},
          {{.ffeMode = mode, .k = 90, .c = {5, 50, 10, 6}, .slewPs = 75}, baud, 2, true}};
      const Receiver receiver{.pole = 7, .peak = 3};
      const double expected = reference::crosstalk(aggressors, backplane(12), receiver, kBaud8G);
      EXPECT_NEAR(crosstalkPower(aggressors, backplane(12), receiver, kBaud8G) / expected, 1, 1e-3) << baud;
    }
  }
}

TEST(Crosstalk, SharesOfAllNeighboursComeToTheWhole) {
  double sum = 0;
  for (const Aggressor& aggressor : neighbours(kSender, kBaud8G))
    sum += neighbourShare(aggressor.distance, aggressor.farEnd);
  EXPECT_NEAR(sum, 1, 1e-12);
  EXPECT_NEAR(10 * std::log10(neighbourShare(2, false) / neighbourShare(1, false)), -6.02, 0.01);
  EXPECT_NEAR(10 * std::log10(neighbourShare(1, true) / neighbourShare(1, false)), -6.02, 0.01);
  EXPECT_EQ(neighbourShare(0, false), 0);
  EXPECT_EQ(neighbourShare(3, false), 0);
}

TEST(Crosstalk, OfEachNeighbourAddsUp) {
  const std::vector<Aggressor> both = {{kSender, kBaud8G, 1, false}, {{.k = 200}, 2.125, 2, true}};
  const auto power = [](std::span<const Aggressor> some) { return crosstalkPower(some, backplane(20), {}, kBaud8G); };
  EXPECT_NEAR(power(both) / (power(std::span(both).first(1)) + power(std::span(both).last(1))), 1, 1e-12);
}

TEST(Crosstalk, IsAsStrongAsTheChannelSays) {
  Channel channel = backplane(20);
  const double usual = crosstalkPower(neighbours(kSender, kBaud8G), channel, {}, kBaud8G);
  channel.crosstalkDb = -40;
  EXPECT_NEAR(crosstalkPower(neighbours(kSender, kBaud8G), channel, {}, kBaud8G), usual / 10, usual * 1e-6);
}

TEST(Crosstalk, IsAtMostAllThatNeighboursSend) {
  const auto power = [](double db) {
    Channel channel = backplane(20);
    channel.crosstalkDb = db;
    return crosstalkPower(neighbours(kSender, kBaud8G), channel, {}, kBaud8G);
  };
  EXPECT_EQ(power(30), power(0));
  EXPECT_LT(power(-1), power(0));
  EXPECT_EQ(power(-1000), power(-200));
  EXPECT_GT(power(-199), power(-200));
}

TEST(Crosstalk, OfTheFarEndPassesTheMedium) {
  const Aggressor aggressors[] = {{kSender, kBaud8G, 1, false}, {kSender, kBaud8G, 1, true}};
  const auto power = [&](double inches, bool farEnd) {
    return crosstalkPower(std::span(aggressors).subspan(farEnd ? 1 : 0, 1), backplane(inches), {}, kBaud8G);
  };
  EXPECT_EQ(power(5, false), power(30, false));
  EXPECT_GT(power(5, true), 5 * power(30, true));
}

TEST(Crosstalk, NoDriveIsNone) {
  Transmitter silent = kSender;
  silent.k = 0;
  EXPECT_EQ(crosstalkPower(neighbours(silent, kBaud8G), backplane(20), {}, kBaud8G), 0);
  EXPECT_EQ(crosstalkPower({}, backplane(20), {}, kBaud8G), 0);
  EXPECT_EQ(crosstalkPower(neighbours(kSender, 0), backplane(20), {}, kBaud8G), 0);
}

TEST(Neighbours, CostAMarginalLinkErrorsByTheirEdgeAndDrive) {
  const double usual = victim(neighbours(kSender, kBaud8G)).ber;
  EXPECT_GT(usual, 1e-13);
  EXPECT_LT(usual, 1e-5);
  Transmitter sharp = kSender;
  sharp.slewPs = 24;
  EXPECT_GT(victim(neighbours(sharp, kBaud8G)).ber, 2 * usual);
  Transmitter strong = kSender;
  strong.k = 160;
  EXPECT_GT(victim(neighbours(strong, kBaud8G)).ber, 10 * usual);
}

TEST(Neighbours, SilencedOrAbsentLeaveTheLinkQuiet) {
  const LinkResult amid = victim(neighbours(kSender, kBaud8G));
  const LinkResult alone = victim({});
  EXPECT_EQ(alone.crosstalk, 0);
  EXPECT_LT(alone.sigma, 0.8 * amid.sigma);
  EXPECT_LT(alone.ber, 1e-3 * amid.ber);
  EXPECT_GT(alone.amin, amid.amin + 3);
  const LinkResult atTheEdge = victim({{kSender, kBaud8G, 1, false}, {kSender, kBaud8G, 1, true}});
  EXPECT_LT(atTheEdge.ber, amid.ber);
  EXPECT_GT(atTheEdge.ber, alone.ber);
}

TEST(Neighbours, AreNoLouderForALinksOwnEdge) {
  Transmitter sharp = kSender;
  sharp.slewPs = 24;
  const std::vector<Aggressor> all = neighbours(kSender, kBaud8G);
  EXPECT_EQ(evaluateLink(sharp, backplane(30), {}, kBaud8G, all).crosstalk,
            evaluateLink(kSender, backplane(30), {}, kBaud8G, all).crosstalk);
  EXPECT_EQ(evaluateLink(sharp, backplane(30), {}, kBaud8G).crosstalk, 0);
  EXPECT_LT(evaluateLink(sharp, backplane(37), {}, kBaud8G, all).ber, victim(all).ber);
}

}  // namespace
}  // namespace simulator
