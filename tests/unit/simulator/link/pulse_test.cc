// Pulse responses with closed forms, their sampling and their eyes.
#include "simulator/link/pulse.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "simulator/link/channel.h"
#include "simulator/link/ends.h"

namespace simulator {
namespace {

constexpr double kBaud = 8.5;

PulseResponse singlePole(double cornerOverBaud) {
  return pulseResponse([=](double f) { return Complex{1, 0} / Complex{1, f / (cornerOverBaud * kBaud)}; }, kBaud);
}

// The channel of a published evaluation, through its receive filter, without equalisation.
PulseResponse publishedChannel(unsigned samplesPerUi) {
  Channel fit;
  fit.a0 = 0.6461;
  fit.a1 = 2.1142;
  fit.a2 = 1.3638;
  fit.a4 = -0.01762;
  return pulseResponse(
      [=](double f) { return slewResponse(36, f) * (channelResponse(fit, f) * receiverFilter(f, 0.75 * kBaud)); },
      kBaud, samplesPerUi);
}

TEST(PulseResponse, SinglePoleDecaysByItsTimeConstant) {
  const PulseResponse pulse = singlePole(0.25);
  const Cursors cursors = cursorsAt(pulse, peakInstant(pulse));
  const double decay = std::exp(-kPi / 2);
  EXPECT_NEAR(cursors[0], 1 - decay, 0.01 * (1 - decay));
  EXPECT_NEAR(cursors[1] / cursors[0], 0.20788, 0.01 * 0.20788);
  for (int k = 2; k < 5; ++k)
    EXPECT_NEAR(cursors[k] / cursors[k - 1], decay, 0.01 * decay) << k;
}

TEST(EyeOpening, SinglePoleWithAndWithoutFeedback) {
  const PulseResponse pulse = singlePole(0.25);
  const Cursors cursors = cursorsAt(pulse, peakInstant(pulse));
  EXPECT_NEAR(eyeOpening(cursors, 0), 0.5842, 0.0058);
  EXPECT_NEAR(eyeOpening(cursors, 1), 0.7489, 0.0075);
  EXPECT_NEAR(eyeOpening(cursors, 3), 0.7903, 0.0079);
  EXPECT_GT(eyeOpening(cursors, 5), eyeOpening(cursors, 3));
}

TEST(PulseResponse, WithoutMediumIsTheBitItself) {
  const PulseResponse pulse = pulseResponse([](double) { return Complex{1, 0}; }, kBaud);
  EXPECT_NEAR(pulseAt(pulse, 0.5), 1, 0.01);
  EXPECT_NEAR(pulseAt(pulse, 1.5), 0, 0.01);
  EXPECT_NEAR(pulseAt(pulse, -0.5), 0, 0.01);
}

TEST(PulseResponse, SumOfCursorsIsTheSteadyLevel) {
  for (const double instant : {0.3, 1.0, 7.77}) {
    const Cursors cursors = cursorsAt(publishedChannel(16), instant);
    double sum = 0;
    for (const double h : cursors.h)
      sum += h;
    EXPECT_NEAR(sum, fromDb(-0.6461), 1e-4) << instant;
  }
}

TEST(PulseResponse, DelayMovesItAndNothingElse) {
  const double delayNs = 3.3 / kBaud;
  const auto filter = [](double f) { return receiverFilter(f, 4); };
  const PulseResponse near = pulseResponse(filter, kBaud, 16);
  const PulseResponse far =
      pulseResponse([&](double f) { return filter(f) * unitPhasor(-2 * kPi * f * delayNs); }, kBaud, 16);
  EXPECT_NEAR(samplingInstant(far) - samplingInstant(near), 3.3, 1e-3);
  const Cursors a = cursorsAt(near, samplingInstant(near));
  const Cursors b = cursorsAt(far, samplingInstant(far));
  for (int k = Cursors::kFirst; k <= Cursors::kLast; ++k)
    EXPECT_NEAR(a[k], b[k], 1e-3) << k;
}

TEST(PulseResponse, BaudOnlyScalesTime) {
  const PulseResponse slow = pulseResponse([](double f) { return receiverFilter(f, 1); }, 2, 16);
  const PulseResponse fast = pulseResponse([](double f) { return receiverFilter(f, 5); }, 10, 16);
  for (double t = 0; t < 5; t += 0.1)
    EXPECT_NEAR(pulseAt(slow, t), pulseAt(fast, t), 1e-9) << t;
}

TEST(PulseResponse, EchoArrivesLateAndScaled) {
  Channel reflecting;
  reflecting.echoes = {{-0.2, 5 / kBaud}};
  const auto filter = [](double f) { return receiverFilter(f, 6); };
  const PulseResponse plain = pulseResponse(filter, kBaud, 16);
  const PulseResponse echoed =
      pulseResponse([&](double f) { return filter(f) * channelResponse(reflecting, f); }, kBaud, 16);
  for (double t = 0; t < 10; t += 0.3) {
    EXPECT_NEAR(pulseAt(echoed, t), pulseAt(plain, t) - 0.2 * pulseAt(plain, t - 5), 1e-4) << t;
  }
}

TEST(SamplingInstant, ClockSettlesBetweenEqualEdges) {
  const PulseResponse pulse = publishedChannel(16);
  const double instant = samplingInstant(pulse);
  EXPECT_NEAR(pulseAt(pulse, instant - 0.5), pulseAt(pulse, instant + 0.5), 1e-6);
  EXPECT_NEAR(instant, peakInstant(pulse), 0.25);
}

TEST(SamplingInstant, SinglePoleHasClosedForm) {
  // 1 - x / d = (1 - d^2) x / d with d = exp(-pi/4) and x = exp(-(pi/2) ts).
  const double d = std::exp(-kPi / 4);
  const double x = d / (2 - d * d);
  EXPECT_NEAR(samplingInstant(singlePole(0.25)), -std::log(x) * 2 / kPi, 1e-3);
}

TEST(Cursors, PublishedChannel) {
  for (const unsigned samplesPerUi : {16u, 64u, 256u}) {
    const PulseResponse pulse = publishedChannel(samplesPerUi);
    const Cursors cursors = cursorsAt(pulse, samplingInstant(pulse));
    EXPECT_NEAR(cursors[0], 0.480, 0.0048);
    EXPECT_NEAR(cursors[-1] / cursors[0], 0.141, 0.01);
    EXPECT_NEAR(cursors[1] / cursors[0], 0.294, 0.01);
    EXPECT_NEAR(cursors[2] / cursors[0], 0.127, 0.01);
    EXPECT_NEAR(cursors[3] / cursors[0], 0.066, 0.01);
  }
}

TEST(Slopes, AreTheDerivativeAtTheCursors) {
  const PulseResponse pulse = publishedChannel(64);
  const double instant = samplingInstant(pulse);
  const Cursors slopes = slopesAt(pulse, instant);
  for (int k = -2; k < 4; ++k) {
    const double derivative = (pulseAt(pulse, instant + k + 0.01) - pulseAt(pulse, instant + k - 0.01)) / 0.02;
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

TEST(Dfe, TakesAsManyTapsAsItsMode) {
  Cursors cursors;
  cursors[0] = 1;
  for (int k = 1; k <= 6; ++k)
    cursors[k] = 0.1 * k;
  const std::array<double, kMaxDfeTaps> three = dfeTaps(cursors, 3);
  EXPECT_DOUBLE_EQ(three[0], 0.1);
  EXPECT_DOUBLE_EQ(three[1], 0.2);
  EXPECT_DOUBLE_EQ(three[2], 0.25);
  EXPECT_EQ(three[3], 0);
  EXPECT_EQ(dfeTaps(cursors, 99)[4], 0.25);
  EXPECT_EQ(dfeTaps(cursors, 0)[0], 0);
}

TEST(EyeOpening, LargeCursorsAreOnlyPartlyCancelled) {
  Cursors cursors;
  cursors[0] = 1;
  cursors[-1] = -0.1;
  cursors[1] = 0.7;
  cursors[2] = -0.4;
  EXPECT_NEAR(eyeOpening(cursors, 0), -0.2, 1e-12);
  EXPECT_NEAR(eyeOpening(cursors, 1), 0.3, 1e-12);
  EXPECT_NEAR(eyeOpening(cursors, 3), 0.55, 1e-12);
}

TEST(PulseResponse, AbsurdTransferFunctionsStayFinite) {
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300,
                           0};
  for (const double value : absurd) {
    const PulseResponse pulse = pulseResponse([=](double) { return Complex{value, value}; }, value, 16);
    ASSERT_EQ(pulse.samples.size(), 1024u);
    for (const double sample : pulse.samples)
      ASSERT_TRUE(std::isfinite(sample)) << value;
    EXPECT_TRUE(std::isfinite(samplingInstant(pulse)));
    EXPECT_TRUE(std::isfinite(pulseAt(pulse, value)));
    EXPECT_TRUE(std::isfinite(eyeOpening(cursorsAt(pulse, value), 3)));
  }
  EXPECT_EQ(pulseAt(PulseResponse{}, 1), 0);
  EXPECT_EQ(samplingInstant(PulseResponse{}), 0);
  EXPECT_EQ(peakInstant(PulseResponse{}), 0);
}

TEST(PulseResponse, GridIsRoundedUpToAPowerOfTwo) {
  const auto flat = [](double) { return Complex{1, 0}; };
  EXPECT_EQ(pulseResponse(flat, kBaud, 0).samplesPerUi, 4u);
  EXPECT_EQ(pulseResponse(flat, kBaud, 17).samplesPerUi, 32u);
  EXPECT_EQ(pulseResponse(flat, kBaud, 100000).samplesPerUi, 256u);
}

}  // namespace
}  // namespace simulator
