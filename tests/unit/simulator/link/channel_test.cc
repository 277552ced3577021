// Losses of media against published figures, and how media compose.
#include "simulator/link/channel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "simulator/link/arrival.h"

namespace simulator {
namespace {

TEST(Channel, BoardLineReachesPublishedLoss) {
  EXPECT_NEAR(insertionLossDb(boardLine(151), 12.89), 6.243, 0.005);
}

TEST(Channel, FittedChannelFollowsItsCoefficients) {
  Channel fit;
  fit.a0 = 0.6461;
  fit.a1 = 2.1142;
  fit.a2 = 1.3638;
  fit.a4 = -0.01762;
  EXPECT_NEAR(insertionLossDb(fit, 0), 0.6461, 1e-12);
  EXPECT_NEAR(insertionLossDb(fit, 4), 0.6461 + 4.2284 + 5.4552 - 0.28192, 1e-9);
}

// Practice: 0.5 dB an inch at 5 GHz and 2 to 2.5 dB a connector.
TEST(Channel, BackplanesLoseAboutWhatPracticeSays) {
  const Channel connectors = connector() + connector();
  EXPECT_NEAR(insertionLossDb(fr4Trace(40) + connectors, 5), 25, 2);
  EXPECT_NEAR(insertionLossDb(fr4Trace(24) + connectors, 5), 17, 2);
  EXPECT_NEAR(insertionLossDb(fr4Trace(8) + connector(), 5), 6.5, 1);
  EXPECT_NEAR(insertionLossDb(fr4Trace(1), 5), 0.484, 0.001);
  EXPECT_NEAR(insertionLossDb(connector(), 5), 1.85, 0.001);
}

TEST(Channel, DirectAttachCopperMeetsCableLimits) {
  const Channel cable = directAttachCopper(7);
  EXPECT_NEAR(insertionLossDb(cable, 5.15625), 17.04, 0.005);
  EXPECT_LE(cable.a1, 6.0);
  EXPECT_LE(cable.a2, 1.0);
  EXPECT_LE(cable.a4, 0.08);
  EXPECT_LT(insertionLossDb(directAttachCopper(1), 5.15625), 5);
}

TEST(Channel, OpticalModuleIsHostTraceWithJitter) {
  const Channel optics = opticalModule(10, 0.03);
  EXPECT_NEAR(insertionLossDb(optics, 5), insertionLossDb(fr4Trace(10) + connector(), 5), 1e-12);
  EXPECT_EQ(optics.randomJitterUi, 0.03);
  EXPECT_EQ(opticalModule(10).randomJitterUi, 0.02);
}

TEST(Channel, CascadeAddsLossesAndJoinsTheRest) {
  Channel first = fr4Trace(3);
  first.echoes = {{0.1, 0.5}};
  first.randomJitterUi = 0.03;
  first.crosstalkDb = -40;
  Channel second = connector();
  second.echoes = {{-0.05, 1}};
  second.randomJitterUi = 0.04;
  second.crosstalkDb = -35;
  const Channel both = first + second;
  for (const double f : {0.0, 0.1, 1.0, 4.25, 20.0}) {
    EXPECT_NEAR(insertionLossDb(both, f), insertionLossDb(first, f) + insertionLossDb(second, f), 1e-12);
  }
  ASSERT_EQ(both.echoes.size(), 2u);
  EXPECT_EQ(both.echoes[1].reflection, -0.05);
  EXPECT_NEAR(both.randomJitterUi, 0.05, 1e-15);
  EXPECT_EQ(both.crosstalkDb, -35);
  second.randomJitterUi = 0.7;
  EXPECT_EQ((fr4Trace(3) + second).randomJitterUi, 0.5);
}

// The phase belongs to the loss: the pulse rises steeply and falls slowly. Without it the pulse would be symmetric.
TEST(Channel, PhaseMakesThePulseCausal) {
  const Arrival arrival = arrivalOf({.slewPs = 0}, fr4Trace(30), {.pole = 7, .peak = 0}, 8.5);
  const std::vector<double>& p = arrival.samples;
  const auto peak = static_cast<std::size_t>(std::max_element(p.begin(), p.end()) - p.begin());
  double before = 0;
  double after = 0;
  for (std::size_t i = kSamplesPerUi * 3 / 2; i < 20 * kSamplesPerUi; ++i) {
    before += std::fabs(p[(peak + p.size() - i) % p.size()]);
    after += std::fabs(p[(peak + i) % p.size()]);
  }
  EXPECT_GT(after, 8 * before);
}

TEST(Channel, AbsurdCoefficientsStayFinite) {
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(), 1e300, -1e300};
  for (const double value : absurd) {
    Channel channel;
    channel.a0 = channel.a1 = channel.a2 = channel.a4 = value;
    channel.echoes = {{value, value}};
    for (const double f : {0.0, 5.0, value})
      EXPECT_TRUE(std::isfinite(insertionLossDb(channel, f)));
  }
}

}  // namespace
}  // namespace simulator
