#include "numlib/special/two_number_functions.h"

#include <cmath>
#include <limits>

namespace vexa {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Real = long double;

enum class Hyperbolic { cosh, sinh };

// From here on both functions of a quotient are taken apart into e^|x| and what stands beside it;
// below, nothing can overflow.
constexpr Real kPlainBelow = 20;

Real valueOf(Hyperbolic function, Real x) {
  return function == Hyperbolic::cosh ? std::cosh(x) : std::sinh(x);
}

// 2 e^-a times the function, for a >= 0.
Real besideExponential(Hyperbolic function, Real a) {
  return function == Hyperbolic::cosh ? 1 + std::exp(-2 * a) : -std::expm1(-2 * a);
}

double ratio(Hyperbolic upper, double x, Hyperbolic lower, double y) {
  const Real a = std::fabs(x), b = std::fabs(y);
  if (a < kPlainBelow && b < kPlainBelow)
    return static_cast<double>(valueOf(upper, x) / valueOf(lower, y));
  Real value = std::exp(a - b) * (besideExponential(upper, a) / besideExponential(lower, b));
  if (upper == Hyperbolic::sinh && std::signbit(x)) value = -value;
  if (lower == Hyperbolic::sinh && std::signbit(y)) value = -value;
  return static_cast<double>(value);
}

}  // namespace

// The library's gives infinity for an infinite part beside not-a-number.
double hypotenuse(double x, double y) {
  return std::isnan(x) || std::isnan(y) ? kNaN : std::hypot(x, y);
}

double floorRemainder(double x, double y) {
  const double remainder = std::fmod(x, y);
  if (remainder == 0) return std::copysign(0.0, y);
  return std::signbit(remainder) == std::signbit(y) ? remainder : remainder + y;
}

double magnitudeWithSign(double x, double y) {
  if (std::isnan(y)) return kNaN;
  return y >= 0 ? std::fabs(x) : -std::fabs(x);
}

double signOf(double x) {
  if (std::isnan(x)) return kNaN;
  return x > 0 ? 1.0 : x < 0 ? -1.0 : 0.0;
}

double whereNotNegative(double x, double y) {
  if (std::isnan(x)) return kNaN;
  return x >= 0 ? y : 0.0;
}

double coshOverCosh(double x, double y) { return ratio(Hyperbolic::cosh, x, Hyperbolic::cosh, y); }
double coshOverSinh(double x, double y) { return ratio(Hyperbolic::cosh, x, Hyperbolic::sinh, y); }
double sinhOverCosh(double x, double y) { return ratio(Hyperbolic::sinh, x, Hyperbolic::cosh, y); }
double sinhOverSinh(double x, double y) { return ratio(Hyperbolic::sinh, x, Hyperbolic::sinh, y); }

}  // namespace vexa
