// Pulse response of a link and its sampling: one rectangular bit of height 1, sent through a transfer function and read
// once a unit interval. Time is counted in unit intervals (UI), frequency in GHz, baud in Gbd.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "simulator/link/math.h"

namespace simulator {

// The grid of the link evaluation; a pulse is periodic in kPulseUi, so that what arrives early is found at the end.
inline constexpr unsigned kSamplesPerUi = 16;
inline constexpr unsigned kPulseUi = 64;

// Samples of p(t) over kPulseUi unit intervals; sample 0 is the start of the bit at the transmitter.
struct PulseResponse {
  std::vector<double> samples;
  unsigned samplesPerUi = kSamplesPerUi;
};

// The same without owning the samples; kPulseUi * samplesPerUi of them.
struct PulseView {
  std::span<const double> samples;
  unsigned samplesPerUi = kSamplesPerUi;
  PulseView(std::span<const double> values, unsigned perUi) : samples(values), samplesPerUi(perUi) {}
  PulseView(const PulseResponse& pulse) : samples(pulse.samples), samplesPerUi(pulse.samplesPerUi) {}
};

// p at `ui` unit intervals, by cubic interpolation between the samples; p is periodic.
double pulseAt(PulseView pulse, double ui);

// Any transfer function of f in GHz (asked for f >= 0 only). The finest grid, 256, keeps the kinks of responses that no
// filter rounds (a single pole) to 0.1 % of full swing; samplesPerUi is rounded up to a power of two from 4 to 256.
PulseResponse pulseResponse(const std::function<Complex(double)>& transfer, double baudGbd,
                            unsigned samplesPerUi = 256);

// Spectrum of the bit itself at f/baud, on the grid: exp(-j pi u) sin(pi u)/(pi u), by the UI of the period.
Complex bitSpectrum(double fOverBaud);

// Where the pulse is highest, in UI.
double peakInstant(PulseView pulse);

// Where a bang-bang clock recovery settles: p(ts - 1/2) = p(ts + 1/2), the crossing nearest the peak, in UI.
double samplingInstant(PulseView pulse);

// h_k = p(ts + k) for k from kFirst to kLast: every cursor of the period.
struct Cursors {
  static constexpr int kFirst = -16;
  static constexpr int kLast = 47;
  std::array<double, kPulseUi> h{};
  double operator[](int k) const {
    return h[static_cast<unsigned>(k - kFirst)];
  }
  double& operator[](int k) {
    return h[static_cast<unsigned>(k - kFirst)];
  }
};
Cursors cursorsAt(PulseView pulse, double instantUi);

// dp/dt an UI at the same instants, over an eighth of a UI (as IEEE 802.3 eq. 93A-28 does over T/16 to either side).
Cursors slopesAt(PulseView pulse, double instantUi);

// Decision feedback cancels h_1..h_taps as far as its reach goes: +-0.5 h0 for the first tap, +-0.25 h0 beyond
// (IEEE 802.3 eq. 93A-26, 93A-27). Taps beyond the count are 0.
inline constexpr unsigned kMaxDfeTaps = 5;
double dfeClamp(unsigned tap, double value, double h0);
std::array<double, kMaxDfeTaps> dfeTaps(const Cursors& cursors, unsigned taps);

// Vertical opening without noise, h0 - sum |residual|, after a DFE of `taps`; negative when the eye is closed.
double eyeOpening(const Cursors& cursors, unsigned taps);

}  // namespace simulator
