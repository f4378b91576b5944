#include "numlib/calculus/gauss_points.h"

#include <Eigen/Eigenvalues>
#include <boost/math/special_functions/beta.hpp>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "numlib/special/boost_policy.h"

namespace vexa {

namespace {

using Real = long double;

// x p[k] = off[k+1] p[k+1] + diagonal[k] p[k] + off[k] p[k-1] for the orthonormal polynomials, and
// the logarithm of the integral of W, which may leave the range where the weights do not.
struct Recurrence {
  std::vector<Real> diagonal, off;
  Real logTotal = 0;
  bool symmetric = true;

  std::size_t size() const { return diagonal.size(); }
};

// The logarithm of the beta function. The logarithms of gamma are large numbers that nearly cancel,
// so they serve only where the function itself leaves the range.
Real logBeta(Real a, Real b) {
  const Real value = quietly([=] { return boost::math::beta(a, b, IgnoreErrors()); });
  if (std::isnormal(value)) return std::log(value);
  return std::lgamma(a) + std::lgamma(b) - std::lgamma(a + b);
}

void fillJacobi(Recurrence& r, Real alpha, Real beta) {
  const Real sum = alpha + beta;
  r.symmetric = alpha == beta;
  r.logTotal = (sum + 1) * std::numbers::ln2_v<Real> + logBeta(alpha + 1, beta + 1);
  r.diagonal[0] = (beta - alpha) / (sum + 2);
  for (std::size_t k = 1; k < r.size(); ++k) {
    const auto j = static_cast<Real>(k);
    const Real twice = 2 * j + sum;
    r.diagonal[k] = (beta - alpha) * sum / (twice * (twice + 2));
    // The first one by itself: for a sum of -1 the general form is 0 / 0.
    const Real square = k == 1 ? 4 * (alpha + 1) * (beta + 1) / ((sum + 2) * (sum + 2) * (sum + 3))
                               : 4 * j * (j + alpha) * (j + beta) * (j + sum) /
                                     (twice * twice * (twice + 1) * (twice - 1));
    r.off[k] = std::sqrt(square);
  }
}

Recurrence recurrence(int n, const GaussWeight& weight) {
  Recurrence r;
  r.diagonal.assign(static_cast<std::size_t>(n), 0);
  r.off.assign(static_cast<std::size_t>(n), 0);
  const Real alpha = weight.alpha;
  const Real logPi = std::log(std::numbers::pi_v<Real>);
  const auto fill = [&r](auto diagonal, auto square) {
    for (std::size_t k = 0; k < r.size(); ++k) {
      r.diagonal[k] = diagonal(static_cast<Real>(k));
      if (k > 0) r.off[k] = std::sqrt(square(static_cast<Real>(k)));
    }
  };
  const auto none = [](Real) { return 0.0L; };
  switch (weight.family) {
    case GaussFamily::legendre:
      fill(none, [](Real k) { return k * k / (4 * k * k - 1); });
      r.logTotal = std::numbers::ln2_v<Real>;
      break;
    case GaussFamily::laguerre:
      fill([alpha](Real k) { return 2 * k + 1 + alpha; },
           [alpha](Real k) { return k * (k + alpha); });
      r.logTotal = std::lgamma(alpha + 1);
      r.symmetric = false;
      break;
    case GaussFamily::hermite:
      fill(none, [](Real k) { return k / 2; });
      r.logTotal = logPi / 2;
      break;
    case GaussFamily::chebyshev:
      fill(none, [](Real k) { return k == 1 ? 0.5L : 0.25L; });
      r.logTotal = logPi;
      break;
    case GaussFamily::jacobi:
      fillJacobi(r, alpha, weight.beta);
      break;
  }
  return r;
}

// A node and the logarithm of its weight without the integral of W.
struct Point {
  Real node, logWeight;
};

// The value of the last polynomial is in units of the unknown off[n], which its zeros do not need.
Point refine(const Recurrence& r, Real x) {
  constexpr int kSteps = 4;
  Real squares = 0;
  for (int step = 0; step < kSteps; ++step) {
    Real before = 0, value = 1, slopeBefore = 0, slope = 0;
    squares = 0;
    for (std::size_t k = 0; k < r.size(); ++k) {
      squares += value * value;
      const Real next = k + 1 < r.size() ? r.off[k + 1] : 1;
      const Real p = ((x - r.diagonal[k]) * value - r.off[k] * before) / next;
      const Real q = ((x - r.diagonal[k]) * slope + value - r.off[k] * slopeBefore) / next;
      before = value;
      value = p;
      slopeBefore = slope;
      slope = q;
    }
    // The last step only sums the squares.
    if (step + 1 < kSteps) x -= value / slope;
  }
  return {x, -std::log(squares)};
}

std::vector<double> startingValues(const Recurrence& r) {
  const auto n = static_cast<Eigen::Index>(r.size());
  Eigen::VectorXd diagonal(n), off(n - 1);
  for (Eigen::Index k = 0; k < n; ++k) {
    diagonal(k) = static_cast<double>(r.diagonal[static_cast<std::size_t>(k)]);
    if (k > 0) off(k - 1) = static_cast<double>(r.off[static_cast<std::size_t>(k)]);
  }
  Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver;
  solver.computeFromTridiagonal(diagonal, off, Eigen::EigenvaluesOnly);
  return {solver.eigenvalues().begin(), solver.eigenvalues().end()};
}

std::vector<Point> points(int n, const GaussWeight& weight) {
  const Recurrence r = recurrence(n, weight);
  std::vector<Point> all;
  for (const double start : startingValues(r)) {
    all.push_back(refine(r, start));
    all.back().logWeight += r.logTotal;
  }
  if (!r.symmetric) return all;
  for (std::size_t i = 0, j = all.size() - 1; i <= j; ++i, --j) {
    all[j] = {i == j ? 0.0L : std::fabs(all[j].node), all[j].logWeight};
    all[i] = {-all[j].node, all[j].logWeight};
    if (i == j) all[i].node = 0;
    if (j == 0) break;
  }
  return all;
}

}  // namespace

GaussPoints gaussPoints(int n, const GaussWeight& weight) {
  GaussPoints result;
  for (const Point& point : points(n, weight)) {
    result.nodes.push_back(static_cast<double>(point.node));
    result.weights.push_back(static_cast<double>(std::exp(point.logWeight)));
  }
  return result;
}

GaussPoints gaussPointsBetween(int n, double from, double to) {
  GaussPoints result;
  const Real middle = (static_cast<Real>(from) + to) / 2;
  const Real half = (static_cast<Real>(to) - from) / 2;
  for (const Point& point : points(n, {})) {
    result.nodes.push_back(static_cast<double>(middle + std::fabs(half) * point.node));
    result.weights.push_back(static_cast<double>(half * std::exp(point.logWeight)));
  }
  return result;
}

}  // namespace vexa
