// Pulse response of a link and its sampling: one rectangular bit of height 1, sent through a transfer function and read
// once a unit interval. Time is counted in unit intervals (UI).
#pragma once

#include <array>
#include <span>
#include <vector>

namespace simulator {

// Samples of p(t), kSamplesPerUi a UI over a power of two of UI; sample 0 is the start of the bit at the transmitter.
// p is taken as periodic: what arrives before it is found at the end.
inline constexpr unsigned kSamplesPerUi = 16;
using Pulse = std::span<const double>;

// Where a bang-bang clock recovery settles: p(ts - 1/2) = p(ts + 1/2), the crossing nearest the peak, in UI.
double samplingInstant(Pulse pulse);

// h_k = p(ts + k) for every k of the period, from -kPrecursors.
inline constexpr int kPrecursors = 16;
struct Cursors {
  std::vector<double> h;
  int last() const {
    return static_cast<int>(h.size()) - 1 - kPrecursors;
  }
  double operator[](int k) const {
    return h[static_cast<unsigned>(k + kPrecursors)];
  }
  double& operator[](int k) {
    return h[static_cast<unsigned>(k + kPrecursors)];
  }
};
Cursors cursorsAt(Pulse pulse, double instantUi);

// dp/dt an UI at the same instants, over an eighth of a UI (as IEEE 802.3 eq. 93A-28 does over T/16 to either side).
Cursors slopesAt(Pulse pulse, double instantUi);

// Decision feedback cancels h_1..h_taps as far as its reach goes: +-0.5 h0 for the first tap, +-0.25 h0 beyond
// (IEEE 802.3 eq. 93A-26, 93A-27). Taps beyond the count are 0.
inline constexpr unsigned kMaxDfeTaps = 5;
double dfeClamp(unsigned tap, double value, double h0);
std::array<double, kMaxDfeTaps> dfeTaps(const Cursors& cursors, unsigned taps);

}  // namespace simulator
