// The eye against the link's own figures and against the equations.
#include "simulator/link/eye_scan.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/unit/simulator/link/links.h"
#include "tests/unit/simulator/link/reference.h"

namespace simulator {
namespace {

const Transmitter kSender{.ffeMode = 2, .k = 115, .c = {-4, 55, -14, 0}};

struct Scanned {
  LinkResult result;
  EyeScan scan;
};
Scanned scanned(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver) {
  const std::vector<Aggressor> around = neighbours(transmitter, kBaud8G);
  return {evaluateLink(transmitter, channel, receiver, kBaud8G, around),
          EyeScan(transmitter, channel, receiver, kBaud8G, kBaud8G, around)};
}

TEST(ErrorExponent, IsTenthsOfADecade) {
  EXPECT_EQ(errorExponent(1e-18), 180);
  EXPECT_EQ(errorExponent(1e-20), 180);
  EXPECT_EQ(errorExponent(0), 180);
  EXPECT_EQ(errorExponent(1e-12), 120);
  EXPECT_EQ(errorExponent(2e-3), 27);
  EXPECT_EQ(errorExponent(0.5), 3);
  EXPECT_EQ(errorExponent(1), 0);
  EXPECT_EQ(errorExponent(2), 0);
}

TEST(EyeScan, InTheMiddleIsTheLinksOwnErrorRate) {
  RandomSettings random(5);
  for (int i = 0; i < 60; ++i) {
    const Transmitter transmitter = random.transmitter();
    Receiver receiver = random.receiver();
    if (i % 3 == 0) random.holdNear({}, 10, receiver);
    Scanned eye = scanned(transmitter, backplane(random.between(10, 36)), receiver);
    EXPECT_EQ(eye.scan.exponent(0, 0), errorExponent(eye.result.ber)) << i;
  }
}

TEST(EyeScan, NeverImprovesOutwards) {
  RandomSettings random(6);
  for (int i = 0; i < 6; ++i) {
    Scanned eye = scanned(random.transmitter(), backplane(random.between(10, 36)), random.receiver());
    for (int phase = 0; phase < 32; phase += 3) {
      for (int level = 0; level <= 120; level += 8) {
        for (const int side : {-1, 1}) {
          const int here = eye.scan.exponent(side * phase, level);
          EXPECT_LE(eye.scan.exponent(side * (phase + 1), level), here) << phase << " " << level;
          EXPECT_LE(eye.scan.exponent(side * phase, level + 1), here) << phase << " " << level;
          EXPECT_EQ(eye.scan.exponent(side * phase, -level), here) << phase << " " << level;
        }
      }
    }
  }
}

TEST(EyeScan, EndsInCoinTossesFarOut) {
  Scanned eye = scanned(kSender, backplane(20), {});
  EXPECT_EQ(eye.scan.exponent(0, 127), 3);
  EXPECT_LE(eye.scan.exponent(31, 0), 20);
  EXPECT_LE(eye.scan.exponent(-31, 0), 20);
}

TEST(EyeScan, CountsWhatIsOutOfRangeAsTheNearestInRange) {
  Scanned eye = scanned(kSender, backplane(20), {});
  EXPECT_EQ(eye.scan.exponent(1000, 0), eye.scan.exponent(32, 0));
  EXPECT_EQ(eye.scan.exponent(-1000, 5), eye.scan.exponent(-32, 5));
  EXPECT_EQ(eye.scan.exponent(3, -5000), eye.scan.exponent(3, 127));
}

// Phase by phase and level by level against the plain sums, the worst on the way out from the middle.
TEST(EyeScan, AgreesWithTheEquations) {
  const Channel channel = backplane(30);
  const Receiver receiver{.dfeTaps = 3, .evenOddMismatch = 0};
  const std::vector<Aggressor> around = neighbours(kSender, kBaud8G);
  const reference::Link link = reference::evaluate(kSender, channel, receiver, kBaud8G, around);
  const reference::Pulse pulse = reference::pulseOf(kSender, channel, receiver, kBaud8G);
  EyeScan scan(kSender, channel, receiver, kBaud8G, kBaud8G, around);
  for (const int side : {-1, 1}) {
    std::array<double, 4> worst{};
    for (int phase = 0; phase <= 24; ++phase) {
      const reference::Slicer slicer =
          reference::slicerAt(link, pulse, channel, receiver, kBaud8G, side * phase / 64.0);
      double sofar = 0;
      for (int level = 0; level <= 48; ++level) {
        if (level % 16 != 0) continue;
        sofar = std::max(sofar, slicer.errorRate(level * link.lsb));
        double& outward = worst[static_cast<std::size_t>(level / 16)];
        outward = std::max(outward, sofar);
        EXPECT_NEAR(scan.exponent(side * phase, level), -10 * std::log10(outward), 0.7) << phase << " " << level;
      }
    }
  }
}

TEST(EyeScan, AgreesWithHeightAndWidth) {
  for (const double inches : {10.0, 20.0, 30.0, 34.0}) {
    Scanned eye = scanned(kSender, backplane(inches), {.peak = 2});
    const double half = eye.result.eyeHeightV / 2 / kLsbV * eye.result.gain;
    ASSERT_GT(half, 1) << inches;
    const int inside = static_cast<int>(half);
    EXPECT_GE(eye.scan.exponent(0, inside), 120) << inches;
    EXPECT_LE(eye.scan.exponent(0, inside + 1), 120) << inches;
    int early = 0;
    int late = 0;
    while (eye.scan.exponent(early - 1, 0) >= 120)
      --early;
    while (eye.scan.exponent(late + 1, 0) >= 120)
      ++late;
    EXPECT_GE(eye.scan.widthMilliUi() + 1, (late - early) * 1000 / 64) << inches;
    EXPECT_LE(eye.scan.widthMilliUi() - 1, (late - early + 2) * 1000 / 64) << inches;
  }
}

// Down to an eye that is all but closed, whose late edge is less than a step from the middle.
TEST(EyeScan, WidthIsThatOfThePhasesAtWhichErrorsAreRare) {
  for (const double inches : {10.0, 30.0, 46.0}) {
    const ReceivedSignal signal = receive(kSender, backplane(inches), {}, kBaud8G, {});
    const auto openUi = [&](double step) {
      double phase = 0;
      while (sampleAt(signal, phase + step).decisions.errorRate() <= kEyeBer)
        phase += step;
      return std::fabs(phase);
    };
    const EyeScan scan(kSender, backplane(inches), {}, kBaud8G, kBaud8G);
    EXPECT_NEAR(scan.widthMilliUi(), 1000 * (openUi(1.0 / 4096) + openUi(-1.0 / 4096)), 1) << inches;
  }
}

TEST(EyeScan, WidthAndHeightShrinkWithTheChannelAndAreNoneOfAClosedEye) {
  int last = 1000;
  for (const double inches : {5.0, 15.0, 25.0, 35.0}) {
    const int width = scanned(kSender, backplane(inches), {}).scan.widthMilliUi();
    EXPECT_LT(width, last) << inches;
    EXPECT_GT(width, 0) << inches;
    last = width;
  }
  Scanned closed = scanned(kSender, backplane(44), {});
  EXPECT_GT(closed.result.ber, kEyeBer);
  EXPECT_EQ(closed.scan.widthMilliUi(), 0);
  EXPECT_EQ(closed.result.eyeHeightV, 0);
}

TEST(EyeScan, OfNothingToReadIsCoinTosses) {
  const Transmitter silent{.k = 0};
  EyeScan none(silent, backplane(20), {}, kBaud8G, kBaud8G);
  EyeScan foreign(kSender, backplane(20), {}, kBaud8G, kBaud10G);
  EyeScan tooFast(kSender, backplane(20), {}, kBaud8G, kBaud8G * (1 + 1.0003 * kCaptureRange));
  EyeScan unusable(kSender, backplane(20), {}, 0, 0);
  for (EyeScan* scan : {&none, &foreign, &tooFast, &unusable}) {
    EXPECT_EQ(scan->exponent(0, 0), 3);
    EXPECT_EQ(scan->exponent(-7, 9), 3);
    EXPECT_EQ(scan->widthMilliUi(), 0);
  }
}

}  // namespace
}  // namespace simulator
