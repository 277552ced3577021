// Transmit and receive settings and the filters that they stand for, against closed forms.
#include "simulator/link/ends.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "simulator/serdes/settings.h"
#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

Transmitter sender(unsigned mode, std::array<int, 4> taps) {
  Transmitter transmitter;
  transmitter.ffeMode = mode;
  transmitter.c = taps;
  return transmitter;
}

TEST(Ends, BeginAsASerDesDoesAfterAReset) {
  const SerDesTraits& traits = serDesTraits(2);
  EXPECT_EQ(Transmitter{}, transmitterOf(traits, traits.tx.resetValues()));
  EXPECT_EQ(Receiver{}, receiverOf(traits, traits.rx.resetValues()));
  EXPECT_EQ(Receiver{}.signalDetectMv, 50);
  EXPECT_EQ(Receiver{}.evenOddMismatch, 0.02);
}

TEST(Drive, FollowsPower) {
  Transmitter transmitter;
  transmitter.k = 255;
  EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.6);
  transmitter.k = 51;
  EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.12);
  transmitter.k = 0;
  EXPECT_EQ(driveAmplitude(transmitter), 0);
  for (const unsigned beyond : {256U, UINT_MAX}) {
    transmitter.k = beyond;
    EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.6);
  }
}

TEST(Ffe, DeEmphasisLowersSteadyLevelAndKeepsNyquist) {
  const auto [c0, c1, c2, c3] = normalisedTaps(sender(2, {-4, 55, -25, 0}));
  EXPECT_NEAR(reference::decibels(c0 + c1 + c2 + c3), -10.19, 0.01);
  EXPECT_NEAR(c0 - c1 + c2 - c3, -1, 1e-12);
}

TEST(Ffe, ModeMasksTaps) {
  const std::array<int, 4> taps = {-10, 60, -20, 10};
  const std::array<double, 4> expected[] = {
      {0, 1, 0, 0}, {0, 60.0 / 80, -20.0 / 80, 0}, {-10.0 / 90, 60.0 / 90, -20.0 / 90, 0}, {-0.1, 0.6, -0.2, 0.1}};
  for (unsigned mode = 0; mode < 4; ++mode) {
    const std::array<double, 4> got = normalisedTaps(sender(mode, taps));
    for (unsigned n = 0; n < 4; ++n)
      EXPECT_DOUBLE_EQ(got[n], expected[mode][n]) << mode << " " << n;
  }
}

TEST(Ffe, NoTapsSendNothing) {
  const Transmitter silent = sender(3, {0, 0, 0, 0});
  for (const double tap : normalisedTaps(silent))
    EXPECT_EQ(tap, 0);
  const Transmitter masked = sender(0, {10, 0, 10, 10});
  for (const double tap : normalisedTaps(masked))
    EXPECT_EQ(tap, 0);
}

TEST(Slew, LossAtNyquist) {
  const double table[][2] = {{24, 0.63}, {36, 1.42}, {50, 2.73}, {75, 6.15}, {100, 10.93}};
  for (const auto& [slewPs, loss] : table)
    EXPECT_NEAR(kNeperDb * slewNepers(slewPs, 4.25), loss, 0.01) << slewPs;
  EXPECT_EQ(slewNepers(0, 4.25), 0);
}

TEST(ReceiverFilter, PoleSettingWidensIt) {
  EXPECT_NEAR(receiverCornerGHz(0), 3.825, 1e-12);
  EXPECT_NEAR(receiverCornerGHz(7), 6.375, 1e-12);
  for (int pole = 0; pole < 7; ++pole)
    EXPECT_LT(receiverCornerGHz(pole), receiverCornerGHz(pole + 1));
  EXPECT_EQ(receiverCornerGHz(-128), receiverCornerGHz(0));
  EXPECT_EQ(receiverCornerGHz(127), receiverCornerGHz(7));
}

TEST(ReceiveFilters, AreAButterworthAndPeaking) {
  for (int pole = 0; pole <= kMaxPole; ++pole) {
    for (int peak = 0; peak <= kMaxPeak; ++peak) {
      const ReceiveFilters filters({.pole = pole, .peak = peak}, 8.5);
      const double corner = receiverCornerGHz(pole);
      for (double f = 0; f < 40; f += 0.9) {
        const Complex expected = reference::butterworth(f, corner) * reference::peaking(peak, f, 8.5);
        const ReceiveFilters::Point point = filters.at(f);
        EXPECT_NEAR(point.response.re, expected.re, 1e-12);
        EXPECT_NEAR(point.response.im, expected.im, 1e-12);
        EXPECT_NEAR(point.power, magnitudeSquared(expected), 1e-12);
      }
    }
  }
}

// With the pole at the baud taken out: 1 / (1 + x^8) is what a fourth-order Butterworth leaves.
TEST(ReceiveFilters, WithoutPeakingAreAButterworthAndOnePoleAtTheBaud) {
  const ReceiveFilters filters({.pole = 7, .peak = 0}, 8.5);
  for (double x = 0; x < 5; x += 0.1) {
    const double u = 6.375 * x / 8.5;
    EXPECT_NEAR(filters.at(6.375 * x).power * (1 + u * u), 1 / (1 + std::pow(x, 8)), 1e-5) << x;
  }
}

TEST(ReceiveFilters, PeakingLowersSteadyLevelAndLiftsHalfTheBaudAboveIt) {
  double last = -100;
  for (int peak = 0; peak <= kMaxPeak; ++peak) {
    const ReceiveFilters filters({.pole = 7, .peak = peak}, 8.5);
    const double steady = 10 * std::log10(filters.at(0).power);
    const double boost = 10 * std::log10(filters.at(4.25).power) - steady;
    EXPECT_NEAR(steady, -1.5 * peak, 1e-9) << peak;
    EXPECT_GT(boost, last) << peak;
    last = boost;
  }
  EXPECT_GT(last, 8);
}

TEST(Ends, SettingsAreEqualByAllOfTheirFields) {
  const Transmitter transmitter = sender(1, {0, 50, -5, 0});
  Transmitter other = transmitter;
  EXPECT_EQ(transmitter, other);
  other.slewPs = 24;
  EXPECT_NE(transmitter, other);
  Receiver receiver;
  EXPECT_EQ(receiver, Receiver{});
  receiver.heldTaps[9] = 1;
  EXPECT_NE(receiver, Receiver{});
}

}  // namespace
}  // namespace simulator
