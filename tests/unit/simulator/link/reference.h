// The link model straight from its equations: slow sums by definition, nothing shared with the model but the records of
// settings and the elementary functions, and no thought for speed. The oracle of the tests beside it.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <vector>

#include "simulator/link/channel.h"
#include "simulator/link/crosstalk.h"
#include "simulator/link/ends.h"
#include "simulator/link/math.h"
#include "simulator/link/pulse.h"

namespace simulator::reference {

inline Complex quotient(Complex a, Complex b) {
  const double norm = magnitudeSquared(b);
  return {(a.re * b.re + a.im * b.im) / norm, (a.im * b.re - a.re * b.im) / norm};
}
inline double decibels(double ratio) {
  return 20 * std::log10(ratio);
}
inline double ratioOf(double decibels) {
  return std::pow(10, decibels / 20);
}
inline double tail(double x) {
  return 0.5 * std::erfc(x / std::sqrt(2.0));
}
inline double tailInverse(double probability) {
  double low = -40;
  double high = 40;
  for (int i = 0; i < 100; ++i)
    (tail((low + high) / 2) > probability ? low : high) = (low + high) / 2;
  return low;
}

// Filters, f in GHz.
inline double edge(double slewPs, double f) {
  const double x = kPi * f * slewPs / 1000 / 1.6832;
  return std::exp(-2 * x * x);
}
inline std::array<double, 4> taps(const Transmitter& transmitter) {
  std::array<double, 4> c{};
  for (std::size_t n = 0; n < 4; ++n) {
    const unsigned mode = transmitter.ffeMode;
    const bool used = n == 1 || (n == 2 && mode >= 1) || (n == 0 && mode >= 2) || (n == 3 && mode == 3);
    c[n] = used ? transmitter.c[n] : 0;
  }
  const double sum = std::fabs(c[0]) + std::fabs(c[1]) + std::fabs(c[2]) + std::fabs(c[3]);
  for (double& tap : c)
    tap = sum == 0 ? 0 : tap / sum;
  return c;
}
inline Complex ffe(const Transmitter& transmitter, double f, double baud) {
  Complex sum;
  const std::array<double, 4> c = taps(transmitter);
  for (unsigned n = 0; n < 4; ++n)
    sum = sum + c[n] * unitPhasor(-2 * kPi * f * n / baud);
  return sum;
}
inline double amplitude(const Transmitter& transmitter) {
  return 0.6 * transmitter.k / 255;
}
inline Complex medium(const Channel& channel, double f) {
  const double loss = channel.a0 + channel.a1 * std::sqrt(f) + channel.a2 * f + channel.a4 * f * f;
  const double lag = channel.a1 * std::sqrt(f) - (f == 0 ? 0 : 2 / kPi * channel.a2 * f * std::log(f));
  Complex echoes{1, 0};
  for (const Echo& echo : channel.echoes)
    echoes = echoes + echo.reflection * unitPhasor(-2 * kPi * f * echo.delayNs);
  return ratioOf(-loss) * (unitPhasor(-lag / 8.685889638065037) * echoes);
}
inline Complex butterworth(double f, double corner) {
  const double x = f / corner;
  return quotient({1, 0}, {1 - 3.414214 * x * x + x * x * x * x, 2.613126 * (x - x * x * x)});
}
inline Complex peaking(int peak, double f, double baud) {
  const double g = ratioOf(-1.5 * peak);
  return quotient({g, 4 * f / baud}, Complex{1, 4 * f / baud} * Complex{1, f / baud});
}
inline double corner(int pole) {
  return 6.375 * (0.6 + 0.4 * pole / 7);
}
inline Complex receiver(const Receiver& settings, double f, double baud) {
  return butterworth(f, corner(settings.pole)) * peaking(settings.peak, f, baud);
}

// p(t) of one bit through a transfer function, as the Fourier sum over a period of `periodUi` up to `top` times the
// baud; t in UI.
class Pulse {
 public:
  Pulse(const std::function<Complex(double)>& transfer, double baud, unsigned periodUi = 64, unsigned top = 8)
      : periodUi_(periodUi) {
    for (unsigned k = 0; k <= top * periodUi; ++k) {
      const double u = static_cast<double>(k) / periodUi;
      const Complex half = unitPhasor(-kPi * u);
      const Complex bit = k == 0 ? Complex{1, 0} : (-half.im / (kPi * u)) * half;
      terms_.push_back((k == 0 ? 1.0 : 2.0) / periodUi * (transfer(u * baud) * bit));
    }
  }
  double at(double ui) const {
    const Complex turn = unitPhasor(2 * kPi * ui / periodUi_);
    Complex sum;
    for (std::size_t k = terms_.size(); k > 0; --k)
      sum = sum * turn + terms_[k - 1];
    return sum.re;
  }
  std::vector<double> samples(unsigned perUi = kSamplesPerUi) const {
    std::vector<double> values;
    for (unsigned i = 0; i < periodUi_ * perUi; ++i)
      values.push_back(at(static_cast<double>(i) / perUi));
    return values;
  }
  unsigned period() const {
    return periodUi_;
  }

