#include "numlib/special/beta_functions.h"

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <utility>

#include "numlib/special/boost_policy.h"
#include "numlib/special/gamma.h"

namespace vexa {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Real = long double;
__extension__ using Quad = __float128;
__extension__ using Wide = unsigned __int128;

constexpr double kLargestCount = 1e6;
constexpr double kLargestWhole = 0x1p63;

// n over k for whole 0 <= k <= n / 2: in whole numbers while they hold each product, which the
// division by j leaves exact, then in long double.
double binomialOfWhole(std::uint64_t n, std::uint64_t k) {
  constexpr Wide kLargest = ~Wide{0};
  Wide value = 1;
  std::uint64_t j = 1;
  for (; j <= k && value <= kLargest / (n - k + j); ++j) value = value * (n - k + j) / j;
  if (j > k) return static_cast<double>(value);
  auto rest = static_cast<Real>(value);
  for (; j <= k && std::isfinite(rest); ++j)
    rest = rest * static_cast<Real>(n - k + j) / static_cast<Real>(j);
  return static_cast<double>(rest);
}

// n over k for any n. The product may leave the range on its way to a value within it, so its
// exponent is kept apart.
double binomialByProduct(double n, int k) {
  constexpr int kBitsBetween = 8000;
  Real product = 1;
  int exponent = 0;
  for (int j = 1; j <= k && product != 0; ++j) {
    product *= (static_cast<Real>(n) - (j - 1)) / j;
    const int bits = product == 0 ? 0 : std::ilogb(product);
    if (bits > -kBitsBetween && bits < kBitsBetween) continue;
    product = std::scalbn(product, -bits);
    exponent += bits;
  }
  return static_cast<double>(std::scalbn(product, exponent));
}

// What the incomplete integral of large parameters is made of, below the mean m = a / (a + b):
// above it, the same seen from the other end.
struct LargeBeta {
  LargeBeta(double first, double second, double at, Tail of)
      : a(first), b(second), x(at), tail(of) {
    // The distance from the mean counts in units of sqrt(m (1 - m) / (a + b)), so it needs the
    // digits that the difference takes away.
    Quad beyond = static_cast<Quad>(x) * b - (1 - static_cast<Quad>(x)) * a;
    if (beyond > 0) {
      std::swap(a, b);
      x = 1 - x;
      beyond = -beyond;
      tail = tail == Tail::lower ? Tail::upper : Tail::lower;
    }
    below = static_cast<Real>(-beyond);
    exponent = a * logarithmMinusExcess(-below / a) + b * logarithmMinusExcess(below / b);
  }

  double ofLower(Real lower) const {
    return static_cast<double>(tail == Tail::lower ? lower : 1 - lower);
  }

