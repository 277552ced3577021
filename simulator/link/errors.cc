// Error rates by line code and frame length.
#include "simulator/link/errors.h"

#include "simulator/link/math.h"

namespace simulator {

namespace {

constexpr double kMostBits = 1e12;

double wrongFrames(double ber, double bits) {
  const double p = limited(ber, 0, 1);
  return limited(-exponentialMinusOne(limited(bits, 0, kMostBits) * logOnePlus(-p)), 0, 1);
}

}  // namespace

double lineBits(double bytes, LineCode lineCode) {
  return limited(bytes, 0, kMostBits / 10) * (lineCode == LineCode::k8b10b ? 10 : 8.0 * 66 / 64);
}

double decodeErrorRate(double ber, double baudGbd, LineCode lineCode) {
  const double share = lineCode == LineCode::k8b10b ? 1.03 : 2.0 / 66;
  return share * limited(ber, 0, 1) * limited(baudGbd, 0, 1000) * 1e9;
}

double frameErrorRate(double ber, double bytes, LineCode lineCode) {
  return wrongFrames(ber, lineBits(bytes, lineCode));
}

double crcErrorRate(double ber, double frameBits, double framesPerSecond) {
  return limited(framesPerSecond, 0, 1e12) * wrongFrames(ber, frameBits);
}

}  // namespace simulator
