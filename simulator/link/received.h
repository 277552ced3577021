// A signal as the receiver has taken it in: clock and gain settled, the DFE adapted or held, the noise known. It can
// then be sampled at any phase: in the middle for the link's error rate, all over for the eye. Units: frequency GHz,
// baud Gbd, phase UI, V before the gain (differential, half of peak to peak), LSB after it.
#pragma once

#include <array>
#include <span>

#include "simulator/link/arrival.h"
#include "simulator/link/crosstalk.h"
#include "simulator/link/decisions.h"

namespace simulator {

inline constexpr double kLsbV = 0.004;   // converter step
inline constexpr double kMinGain = 0.3;  // the receiver's gain range
inline constexpr double kMaxGain = 12;
inline constexpr double kLatchLsb = 0.75;     // rms noise of the slicer
inline constexpr double kSensitivityLsb = 2;  // by which a one must exceed the slicer's threshold

struct ReceivedSignal {
  Arrival arrival;
  double instant = 0;              // UI, where the clock samples
  Cursors cursors;                 // there
  double swingV = 0;               // peak to peak, the largest that any data gives: 2 sum |h_k|
  bool detected = false;           // the swing is what the receiver takes for a signal
  double gain = kMaxGain;          // brings the main cursor to amax as far as kMinGain..kMaxGain allow
  bool gainInRange = false;        // it does
  double lsbV = kLsbV / kMaxGain;  // a converter step before the gain
  // What the DFE takes off in V, and how it reads in LSB: the even decision path, then the odd one. The paths differ in
  // gain, so that the same correction reads differently.
  using Taps = std::array<double, kMaxDfeTaps>;
  std::array<Taps, 2> feedback{};
  std::array<Taps, 2> feedbackLsb{};
  bool pathsDiffer = false;  // taps that are held need not be equal in V
  double crosstalkV2 = 0;
  double steadyNoiseV2 = 0;    // thermal, crosstalk and latch: the noise that no phase changes
  double randomJitterUi2 = 0;  // squared rms

  double h0() const {
    return cursors[0];
  }
  // A signal whose main cursor stands out, so that there is something to decide by.
  bool readable() const {
    return detected && h0() > 0;
  }
};

// Gain and DFE are limited as IEEE 802.3 eq. 93A-26 and 93A-27 say. `baudGbd` is usable.
ReceivedSignal receive(const Transmitter& transmitter, const Channel& channel, const Receiver& receiver, double baudGbd,
                       std::span<const Aggressor> aggressors);

// What is decided by `phaseUi` from the instant of the clock, and the rms of the Gaussian noise there, without the
// interference that the error rate counts as noise. Cursors and slopes are those of that phase, the DFE's taps and the
// gain those of the middle. The variance is the sum of (IEEE 802.3 eq. 93A-30, 93A-32, 93A-35)
//   thermal      5.2e-8 V^2/GHz * integral |receive filters|^2 df
//   transmitter  h0^2 * 10^(-27/10)
//   jitter       ((0.012 UI)^2 + the medium's^2) * sum of the squared slopes at all cursors
//   crosstalk    crosstalkPower
//   latch        (0.75 LSB)^2
//   late echoes  sum r^2 * sum h_k^2, of those that longestEchoNs excludes at this baud
// Bounded jitter is two-valued: +-0.05 UI times the root of the same sum of squared slopes.
struct Sample {
  Decisions decisions;
  double sigma;
};
Sample sampleAt(const ReceivedSignal& signal, double phaseUi);

}  // namespace simulator
