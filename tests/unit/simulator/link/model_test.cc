// The whole link: noise and error rate, readings, held taps, lost signals, and input that no switch would give.
#include "simulator/link/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "tests/unit/simulator/link/links.h"

namespace simulator {
namespace {

Transmitter sender(unsigned k, std::array<int, 4> taps, double slewPs = 36) {
  return {.ffeMode = 3, .k = k, .c = taps, .slewPs = slewPs};
}

void expectFinite(const LinkResult& result) {
  for (const double value : {result.h0, result.gain, result.ap, result.an, result.amin, result.ber, result.eyeHeightV,
                             result.sigma, result.crosstalk, result.swingV})
    ASSERT_TRUE(std::isfinite(value));
  for (const double reading : {result.ap, result.an, result.amin})
    ASSERT_LE(std::fabs(reading), 128);
  for (const double tap : result.taps)
    ASSERT_LE(std::fabs(tap), 128);
  ASSERT_GE(result.ber, kBerFloor);
  ASSERT_LE(result.ber, 0.5);
  ASSERT_GE(result.gain, kMinGain);
  ASSERT_LE(result.gain, kMaxGain);
  ASSERT_EQ(result.locked && result.ber > kLockLossBer, false);
}

TEST(Reading, RoundsHalvesAwayFromZeroAndSaturates) {
  EXPECT_EQ(readingOf(2.5), 3);
  EXPECT_EQ(readingOf(-2.5), -3);
  EXPECT_EQ(readingOf(0.49), 0);
  EXPECT_EQ(readingOf(1e9), 32767);
  EXPECT_EQ(readingOf(-1e9), -32768);
  EXPECT_EQ(readingOf(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(EvaluateLink, ReadingsFollowTheGain) {
  const Receiver receiver{.amax = 0x4e, .offsetLsb = 3};
  const LinkResult result = evaluateLink(sender(115, {-4, 55, -20, 0}), backplane(20), receiver, kBaud8G);
  EXPECT_TRUE(result.signalDetected);
  EXPECT_TRUE(result.locked);
  EXPECT_TRUE(result.gainInRange);
  EXPECT_NEAR(result.ap, 78, 1e-9);
  EXPECT_NEAR(result.an, -75, 1e-9);
  EXPECT_NEAR(result.ap * kLsbV, result.h0 * result.gain, 1e-12);
  EXPECT_LT(result.eyeHeightV, 2 * result.h0);
  EXPECT_GT(result.amin, 0);
}

TEST(EvaluateLink, TapsReadTheCursorsAndTheMismatchOfThePaths) {
  Receiver receiver{.dfeTaps = 5, .evenOddMismatch = 0};
  const Transmitter transmitter = sender(115, {-4, 55, -5, 0});
  const LinkResult matched = evaluateLink(transmitter, backplane(24), receiver, kBaud8G);
  const Cursors cursors = cursorsOf(transmitter, backplane(24), receiver);
  for (unsigned tap = 0; tap < 5; ++tap) {
    const double share = cursors[static_cast<int>(tap) + 1] / cursors[0];
    EXPECT_NEAR(matched.taps[2 * tap], share * matched.ap, 1e-9) << tap;
    EXPECT_EQ(matched.taps[2 * tap], matched.taps[2 * tap + 1]) << tap;
  }
  receiver.evenOddMismatch = 0.1;
  const LinkResult mismatched = evaluateLink(transmitter, backplane(24), receiver, kBaud8G);
  EXPECT_NEAR(mismatched.taps[0] / matched.taps[0], 1.05, 1e-9);
  EXPECT_NEAR(mismatched.taps[1] / matched.taps[1], 0.95, 1e-9);
  EXPECT_EQ(mismatched.ber, matched.ber);
}

TEST(EvaluateLink, TapsBeyondTheModeReadZero) {
  for (const unsigned taps : {0u, 1u, 3u, 5u}) {
    const Receiver receiver{.dfeTaps = taps};
    const LinkResult result = evaluateLink(sender(115, {-4, 55, 0, 0}), backplane(24), receiver, kBaud8G);
    for (unsigned i = 0; i < 10; ++i)
      EXPECT_EQ(result.taps[i] != 0, i < 2 * taps) << taps << " " << i;
  }
}

TEST(EvaluateLink, CannotGoBelowTheFloor) {
  const LinkResult best = evaluateLink(sender(255, {0, 63, 0, 0}), fr4Trace(2), Receiver{.peak = 0}, 1.0625);
  EXPECT_EQ(best.ber, kBerFloor);
  EXPECT_TRUE(best.locked);
}

TEST(EvaluateLink, LosesLockOnAChannelThatNoSettingRescues) {
  const Channel hopeless = backplane(80);
  for (const unsigned taps : {0u, 1u, 3u, 5u}) {
    for (int post = 10; post >= -50; post -= 10) {
      for (int peak = 0; peak <= kMaxPeak; ++peak) {
        const Receiver receiver{.dfeTaps = taps, .peak = peak};
        ASSERT_FALSE(amidItsLike(sender(255, {-8, 55, post, 0}), hopeless, receiver).locked);
      }
    }
  }
}

TEST(EvaluateLink, InvertedMainTapNeverLocks) {
  EXPECT_FALSE(evaluateLink(sender(115, {0, -55, 0, 0}), backplane(10), Receiver{}, kBaud8G).locked);
}

TEST(HeldTaps, AdaptedOnesGiveTheAdaptedLink) {
  Receiver receiver{.dfeTaps = 5};
  const Transmitter transmitter = sender(115, {-4, 55, 0, 0});
  const LinkResult adapted = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
  receiver.adapt = false;
  receiver.heldTaps = adapted.taps;
  const LinkResult held = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
  EXPECT_NEAR(held.ber / adapted.ber, 1, 1e-6);
  EXPECT_NEAR(held.amin, adapted.amin, 1e-6);
  for (unsigned i = 0; i < 10; ++i)
    receiver.heldTaps[i] = readingOf(adapted.taps[i]);
  EXPECT_NEAR(evaluateLink(transmitter, backplane(32), receiver, kBaud8G).amin, adapted.amin, 2);
}

TEST(HeldTaps, WrongOnesCloseTheEye) {
  Receiver receiver{.dfeTaps = 3};
  const Transmitter transmitter = sender(115, {-4, 55, 0, 0});
  const LinkResult adapted = amidItsLike(transmitter, backplane(36), receiver);
  receiver.adapt = false;
  double lastBer = adapted.ber;
  double lastAmin = adapted.amin;
  for (const double error : {5.0, 10.0, 15.0, 20.0}) {
    receiver.heldTaps = adapted.taps;
    receiver.heldTaps[0] -= error;
    receiver.heldTaps[1] -= error;
    const LinkResult held = amidItsLike(transmitter, backplane(36), receiver);
    EXPECT_GT(held.ber, lastBer) << error;
    EXPECT_LT(held.amin, lastAmin) << error;
    EXPECT_NEAR(held.taps[0], receiver.heldTaps[0], 1e-9);
    lastBer = held.ber;
    lastAmin = held.amin;
  }
}

TEST(HeldTaps, OneBadPathIsEnough) {
  Receiver receiver{.dfeTaps = 1};
  const Transmitter transmitter = sender(115, {-4, 55, 0, 0});
  const LinkResult adapted = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
  receiver.adapt = false;
  receiver.heldTaps = adapted.taps;
  receiver.heldTaps[1] = -30;
  const LinkResult held = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
  EXPECT_GT(held.ber, 100 * adapted.ber);
  EXPECT_LT(held.eyeHeightV, adapted.eyeHeightV);
}

TEST(HeldTaps, ReachNoFurtherThanTheEqualiser) {
  Receiver receiver{.dfeTaps = 5, .adapt = false, .evenOddMismatch = 0};
  receiver.heldTaps.fill(32767);
  const LinkResult held = evaluateLink(sender(115, {-4, 55, -20, 0}), backplane(20), receiver, kBaud8G);
  EXPECT_NEAR(held.taps[0], 39, 1e-9);
  for (unsigned i = 2; i < 10; ++i)
    EXPECT_NEAR(held.taps[i], 19.5, 1e-9);
  EXPECT_FALSE(held.locked);
}

TEST(SilentLink, ShowsNoiseOnly) {
  const Receiver receiver{.offsetLsb = 2};
  const LinkResult silent = silentLink(receiver);
  EXPECT_FALSE(silent.signalDetected);
  EXPECT_FALSE(silent.locked);
  EXPECT_LT(silent.ap, 1);
  EXPECT_NEAR(silent.an, 2 - silent.ap, 1e-12);
  EXPECT_EQ(silent.gain, kMaxGain);
  EXPECT_EQ(silent.ber, 0.5);
}

TEST(SilentLink, NothingSentIsSilence) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  EXPECT_FALSE(evaluateLink(sender(0, {-4, 55, -20, 0}), backplane(20), Receiver{}, kBaud8G).signalDetected);
  EXPECT_FALSE(evaluateLink(sender(115, {0, 0, 0, 0}), backplane(20), Receiver{}, kBaud8G).signalDetected);
  for (const double baud : {0.0, -1.0, 0.01, 1e6, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(evaluateLink(good, backplane(20), Receiver{}, baud).signalDetected) << baud;
  }
}

// Fifty millivolts peak to peak before the gain, of whatever data swings most.
TEST(SignalDetect, NeedsTheSwing) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  double sum = 0;
  for (const double h : cursorsOf(good, backplane(20), Receiver{}).h)
    sum += std::fabs(h);
  EXPECT_NEAR(evaluateLink(good, backplane(20), Receiver{}, kBaud8G).swingV, 2 * sum, 1e-12);
  const double k = 115 * 0.05 / (2 * sum);
  const auto link = [&](double share, const Receiver& receiver) {
    return evaluateLink(sender(static_cast<unsigned>(k * share), {-4, 55, -20, 0}), backplane(20), receiver, kBaud8G);
  };
  EXPECT_TRUE(link(1.1, {}).signalDetected);
  const LinkResult weak = link(0.9, {});
  EXPECT_FALSE(weak.signalDetected);
  EXPECT_FALSE(weak.locked);
  EXPECT_LT(weak.ap, 1);
  EXPECT_GT(weak.swingV, 0.03);
  EXPECT_TRUE(link(0.9, {.signalDetectMv = 40}).signalDetected);
  EXPECT_FALSE(link(1.1, {.signalDetectMv = 60}).signalDetected);
  EXPECT_FALSE(link(0, {.signalDetectMv = 0}).signalDetected);
}

TEST(SignalDetect, FindsASignalThatCannotBeRead) {
  const LinkResult inverted = evaluateLink(sender(115, {0, -55, 0, 0}), backplane(10), Receiver{}, kBaud8G);
  EXPECT_TRUE(inverted.signalDetected);
  EXPECT_FALSE(inverted.locked);
  EXPECT_EQ(inverted.ber, 0.5);
}

TEST(SignalDetect, ThresholdsBeyondTheirRangeAreItsEnds) {
  Channel channel;
  const double swingV = evaluateLink({}, channel, {}, kBaud8G).swingV;
  const auto detected = [&](double wantedV, double thresholdMv) {
    channel.a0 = 20 * std::log10(swingV / wantedV);
    const LinkResult link = evaluateLink({}, channel, {.signalDetectMv = thresholdMv}, kBaud8G);
    EXPECT_NEAR(link.swingV / wantedV, 1, 1e-6);
    return link.signalDetected;
  };
  EXPECT_TRUE(detected(0.0005, -9e9));
  EXPECT_TRUE(detected(2.0005, 9e9));
}

TEST(FarEnd, AtAnotherRateNeverLocks) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  EXPECT_TRUE(evaluateLink(good, backplane(20), Receiver{}, kBaud8G, kBaud8G).locked);
  EXPECT_TRUE(evaluateLink(good, backplane(20), Receiver{}, kBaud8G, kBaud8G * (1 + 200e-6)).locked);
  EXPECT_TRUE(samePace(kBaud8G, kBaud8G * (1 + 499e-6)));
  EXPECT_FALSE(samePace(kBaud8G, kBaud8G * (1 + 501e-6)));
  for (const double far : {1.0625, 4.25, 10.51875, 17.0, 0.0, std::numeric_limits<double>::infinity()}) {
    const LinkResult result = evaluateLink(good, backplane(20), Receiver{}, kBaud8G, far);
    EXPECT_FALSE(result.locked) << far;
    EXPECT_TRUE(result.signalDetected) << far;
    EXPECT_EQ(result.ber, 0.5) << far;
    EXPECT_EQ(result.amin, 0) << far;
  }
}

TEST(Gain, UnreachableAmaxStaysWithoutLock) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  for (const int amax : {0, -1, -80, INT_MIN}) {
    const LinkResult result = evaluateLink(good, backplane(20), Receiver{.amax = amax}, kBaud8G);
    EXPECT_FALSE(result.locked) << amax;
    EXPECT_FALSE(result.gainInRange) << amax;
    EXPECT_EQ(result.gain, kMinGain) << amax;
  }
  EXPECT_NEAR(evaluateLink(good, backplane(20), Receiver{.amax = 127}, kBaud8G).ap, 127, 1e-9);
  EXPECT_NEAR(evaluateLink(good, backplane(20), Receiver{.amax = INT_MAX}, kBaud8G).ap, 127, 1e-9);
}

TEST(Gain, OfAFaintSignalIsWhatAmaxAsksForAndOfNoneTheHighest) {
  EXPECT_EQ(receive(sender(1, {0, 63, 0, 0}), backplane(20), {.amax = 0}, kBaud8G, {}).gain, kMinGain);
  EXPECT_EQ(receive(sender(0, {0, 63, 0, 0}), backplane(20), {.amax = 0}, kBaud8G, {}).gain, kMaxGain);
}

TEST(Gain, CoarseReadingsCostErrors) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  double last = 1;
  for (const int amax : {3, 5, 8, 12}) {
    const LinkResult result = evaluateLink(good, backplane(20), Receiver{.amax = amax}, kBaud8G);
    EXPECT_LT(result.ber, last) << amax;
    last = result.ber;
  }
}

TEST(Jitter, OfTheMediumCostsErrors) {
  const Transmitter transmitter = sender(115, {0, 55, -10, 0});
  double last = 0;
  for (const double jitter : {0.05, 0.1, 0.15, 0.2}) {
    const LinkResult result = evaluateLink(transmitter, opticalModule(12, jitter), Receiver{.peak = 1}, kBaud8G);
    EXPECT_GT(result.ber, last) << jitter;
    last = result.ber;
  }
  EXPECT_GT(last, 1e-9);
}

TEST(Echo, LateReflectionIsBeyondTheEqualiser) {
  const Transmitter transmitter = sender(115, {-4, 55, -5, 0});
  Channel reflecting = backplane(20);
  const Receiver receiver{.dfeTaps = 5};
  const LinkResult clean = evaluateLink(transmitter, reflecting, receiver, kBaud8G);
  const Cursors before = cursorsOf(transmitter, reflecting, receiver);
  reflecting.echoes = {{0.15, 8 / kBaud8G}};
  const LinkResult echoed = evaluateLink(transmitter, reflecting, receiver, kBaud8G);
  const Cursors after = cursorsOf(transmitter, reflecting, receiver);
  EXPECT_NEAR(after[8] / after[0] - before[8] / before[0], 0.15, 0.01);
  EXPECT_LT(echoed.amin, clean.amin - 8);
}

TEST(EvaluateLink, IsAPureFunction) {
  const Transmitter a = sender(115, {-4, 55, 0, 0});
  const Transmitter b = sender(60, {0, 40, -30, 9});
  const LinkResult first = evaluateLink(a, backplane(32), Receiver{}, kBaud8G);
  (void)evaluateLink(b, backplane(5), Receiver{.dfeTaps = 5}, 10.3125);
  const LinkResult again = evaluateLink(a, backplane(32), Receiver{}, kBaud8G);
  EXPECT_EQ(first.ber, again.ber);
  EXPECT_EQ(first.amin, again.amin);
  EXPECT_EQ(first.taps, again.taps);
}

TEST(EvaluateLink, ExtremeInputStaysFinite) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double reals[] = {kNan, kInfinity, -kInfinity, 0, -0.0, 1e308, -1e308, 5e-324, 1e4, -1e4, 1, 0.3, 36, 8.5};
  const int integers[] = {INT_MIN, -128, -1, 0, 1, 4, 55, 127, 255, INT_MAX};
  std::mt19937 random(20240607);
  const auto real = [&] { return reals[random() % std::size(reals)]; };
  const auto integer = [&] { return integers[random() % std::size(integers)]; };
  for (int i = 0; i < 4000; ++i) {
    const Transmitter transmitter{.ffeMode = static_cast<unsigned>(integer()),
                                  .k = static_cast<unsigned>(integer()),
                                  .c = {integer(), integer(), integer(), integer()},
                                  .slewPs = real()};
    Channel channel;
    channel.a0 = real();
    channel.a1 = real();
    channel.a2 = real();
    channel.a4 = real();
    for (auto n = random() % 3; n > 0; --n)
      channel.echoes.push_back({real(), real()});
    channel.randomJitterUi = real();
    channel.crosstalkDb = real();
    std::vector<Aggressor> aggressors;
    for (auto n = random() % 3; n > 0; --n)
      aggressors.push_back({transmitter, real(), static_cast<unsigned>(random() % 4), random() % 2 == 0});
    Receiver receiver{.dfeTaps = static_cast<unsigned>(integer()),
                      .pole = integer(),
                      .peak = integer(),
                      .amax = integer(),
                      .adapt = random() % 2 == 0,
                      .evenOddMismatch = real(),
                      .offsetLsb = real(),
                      .signalDetectMv = real()};
    for (double& tap : receiver.heldTaps)
      tap = real();
    const double baud = random() % 2 == 0 ? kBaud8G : real();
    expectFinite(evaluateLink(transmitter, channel, receiver, baud, aggressors));
    expectFinite(evaluateLink(transmitter, channel, receiver, baud, real(), aggressors));
    expectFinite(silentLink(receiver));
  }
}

