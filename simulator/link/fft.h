// Inverse Fourier transform of a real signal's spectrum, of any power-of-two size; tables are made once for a size.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "simulator/link/math.h"

namespace simulator {

class InverseRealFft {
 public:
  // `samples` is a power of two, 8 or more.
  explicit InverseRealFft(unsigned samples);

  // out[n] = sum over k = -N/2+1 .. N/2 of P_k exp(+j 2 pi k n / N) with P_-k the conjugate of P_k, N = `samples`.
  // `spectrum` holds P_0 .. P_N/2, `work` N/2 values of scratch, `out` N samples. Allocates nothing.
  void run(std::span<const Complex> spectrum, std::span<Complex> work, std::span<double> out) const;

 private:
  unsigned half_;
  std::vector<Complex> roots_;  // exp(+j 2 pi k / N), k < N/2
  std::vector<std::uint32_t> bitReversed_;
};

}  // namespace simulator
