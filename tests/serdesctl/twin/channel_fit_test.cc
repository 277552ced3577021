// Lengths of media are told from what a receiver shows of them.
#include "serdesctl/twin/channel_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace serdesctl {
namespace {

using simulator::Receiver;
using simulator::Transmitter;

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}
  int from(int least, int greatest) {
    return least + static_cast<int>(engine_() % static_cast<unsigned>(greatest - least + 1));
  }
  template <typename Value, std::size_t kCount>
  Value oneOf(const Value (&values)[kCount]) {
    return values[engine_() % kCount];
  }

 private:
  std::mt19937 engine_;
};

Transmitter randomTransmitter(Random& random) {
  Transmitter transmitter;
  transmitter.ffeMode = static_cast<unsigned>(random.from(0, 2));
  transmitter.c = {-random.from(0, 4), random.from(50, 60), -random.from(0, 25), 0};
  transmitter.k = static_cast<unsigned>(random.from(100, 160));
  transmitter.slewPs = random.oneOf({24.0, 30.0, 36.0, 50.0});
  return transmitter;
}

Receiver randomReceiver(Random& random) {
  Receiver receiver;
  receiver.dfeTaps = random.oneOf({1U, 3U, 5U});
  receiver.peak = random.from(0, 5);
  receiver.evenOddMismatch = 0.005 * random.from(-4, 4);
  return receiver;
}

// What the tool shows: whole numbers.
LinkReadings shown(const simulator::LinkResult& result) {
  simulator::LinkResult whole = result;
  for (double& tap : whole.taps)
    tap = simulator::readingOf(tap);
  whole.ap = simulator::readingOf(result.ap);
  whole.amin = simulator::readingOf(result.amin);
  return readingsOf(whole);
}

FitLink linkOver(double length, Medium medium, const Transmitter& transmitter, Receiver receiver, double baudGbd) {
  FitLink link = {.receiver = receiver, .baudGbd = baudGbd, .aggressors = {}, .seen = {}};
  for (unsigned i = 0; i < 8; ++i)
    link.aggressors.push_back(
        {.transmitter = transmitter, .baudGbd = baudGbd, .distance = 1 + i % 2, .farEnd = i >= 4});
  link.seen = shown(
      simulator::evaluateLink(transmitter, mediumRow(medium).channel(length), receiver, baudGbd, link.aggressors));
  link.receiver.evenOddMismatch = 0;  // which nobody tells
  return link;
}

TEST(ChannelFit, FindsTheLengthsOfBoards) {
  Random random(7);
  for (int i = 0; i < 100; ++i) {
    const Transmitter transmitter = randomTransmitter(random);
    const double length = random.from(8, 40);
    const FitLink link =
        linkOver(length, Medium::kBoard, transmitter, randomReceiver(random), random.oneOf({4.25, 8.5, 10.51875}));
    ChannelFit fit = fitChannel({&link, 1}, transmitter, Medium::kBoard);
    EXPECT_NEAR(fit.length, length, length / 10) << i;
    EXPECT_LT(fit.residual, 0.5) << i;
    addRange({&link, 1}, transmitter, fit);
    EXPECT_LE(fit.shortest, length + 0.2) << i;
    EXPECT_GE(fit.longest, length - 0.2) << i;
    const double amin = readingsOf(simulator::evaluateLink(transmitter, mediumRow(Medium::kBoard).channel(fit.length),
                                                           link.receiver, link.baudGbd, link.aggressors))
                            .amin;
    EXPECT_NEAR(amin, link.seen.amin, 3) << i;
  }
}

TEST(ChannelFit, FindsCablesAndModules) {
  Random random(8);
  for (const auto& [medium, length] : {std::pair(Medium::kCopper, 3.0), std::pair(Medium::kCopper, 6.0),
                                       std::pair(Medium::kOptical, 8.0), std::pair(Medium::kOptical, 14.0)}) {
    const Transmitter transmitter = randomTransmitter(random);
    const FitLink link = linkOver(length, medium, transmitter, randomReceiver(random), 8.5);
    const ChannelFit fit = fitChannel({&link, 1}, transmitter, medium);
    EXPECT_NEAR(fit.length, length, length / 10) << mediumRow(medium).name;
    EXPECT_LT(fit.residual, 0.5) << mediumRow(medium).name;
  }
}

TEST(ChannelFit, GoesNoFurtherThanMediaDo) {
  Random random(9);
  const Transmitter transmitter = randomTransmitter(random);
  const double longest = mediumRow(Medium::kCopper).longest;
  const FitLink link = linkOver(longest, Medium::kCopper, transmitter, randomReceiver(random), 4.25);
  ChannelFit fit = fitChannel({&link, 1}, transmitter, Medium::kCopper);
  addRange({&link, 1}, transmitter, fit);
  EXPECT_NEAR(fit.length, longest, longest / 10);
  EXPECT_GT(fit.longest, longest - 1);
  EXPECT_LE(fit.longest, longest);
}

TEST(ChannelFit, SaysHowFarOffAnotherFarEndIs) {
  Transmitter sent;
  sent.ffeMode = 1;
  sent.c = {0, 58, -20, 0};
  Receiver receiver;
  receiver.dfeTaps = 5;
  const FitLink link = linkOver(20, Medium::kBoard, sent, receiver, 8.5);
  Transmitter other = sent;
  other.c[2] = 0;
  const double right = fitChannel({&link, 1}, sent, Medium::kBoard).residual;
  const double wrong = fitChannel({&link, 1}, other, Medium::kBoard).residual;
  EXPECT_LT(right, 0.5);
  EXPECT_FALSE(isHardlyWorse(wrong, right));
  EXPECT_NEAR(residualOf({&link, 1}, sent, Medium::kBoard, 20), right, 0.2);
}

TEST(ChannelFit, StatisticsWithoutValuesAreNoReadings) {
  EXPECT_FALSE(readingsOf(DfeStatsValues{}));
  DfeStatsValues values;
  values.ap = 78;
  EXPECT_FALSE(readingsOf(values));
  values.amin = -3;
  values.evenOddTaps[0] = 10;
  values.evenOddTaps[1] = 13;
  values.taps[1] = 4;
  values.evenOddTaps[4] = 9;  // without its odd one it tells nothing
  const auto readings = readingsOf(values);
  ASSERT_TRUE(readings);
  EXPECT_EQ(readings->taps[0], 11.5);
  EXPECT_EQ(readings->taps[1], 4);
  EXPECT_EQ(readings->taps[2], 0);
  EXPECT_EQ(readings->ap, 78);
  EXPECT_EQ(readings->amin, -3);
}

}  // namespace
}  // namespace serdesctl
