// The pulse that arrives, and its echoes, against sums over a period that is long enough for all of them.
#include "simulator/link/arrival.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/unit/simulator/link/links.h"
#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

const Transmitter kSender{.ffeMode = 3, .k = 115, .c = {-4, 55, -25, 3}};
const Receiver kReceiver{.pole = 5, .peak = 3};

TEST(Arrival, IsTheProductOfItsPartsAndTheBit) {
  const Arrival arrival = arrivalOf(kSender, backplane(20), kReceiver, kBaud8G);
  const std::vector<double> expected = reference::pulseOf(kSender, backplane(20), kReceiver, kBaud8G).samples();
  ASSERT_EQ(arrival.samples.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i)
    ASSERT_NEAR(arrival.samples[i], expected[i], 1e-6) << i;
}

// A sum over bins is the integral only if 0 GHz counts half; an echo, which makes the bins finer, changes no noise.
TEST(Arrival, NoiseBandIsTheIntegralHoweverLongThePeriod) {
  for (const int peak : {0, 3, 7}) {
    const Receiver receiver{.pole = 5, .peak = peak};
    double integral = 0;
    constexpr double kStep = 0.002;
    for (int i = 0; i * kStep < 8 * kBaud8G; ++i)
      integral += kStep * magnitudeSquared(reference::receiver(receiver, (i + 0.5) * kStep, kBaud8G));
    for (const double delayNs : {0.0, 1.0, 100.0}) {
      Channel channel = backplane(20);
      channel.echoes = {{0.1, delayNs}};
      EXPECT_NEAR(arrivalOf(kSender, channel, receiver, kBaud8G).noiseBandGHz / integral, 1, 1e-4) << delayNs;
    }
  }
}

// With every echo within 1024 UI, the cursors are those of a period of 1024 UI, wherever the echoes come and at any
// speed.
TEST(Echo, OfAnyDelayAgreesWithAReferenceOf1024Ui) {
  struct Case {
    double baud;
    std::vector<Echo> echoes;
  };
  const Case cases[] = {
      {kBaud8G, {{0.05, 0.4}, {-0.03, 1.1}}},          {kBaud8G, {{0.2, 6.3}}},
      {kBaud8G, {{0.1, 3.7}, {0.1, 9.9}, {-0.2, 21}}}, {1.0625, {{-0.25, 100}}},
      {kBaud10G, {{0.15, 0.05}, {0.1, 91}}},
  };
  for (const Case& c : cases) {
    Channel channel = backplane(20);
    channel.echoes = c.echoes;
    const reference::Pulse pulse = reference::pulseOf(kSender, channel, kReceiver, c.baud, kMaxPulseUi);
    const double instant = reference::instantOf(pulse);
    const Cursors cursors = cursorsOf(kSender, channel, kReceiver, c.baud);
    const double h0 = pulse.at(instant);
    EXPECT_GT(cursors.last(), c.echoes.back().delayNs * c.baud);
    for (int k = -kPrecursors; k <= cursors.last(); ++k)
      ASSERT_NEAR(cursors[k] / h0, pulse.at(instant + k) / h0, 1e-3) << k << " at " << c.baud;
  }
}

TEST(Echo, WidensThePeriodToThePowerOfTwoThatHoldsIt) {
  const auto periodUi = [](double delayUi) {
    Channel channel = backplane(20);
    channel.echoes = {{0.1, delayUi / kBaud8G}};
    return arrivalOf(kSender, channel, kReceiver, kBaud8G).samples.size() / kSamplesPerUi;
  };
  EXPECT_EQ(periodUi(0), 64u);
  EXPECT_EQ(periodUi(1), 128u);
  EXPECT_EQ(periodUi(64), 128u);
  EXPECT_EQ(periodUi(64.1), 256u);
  EXPECT_EQ(periodUi(960), 1024u);
  EXPECT_EQ(periodUi(960.1), 64u);
}

TEST(Echo, NeverImprovesALinkByComingLater) {
  for (const double delayUi : {5.5, 20.0, 40.5, 60.0, 63.0, 64.0, 65.0, 127.0, 128.5, 500.0, 959.0, 961.0, 2000.0}) {
    Channel channel = backplane(24);
    const Transmitter sender{.ffeMode = 2, .c = {-4, 55, 4, 0}};
    const double clean = evaluateLink(sender, channel, {}, kBaud8G).ber;
    channel.echoes = {{0.2, delayUi / kBaud8G}};
    EXPECT_GT(evaluateLink(sender, channel, {}, kBaud8G).ber, 10 * clean) << delayUi << " " << clean;
  }
}

// A description refuses what is later than this at the lowest speed. At a higher speed it counts as noise of its power.
TEST(Echo, LaterThanThePeriodIsNoiseOfItsPower) {
  EXPECT_DOUBLE_EQ(longestEchoNs(1), 960);
  EXPECT_DOUBLE_EQ(longestEchoNs(8), 120);
  Channel channel = backplane(20);
  const ReceivedSignal clean = receive(kSender, channel, kReceiver, kBaud8G, {});
  channel.echoes = {{0.1, longestEchoNs(kBaud8G)}};
  EXPECT_EQ(arrivalOf(kSender, channel, kReceiver, kBaud8G).lateEchoPower, 0);
  channel.echoes = {{0.1, longestEchoNs(kBaud8G) * 1.001}, {-0.2, 500}};
  const ReceivedSignal echoed = receive(kSender, channel, kReceiver, kBaud8G, {});
  EXPECT_EQ(echoed.cursors.h, clean.cursors.h);
  double power = 0;
  for (const double h : clean.cursors.h)
    power += h * h;
  const double added = std::pow(sampleAt(echoed, 0).sigma, 2) - std::pow(sampleAt(clean, 0).sigma, 2);
  EXPECT_NEAR(added / ((0.01 + 0.04) * power), 1, 1e-9);
}

}  // namespace
}  // namespace simulator
