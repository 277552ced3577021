// Transmit and receive filters against their closed forms.
#include "simulator/link/ends.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace simulator {
namespace {

Transmitter sender(unsigned mode, std::array<int, 4> taps) {
  Transmitter transmitter;
  transmitter.ffeMode = mode;
  transmitter.c = taps;
  return transmitter;
}

TEST(Drive, FollowsPower) {
  Transmitter transmitter;
  transmitter.k = 255;
  EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.6);
  transmitter.k = 51;
  EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.12);
  transmitter.k = 0;
  EXPECT_EQ(driveAmplitude(transmitter), 0);
  transmitter.k = UINT_MAX;
  EXPECT_DOUBLE_EQ(driveAmplitude(transmitter), 0.6);
}

TEST(Ffe, DeEmphasisLowersSteadyLevelAndKeepsNyquist) {
  const Transmitter transmitter = sender(2, {-4, 55, -25, 0});
  EXPECT_NEAR(ffeGainDb(transmitter, 0, 8.5), -10.19, 0.01);
  EXPECT_NEAR(ffeGainDb(transmitter, 4.25, 8.5), 0, 1e-9);
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

TEST(Ffe, ResponseIsTheSumOfDelayedTaps) {
  const Transmitter transmitter = sender(3, {-10, 60, -20, 10});
  const double quarter = 8.5 / 4;
  const Complex h = ffeResponse(transmitter, quarter, 8.5);
  EXPECT_NEAR(h.re, -0.1 + 0.2, 1e-12);
  EXPECT_NEAR(h.im, -0.6 + 0.1, 1e-12);
}

TEST(Ffe, NoTapsSendNothing) {
  const Transmitter silent = sender(3, {0, 0, 0, 0});
  for (const double tap : normalisedTaps(silent))
    EXPECT_EQ(tap, 0);
  EXPECT_EQ(ffeGainDb(silent, 1, 8.5), -300);
  const Transmitter masked = sender(0, {10, 0, 10, 10});
  for (const double tap : normalisedTaps(masked))
    EXPECT_EQ(tap, 0);
}

TEST(Slew, LossAtNyquist) {
  const double table[][2] = {{24, 0.63}, {36, 1.42}, {50, 2.73}, {75, 6.15}, {100, 10.93}};
  for (const auto& [slewPs, loss] : table)
    EXPECT_NEAR(slewLossDb(slewPs, 4.25), loss, 0.01) << slewPs;
  EXPECT_NEAR(20 * std::log10(slewResponse(50, 4.25)), -slewLossDb(50, 4.25), 1e-9);
  EXPECT_EQ(slewLossDb(0, 4.25), 0);
}

TEST(ReceiverFilter, IsFourthOrderButterworth) {
  for (double x = 0; x < 5; x += 0.1) {
    const double power = magnitudeSquared(receiverFilter(6.375 * x, 6.375));
    EXPECT_NEAR(power, 1 / (1 + std::pow(x, 8)), 1e-5) << x;
  }
}

TEST(ReceiverFilter, PoleSettingWidensIt) {
  EXPECT_NEAR(receiverCornerGHz(0), 3.825, 1e-12);
  EXPECT_NEAR(receiverCornerGHz(7), 6.375, 1e-12);
  for (int pole = 0; pole < 7; ++pole)
    EXPECT_LT(receiverCornerGHz(pole), receiverCornerGHz(pole + 1));
  EXPECT_EQ(receiverCornerGHz(-128), receiverCornerGHz(0));
  EXPECT_EQ(receiverCornerGHz(127), receiverCornerGHz(7));
}

TEST(PeakingFilter, LowersSteadyLevelByItsSetting) {
  for (int peak = 0; peak <= 7; ++peak) {
    EXPECT_NEAR(10 * std::log10(magnitudeSquared(peakingFilter(peak, 0, 8.5))), -1.5 * peak, 1e-9) << peak;
  }
}

TEST(PeakingFilter, BoostsHalfTheBaudAgainstSteadyLevel) {
  double last = -100;
  for (int peak = 0; peak <= 7; ++peak) {
    const double boost = 10 * std::log10(magnitudeSquared(peakingFilter(peak, 4.25, 8.5)) /
                                         magnitudeSquared(peakingFilter(peak, 0, 8.5)));
    EXPECT_GT(boost, last) << peak;
    last = boost;
  }
  EXPECT_GT(last, 8);
}

TEST(PeakingFilter, WithoutPeakingIsOnePoleAtTheBaud) {
  for (double f = 0; f < 30; f += 1.3) {
    EXPECT_NEAR(magnitudeSquared(peakingFilter(0, f, 8.5)), 1 / (1 + f * f / 72.25), 1e-12) << f;
  }
}

TEST(Ends, AbsurdSettingsStayFinite) {
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300,
                           0};
  const Transmitter extreme = sender(UINT_MAX, {INT_MIN, INT_MAX, INT_MIN, INT_MAX});
  for (const double x : absurd) {
    for (const double y : absurd) {
      EXPECT_TRUE(std::isfinite(ffeGainDb(extreme, x, y)));
      EXPECT_TRUE(std::isfinite(slewLossDb(x, y)));
      EXPECT_TRUE(std::isfinite(slewResponse(x, y)));
      EXPECT_TRUE(std::isfinite(receiverFilter(x, y).re));
      EXPECT_TRUE(std::isfinite(peakingFilter(INT_MIN, x, y).im));
    }
  }
}

}  // namespace
}  // namespace simulator
