#include "numlib/statistics/significance.h"

#include <algorithm>
#include <boost/math/distributions/fisher_f.hpp>
#include <boost/math/distributions/students_t.hpp>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace vexa {

namespace {

using Real = long double;

// Every error of the library ends in a value: not-a-number, infinity, zero.
using Policy = boost::math::policies::policy<
    boost::math::policies::domain_error<boost::math::policies::ignore_error>,
    boost::math::policies::pole_error<boost::math::policies::ignore_error>,
    boost::math::policies::overflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::underflow_error<boost::math::policies::ignore_error>,
    boost::math::policies::evaluation_error<boost::math::policies::ignore_error>>;

Real countOf(std::span<const double> v) { return static_cast<Real>(v.size()); }

// The mean less `origin`: near the values it keeps the digits that a large offset would take.
Real meanAbout(std::span<const double> v, double origin) {
  Real sum = 0;
  for (const double x : v) sum += static_cast<Real>(x) - origin;
  return sum / countOf(v);
}

// Sum of the squares of the deviations from `mean`, which is counted from the first element. What
// rounding left in their sum corrects it.
Real squaresOf(std::span<const double> v, Real mean) {
  Real squares = 0, rest = 0;
  for (const double x : v) {
    const Real d = (static_cast<Real>(x) - v.front()) - mean;
    squares += d * d;
    rest += d;
  }
  return squares - rest * rest / countOf(v);
}

// A sample of one value has no variance, however its mean was rounded.
bool isConstant(std::span<const double> v) {
  return std::ranges::all_of(v, [&v](double x) { return x == v.front(); });
}

Real varianceOf(std::span<const double> v) {
  return isConstant(v) ? 0 : squaresOf(v, meanAbout(v, v.front())) / (countOf(v) - 1);
}

Real differenceOfMeans(std::span<const double> x, std::span<const double> y) {
  return meanAbout(x, x.front()) - meanAbout(y, x.front());
}

// The difference of two numbers and what its rounding left out (Knuth's sum), so that differences
// of differences keep their digits whatever the pair's magnitudes.
struct Difference {
  Real value, rest;

  Difference(Real a, Real b) : value(a - b) {
    const Real part = value - a;
    rest = (a - (value - part)) - (b + part);
  }
  Real operator-(const Difference& other) const {
    return (value - other.value) + (rest - other.rest);
  }
};

double twoSidedStudent(Real t, Real degrees) {
  if (std::isinf(t)) return 0;
  const boost::math::students_t_distribution<Real, Policy> student(degrees);
  return static_cast<double>(2 * cdf(complement(student, std::fabs(t))));
}

// The difference of two means over the root of its variance.
TestResult studentTest(Real difference, Real variance, Real degrees) {
  if (!(variance > 0)) return std::nullopt;
  const Real t = difference / std::sqrt(variance);
  return Significance{static_cast<double>(t), twoSidedStudent(t, degrees)};
}

}  // namespace

TestResult correlation(std::span<const double> x, std::span<const double> y, double undefined) {
  if (isConstant(x) || isConstant(y)) return std::nullopt;
  const Real meanX = meanAbout(x, x.front()), meanY = meanAbout(y, y.front());
  const Real squaresX = squaresOf(x, meanX), squaresY = squaresOf(y, meanY);
  const auto dx = [&](std::size_t i) { return (static_cast<Real>(x[i]) - x[0]) - meanX; };
  const auto dy = [&](std::size_t i) { return (static_cast<Real>(y[i]) - y[0]) - meanY; };
  Real products = 0;
  for (std::size_t i = 0; i < x.size(); ++i) products += dx(i) * dy(i);
  const Real r = std::clamp(products / std::sqrt(squaresX * squaresY), Real{-1}, Real{1});
  if (x.size() == 2) return Significance{static_cast<double>(r), undefined};
  // 1 - r^2 from what the line through the points leaves: near 1 the difference has no digits.
  const Real slope = products / squaresX;
  Real left = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Real residual = dy(i) - slope * dx(i);
    left += residual * residual;
  }
  const Real degrees = countOf(x) - 2;
  const Real t = r * std::sqrt(degrees / (left / squaresY));
  return Significance{static_cast<double>(r), twoSidedStudent(t, degrees)};
}

TestResult varianceRatio(std::span<const double> x, std::span<const double> y) {
  const Real varianceY = varianceOf(y);
  if (!(varianceY > 0)) return std::nullopt;
  const Real ratio = varianceOf(x) / varianceY;
  const boost::math::fisher_f_distribution<Real, Policy> fisher(countOf(x) - 1, countOf(y) - 1);
  const Real tail = std::min(cdf(fisher, ratio), cdf(complement(fisher, ratio)));
  return Significance{static_cast<double>(ratio), static_cast<double>(std::min(2 * tail, Real{1}))};
}

TestResult equalVarianceTest(std::span<const double> x, std::span<const double> y) {
  const Real nx = countOf(x), ny = countOf(y), degrees = nx + ny - 2;
  const Real pooled = ((nx - 1) * varianceOf(x) + (ny - 1) * varianceOf(y)) / degrees;
  return studentTest(differenceOfMeans(x, y), pooled * (1 / nx + 1 / ny), degrees);
}

TestResult unequalVarianceTest(std::span<const double> x, std::span<const double> y) {
  const Real nx = countOf(x), ny = countOf(y);
  const Real partX = varianceOf(x) / nx, partY = varianceOf(y) / ny, sum = partX + partY;
  if (!(sum > 0)) return std::nullopt;
  // Shares of the sum, whose squares neither overflow nor vanish together.
  const Real shareX = partX / sum, shareY = partY / sum;
  const Real degrees = 1 / (shareX * shareX / (nx - 1) + shareY * shareY / (ny - 1));
  return studentTest(differenceOfMeans(x, y), sum, degrees);
}

TestResult pairedTest(std::span<const double> x, std::span<const double> y) {
  const Real n = countOf(x);
  const Difference first(x[0], y[0]);
  const auto shift = [&](std::size_t i) { return Difference(x[i], y[i]) - first; };
  Real sum = 0;
  for (std::size_t i = 0; i < x.size(); ++i) sum += shift(i);
  const Real mean = sum / n;
  Real squares = 0, rest = 0;
  bool constant = true;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Real d = shift(i) - mean;
    squares += d * d;
    rest += d;
    constant = constant && shift(i) == 0;
  }
  if (constant) return std::nullopt;
  return studentTest(first.value + mean, (squares - rest * rest / n) / (n - 1) / n, n - 1);
}

}  // namespace vexa
