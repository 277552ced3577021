// Sampling of pulses that have closed forms, and the feedback's share of them.
#include "simulator/link/pulse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

constexpr double kBaud = 8.5;

// One bit through a single pole at `corner` times the baud.
std::vector<double> singlePole(double corner) {
  std::vector<double> samples;
  const double rate = 2 * kPi * corner;
  for (unsigned i = 0; i < 64 * kSamplesPerUi; ++i) {
    const double t = static_cast<double>(i) / kSamplesPerUi;
    samples.push_back((1 - std::exp(-rate * t)) - (t < 1 ? 0 : 1 - std::exp(-rate * (t - 1))));
  }
  return samples;
}

// The channel of a published evaluation, through its receive filter, without equalisation.
reference::Pulse publishedChannel() {
  Channel fit;
  fit.a0 = 0.6461;
  fit.a1 = 2.1142;
  fit.a2 = 1.3638;
  fit.a4 = -0.01762;
  return reference::Pulse(
      [=](double f) {
        return reference::edge(36, f) * (reference::medium(fit, f) * reference::butterworth(f, 0.75 * kBaud));
      },
      kBaud);
}

// Opening without noise as a share of the main cursor.
double eyeOpening(const Cursors& cursors, unsigned taps) {
  const std::array<double, kMaxDfeTaps> feedback = dfeTaps(cursors, taps);
  double isi = 0;
  for (int k = -kPrecursors; k <= cursors.last(); ++k) {
    const bool fed = k >= 1 && k <= static_cast<int>(kMaxDfeTaps);
    if (k != 0) isi += std::fabs(cursors[k] - (fed ? feedback[static_cast<std::size_t>(k - 1)] : 0));
  }
  return cursors[0] - isi;
}

TEST(Cursors, OfASinglePoleDecayByItsTimeConstant) {
  const Cursors cursors = cursorsAt(singlePole(0.25), 1);
  const double decay = std::exp(-kPi / 2);
  EXPECT_NEAR(cursors[0], 1 - decay, 1e-9);
  EXPECT_NEAR(cursors[1] / cursors[0], 0.20788, 0.01 * 0.20788);
  for (int k = 2; k < 5; ++k)
    EXPECT_NEAR(cursors[k] / cursors[k - 1], decay, 1e-9) << k;
  EXPECT_EQ(cursors.last(), 47);
}

TEST(Cursors, EyeOfASinglePoleWithAndWithoutFeedback) {
  const Cursors cursors = cursorsAt(singlePole(0.25), 1);
  EXPECT_NEAR(eyeOpening(cursors, 0), 0.5842, 0.0058);
  EXPECT_NEAR(eyeOpening(cursors, 1), 0.7489, 0.0075);
  EXPECT_NEAR(eyeOpening(cursors, 3), 0.7903, 0.0079);
  EXPECT_GT(eyeOpening(cursors, 5), eyeOpening(cursors, 3));
}

TEST(Cursors, OfThePublishedChannel) {
  const std::vector<double> pulse = publishedChannel().samples();
  const Cursors cursors = cursorsAt(pulse, samplingInstant(pulse));
  EXPECT_NEAR(cursors[0], 0.480, 0.0048);
  EXPECT_NEAR(cursors[-1] / cursors[0], 0.141, 0.01);
  EXPECT_NEAR(cursors[1] / cursors[0], 0.294, 0.01);
  EXPECT_NEAR(cursors[2] / cursors[0], 0.127, 0.01);
  EXPECT_NEAR(cursors[3] / cursors[0], 0.066, 0.01);
}

TEST(Cursors, AddUpToTheSteadyLevel) {
  const std::vector<double> pulse = publishedChannel().samples();
  for (const double instant : {0.3, 1.0, 7.77}) {
    double sum = 0;
    for (const double h : cursorsAt(pulse, instant).h)
      sum += h;
    EXPECT_NEAR(sum, fromDb(-0.6461), 1e-4) << instant;
  }
}

TEST(SamplingInstant, ClockSettlesBetweenEqualEdges) {
  const reference::Pulse pulse = publishedChannel();
  const double instant = samplingInstant(pulse.samples());
  EXPECT_NEAR(pulse.at(instant - 0.5), pulse.at(instant + 0.5), 1e-4);
  EXPECT_NEAR(instant, reference::instantOf(pulse), 1e-3);
}