TEST(EvaluateLink, TakesASwingForASignalFromTheThresholdOn) {
  const double swingMv = 1000 * evaluateLink({}, backplane(20), {}, kBaud8G).swingV;
  EXPECT_TRUE(evaluateLink({}, backplane(20), {.signalDetectMv = swingMv}, kBaud8G).signalDetected);
  EXPECT_FALSE(evaluateLink({}, backplane(20), {.signalDetectMv = 1.0001 * swingMv}, kBaud8G).signalDetected);
}

TEST(SamePace, IsThatOfClocksAsFarApartAsTheReceiverFollows) {
  for (const double baud : {0.05, 0.5, 8.0}) {
    EXPECT_TRUE(samePace(baud, baud * (1 + 0.9999 * kCaptureRange))) << baud;
    EXPECT_TRUE(samePace(baud, baud * (1 - 0.9999 * kCaptureRange))) << baud;
    EXPECT_FALSE(samePace(baud, baud * (1 + 1.0001 * kCaptureRange))) << baud;
    EXPECT_FALSE(samePace(baud, baud * (1 - 1.0001 * kCaptureRange))) << baud;
  }
  EXPECT_TRUE(samePace(15.625, 15.625 + kCaptureRange * 15.625));
}

}  // namespace
}  // namespace simulator
