#include "numlib/special/complex_arithmetic.h"

#include <bit>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <limits>
#include <numbers>

namespace vexa {

namespace {

using Standard = std::complex<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargestWholeExponent = 1024;

Standard toStandard(Complex z) { return {z.re, z.im}; }
Complex fromStandard(Standard z) { return {z.real(), z.imag()}; }

// The same number with positive zeros, for the functions that have a cut.
Standard withPositiveZeros(Complex z) { return {z.re + 0.0, z.im + 0.0}; }

// The power of two of the larger part; 0 for zero.
int binaryExponent(Complex z) {
  const double larger = std::fmax(std::fabs(z.re), std::fabs(z.im));
  return larger == 0.0 ? 0 : std::ilogb(larger);
}

Complex scaled(Complex z, int exponent) {
  return {std::scalbn(z.re, exponent), std::scalbn(z.im, exponent)};
}

bool isFinite(Complex z) { return std::isfinite(z.re) && std::isfinite(z.im); }

// z^n for n >= 1. From the highest bit of n down, each step squares and perhaps multiplies with z,
// so that all that is formed on the way are powers of z below the n-th: whole parts stay exact.
Complex repeatedProduct(Complex z, unsigned n) {
  Complex power = z;
  for (unsigned bit = std::bit_floor(n) / 2; bit > 0; bit /= 2) {
    power = multiply(power, power);
    if (n & bit) power = multiply(power, z);
  }
  return power;
}

// z^n for a whole n other than 0 and a z other than 0.
Complex wholePower(Complex z, int n) {
  // |z| is brought between sqrt(1/2) and sqrt(2) by a power of two: no power up to the 1024th
  // overflows or vanishes then, and powers of two round nothing that counts.
  int exponent = 0;
  if (isFinite(z)) {
    exponent = binaryExponent(z);
    Complex s = scaled(z, -exponent);
    if (s.re * s.re + s.im * s.im > 2.0) {
      ++exponent;
      s = scaled(s, -1);
    }
    z = s;
  }
  Complex power = repeatedProduct(z, static_cast<unsigned>(std::abs(n)));
  if (n < 0) power = divide({1.0, 0.0}, power);
  return scaled(power, exponent * n);
}

// (cos, sin) of pi t, with true zeros at the multiples of 1/2.
Complex unitVector(double t) {
  const double quarterTurns = std::round(2.0 * std::remainder(t, 2.0));
  const double angle = std::numbers::pi * (std::remainder(t, 2.0) - quarterTurns / 2.0);
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  switch (static_cast<int>(quarterTurns) & 3) {
    case 0:
      return {c, s};
    case 1:
      return {-s, c};
    case 2:
      return {-c, -s};
    default:
      return {s, -c};
  }
}

}  // namespace

Complex add(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }

Complex subtract(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }

Complex multiply(Complex a, Complex b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

Complex divide(Complex a, Complex b) {
  if (!isFinite(a) || !isFinite(b)) return fromStandard(toStandard(a) / toStandard(b));
  // Both are brought near 1 by powers of two, which round nothing that counts. Then (a times the
  // conjugate of b) / |b|^2 is safe and, unlike forms that divide the parts of b by each other,
  // exact wherever its products and the quotient are.
  const int exponentA = binaryExponent(a);
  const int exponentB = binaryExponent(b);
  const Complex p = scaled(a, -exponentA);
  const Complex q = scaled(b, -exponentB);
  const double square = q.re * q.re + q.im * q.im;
  const Complex quotient{(p.re * q.re + p.im * q.im) / square,
                         (p.im * q.re - p.re * q.im) / square};
  return scaled(quotient, exponentA - exponentB);
}

// The library's gives infinity for an infinite part beside not-a-number.
double complexAbs(Complex z) {
  return std::isnan(z.re) || std::isnan(z.im) ? kNaN : std::hypot(z.re, z.im);
}
Complex complexExp(Complex z) { return fromStandard(std::exp(toStandard(z))); }
Complex complexLog(Complex z) { return fromStandard(std::log(withPositiveZeros(z))); }
Complex complexSin(Complex z) { return fromStandard(std::sin(toStandard(z))); }
Complex complexCos(Complex z) { return fromStandard(std::cos(toStandard(z))); }
// In long double: the library's quotient of double parts is off by more than its own last place.
Complex complexTan(Complex z) {
  const std::complex<long double> w = std::tan(std::complex<long double>(z.re, z.im));
  return {static_cast<double>(w.real()), static_cast<double>(w.imag())};
}
Complex complexSqrt(Complex z) { return fromStandard(std::sqrt(withPositiveZeros(z))); }

std::optional<Complex> complexPower(Complex z, Complex w) {
  if (w.re == 0.0 && w.im == 0.0) return Complex{1.0, 0.0};
  if (z.re == 0.0 && z.im == 0.0) {
    if (w.re < 0.0) return std::nullopt;
    return w.re > 0.0 ? Complex{0.0, 0.0} : Complex{kNaN, kNaN};
  }
  if (w.im == 0.0 && std::fabs(w.re) <= kLargestWholeExponent && w.re == std::trunc(w.re)) {
    return wholePower(z, static_cast<int>(w.re));
  }

  // exp(w ln z) in polar form. The power of |z| is more accurate than the exponential of a rounded
  // product, which steps in where one factor overflows or vanishes and the whole may not.
  const Complex logarithm = complexLog(z);
  const double turn = logarithm.im;
  double size = std::pow(complexAbs(z), w.re) * std::exp(-w.im * turn);
  if (!(size > 0.0) || std::isinf(size)) size = std::exp(w.re * logarithm.re - w.im * turn);

  // A real exponent turns by a multiple of the argument: counted in half turns, so that powers on
  // the axes stay on the axes.
  const double halfTurns = turn / std::numbers::pi * w.re;
  const double angle = w.im * logarithm.re + w.re * turn;
  const Complex direction = w.im == 0.0 && std::isfinite(halfTurns)
                                ? unitVector(halfTurns)
                                : Complex{std::cos(angle), std::sin(angle)};
  // An infinite size leaves a part that is zero alone.
  return Complex{direction.re == 0.0 ? 0.0 : size * direction.re,
                 direction.im == 0.0 ? 0.0 : size * direction.im};
}

}  // namespace vexa