TEST(SamplingInstant, OfASinglePoleHasClosedForm) {
  // 1 - x / d = (1 - d^2) x / d with d = exp(-pi/4) and x = exp(-(pi/2) ts).
  const double d = std::exp(-kPi / 4);
  const double x = d / (2 - d * d);
  EXPECT_NEAR(samplingInstant(singlePole(0.25)), -std::log(x) * 2 / kPi, 1e-3);
}

// A flat top from sample 0 on, whose edges meet half a UI before its end.
std::vector<double> flatTop(std::size_t samples) {
  std::vector<double> pulse(1024);
  std::fill_n(pulse.begin(), samples, 1.0);
  return pulse;
}

TEST(SamplingInstant, IsTheNearestCrossingWithinAUnitIntervalOfThePeak) {
  EXPECT_EQ(samplingInstant(flatTop(kSamplesPerUi + 9)), 1);
  EXPECT_EQ(samplingInstant(flatTop(kSamplesPerUi + 10)), 0);
  std::vector<double> alsoBefore = flatTop(kSamplesPerUi + 9);
  alsoBefore[1024 - kSamplesPerUi - 7] = 0.5;
  EXPECT_EQ(samplingInstant(alsoBefore), -1);
}

TEST(SamplingInstant, IsTheFirstPeakWhereNothingCrosses) {
  std::vector<double> combed(1024);
  for (std::size_t i = 1; i < combed.size(); i += kSamplesPerUi)
    combed[i] = 1;
  EXPECT_EQ(samplingInstant(combed), 1.0 / kSamplesPerUi);
}

TEST(SamplingInstant, IsAPlaceEvenWithoutAPulse) {
  EXPECT_EQ(samplingInstant(std::vector<double>(1024)), 0);
}

TEST(Slopes, AreTheDerivativeAtTheCursors) {
  const reference::Pulse pulse = publishedChannel();
  const std::vector<double> samples = pulse.samples();
  const double instant = samplingInstant(samples);
  const Cursors slopes = slopesAt(samples, instant);
  for (int k = -2; k < 4; ++k) {
    const double derivative = (pulse.at(instant + k + 0.01) - pulse.at(instant + k - 0.01)) / 0.02;
    EXPECT_NEAR(slopes[k], derivative, 0.02) << k;
  }
}

TEST(Dfe, ReachIsHalfOfMainCursorForTheFirstTapAndAQuarterBeyond) {
  EXPECT_EQ(dfeClamp(1, 0.9, 1), 0.5);
  EXPECT_EQ(dfeClamp(1, -0.9, 1), -0.5);
  EXPECT_EQ(dfeClamp(2, 0.9, 1), 0.25);
  EXPECT_EQ(dfeClamp(5, -0.9, 2), -0.5);
  EXPECT_EQ(dfeClamp(2, 0.2, 1), 0.2);
  EXPECT_EQ(dfeClamp(1, 0.3, -1), 0);
}

Cursors manual(std::initializer_list<std::pair<int, double>> values) {
  Cursors cursors{std::vector<double>(64)};
  for (const auto& [k, h] : values)
    cursors[k] = h;
  return cursors;
}

TEST(Dfe, TakesAsManyTapsAsItsMode) {
  const Cursors cursors = manual({{0, 1}, {1, 0.1}, {2, 0.2}, {3, 0.3}, {4, 0.4}, {5, 0.5}, {6, 0.6}});
  const std::array<double, kMaxDfeTaps> three = dfeTaps(cursors, 3);
  EXPECT_DOUBLE_EQ(three[0], 0.1);
  EXPECT_DOUBLE_EQ(three[1], 0.2);
  EXPECT_DOUBLE_EQ(three[2], 0.25);
  EXPECT_EQ(three[3], 0);
  EXPECT_EQ(dfeTaps(cursors, 99)[4], 0.25);
  EXPECT_EQ(dfeTaps(cursors, 0)[0], 0);
}

TEST(Dfe, CancelsLargeCursorsOnlyPartly) {
  const Cursors cursors = manual({{-1, -0.1}, {0, 1}, {1, 0.7}, {2, -0.4}});
  EXPECT_NEAR(eyeOpening(cursors, 0), -0.2, 1e-12);
  EXPECT_NEAR(eyeOpening(cursors, 1), 0.3, 1e-12);
  EXPECT_NEAR(eyeOpening(cursors, 3), 0.55, 1e-12);
}

}  // namespace
}  // namespace simulator
