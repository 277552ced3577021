// Elementary functions from + - * / and square root: range reduction in pieces that multiply without rounding, then a
// polynomial.
#include "simulator/link/math.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace simulator {

namespace {

constexpr double kLn2High = 0x1.62e42fefp-1;  // 32 bits, so that its product with an exponent is exact
constexpr double kLn2Low = 0x1.473de6af278edp-34;

// 2^n for a normal result.
constexpr double powerOfTwo(int n) {
  return std::bit_cast<double>(static_cast<std::uint64_t>(n + 1023) << 52);
}

// Nearest whole number, of |x| below 2^31. The C library's floor is a call on processors that have no instruction for
// it.
constexpr int nearest(double x) {
  return static_cast<int>(x < 0 ? x - 0.5 : x + 0.5);
}

// Sum of coefficients[i] x^i.
template <std::size_t N>
constexpr double polynomial(double x, const double (&coefficients)[N]) {
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

constexpr double exponentialNearZero(double r) {
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

constexpr double scaledErfc(double x) {
  const double share = 4 / (4 + x);
  const double u = 2 * share - 1;
  double b1 = 0;
  double b2 = 0;
  for (std::size_t i = std::size(kScaledErfc) - 1; i > 0; --i) {
    const double b0 = 2 * u * b1 - b2 + kScaledErfc[i];
    b2 = b1;
    b1 = b0;
  }
  return share * (u * b1 - b2 + kScaledErfc[0]);
}

// e^x for |x| up to 700.
constexpr double exponentialInRange(double x) {
  const int n = nearest(x * (1 / (kLn2High + kLn2Low)));
  return exponentialNearZero((x - n * kLn2High) - n * kLn2Low) * powerOfTwo(n);
}

// The tail at every 1/kTailSteps, so close together that a few derivatives reach from one to the next.
constexpr int kTailEnd = 12;
constexpr int kTailSteps = 64;
constexpr auto kTails = [] {
  std::array<NormalTail, kTailEnd * kTailSteps + 1> tails{};
  for (std::size_t i = 0; i < tails.size(); ++i) {
    const double x = static_cast<double>(i) / kTailSteps;
    const double fall = exponentialInRange(-0.5 * x * x);
    tails[i] = {0.5 * scaledErfc(x * 0.70710678118654752440) * fall, 0.39894228040143267794 * fall};
  }
  return tails;
}();

inline NormalTail tailInRange(double x) {
  const double distance = x < 0 ? -x : x;
  const int step = static_cast<int>(distance * kTailSteps + 0.5);
  const NormalTail& near = kTails[static_cast<std::size_t>(step)];
  const double at = static_cast<double>(step) * (1.0 / kTailSteps);
  const double d = distance - at;
  // The density's derivatives are Hermite polynomials times it.
  const double h2 = at * at - 1;
  const double h3 = at * (h2 - 2);
  const double h4 = at * h3 - 3 * h2;
  const double area = 1 - d * (at * (1.0 / 2) - d * (h2 * (1.0 / 6) - d * (h3 * (1.0 / 24) - d * h4 * (1.0 / 120))));
  const double height = 1 - d * (at - d * (h2 * (1.0 / 2) - d * h3 * (1.0 / 6)));
  const double tail = near.probability - near.density * d * area;
  return {x < 0 ? 1 - tail : tail, near.density * height};
}

}  // namespace

double limited(double value, double low, double high) {
  if (value != value) value = 0;
  if (value < low) return low;
  return value > high ? high : value;
}

double exponential(double x) {
  return exponentialInRange(limited(x, -700, 700));
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
  if (!(x >= -0.35 && x <= 0.35)) return exponential(x) - 1;
  double sum = 1;
  for (int i = 15; i >= 2; --i)
    sum = 1 + sum * x / i;
  return x * sum;
}

double logOnePlus(double x) {
  x = limited(x, -1, std::numeric_limits<double>::max());
  const double sum = 1 + x;
  if (sum == 1) return x;
  // The quotient takes out what 1 + x lost to rounding.
  return sum > 2 || sum < 0.5 ? naturalLog(sum) : naturalLog(sum) * (x / (sum - 1));
}

double fromDb(double db) {
  return exponential(limited(db, -6000, 6000) * (1 / kNeperDb));
}

Complex unitPhasor(double x) {
  if (!(x > -1e9 && x < 1e9)) return {1, 0};
  const int n = nearest(x * (2 / kPi));
  const double r = ((x - n * 0x1.921fb544p+0) - n * 0x1.0b4611a6p-34) - n * 0x1.3198a2e037073p-69;
  const double s = r * r;
  const double sine = r + r * s * polynomial(s, kSine);
  const double cosine = polynomial(s, kCosine);
  switch (static_cast<unsigned>(n) & 3) {
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

NormalTail normalTail(double x) {
  return tailInRange(limited(x, -kTailEnd, kTailEnd));
}

NormalTail sumOfTails(std::span<const double> values, double offset, double most) {
  constexpr double kSure = -9;  // the tail beyond it rounds to 1
  most = limited(most, kSure, kTailEnd);
  NormalTail sum;
  for (const double value : values) {
    const double x = value - offset;
    if (x > most) continue;
    if (x < kSure) {
      sum.probability += 1;
      continue;
    }
    const NormalTail tail = tailInRange(x);
    sum.probability += tail.probability;
    sum.density += tail.density;
  }
  return sum;
}

}  // namespace simulator
