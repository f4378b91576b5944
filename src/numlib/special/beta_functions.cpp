#include "numlib/special/beta_functions.h"

#include <boost/math/special_functions/beta.hpp>
#include <boost/math/special_functions/gamma.hpp>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

#include "numlib/special/boost_policy.h"
#include "numlib/special/gamma.h"

namespace vexa {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Real = long double;
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

// ln(1 + u) - u, without cancellation for small u.
Real logarithmMinusExcess(Real u) {
  if (std::fabs(u) > 1e-3L) return std::log1p(u) - u;
  Real sum = 0, power = u * u;
  for (int k = 2; k <= 9; ++k, power *= -u) sum -= power / k;
  return sum;
}

// From here on the library's continued fraction would need too many terms near the mean.
constexpr double kUniformFrom = 1e11;

// Temme's uniform expansion of I_x(a, b) with the first term of its remainder, right to about
// 1 / min(a, b): with r = a + b and the mean m = a / r, erfc(-+ sqrt(-r e)) / 2 +-
// e^(r e) (1 - 2m) / (3 sqrt(2 pi r m (1 - m))), where e = m ln(x/m) + (1 - m) ln((1-x)/(1-m)).
double betaOfLarge(double a, double b, double x, Tail tail) {
  const Real r = static_cast<Real>(a) + b;
  const Real mean = a / r, rest = b / r;
  const Real distance = x - mean;
  const Real exponent = r * (mean * logarithmMinusExcess(distance / mean) +
                             rest * logarithmMinusExcess(-distance / rest));
  const Real sign = tail == Tail::lower ? 1 : -1;
  const Real skew = std::exp(exponent) * (rest - mean) /
                    (3 * std::sqrt(2 * std::numbers::pi_v<Real> * r * mean * rest));
  const Real wave = std::copysign(std::sqrt(std::fmax(-exponent, 0.0L)), distance);
  return static_cast<double>(std::erfc(-sign * wave) / 2 + sign * skew);
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
  if (std::fmin(a, b) >= kUniformFrom && x > 0 && x < 1) return betaOfLarge(a, b, x, tail);
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
