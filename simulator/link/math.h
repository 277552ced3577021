// Elementary functions built from + - * / and square root only, so that every target gets the same last bit: the C
// library's differ between targets, and under some emulators its sine and cosine trap.
// All are total: what is not a number counts as 0, and no result is infinite or not a number.
#pragma once

#include <span>

namespace simulator {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kNeperDb = 8.68588963806503655;  // dB in one neper, 20 / ln 10

// A plain pair: the library's complex product branches on what is not a number, which cannot occur here.
struct Complex {
  double re = 0;
  double im = 0;
};

inline Complex operator+(Complex a, Complex b) {
  return {a.re + b.re, a.im + b.im};
}
inline Complex operator-(Complex a, Complex b) {
  return {a.re - b.re, a.im - b.im};
}
inline Complex operator*(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
inline Complex operator*(double s, Complex a) {
  return {s * a.re, s * a.im};
}
inline double magnitudeSquared(Complex a) {
  return a.re * a.re + a.im * a.im;
}

// `value` limited to [low, high]; not a number gives `low` <= 0 <= `high` ? 0 : `low`.
double limited(double value, double low, double high);

// e^x, relative error below 1e-15 (x limited to +-700).
double exponential(double x);
// ln x, absolute error below 1e-15 near 1 and relative elsewhere; x at or below 0 counts as the smallest normal number.
double naturalLog(double x);
// e^x - 1 and ln(1 + x) without loss of digits near 0.
double exponentialMinusOne(double x);
double logOnePlus(double x);
// 10^(db/20).
double fromDb(double db);
// cos x + j sin x, absolute error below 1e-15 for |x| below 1e5 (beyond 1e9 the angle counts as 0).
Complex unitPhasor(double x);

// Upper tail of the normal distribution, relative error below 1e-9: Q(x) = erfc(x / sqrt 2) / 2, the bit error rate at
// an eye of x sigma, with its density exp(-x^2 / 2) / sqrt(2 pi) to 1e-5. x is limited to +-12.
struct NormalTail {
  double probability = 0;
  double density = 0;
};
NormalTail normalTail(double x);
// The sum of normalTail(x - offset) over all x of `values` but those that are more than `most` above it.
NormalTail sumOfTails(std::span<const double> values, double offset, double most);

}  // namespace simulator
