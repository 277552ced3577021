// From bit error rate to what a port counts.
#pragma once

namespace simulator {

// Line codes: 8b/10b to 8.5 Gbd, 64b/66b above.
enum class LineCode { k8b10b, k64b66b };

// Line bits of a frame of `bytes`.
double lineBits(double bytes, LineCode lineCode);
// Decode errors a second: 1.03 BER fb with 8b/10b, where an error now and then spoils a second character's running
// disparity; 2/66 BER fb with 64b/66b, where only the two header bits are checked.
double decodeErrorRate(double ber, double baudGbd, LineCode lineCode);
// Share of frames of `bytes` with at least one bit in error, 1 - (1 - BER)^bits.
double frameErrorRate(double ber, double bytes, LineCode lineCode);
// CRC errors a second when framesPerSecond frames of frameBits line bits arrive.
double crcErrorRate(double ber, double frameBits, double framesPerSecond);

}  // namespace simulator
