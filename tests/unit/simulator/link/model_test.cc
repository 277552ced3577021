// The whole link: noise and error rate, readings, held taps, lost signals, and input that no switch would give.
#include "simulator/link/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace simulator {
namespace {

constexpr double kBaud8G = 8.5;

Channel backplane(double inches) {
  return fr4Trace(inches) + connector() + connector();
}

Transmitter sender(unsigned k, std::array<int, 4> taps, double slewPs = 36) {
  return {.ffeMode = 3, .k = k, .c = taps, .slewPs = slewPs};
}

void expectFinite(const LinkResult& result) {
  std::vector<double> values = {result.h0,  result.gain,       result.ap,    result.an,        result.amin,
                                result.ber, result.eyeHeightV, result.sigma, result.crosstalk, result.residualIsi};
  values.insert(values.end(), result.taps.begin(), result.taps.end());
  values.insert(values.end(), result.precursors.begin(), result.precursors.end());
  values.insert(values.end(), result.postcursors.begin(), result.postcursors.end());
  for (const double value : values)
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

TEST(BitErrorRate, WithoutInterferenceIsTheTailOfTheNoise) {
  for (double x = 0; x < 9; x += 0.5) {
    EXPECT_NEAR(bitErrorRate(x * 0.01, {}, 0.01) / qFunction(x), 1, 1e-9) << x;
  }
}

TEST(BitErrorRate, AveragesOverSignPatterns) {
  const double one[] = {0.2};
  EXPECT_NEAR(bitErrorRate(1, one, 0.2) / ((qFunction(4) + qFunction(6)) / 2), 1, 1e-9);
  const double two[] = {-0.2, 0.1};
  const double mean = (qFunction(3.5) + qFunction(4.5) + qFunction(5.5) + qFunction(6.5)) / 4;
  EXPECT_NEAR(bitErrorRate(1, two, 0.2) / mean, 1, 1e-9);
}

TEST(BitErrorRate, FoldsTheSmallOnesIntoNoise) {
  std::vector<double> isi(8, 0.0);
  isi.insert(isi.begin(), 3, 1e-3);
  // Nothing larger than the three: they are patterns. Behind eight larger ones they are noise.
  std::vector<double> large(8, 0.05);
  const double alone = bitErrorRate(1, large, 0.1);
  large.insert(large.begin() + 3, 0.049);
  const double folded = bitErrorRate(1, large, 0.1);
  const double asNoise = bitErrorRate(1, std::vector<double>(8, 0.05), std::sqrt(0.01 + 0.049 * 0.049));
  EXPECT_GT(folded, alone);
  EXPECT_NEAR(folded / asNoise, 1, 1e-9);
  EXPECT_NEAR(bitErrorRate(0.5, isi, 0.1) / qFunction(5), 1, 0.01);
}

TEST(BitErrorRate, IsAtMostOneHalf) {
  EXPECT_EQ(bitErrorRate(-1, {}, 0.1), 0.5);
  EXPECT_EQ(bitErrorRate(0, {}, 0.1), 0.5);
}

TEST(ErrorPropagation, GrowsWithTheFirstTap) {
  EXPECT_EQ(errorPropagation(1, 0, 0.1), 1);
  EXPECT_NEAR(errorPropagation(1, 0.5, 0.1), 1 / (1 - 0.25), 1e-9);
  EXPECT_LT(errorPropagation(1, 0.2, 0.1), errorPropagation(1, 0.4, 0.1));
  EXPECT_EQ(errorPropagation(1, 0.4, 0.1), errorPropagation(1, -0.4, 0.1));
}

TEST(Reading, RoundsHalvesAwayFromZeroAndSaturates) {
  EXPECT_EQ(readingOf(2.5), 3);
  EXPECT_EQ(readingOf(-2.5), -3);
  EXPECT_EQ(readingOf(0.49), 0);
  EXPECT_EQ(readingOf(1e9), 32767);
  EXPECT_EQ(readingOf(-1e9), -32768);
  EXPECT_EQ(readingOf(std::numeric_limits<double>::quiet_NaN()), 0);
}

// Computed once by a direct sum over the spectrum in another language, with the C library's functions.
TEST(EvaluateLink, AgreesWithDirectComputation) {
  struct Case {
    std::array<int, 4> taps;
    unsigned k;
    double slewPs, inches;
    int pole, peak;
    unsigned dfe;
    double baud, h0, before, after, after2, sigma, crosstalk, ber, residual, amin;
  };
  const Case cases[] = {
      {{-4, 55, -20, 0},
       115,
       36,
       20,
       6,
       4,
       3,
       8.5,
       0.056802618,
       0.039926,
       -0.166702,
       -0.068541,
       0.00531937,
       0.00340951,
       1e-18,
       0.161089,
       43.52179},
      {{-4, 55, 0, 0},
       115,
       36,
       36,
       6,
       4,
       3,
       8.5,
       0.052434842,
       0.196711,
       0.351580,
       0.108700,
       0.00498725,
       0.00340951,
       4.146449e-10,
       0.695047,
       1.52982},
      {{-4, 55, 10, 0},
       115,
       36,
       24,
       6,
       0,
       1,
       8.5,
       0.089703836,
       0.259923,
       0.534178,
       0.231768,
       0.00749544,
       0.00391914,
       1.047026e-03,
       1.148455,
       -31.13196},
      {{0, 55, -30, 5},
       10,
       50,
       30,
       3,
       2,
       5,
       10.51875,
       0.002695596,
       0.310160,
       0.209754,
       -0.048764,
       0.00059000,
       0.00025972,
       1.321851e-02,
       0.661076,
       -2.56924},
  };
  for (const Case& c : cases) {
    const Receiver receiver{.dfeTaps = c.dfe, .pole = c.pole, .peak = c.peak};
    const LinkResult result = evaluateLink(sender(c.k, c.taps, c.slewPs), backplane(c.inches), receiver, c.baud);
    EXPECT_NEAR(result.h0 / c.h0, 1, 1e-4);
    EXPECT_NEAR(result.precursors[0], c.before, 1e-4);
    EXPECT_NEAR(result.postcursors[0], c.after, 1e-4);
    EXPECT_NEAR(result.postcursors[1], c.after2, 1e-4);
    EXPECT_NEAR(result.sigma / c.sigma, 1, 1e-3);
    EXPECT_NEAR(result.crosstalk / c.crosstalk, 1, 1e-3);
    EXPECT_NEAR(result.ber / c.ber, 1, 1e-2);
    EXPECT_NEAR(result.residualIsi, c.residual, 1e-3);
    EXPECT_NEAR(result.amin, c.amin, 0.02);
  }
}

TEST(EvaluateLink, PulseComesFromItsParts) {
  const Transmitter transmitter = sender(115, {-4, 55, -25, 3});
  Channel channel = backplane(20);
  channel.echoes = {{0.05, 0.4}, {-0.03, 1.1}};
  const Receiver receiver{.pole = 5, .peak = 3};
  const PulseResponse whole = pulseResponse(transmitter, channel, receiver, kBaud8G);
  const PulseResponse parts = pulseResponse(
      [&](double f) {
        return driveAmplitude(transmitter) * slewResponse(transmitter.slewPs, f) *
               (ffeResponse(transmitter, f, kBaud8G) * channelResponse(channel, f) *
                (receiverFilter(f, receiverCornerGHz(receiver.pole)) * peakingFilter(receiver.peak, f, kBaud8G)));
      },
      kBaud8G, kSamplesPerUi);
  ASSERT_EQ(whole.samples.size(), parts.samples.size());
  for (std::size_t i = 0; i < whole.samples.size(); ++i) {
    ASSERT_NEAR(whole.samples[i], parts.samples[i], 1e-9) << i;
  }
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
  EXPECT_NEAR(result.eyeHeightV, result.h0 * (1 - result.residualIsi), 1e-12);
  EXPECT_NEAR(result.amin * kLsbV, (result.eyeHeightV - 3 * result.sigma) * result.gain, 1e-12);
}

TEST(EvaluateLink, TapsReadTheCursorsAndTheMismatchOfThePaths) {
  Receiver receiver{.dfeTaps = 5, .evenOddMismatch = 0};
  const Transmitter transmitter = sender(115, {-4, 55, -5, 0});
  const LinkResult matched = evaluateLink(transmitter, backplane(24), receiver, kBaud8G);
  for (unsigned tap = 0; tap < 5; ++tap) {
    EXPECT_NEAR(matched.taps[2 * tap], matched.postcursors[tap] * matched.ap, 1e-9) << tap;
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
        EXPECT_FALSE(evaluateLink(sender(255, {-8, 55, post, 0}), hopeless, receiver, kBaud8G).locked);
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
  EXPECT_NEAR(evaluateLink(transmitter, backplane(32), receiver, kBaud8G).amin, adapted.amin, 5);
}

TEST(HeldTaps, WrongOnesCloseTheEye) {
  Receiver receiver{.dfeTaps = 3};
  const Transmitter transmitter = sender(115, {-4, 55, 0, 0});
  const LinkResult adapted = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
  receiver.adapt = false;
  double lastBer = adapted.ber;
  double lastAmin = adapted.amin;
  for (const double error : {5.0, 10.0, 15.0, 20.0}) {
    receiver.heldTaps = adapted.taps;
    receiver.heldTaps[0] -= error;
    receiver.heldTaps[1] -= error;
    const LinkResult held = evaluateLink(transmitter, backplane(32), receiver, kBaud8G);
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

TEST(SilentLink, NothingSentOrConnectedIsSilence) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  Channel unplugged = backplane(20);
  unplugged.connected = false;
  EXPECT_FALSE(evaluateLink(good, unplugged, Receiver{}, kBaud8G).signalDetected);
  EXPECT_FALSE(evaluateLink(sender(0, {-4, 55, -20, 0}), backplane(20), Receiver{}, kBaud8G).signalDetected);
  EXPECT_FALSE(evaluateLink(sender(115, {0, 0, 0, 0}), backplane(20), Receiver{}, kBaud8G).signalDetected);
  for (const double baud : {0.0, -1.0, 0.01, 1e6, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(evaluateLink(good, backplane(20), Receiver{}, baud).signalDetected) << baud;
  }
}

TEST(FarEnd, AtAnotherRateNeverLocks) {
  const Transmitter good = sender(115, {-4, 55, -20, 0});
  EXPECT_TRUE(evaluateLink(good, backplane(20), Receiver{}, kBaud8G, kBaud8G).locked);
  EXPECT_TRUE(evaluateLink(good, backplane(20), Receiver{}, kBaud8G, kBaud8G * (1 + 200e-6)).locked);
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
  reflecting.echoes = {{0.15, 8 / kBaud8G}};
  const LinkResult echoed = evaluateLink(transmitter, reflecting, receiver, kBaud8G);
  EXPECT_NEAR(echoed.postcursors[7] - clean.postcursors[7], 0.15, 0.01);
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

// Exact results: every target must give these very bits, for what is printed is compared byte for byte.
TEST(EvaluateLink, IsTheSameToTheLastBitEverywhere) {
  const LinkResult result = evaluateLink(sender(115, {-4, 55, 0, 0}), backplane(32), Receiver{}, kBaud8G);
  EXPECT_EQ(result.h0, 0x1.dbc1651ebfb51p-5);
  EXPECT_EQ(result.sigma, 0x1.57d60c82e0d0ap-8);
  EXPECT_EQ(result.ber, 0x1.de08f44c4691ap-42);
  EXPECT_EQ(result.amin, 0x1.87393daf956p+3);
  EXPECT_EQ(result.taps[0], 0x1.7edd1d12819d5p+4);
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
    Receiver receiver{.dfeTaps = static_cast<unsigned>(integer()),
                      .pole = integer(),
                      .peak = integer(),
                      .amax = integer(),
                      .adapt = random() % 2 == 0,
                      .evenOddMismatch = real(),
                      .offsetLsb = real()};
    for (double& tap : receiver.heldTaps)
      tap = real();
    const double baud = random() % 2 == 0 ? kBaud8G : real();
    expectFinite(evaluateLink(transmitter, channel, receiver, baud));
    expectFinite(evaluateLink(transmitter, channel, receiver, baud, real()));
    expectFinite(silentLink(receiver));
  }
}

}  // namespace
}  // namespace simulator
