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
#include "simulator/link/crosstalk.h"
#include "simulator/link/ends.h"
#include "simulator/link/errors.h"
#include "simulator/link/received.h"

namespace simulator {

inline constexpr double kLockLossBer = 2e-3;  // above it the receiver loses sync
inline constexpr double kAminProbability = 1e-6;
inline constexpr double kEyeBer = 1e-12;         // the eye's height and width are those of this error rate
inline constexpr double kCaptureRange = 500e-6;  // how far apart, relatively, the clocks of both ends may be
inline constexpr double kMaxOffsetLsb = 16;
inline constexpr double kMaxReading = 127;  // the converter is 8 bits wide; readings stay in -128..127

struct LinkResult {
  bool signalDetected = false;    // something arrives, whether or not it can be read
  bool locked = false;            // the receiver follows the bits: main cursor above 0 and BER at most kLockLossBer
  double swingV = 0;              // V peak to peak at the receiver's input, the largest that any data gives
  double h0 = 0;                  // V at the receiver's input, main cursor
  double gain = kMaxGain;         // kMinGain..kMaxGain
  bool gainInRange = false;       // the main cursor reads amax
  double ap = 0;                  // LSB: mean reading of a one; h0 * gain
  double an = 0;                  // LSB: mean reading of a zero; -ap + offset
  double amin = 0;                // LSB: level that a one falls short of with probability 1e-6; may be negative
  std::array<double, 10> taps{};  // LSB, the DFE as it stands: H1 even, H1 odd, ... H5 odd; 0 beyond the mode
  double ber = 0.5;               // kBerFloor..0.5
  double eyeHeightV = 0;          // V at the receiver's input, between the thresholds of BER 1e-12; 0 when closed
  double sigma = 0;               // V, rms of all noise at the receiver's input
  double crosstalk = 0;           // V, rms, the part of it that neighbours cause
};

// Whether a receiver at one baud follows a sender at the other: bauds further apart than 500 ppm never lock.
bool samePace(double baudGbd, double farBaudGbd);

// The whole link. baudGbd is that of both ends. A baud outside kMinBaudGbd..kMaxBaudGbd is no signal, and neither is a
// swing below the receiver's signalDetectMv; an amax of 0 or less leaves the receiver without lock.
//
// Bit error rate: mean of Q((h0 +- ISI +- jitter - 2 LSB) / sigma) times errorPropagation, between kBerFloor and 0.5;
// of taps that are held the mean of both decision paths. Amin is the level that takes the place of the 2 LSB for a rate
// of 1e-6, so that it reads above 2 just when the rate is lower than that.
LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, std::span<const Aggressor> aggressors = {});

// As above with a far end that sends at farBaudGbd.
LinkResult evaluateLink(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver,
                        double baudGbd, double farBaudGbd, std::span<const Aggressor> aggressors = {});

// What a receiver shows when nothing arrives: the gain at its upper end, readings of noise only.
LinkResult silentLink(const Receiver& receiver);

// A reading as the registers hold it: nearest integer, halves away from 0, limited to 16 bits.
int readingOf(double lsb);

}  // namespace simulator
