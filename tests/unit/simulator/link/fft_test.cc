// The inverse transform against the sum that defines it.
#include "simulator/link/fft.h"

#include <gtest/gtest.h>

namespace simulator {
namespace {

void expectDefiningSum(unsigned samples) {
  std::vector<Complex> spectrum(samples / 2 + 1);
  for (unsigned k = 0; k < spectrum.size(); ++k) {
    spectrum[k] = {unitPhasor(1.7 * k + 0.3).re, unitPhasor(0.9 * k * k).im};
  }
  spectrum.front().im = 0;
  spectrum.back().im = 0;
  std::vector<Complex> work(samples / 2);
  std::vector<double> out(samples);
  InverseRealFft(samples).run(spectrum, work, out);

  const unsigned stride = samples > 256 ? 37 : 1;
  for (unsigned n = 0; n < samples; n += stride) {
    double sum = spectrum.front().re + (n % 2 == 0 ? 1 : -1) * spectrum.back().re;
    for (unsigned k = 1; k < samples / 2; ++k) {
      const double angle = 2 * kPi * static_cast<double>((static_cast<unsigned long long>(k) * n) % samples) / samples;
      sum += 2 * (spectrum[k] * unitPhasor(angle)).re;
    }
    EXPECT_NEAR(out[n], sum, 1e-14 * samples) << "sample " << n << " of " << samples;
  }
}

TEST(InverseRealFft, AgreesWithDefiningSum) {
  for (const unsigned samples : {8u, 16u, 64u, 256u, 1024u, 4096u})
    expectDefiningSum(samples);
}

TEST(InverseRealFft, OneObjectServesManyRuns) {
  const InverseRealFft transform(64);
  std::vector<Complex> spectrum(33);
  std::vector<Complex> work(32);
  std::vector<double> out(64);
  for (unsigned bin = 0; bin < 3; ++bin) {
    spectrum.assign(33, {});
    spectrum[bin] = {1, 0};
    transform.run(spectrum, work, out);
    for (unsigned n = 0; n < 64; ++n) {
      EXPECT_NEAR(out[n], (bin == 0 ? 1 : 2) * unitPhasor(2 * kPi * bin * n / 64).re, 1e-14);
    }
  }
}

}  // namespace
}  // namespace simulator
