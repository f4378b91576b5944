#include "numlib/special/bessel.h"

#include <boost/math/special_functions/bessel.hpp>
#include <cmath>
#include <limits>

#include "numlib/special/boost_policy.h"

namespace vexa {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool usableOrder(double n) { return std::fabs(n) <= besselOrderLimit; }

bool isWhole(double n) { return n == std::trunc(n); }

// The sign of J and I of a negative order near x = 0, that of 1 / gamma(1 + n); the library loses
// it where they leave the range.
double signNearZero(double n) { return n < 0 && std::fmod(std::floor(n), 2) == 0 ? -1 : 1; }

// J or I, of which `positive` gives the values for x > 0: the value at 0, and the parity of whole
// orders below.
template <class Positive>
double withParity(double n, double x, Positive positive) {
  if (!usableOrder(n) || std::isnan(x)) return kNaN;
  if (x > 0) return quietly(positive);
  if (n < 0 && !isWhole(n)) return kNaN;
  if (x == 0) return n == 0 ? 1.0 : 0.0;
  if (!isWhole(n)) return kNaN;
  const double value = quietly(positive);
  return std::fmod(n, 2) == 0 ? value : -value;
}

}  // namespace

double besselJ(double n, double x) {
  return withParity(n, x, [n, size = std::fabs(x)] {
    if (std::isinf(size)) return 0.0;
    const double value = boost::math::cyl_bessel_j(n, size, IgnoreErrors());
    return std::isinf(value) ? kInfinity * signNearZero(n) : value;
  });
}

double besselI(double n, double x) {
  return withParity(n, x, [n, size = std::fabs(x)] {
    if (std::isinf(size)) return kInfinity;
    const double value = boost::math::cyl_bessel_i(n, size, IgnoreErrors());
    return std::isinf(value) ? kInfinity * signNearZero(n) : value;
  });
}

double besselY(double n, double x) {
  if (!usableOrder(n) || !(x >= 0)) return kNaN;
  if (n < 0 && isWhole(n)) return std::fmod(n, 2) == 0 ? besselY(-n, x) : -besselY(-n, x);
  if (x == 0) return -kInfinity;
  if (std::isinf(x)) return 0.0;
  const double value = quietly([=] { return boost::math::cyl_neumann(n, x, IgnoreErrors()); });
  // Where Y leaves the range even of long double, the library may give not-a-number.
  return std::isnan(value) && n > x ? -kInfinity : value;
}

double besselK(double n, double x) {
  if (!usableOrder(n) || !(x >= 0)) return kNaN;
  if (x == 0) return kInfinity;
  if (std::isinf(x)) return 0.0;
  const double value = quietly([=] { return boost::math::cyl_bessel_k(n, x, IgnoreErrors()); });
  // The library gives not-a-number where K leaves the range even of long double.
  return std::isnan(value) ? kInfinity : value;
}

}  // namespace vexa
