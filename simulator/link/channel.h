// The medium of a link as an insertion-loss fit, and ready-made media that compose by addition.
// Units: frequency in GHz, time in ns, loss in dB (positive is loss), length as each name says.
#pragma once

#include <vector>

#include "simulator/link/math.h"

namespace simulator {

// A copy of the signal that arrives `delayNs` late, `reflection` times as large (negative when inverted).
struct Echo {
  double reflection = 0;
  double delayNs = 0;
  bool operator==(const Echo&) const = default;
};

// IL(dB) = a0 + a1 sqrt(f) + a2 f + a4 f^2, the form of the IEEE 802.3 cable and channel fits (annex 93A, clause 85).
// Any real coefficients are accepted; the model limits them to +-1e4 and reads what is not a number as 0.
struct Channel {
  double a0 = 0;  // dB: contact and resistive loss
  double a1 = 0;  // dB/sqrt(GHz): skin effect
  double a2 = 0;  // dB/GHz: dielectric loss
  double a4 = 0;  // dB/GHz^2: radiation, roughness, stubs; negative in some fits
  std::vector<Echo> echoes;
  double randomJitterUi = 0;  // rms jitter that the medium adds, in UI (optical modules); 0 to 0.5
  double crosstalkDb = -30;   // coupling of all neighbours together at 4.25 GHz, rising 20 dB a decade; -200 to 0
  bool operator==(const Channel&) const = default;
};

// Two media one after the other: losses add, echoes of both (and none of second order), jitter adds in power, and the
// greater crosstalk counts, for the coupling happens mostly in one place.
Channel operator+(const Channel& first, const Channel& second);

// Trace on common circuit board: a1 0.0908, a2 0.0562 an inch.
Channel fr4Trace(double inches);

// Backplane or module connector: a0 0.1, a2 0.35.
Channel connector();

// Trace by the board model of IEEE 802.3 annex 93A (eq. 93A-13): 4.114e-4 sqrt(f) + 2.547e-4 f nepers a millimetre.
Channel boardLine(double millimetres);

// Passive twin-axial cable with both plugs. 7 m reach 17.04 dB at 5.15625 GHz, the limit of the 10 Gbd cable clauses.
Channel directAttachCopper(double metres);

// Host trace (8 to 12 in) and cage connector up to an optical module that regenerates the signal and adds jitter.
Channel opticalModule(double hostTraceInches, double addedJitterUi = 0.02);

// Losses outside are taken as these: no medium gains a thousandfold, and none is quieter than silence.
inline constexpr double kMinLossDb = -60;
inline constexpr double kMaxLossDb = 6000;

// a0, a1, a2, a4 within their limits.
struct LossFit {
  double a0, a1, a2, a4;
  explicit LossFit(const Channel& channel);
  // Loss in dB at fGHz, not below 0, without echoes; `rootF` is its square root.
  double db(double fGHz, double rootF) const {
    return limited(a0 + a1 * rootF + a2 * fGHz + a4 * fGHz * fGHz, kMinLossDb, kMaxLossDb);
  }
};

// Loss in dB at fGHz without echoes; fGHz below 0 counts as 0.
double insertionLossDb(const Channel& channel, double fGHz);

}  // namespace simulator
