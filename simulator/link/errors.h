// From bit error rate to what a port counts.
#pragma once

namespace simulator {

// Line codes: 8b/10b to 8.5 Gbd, 64b/66b above.
enum class LineCode { k8b10b, k64b66b };

// Bits on the line that a frame of `bytes` takes: its payload bits, 8 a byte (12,144 for 1518 bytes), times 10/8 with
// 8b/10b and 66/64 with 64b/66b. What stands between frames is not counted: an error there spoils none.
double lineBits(double bytes, LineCode lineCode);
// Share of frames of `lineBits` with at least one bit in error, 1 - (1 - BER)^bits.
double frameErrorRate(double ber, double lineBits);
// CRC errors a second when framesPerSecond frames of `lineBits` arrive.
double crcErrorRate(double ber, double lineBits, double framesPerSecond);

// Decode errors a second: 1.03 BER fb with 8b/10b, where an error now and then spoils a second character's running
// disparity; 2/66 BER fb with 64b/66b, where only the two header bits are checked.
double decodeErrorRate(double ber, double baudGbd, LineCode lineCode);

// Of the 1024 words of ten bits, how many stand in neither disparity column of the 8b/10b code, neither as data nor as
// one of its twelve control characters.
inline constexpr double kInvalidWords = 560;
// Code violations a second that a receiver without lock counts, to which all bits are random: that share of the words
// with 8b/10b, and with 64b/66b every second block, since two of the four headers are none.
double violationRate(double baudGbd, LineCode lineCode);

}  // namespace simulator