 private:
  unsigned periodUi_;
  std::vector<Complex> terms_;
};

inline Pulse pulseOf(const Transmitter& transmitter, const Channel& channel, const Receiver& settings, double baud,
                     unsigned periodUi = 64) {
  return Pulse(
      [&](double f) {
        return (amplitude(transmitter) * edge(transmitter.slewPs, f)) *
               (ffe(transmitter, f, baud) * medium(channel, f) * receiver(settings, f, baud));
      },
      baud, periodUi);
}

// Where p(t - 1/2) = p(t + 1/2), nearest to the highest of sixteen points a UI.
inline double instantOf(const Pulse& pulse) {
  double peak = 0;
  for (int i = -4 * 16; i < 16 * 16; ++i) {
    const double t = i / 16.0;
    if (pulse.at(t) > pulse.at(peak)) peak = t;
  }
  const auto late = [&](double t) { return pulse.at(t - 0.5) > pulse.at(t + 0.5); };
  for (int i = 0; i < 64; ++i) {
    double low = peak + (i % 2 != 0 ? -(i + 1) / 2 : i / 2) / 16.0;
    double high = low + 1.0 / 16;
    if (late(low) || !late(high)) continue;
    for (int halving = 0; halving < 40; ++halving)
      (late((low + high) / 2) ? high : low) = (low + high) / 2;
    return low;
  }
  return peak;
}

// Noise variance that aggressors cause, by a fine sum.
inline double crosstalk(const std::vector<Aggressor>& aggressors, const Channel& channel, const Receiver& settings,
                        double baud) {
  constexpr double kStep = 0.025;
  double sum = 0;
  for (const Aggressor& aggressor : aggressors) {
    const Transmitter& sender = aggressor.transmitter;
    const double share = (aggressor.farEnd ? 0.08 : 0.32) / (aggressor.distance == 2 ? 4 : 1);
    const double period = 1 / aggressor.baudGbd;
    for (int i = 1; i * kStep < 30; ++i) {
      const double f = i * kStep;
      const double sine = unitPhasor(kPi * f * period).im / (kPi * f * period);
      const double coupling = ratioOf(channel.crosstalkDb) * f / 4.25;
      double power = 2 * period * sine * sine * std::pow(edge(sender.slewPs, f) * amplitude(sender) * coupling, 2) *
                     magnitudeSquared(ffe(sender, f, aggressor.baudGbd)) *
                     magnitudeSquared(receiver(settings, f, baud));
      Channel line = channel;
      line.echoes.clear();
      if (aggressor.farEnd) power *= magnitudeSquared(medium(line, f));
      sum += share * power * kStep;
    }
  }
  return sum;
}

// What a receiver decides by at one phase.
struct Slicer {
  double main;
  double sigma;
  double jitter;
  double sensitivity;
  struct Path {
    std::vector<double> residuals;
    double firstTap;
  };
  std::vector<Path> paths;

