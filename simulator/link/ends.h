// The two ends of a link: transmit and receive settings, and the linear filters that they set.
// Units: frequency GHz, baud Gbd, slew ps, amplitudes V (differential, half of peak to peak).
#pragma once

#include <array>

#include "simulator/link/math.h"

namespace simulator {

inline constexpr double kFullSwingV = 1.2;  // transmitter's peak-to-peak swing at k 255
inline constexpr int kMaxPole = 7;          // settings beyond are limited to 0..kMaxPole, 0..kMaxPeak
inline constexpr int kMaxPeak = 7;
inline constexpr int kMaxAmax = 127;
inline constexpr double kSignalDetectMv = 50;

// Transmit settings of a link. The drive is kFullSwingV/2 * k/255; the taps share it, c_n / sum |c|, so that the peak
// of the transmitted signal does not depend on them.
struct Transmitter {
  unsigned ffeMode = 0;                  // 0 none: c1 only; 1 FFE2: c1 c2; 2 FFE3: c0 c1 c2; 3 FFE4: all
  unsigned k = 115;                      // power, 0..255
  std::array<int, 4> c = {0, 63, 0, 0};  // c0 precursor, c1 main, c2 and c3 postcursors; -128..127
  double slewPs = 36;                    // 20-80 % transition time; 0 is an ideal edge
  bool operator==(const Transmitter&) const = default;
};

// Receive settings of a link, and what the part itself is like.
struct Receiver {
  unsigned dfeTaps = 3;                     // 0, 1, 3 or 5
  int pole = 6;                             // bandwidth, 0..7
  int peak = 4;                             // peaking, 0..7, 1.5 dB a step
  int amax = 0x4e;                          // reading to which the gain brings the main cursor, 1..127 LSB
  bool adapt = true;                        // false: the DFE stands at heldTaps
  std::array<double, 10> heldTaps{};        // LSB; H1 even, H1 odd, H2 even, ... H5 odd
  double evenOddMismatch = 0.02;            // relative gain difference of the even and odd decision paths; +-0.2
  double offsetLsb = 0;                     // of the converter; shows in An; +-16
  double signalDetectMv = kSignalDetectMv;  // a swing below is no signal; peak to peak differential, 0..2000
  bool operator==(const Receiver&) const = default;
};

// Drive amplitude in V: kFullSwingV/2 * k/255.
double driveAmplitude(const Transmitter& transmitter);
// Taps that the mode leaves, each c_n / sum |c|; all 0 when there is nothing to send.
std::array<double, 4> normalisedTaps(const Transmitter& transmitter);
// Transition as a Gaussian filter exp(-2 (pi f Tr / 1.6832)^2) (IEEE 802.3 eq. 93A-46): the exponent's magnitude.
double slewNepers(double slewPs, double fGHz);

// Corner of the receive filter by the pole setting, 6.375 (0.6 + 0.4 pole/7) GHz.
double receiverCornerGHz(int pole);

// The receiver's filters: a fourth-order Butterworth low pass (IEEE 802.3 eq. 93A-20, x = f/fr)
//   1 / (1 - 3.414214 x^2 + x^4 + j 2.613126 (x - x^3))
// and peaking, which takes low frequencies down and leaves those at half the baud (eq. 93A-22, u = f/fb)
//   (g + j 4 u) / ((1 + j 4 u)(1 + j u)), g = 10^(-1.5 peak/20).
class ReceiveFilters {
 public:
  ReceiveFilters(const Receiver& receiver, double baudGbd);

  struct Point {
    Complex response;
    double power;  // |response|^2
  };
  Point at(double fGHz) const;

 private:
  double perCorner_;
  double perBaud_;
  double lowGain_;
};

}  // namespace simulator
