// The link model: what a receiver shows, and how often it errs, for given transmit and receive settings and medium.
// Pure functions; no bit is simulated. The same input gives the same bits of output on every target, provided that the
// build does not contract or reassociate floating point. No result is infinite or not a number, whatever the input.
//
// Units: frequency GHz, baud Gbd, delay ns, slew ps, jitter UI, amplitudes V (differential, half of peak to peak),
// converter readings LSB of 4 mV after the receiver's gain.
#pragma once

#include <array>
#include <span>

#include "simulator/link/channel.h"
#include "simulator/link/ends.h"
#include "simulator/link/errors.h"
#include "simulator/link/math.h"
#include "simulator/link/pulse.h"

namespace simulator {

inline constexpr double kLsbV = 0.004;   // converter step
inline constexpr double kMinGain = 0.3;  // the receiver's gain range
inline constexpr double kMaxGain = 12;
inline constexpr double kBerFloor = 1e-18;    // no link is reported better
inline constexpr double kLockLossBer = 2e-3;  // above it the receiver loses sync

inline constexpr double kMinBaudGbd = 0.05;
inline constexpr double kMaxBaudGbd = 100;
inline constexpr double kCaptureRange = 500e-6;  // how far apart, relatively, the clocks of both ends may be
inline constexpr double kMaxOffsetLsb = 16;
inline constexpr double kMaxReading = 127;  // the converter is 8 bits wide; readings stay in -128..127

struct LinkResult {
  bool signalDetected = false;    // something arrives, whether or not it can be read
  bool locked = false;            // the receiver follows the bits: main cursor above 0 and BER at most kLockLossBer
  double h0 = 0;                  // V at the receiver's input, main cursor
  double gain = kMaxGain;         // kMinGain..kMaxGain
  bool gainInRange = false;       // the main cursor reads amax
  double ap = 0;                  // LSB: mean reading of a one; h0 * gain
  double an = 0;                  // LSB: mean reading of a zero; -ap + offset
  double amin = 0;                // LSB: smallest reading of a one, residual ISI and 3 sigma taken off; may be negative
  std::array<double, 10> taps{};  // LSB, the DFE as it stands: H1 even, H1 odd, ... H5 odd; 0 beyond the mode
  double ber = 0.5;               // kBerFloor..0.5
  double eyeHeightV = 0;          // V at the receiver's input, h0 - sum |residual|; negative when closed
  std::array<double, 2> precursors{};   // h_-1, h_-2 relative to h0, before the DFE
  std::array<double, 8> postcursors{};  // h_1..h_8 relative to h0, before the DFE
  double residualIsi = 0;               // sum |residual| / h0 after the DFE
  double sigma = 0;                     // V, rms of all noise at the receiver's input
  double crosstalk = 0;                 // V, rms, the part of it that neighbours cause
};

// The whole link. baudGbd is that of both ends. A baud outside kMinBaudGbd..kMaxBaudGbd, no drive, no taps or an amax
// of 0 or less leave the receiver without lock.
//
// Gain: the main cursor reads amax while kMinGain..kMaxGain allow it. Feedback: IEEE 802.3 eq. 93A-26, 93A-27.
// Noise variance before the gain (eq. 93A-30, 93A-32, 93A-35), with LSB in V there, kLsbV / gain:
//   thermal      5.2e-8 V^2/GHz * integral |receiver filter * peaking filter|^2 df
//   transmitter  h0^2 * 10^(-27/10)
//   jitter       ((0.012 UI)^2 + (0.05 UI)^2 + added^2) * sum of the squared slopes at all cursors
//   crosstalk    neighbours set alike, random bits: A^2 * integral 2 T sinc^2(f T) |edge|^2 |coupling|^2 |filters|^2
//   df,
//                coupling 10^(crosstalkDb/20) * f / 4.25 GHz
//   latch        (0.75 LSB)^2
// Bit error rate: bitErrorRate of h0 less the slicer's sensitivity of 2 LSB, times errorPropagation, between kBerFloor
// and 0.5; of held taps the mean of both decision paths.
LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd);

// As above with a far end that sends at farBaudGbd: bauds further apart than 500 ppm never lock.
LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, double farBaudGbd);

// What a receiver shows when nothing arrives: the gain at its upper end, readings of noise only.
LinkResult silentLink(const Receiver& receiver);

// A reading as the registers hold it: nearest integer, halves away from 0, limited to 16 bits.
int readingOf(double lsb);

// The link's pulse response in V at the receiver's slicer before the gain, on the grid of kSamplesPerUi.
PulseResponse pulseResponse(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                            double baudGbd);

// Mean of Q((opening +- ISI)/sigma) over the sign patterns of the eight largest of `isi`; the others count as noise.
// `opening` is the main cursor less the slicer's sensitivity. At most 0.5, without the floor.
double bitErrorRate(double opening, std::span<const double> isi, double sigma);

// How many errors one error becomes by wrong feedback of the first tap h1: 1 / (1 - a),
// a = (Q((h0 - 2 h1)/sigma) + Q((h0 + 2 h1)/sigma)) / 2. 1 without feedback.
double errorPropagation(double h0, double h1, double sigma);

}  // namespace simulator
