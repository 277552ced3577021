// Elementary functions from + - * / and square root: range reduction in pieces that multiply without rounding, then a
// polynomial.
#include "simulator/link/math.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace simulator {

namespace {

constexpr double kLn2High = 0x1.62e42fefp-1;  // 32 bits, so that its product with an exponent is exact
constexpr double kLn2Low = 0x1.473de6af278edp-34;

// 2^n for a normal result.
double powerOfTwo(int n) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(n + 1023) << 52);
}

// Sum of coefficients[i] x^i.
template <std::size_t N>
double polynomial(double x, const double (&coefficients)[N]) {
  double sum = coefficients[N - 1];
  for (std::size_t i = N - 1; i > 0; --i)
    sum = sum * x + coefficients[i - 1];
  return sum;
}

// Taylor coefficients in the square of the argument: of the even and odd halves of e^r for |r| <= ln 2 / 2 (two short
// chains, which a pipeline likes), of cosine and sine for |r| <= pi/4.
constexpr double kExponentialEven[] = {1, 1.0 / 2, 1.0 / 24, 1.0 / 720, 1.0 / 40320, 1.0 / 3628800, 1.0 / 479001600};
constexpr double kExponentialOdd[] = {
    1, 1.0 / 6, 1.0 / 120, 1.0 / 5040, 1.0 / 362880, 1.0 / 39916800, 1.0 / 6227020800};
constexpr double kCosine[] = {1,
                              -1.0 / 2,
                              1.0 / 24,
                              -1.0 / 720,
                              1.0 / 40320,
                              -1.0 / 3628800,
                              1.0 / 479001600,
                              -1.0 / 87178291200,
                              1.0 / 20922789888000};
constexpr double kSine[] = {-1.0 / 6,        1.0 / 120,        -1.0 / 5040,         1.0 / 362880,
                            -1.0 / 39916800, 1.0 / 6227020800, -1.0 / 1307674368000};

double exponentialNearZero(double r) {
  const double s = r * r;
  return polynomial(s, kExponentialEven) + r * polynomial(s, kExponentialOdd);
}

// Chebyshev coefficients of erfc(x) exp(x^2) (4 + x) / 4 over u = (4 - x)/(4 + x), for x >= 0.
constexpr double kScaledErfc[] = {
    0.40802446954913149054,    0.37635823567636743359,     0.14758035457222361932,    0.049571317930027586287,
    0.01422710755711717399,    0.0034434932627175241283,   0.00068225418328380806198, 0.00010340451975756188148,
    9.7285459519901499994e-6,  -1.1988713758412044212e-7,  -2.1747767703449564315e-7, -3.0291767735991390946e-8,
    9.4799175652045492467e-10, 8.6334116949909558715e-10,  6.8721564259534024379e-11, -1.7034898438296275927e-11,
    -3.392130686829088650e-12, 2.6158087668540244876e-13,  1.2127675803108640048e-13, -2.114689543244809158e-15,
    -4.117340933404178368e-15, -6.3287127217007086477e-17, 1.4393110983449847282e-16};

}  // namespace

Complex operator/(Complex a, Complex b) {
  const double norm = magnitudeSquared(b);
  if (norm == 0) return {};
  return {(a.re * b.re + a.im * b.im) / norm, (a.im * b.re - a.re * b.im) / norm};
}

double limited(double value, double low, double high) {
  if (value != value) value = 0;
  if (value < low) return low;
  return value > high ? high : value;
}

double exponential(double x) {
  x = limited(x, -700, 700);
  const double n = std::floor(x * (1 / (kLn2High + kLn2Low)) + 0.5);
  return exponentialNearZero((x - n * kLn2High) - n * kLn2Low) * powerOfTwo(static_cast<int>(n));
}

double naturalLog(double x) {
  x = limited(x, std::numeric_limits<double>::min(), std::numeric_limits<double>::max());
  const auto bits = std::bit_cast<std::uint64_t>(x);
  constexpr std::uint64_t kMantissa = (std::uint64_t{1} << 52) - 1;
  double n = static_cast<double>(static_cast<int>(bits >> 52) - 1023);
  double m = std::bit_cast<double>((bits & kMantissa) | (std::uint64_t{1023} << 52));
  if (m > 1.4142135623730951) {
    m *= 0.5;
    n += 1;
  }
  // ln m = 2 artanh(s), |s| <= 0.1716.
  const double s = (m - 1) / (m + 1);
  const double q = s * s;
  double sum = 0;
  for (int i = 23; i >= 3; i -= 2)
    sum = q * (sum + 1.0 / i);
  return n * kLn2High + (2 * s + (2 * s * sum + n * kLn2Low));
}

double exponentialMinusOne(double x) {
  x = limited(x, -700, 700);
  if (x < -0.35 || x > 0.35) return exponential(x) - 1;
  double sum = 1;
  for (int i = 15; i >= 2; --i)
    sum = 1 + sum * x / i;
  return x * sum;
}

double logOnePlus(double x) {
  const double sum = 1 + limited(x, -1, std::numeric_limits<double>::max());
  if (sum == 1) return limited(x, -1, 1);
  // The quotient takes out what 1 + x lost to rounding.
  return sum > 2 || sum < 0.5 ? naturalLog(sum) : naturalLog(sum) * (x / (sum - 1));
}

double fromDb(double db) {
  return exponential(limited(db, -6000, 6000) * (1 / kNeperDb));
}

double toDb(double ratio) {
  return naturalLog(ratio) * kNeperDb;
}

Complex unitPhasor(double x) {
  if (!(x > -1e9 && x < 1e9)) return {1, 0};
  const double n = std::floor(x * (2 / kPi) + 0.5);
  const double r = ((x - n * 0x1.921fb544p+0) - n * 0x1.0b4611a6p-34) - n * 0x1.3198a2e037073p-69;
  const double s = r * r;
  const double sine = r + r * s * polynomial(s, kSine);
  const double cosine = polynomial(s, kCosine);
  switch (static_cast<std::int64_t>(n) & 3) {
    case 0:
      return {cosine, sine};
    case 1:
      return {-sine, cosine};
    case 2:
      return {-cosine, -sine};
    default:
      return {sine, -cosine};
  }
}

double complementaryError(double x) {
  x = limited(x, -30, 30);
  if (x < 0) return 2 - complementaryError(-x);
  if (x > 26) return 0;
  const double share = 4 / (4 + x);
  const double u = 2 * share - 1;
  double b1 = 0;
  double b2 = 0;
  for (std::size_t i = std::size(kScaledErfc) - 1; i > 0; --i) {
    const double b0 = 2 * u * b1 - b2 + kScaledErfc[i];
    b2 = b1;
    b1 = b0;
  }
  return exponential(-x * x) * share * (u * b1 - b2 + kScaledErfc[0]);
}

double qFunction(double x) {
  return 0.5 * complementaryError(x * 0.70710678118654752440);
}

double inverseQ(double ber) {
  ber = limited(ber, 1e-290, 1 - 1e-15);
  if (ber > 0.5) return -inverseQ(1 - ber);
  // A start of the right size, then Newton's steps on ln Q, which is nearly a parabola.
  const double target = naturalLog(ber);
  double x = std::sqrt(-2 * target) - 1;
  if (x < 0) x = 0;
  for (int i = 0; i < 12; ++i) {
    const double q = qFunction(x);
    const double density = exponential(-0.5 * x * x) * 0.39894228040143267794;
    if (q <= 0 || density <= 0) break;
    x += (naturalLog(q) - target) * (q / density);
    x = limited(x, 0, 36.5);
  }
  return x;
}

}  // namespace simulator