  // Probability that a one falls short of `level`, by every sign pattern, error propagation counted.
  double below(double level) const {
    double mean = 0;
    for (const Path& path : paths) {
      std::vector<double> sorted;
      for (const double residual : path.residuals)
        sorted.push_back(std::fabs(residual));
      std::sort(sorted.rbegin(), sorted.rend());
      double variance = sigma * sigma;
      for (std::size_t i = 8; i < sorted.size(); ++i)
        variance += sorted[i] * sorted[i];
      sorted.resize(8);
      sorted.push_back(jitter);
      const double rms = std::sqrt(variance);
      double sum = 0;
      for (unsigned pattern = 0; pattern < 512; ++pattern) {
        double eye = main - level;
        for (unsigned i = 0; i < 9; ++i)
          eye += (pattern >> i & 1) != 0 ? sorted[i] : -sorted[i];
        sum += tail(eye / rms) / 512;
      }
      const double again =
          path.firstTap == 0
              ? 0
              : (tail((main - 2 * path.firstTap) / sigma) + tail((main + 2 * path.firstTap) / sigma)) / 2;
      mean += sum / (1 - std::min(again, 0.5)) / static_cast<double>(paths.size());
    }
    return mean;
  }
  double errorRate(double offset = 0) const {
    return std::clamp((below(sensitivity + offset) + below(sensitivity - offset)) / 2, 1e-18, 0.5);
  }
  double levelAt(double probability) const {
    double low = -2;
    double high = 2;
    for (int i = 0; i < 50; ++i)
      (below((low + high) / 2) > probability ? high : low) = (low + high) / 2;
    return low;
  }
};

struct Link {
  double instant = 0;
  double lsb = 0;
  double crosstalkV2 = 0;
  std::vector<double> cursors;  // h_-16 and on
  std::array<std::array<double, 5>, 2> taps{};
  Slicer centre;

  double h(int k) const {
    return cursors[static_cast<std::size_t>(k) + 16];
  }
};

inline std::vector<double> cursorsOf(const Pulse& pulse, double instant) {
  std::vector<double> h;
  for (int k = -16; k < static_cast<int>(pulse.period()) - 16; ++k)
    h.push_back(pulse.at(instant + k));
  return h;
}

inline Slicer slicerAt(const Link& link, const Pulse& pulse, const Channel& channel, const Receiver& settings,
                       double baud, double phase) {
  const std::vector<double> h = cursorsOf(pulse, link.instant + phase);
  const std::vector<double> after = cursorsOf(pulse, link.instant + phase + 1.0 / 16);
  const std::vector<double> before = cursorsOf(pulse, link.instant + phase - 1.0 / 16);
  double slopes = 0;
  for (std::size_t i = 0; i < h.size(); ++i)
    slopes += std::pow((after[i] - before[i]) * 8, 2);
  double band = 0;
  constexpr double kStep = 0.01;
  for (int i = 0; i * kStep < 8 * baud; ++i)
    band += magnitudeSquared(receiver(settings, (i + 0.5) * kStep, baud)) * kStep;
  Slicer slicer;
  slicer.main = h[16];
  slicer.sigma = std::sqrt(5.2e-8 * band + std::pow(h[16] * ratioOf(-27), 2) +
                           (0.012 * 0.012 + channel.randomJitterUi * channel.randomJitterUi) * slopes +
                           link.crosstalkV2 + std::pow(0.75 * link.lsb, 2));
  slicer.jitter = 0.05 * std::sqrt(slopes);
  slicer.sensitivity = 2 * link.lsb;
  for (const auto& path : link.taps) {
    Slicer::Path made{h, path[0]};
    made.residuals[16] = 0;
    for (std::size_t tap = 0; tap < 5; ++tap)
      made.residuals[17 + tap] -= path[tap];
    slicer.paths.push_back(made);
  }
  return slicer;
}

inline Link evaluate(const Transmitter& transmitter, const Channel& channel, const Receiver& settings, double baud,
                     const std::vector<Aggressor>& aggressors) {
  Link link;
  const Pulse pulse = pulseOf(transmitter, channel, settings, baud);
  link.instant = instantOf(pulse);
  link.cursors = cursorsOf(pulse, link.instant);
  link.crosstalkV2 = crosstalk(aggressors, channel, settings, baud);
  link.lsb = 0.004 / std::clamp(settings.amax * 0.004 / link.h(0), 0.3, 12.0);
  for (std::size_t path = 0; path < 2; ++path) {
    const double pathLsb = link.lsb / (1 + (path == 0 ? 0.5 : -0.5) * settings.evenOddMismatch);
    for (std::size_t tap = 0; tap < settings.dfeTaps; ++tap) {
      const double reach = (tap == 0 ? 0.5 : 0.25) * link.h(0);
      const double wanted =
          settings.adapt ? link.h(static_cast<int>(tap) + 1) : settings.heldTaps[2 * tap + path] * pathLsb;
      link.taps[path][tap] = std::clamp(wanted, -reach, reach);
    }
  }
  link.centre = slicerAt(link, pulse, channel, settings, baud, 0);
  return link;
}

}  // namespace simulator::reference
