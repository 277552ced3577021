// Error rates by line code and frame length.
#include "simulator/link/errors.h"

#include "simulator/link/math.h"

namespace simulator {

namespace {

constexpr double kMostBits = 1e12;

double bitsASecond(double baudGbd) {
  return limited(baudGbd, 0, 1000) * 1e9;
}

}  // namespace

double lineBits(double bytes, LineCode lineCode) {
  const double payload = 8 * limited(bytes, 0, kMostBits / 10);
  return payload * (lineCode == LineCode::k8b10b ? 10.0 / 8 : 66.0 / 64);
}

double frameErrorRate(double ber, double lineBits) {
  const double p = limited(ber, 0, 1);
  return limited(-exponentialMinusOne(limited(lineBits, 0, kMostBits) * logOnePlus(-p)), 0, 1);
}

double crcErrorRate(double ber, double lineBits, double framesPerSecond) {
  return limited(framesPerSecond, 0, 1e12) * frameErrorRate(ber, lineBits);
}

double decodeErrorRate(double ber, double baudGbd, LineCode lineCode) {
  const double share = lineCode == LineCode::k8b10b ? 1.03 : 2.0 / 66;
  return share * limited(ber, 0, 1) * bitsASecond(baudGbd);
}

double violationRate(double baudGbd, LineCode lineCode) {
  const double share = lineCode == LineCode::k8b10b ? kInvalidWords / 1024 / 10 : 0.5 / 66;
  return share * bitsASecond(baudGbd);
}

}  // namespace simulator
