#include "numlib/special/gamma.h"

// NOLINTNEXTLINE(modernize-deprecated-headers)
#include <math.h>  // lgammal_r, which <cmath> does not bring

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace vexa {

namespace {

// The work is done in long double, so that the rounding of a result to double is nearly all of its
// error.
using Real = long double;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr Real kEpsilon = std::numeric_limits<Real>::epsilon();
constexpr Real kTwoPi = 2 * std::numbers::pi_v<Real>;

// From here on Stirling's series, cut off after eight terms, is exact to 64 bits.
constexpr Real kStirlingFrom = 20;
// From here on the series and the continued fraction would need ten thousands of terms, and the
// uniform expansion only the few that are below.
constexpr Real kUniformFrom = 1e7L;

// std::lgamma keeps the sign of gamma in a variable of the process; this one does not.
Real logGammaReal(Real x) {
  int sign = 0;
  return ::lgammal_r(x, &sign);
}

// ln(x / a) - (x - a) / a, without cancellation for x near a.
Real logRatioMinusExcess(Real a, Real x) {
  const Real u = (x - a) / a;
  return std::fabs(u) > 0.5L ? std::log(x / a) - u : logarithmMinusExcess(u);
}

// x^a e^-x / gamma(a + 1). For large a the exponents are large and nearly cancel, so there the
// quantity is put together from what is left of them.
Real leadingFactor(Real a, Real x) {
  if (a < kStirlingFrom) return std::exp(a * std::log(x) - x - logGammaReal(a + 1));
  return std::exp(a * logRatioMinusExcess(a, x) - stirlingRemainder(a)) / std::sqrt(kTwoPi * a);
}

// P(a, x) = factor (1 + x/(a+1) + x^2/((a+1)(a+2)) + ...): all terms positive, and falling for
// x < a + 1.
Real seriesForP(Real a, Real x) {
  Real sum = 1;
  Real term = 1;
  for (Real n = a + 1; term > kEpsilon * sum / 4; n += 1) {
    term *= x / n;
    sum += term;
  }
  return leadingFactor(a, x) * sum;
}

// 1 - P(a, x) for x >= a + 1, by Legendre's continued fraction
// a factor / (x+1-a - 1(1-a)/(x+3-a - 2(2-a)/(x+5-a - ...))), forwards by Lentz's method.
Real fractionForQ(Real a, Real x) {
  constexpr Real kTiny = 1e-4000L;  // stands for a denominator that vanishes on the way
  const Real factor = a * leadingFactor(a, x);
  if (factor == 0) return 0;
  Real b = x + 1 - a;
  Real c = 1 / kTiny;
  Real d = 1 / b;
  Real value = d;
  for (Real k = 1;; k += 1) {
    const Real numerator = k * (a - k);
    b += 2;
    d = numerator * d + b;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = b + numerator / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1 / d;
    const Real step = d * c;
    value *= step;
    if (std::fabs(step - 1) <= 2 * kEpsilon) return factor * value;
  }
}

// Temme's uniform expansion, P = erfc(-eta sqrt(a/2)) / 2 - e^(-a eta^2/2) (c0 + c1/a) /
// sqrt(2 pi a), where eta^2/2 = (x-a)/a - ln(x/a) and eta has the sign of x - a; Q is the same with
// both signs turned. Where e^(...) is not zero, |eta| is below 0.0125 for these a: the powers left
// out do not reach 64 bits.
enum class Side { lower, upper };

Real uniform(Real a, Real x, Side side) {
  const Real halfSquare = -logRatioMinusExcess(a, x);
  const Real eta = std::copysign(std::sqrt(2 * halfSquare), x - a);
  const Real c0 =
      -1.0L / 3 +
      eta *
          (1.0L / 12 + eta * (-2.0L / 135 +
                              eta * (1.0L / 864 + eta * (1.0L / 2835 - eta * (139.0L / 777600)))));
  const Real c1 = -1.0L / 540 + eta * (-1.0L / 288 + eta * (1.0L / 378));
  const Real correction = std::exp(-a * halfSquare) * (c0 + c1 / a) / std::sqrt(kTwoPi * a);
  const Real sign = side == Side::lower ? -1 : 1;
  return std::erfc(sign * std::copysign(std::sqrt(a * halfSquare), eta)) / 2 +
         sign * (std::isfinite(correction) ? correction : 0.0L);
}

}  // namespace

double logGamma(double x) { return static_cast<double>(logGammaReal(x)); }

double regularizedGammaP(double a, double x) {
  if (!(a > 0) || !(x >= 0) || (std::isinf(a) && std::isinf(x))) return kNaN;
  if (x == 0 || std::isinf(a)) return 0.0;
  if (std::isinf(x)) return 1.0;
  if (a >= kUniformFrom) return static_cast<double>(uniform(a, x, Side::lower));
  if (x < a + 1) return static_cast<double>(seriesForP(a, x));
  return static_cast<double>(1 - fractionForQ(a, x));
}

double regularizedGammaQ(double a, double x) {
  if (!(a > 0) || !(x >= 0) || (std::isinf(a) && std::isinf(x))) return kNaN;
  if (x == 0 || std::isinf(a)) return 1.0;
  if (std::isinf(x)) return 0.0;
  if (a >= kUniformFrom) return static_cast<double>(uniform(a, x, Side::upper));
  if (x < a + 1) return static_cast<double>(1 - seriesForP(a, x));
  return static_cast<double>(fractionForQ(a, x));
}

// P(1/2, x^2) is erf(|x|) exactly: put t = s^2 in the integral of P. The library's erf is the
// better way to it, since the square would overflow, vanish or be rounded.
double erfValue(double x) { return std::erf(x); }

long double logarithmMinusExcess(long double u) {
  if (std::fabs(u) > 0.5L) return std::log1p(u) - u;
  // With v = u / (2 + u): ln(1 + u) = 2 (v + v^3/3 + v^5/5 + ...) and 2v - u = -uv.
  const Real v = u / (2 + u);
  Real sum = 0.0L;
  Real power = v * v * v;
  for (int k = 3; std::fabs(power) > kEpsilon * std::fabs(sum); k += 2, power *= v * v) {
    sum += power / static_cast<Real>(k);
  }
  return -u * v + 2 * sum;
}

long double stirlingRemainder(long double a) {
  constexpr std::array<Real, 8> kTerms = {1.0L / 12,    -1.0L / 360,      1.0L / 1260,
                                          -1.0L / 1680, 1.0L / 1188,      -691.0L / 360360,
                                          1.0L / 156,   -3617.0L / 122400};
  const Real square = 1 / (a * a);
  Real sum = 0.0L;
  for (std::size_t k = kTerms.size(); k-- > 0;) sum = sum * square + kTerms[k];
  return sum / a;
}

double factorial(int n) {
  constexpr int kTableSize = 33;
  static std::array<float, kTableSize> table = {1, 1, 2, 6, 24};
  static int known = 4;

  if (n < 0) return kNaN;
  if (n >= kTableSize) return std::exp(logGamma(n + 1.0));
  for (; known < n; ++known) {
    const auto next = static_cast<std::size_t>(known) + 1;
    table[next] = static_cast<float>(next) * table[next - 1];
  }
  return static_cast<double>(table[static_cast<std::size_t>(n)]);
}

}  // namespace vexa
