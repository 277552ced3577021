// The N real samples are taken as N/2 complex ones (even samples real, odd ones imaginary), which halves the work; the
// complex transform is the iterative one with decimation in time.
#include "simulator/link/fft.h"

#include <cstddef>

namespace simulator {

InverseRealFft::InverseRealFft(unsigned samples) : half_(samples / 2), roots_(samples / 2), bitReversed_(samples / 2) {
  for (unsigned k = 0; k < half_; ++k)
    roots_[k] = unitPhasor(2 * kPi * k / samples);
  for (unsigned k = 0; k < half_; ++k) {
    unsigned reversed = 0;
    for (unsigned bit = 1; bit < half_; bit *= 2)
      reversed = 2 * reversed + ((k & bit) != 0 ? 1 : 0);
    bitReversed_[k] = reversed;
  }
}

void InverseRealFft::run(std::span<const Complex> spectrum, std::span<Complex> work, std::span<double> out) const {
  for (unsigned k = 0; k < half_; ++k) {
    const Complex low = spectrum[k];
    const Complex high = {spectrum[half_ - k].re, -spectrum[half_ - k].im};
    const Complex odd = (low - high) * roots_[k];
    work[bitReversed_[k]] = low + high + Complex{-odd.im, odd.re};
  }
  // The first two stages need no roots but 1 and j.
  for (unsigned i = 0; i < half_; i += 4) {
    const Complex a = work[i] + work[i + 1];
    const Complex b = work[i] - work[i + 1];
    const Complex c = work[i + 2] + work[i + 3];
    const Complex d = work[i + 2] - work[i + 3];
    const Complex turned = {-d.im, d.re};
    work[i] = a + c;
    work[i + 1] = b + turned;
    work[i + 2] = a - c;
    work[i + 3] = b - turned;
  }
  for (unsigned length = 4; length < half_; length *= 2) {
    const unsigned stride = half_ / length;
    for (unsigned block = 0; block < half_; block += 2 * length) {
      Complex* lower = &work[block];
      Complex* upper = lower + length;
      for (unsigned i = 0; i < length; ++i) {
        const Complex turned = upper[i] * roots_[static_cast<std::size_t>(i) * stride];
        upper[i] = lower[i] - turned;
        lower[i] = lower[i] + turned;
      }
    }
  }
  for (unsigned k = 0; k < half_; ++k) {
    out[2 * k] = work[k].re;
    out[2 * k + 1] = work[k].im;
  }
}

}  // namespace simulator