  Real a, b, x;
  Tail tail;      // that is asked for
  Real below;     // (a + b) (m - x)
  Real exponent;  // a ln(x/m) + b ln((1-x)/(1-m))
};

// From here on the library's powers lose digits, up to half of them for parameters of 1e10.
constexpr double kLargeFrom = 1000;
constexpr Real kMostTerms = 1e7L;  // ten thousands are usual at the upper end

// The continued fraction of DiDonato and Morris (ACM TOMS 18, 1992, BFRAC), forwards by Lentz's
// method, with the leading factor put together from what is left of large exponents.
double betaByFraction(const LargeBeta& p) {
  const Real a = p.a, b = p.b, sum = a + b;
  const Real factor =
      std::exp(p.exponent + stirlingRemainder(sum) - stirlingRemainder(a) - stirlingRemainder(b)) *
      std::sqrt(a / sum * b / (2 * std::numbers::pi_v<Real>));
  if (factor == 0) return p.ofLower(0);
  Real value = a * (p.below + 1) / (a + 1);
  Real c = value, d = 0, step = 0;
  constexpr Real kSettled = 2 * std::numeric_limits<Real>::epsilon();
  for (Real n = 1; std::fabs(step - 1) > kSettled && n < kMostTerms; n += 1) {
    const Real middle = a + 2 * n - 1;
    const Real numerator =
        (a + n - 1) / middle * ((sum + n - 1) / middle) * (n * (b - n)) * (p.x * p.x);
    const Real plain =
        n + n * (b - n) * p.x / middle + (a + n) / (middle + 2) * (p.below + 1 + n * (2 - p.x));
    d = 1 / (plain + numerator * d);
    c = plain + numerator / c;
    step = c * d;
    value *= step;
  }
  return p.ofLower(factor / value);
}

// From here on the continued fraction would need too many terms near the mean.
constexpr double kUniformFrom = 1e16;

// Temme's uniform expansion of I_x(a, b) with the first term of its remainder, right to about
// 1 / min(a, b): with r = a + b, erfc(sqrt(-e)) / 2 + e^e (1 - 2m) / (3 sqrt(2 pi r m (1 - m))),
// where e is the exponent.
double betaByExpansion(const LargeBeta& p) {
  const Real sum = p.a + p.b;
  const Real skew = std::exp(p.exponent) * ((p.b - p.a) / sum) /
                    (3 * std::sqrt(2 * std::numbers::pi_v<Real> * p.a * (p.b / sum)));
  return p.ofLower(std::erfc(std::sqrt(-p.exponent)) / 2 + skew);
}

}  // namespace

double betaFunction(double a, double b) {
  if (!(a > 0) || !(b > 0)) return kNaN;
  if (std::isinf(a) || std::isinf(b)) return 0.0;
  return quietly([=] { return boost::math::beta(a, b, IgnoreErrors()); });
}

double regularizedBeta(double a, double b, double x, Tail tail) {
  if (!(a > 0) || !(b > 0) || !(x >= 0 && x <= 1)) return kNaN;
  if (std::isinf(a) && std::isinf(b)) return kNaN;
  const bool lower = tail == Tail::lower;
  // All of the weight stands at one end then.
  if (std::isinf(a)) return (x == 1) == lower ? 1.0 : 0.0;
  if (std::isinf(b)) return (x > 0) == lower ? 1.0 : 0.0;
  if (const double least = std::fmin(a, b); least >= kLargeFrom && x > 0 && x < 1) {
    const LargeBeta large(a, b, x, tail);
    return least < kUniformFrom ? betaByFraction(large) : betaByExpansion(large);
  }
  return quietly([=] {
    return lower ? boost::math::ibeta(a, b, x, IgnoreErrors())
                 : boost::math::ibetac(a, b, x, IgnoreErrors());
  });
}

// Our own functions keep their digits far from the middle, where the library's lose two for large
// a. What remains for the library is a small upper tail near the lower end.
double regularizedGamma(double a, double x, Tail tail) {
  if (tail == Tail::lower) return regularizedGammaP(a, x);
  if (!(a < 1) || !(x < a + 1) || !(a > 0) || !(x >= 0)) return regularizedGammaQ(a, x);
  return quietly([=] { return boost::math::gamma_q(a, x, IgnoreErrors()); });
}

double binomialCoefficient(double n, double k) {
  if (std::isnan(n) || !(std::fabs(k) <= kLargestCount)) return kNaN;
  const double count = std::trunc(k);
  if (count < 0) return 0.0;
  if (std::isinf(n))
    return count == 0 ? 1.0 : n < 0 && std::fmod(count, 2) != 0 ? -kInfinity : kInfinity;
  if (n != std::trunc(n) || std::fabs(n) + count >= kLargestWhole)
    return binomialByProduct(n, static_cast<int>(count));
  if (n < 0) {
    // Taking the sign out of each factor leaves count - n - 1 over count.
    const double magnitude = binomialCoefficient(count - n - 1, count);
    return std::fmod(count, 2) == 0 ? magnitude : -magnitude;
  }
  if (count > n) return 0.0;
  return binomialOfWhole(static_cast<std::uint64_t>(n),
                         static_cast<std::uint64_t>(std::fmin(count, n - count)));
}

}  // namespace vexa
