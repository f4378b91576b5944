#include "numlib/interpolation/polynomial.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <utility>

namespace vexa {

namespace {

using Real = long double;
using Reals = std::vector<Real>;

constexpr int mostRefinements = 3;
constexpr Real unnoticed = std::numeric_limits<double>::epsilon() / 16;

// Replaces the ordinates a by coefficients.
std::optional<Reals> newtonToPowers(std::span<const double> x, Reals a,
                                    const InterruptTest& interrupted) {
  const std::size_t n = x.size();
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
  return a;
}

// What a polynomial leaves of the ordinates, and the worst of it as a part of its terms' sum.
struct Misses {
  Reals values;
  Real worst = 0;
};

Misses missesOf(const Reals& c, std::span<const double> x, std::span<const double> y) {
  Misses misses;
  for (std::size_t i = 0; i < x.size(); ++i) {
    Real value = 0, sum = 0;
    for (std::size_t k = c.size(); k-- > 0;) {
      value = value * x[i] + c[k];
      sum = sum * std::fabs(x[i]) + std::fabs(c[k]);
    }
    misses.values.push_back(y[i] - value);
    if (value != y[i]) misses.worst = std::max(misses.worst, std::fabs(y[i] - value) / sum);
  }
  return misses;
}

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
  auto c = newtonToPowers(x, {y.begin(), y.end()}, interrupted);
  if (!c) return std::nullopt;
  // Clustered points in a bad order cost the scheme hundreds of roundings.
  Misses misses = missesOf(*c, x, y);
  for (int round = 0; round < mostRefinements && misses.worst > unnoticed; ++round) {
    auto refined = newtonToPowers(x, misses.values, interrupted);
    if (!refined) return std::nullopt;
    std::ranges::transform(*c, *refined, refined->begin(), std::plus());
    Misses left = missesOf(*refined, x, y);
    if (!(left.worst < misses.worst)) break;
    c = std::move(refined);
    misses = std::move(left);
  }
  return std::vector<double>(c->begin(), c->end());
}

}  // namespace vexa
