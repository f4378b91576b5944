#include "numlib/interpolation/polynomial.h"

#include <cstddef>

namespace vexa {

namespace {

using Real = long double;

}  // namespace

PolynomialValue evaluatePolynomial(std::span<const double> c, double x) {
  Real value = c.back(), derivative = 0;
  for (std::size_t k = c.size() - 1; k-- > 0;) {
    derivative = derivative * x + value;
    value = value * x + c[k];
  }
  return {static_cast<double>(value), static_cast<double>(derivative)};
}

std::optional<std::vector<double>> polynomialThrough(std::span<const double> x,
                                                     std::span<const double> y,
                                                     const InterruptTest& interrupted) {
  const std::size_t n = x.size();
  std::vector<Real> a(y.begin(), y.end());
  // Newton's divided differences...
  for (std::size_t k = 1; k < n; ++k) {
    if (asksToStop(interrupted)) return std::nullopt;
    for (std::size_t i = n - 1; i >= k; --i)
      a[i] = (a[i] - a[i - 1]) / (static_cast<Real>(x[i]) - x[i - k]);
  }
  // ... whose nested products are multiplied out from the inside.
  for (std::size_t k = n - 1; k-- > 0;) {
    if (asksToStop(interrupted)) return std::nullopt;
    for (std::size_t i = k; i + 1 < n; ++i) a[i] -= a[i + 1] * x[k];
  }
  return std::vector<double>(a.begin(), a.end());
}

}  // namespace vexa
