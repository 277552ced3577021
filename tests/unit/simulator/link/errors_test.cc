// Error rates against their closed forms.
#include "simulator/link/errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace simulator {
namespace {

TEST(FrameErrorRate, LongestFibreChannelFrame) {
  EXPECT_NEAR(frameErrorRate(1e-6, 2148, LineCode::k8b10b), 2.125e-2, 2.125e-4);
  EXPECT_NEAR(frameErrorRate(1e-5, 2148, LineCode::k8b10b), 0.1933, 0.0019);
  EXPECT_NEAR(frameErrorRate(1e-4, 2148, LineCode::k8b10b), 0.8833, 0.0088);
}

TEST(FrameErrorRate, SmallRatesAreProportional) {
  EXPECT_NEAR(frameErrorRate(1e-18, 2148, LineCode::k8b10b) / 21480e-18, 1, 1e-9);
  EXPECT_NEAR(frameErrorRate(1e-15, 64, LineCode::k64b66b) / 528e-15, 1, 1e-9);
}

TEST(LineBits, CountTheCode) {
  EXPECT_DOUBLE_EQ(lineBits(2148, LineCode::k8b10b), 21480);
  EXPECT_DOUBLE_EQ(lineBits(64, LineCode::k64b66b), 528);
}

TEST(DecodeErrorRate, DependsOnCode) {
  EXPECT_NEAR(decodeErrorRate(1e-9, 8.5, LineCode::k8b10b), 8.755, 1e-9);
  EXPECT_NEAR(decodeErrorRate(1e-9, 10.51875, LineCode::k64b66b), 0.31875, 1e-9);
  EXPECT_EQ(decodeErrorRate(0, 8.5, LineCode::k8b10b), 0);
}

TEST(CrcErrorRate, IsTheShareOfFrames) {
  EXPECT_NEAR(crcErrorRate(1e-6, 21480, 1000), 21.25, 0.02);
  EXPECT_NEAR(crcErrorRate(0.5, 21480, 1000), 1000, 1e-9);
  EXPECT_EQ(crcErrorRate(1e-6, 21480, 0), 0);
}

TEST(ErrorRates, AbsurdArgumentsStayFinite) {
  const double absurd[] = {
      std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), -1e300, 2, 1, 0};
  for (const double x : absurd) {
    for (const double y : absurd) {
      for (const double rate : {decodeErrorRate(x, y, LineCode::k64b66b), frameErrorRate(x, y, LineCode::k8b10b),
                                crcErrorRate(x, y, x), crcErrorRate(x, x, y)}) {
        EXPECT_TRUE(std::isfinite(rate)) << x << " " << y;
        EXPECT_GE(rate, 0) << x << " " << y;
      }
    }
  }
}

}  // namespace
}  // namespace simulator
