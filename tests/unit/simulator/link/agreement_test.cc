// The model against its equations, and what a sweep may trust, over random settings.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "tests/unit/simulator/link/links.h"
#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

TEST(LinkModel, AgreesWithItsEquationsOnRandomLinks) {
  RandomSettings random(1);
  int compared = 0;
  for (int i = 0; compared < 200; ++i) {
    ASSERT_LT(i, 400);
    Transmitter transmitter = random.transmitter();
    transmitter.k = static_cast<unsigned>(random.between(10, 255));
    Receiver receiver = random.receiver();
    receiver.amax = random.between(40, 127);
    const double baud = std::array{2.125, 8.5, 10.3125, 10.51875}[static_cast<std::size_t>(random.between(0, 3))];
    Channel channel = backplane(random.between(2, 40));
    channel.crosstalkDb = random.between(-40, -26);
    channel.randomJitterUi = random.between(0, 3) * 0.01;
    std::vector<Aggressor> aggressors;
    for (int n = random.between(0, 6); n > 0; --n) {
      aggressors.push_back({random.transmitter(), random.between(0, 1) == 0 ? 2.125 : 8.5,
                            static_cast<unsigned>(random.between(1, 2)), random.between(0, 1) == 0});
    }
    LinkResult result = evaluateLink(transmitter, channel, receiver, baud, aggressors);
    if (!result.signalDetected || result.h0 == 0) continue;
    if (i % 4 == 0) {
      random.holdNear(result, 8, receiver);
      result = evaluateLink(transmitter, channel, receiver, baud, aggressors);
    }
    SCOPED_TRACE(i);
    ++compared;
    const reference::Link link = reference::evaluate(transmitter, channel, receiver, baud, aggressors);
    EXPECT_NEAR(result.h0 / link.h(0), 1, 1e-3);
    const Cursors cursors = cursorsOf(transmitter, channel, receiver, baud);
    for (int k = -kPrecursors; k <= cursors.last(); ++k)
      ASSERT_NEAR(cursors[k] / link.h(0), link.h(k) / link.h(0), 1e-3) << k;
    EXPECT_NEAR(result.crosstalk, std::sqrt(link.crosstalkV2), 1e-3 * std::sqrt(link.crosstalkV2));
    EXPECT_NEAR(result.sigma / link.centre.sigma, 1, 1e-3);
    EXPECT_NEAR(std::log10(result.ber), std::log10(link.centre.errorRate()), 0.01);
    EXPECT_NEAR(result.amin, std::clamp(link.centre.levelAt(1e-6) / link.lsb, -128.0, 127.0), 0.05);
    if (result.eyeHeightV > 0) {
      EXPECT_NEAR(std::log10(link.centre.errorRate(result.eyeHeightV / 2)), -12, 0.05);
    } else {
      EXPECT_GT(link.centre.errorRate(), 0.98e-12);
    }
    for (std::size_t tap = 0; tap < 10; ++tap) {
      const double gain = 1 + (tap % 2 == 0 ? 0.5 : -0.5) * receiver.evenOddMismatch;
      EXPECT_NEAR(result.taps[tap], link.taps[tap % 2][tap / 2] / link.lsb * gain, 0.1);
    }
  }
}

// Spearman's rank correlation; there are no ties among real numbers.
double rankCorrelation(const std::vector<double>& x, const std::vector<double>& y) {
  const auto ranks = [](const std::vector<double>& values) {
    std::vector<std::size_t> order(values.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return values[a] < values[b]; });
    std::vector<double> rank(values.size());
    for (std::size_t i = 0; i < order.size(); ++i)
      rank[order[i]] = static_cast<double>(i);
    return rank;
  };
  const std::vector<double> a = ranks(x);
  const std::vector<double> b = ranks(y);
  const auto n = static_cast<double>(x.size());
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i)
    sum += (a[i] - b[i]) * (a[i] - b[i]);
  return 1 - 6 * sum / (n * (n * n - 1));
}

// Spearman's correlation with the error rate, among links between 1e-16 and 1e-3, of what `shown` reads from each.
// Settings of both ends are random, with every DFE mode, and a fifth of the DFEs are held beside their best taps.
template <typename Shown>
double correlationWithErrors(double inches, double baud, int lowestAmax, int highestAmax, Shown shown) {
  RandomSettings random(7);
  std::vector<double> values;
  std::vector<double> decades;
  for (int i = 0; i < 300; ++i) {
    const Transmitter transmitter = random.transmitter();
    Receiver receiver = random.receiver();
    receiver.amax = random.between(lowestAmax, highestAmax);
    LinkResult result = amidItsLike(transmitter, backplane(inches), receiver, baud);
    if (i % 5 == 0) {
      random.holdNear(result, 6, receiver);
      result = amidItsLike(transmitter, backplane(inches), receiver, baud);
    }
    if (result.ber < 1e-16 || result.ber > 1e-3) continue;
    values.push_back(shown(result));
    decades.push_back(std::log10(result.ber));
  }
  EXPECT_GE(values.size(), 30u);
  return rankCorrelation(values, decades);
}

constexpr std::array kInches{2.0, 12.0, 24.0, 32.0, 40.0};

// Amin is counted in steps behind the gain, so that the level that the gain aims at must be one for all.
TEST(Amin, FollowsTheErrorRateAtOneAmax) {
  for (const double baud : {kBaud8G, kBaud10G}) {
    for (const double inches : kInches) {
      const auto amin = [](const LinkResult& result) { return result.amin; };
      EXPECT_LE(correlationWithErrors(inches, baud, 0x4e, 0x4e, amin), -0.95) << inches << " in at " << baud;
    }
  }
}

TEST(Amin, AboveTheSensitivityAndInPartsOfApFollowsTheErrorRateAtAnyAmax) {
  for (const double baud : {kBaud8G, kBaud10G}) {
    for (const double inches : kInches) {
      const auto margin = [](const LinkResult& result) { return (result.amin - kSensitivityLsb) / result.ap; };
      EXPECT_LE(correlationWithErrors(inches, baud, 1, kMaxAmax, margin), -0.95) << inches << " in at " << baud;
    }
  }
}

// What takes the slicer's place at Amin: two steps are enough for one error in a million.
TEST(Amin, StandsAtTheSensitivityWhereAMillionthOfTheBitsIsWrong) {
  RandomSettings random(3);
  unsigned near = 0;
  for (int i = 0; i < 2000; ++i) {
    const LinkResult result = amidItsLike(random.transmitter(), backplane(30), random.receiver());
    if (!result.signalDetected || result.ber > 0.1) continue;
    EXPECT_EQ(result.amin > kSensitivityLsb, result.ber < kAminProbability) << result.amin << " " << result.ber;
    if (std::fabs(result.amin - kSensitivityLsb) < 1) ++near;
  }
  EXPECT_GT(near, 20u);
}

}  // namespace
}  // namespace simulator
