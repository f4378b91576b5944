#include <algorithm>
#include <cmath>
#include <complex>
#include <span>

#include "numlib/calculus/polynomial_roots.h"
#include "numlib/fitting/moving_average.h"
#include "numlib/interpolation/cubic_spline.h"
#include "numlib/interpolation/polynomial.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

using Numbers = std::span<const double>;
using Extended = long double;

// What stands in a row behind its first numbers: coefficients, points or a series.
Numbers dataOf(const ReferenceRow& row, std::size_t first) {
  return Numbers(row.arguments).subspan(first);
}

// All abscissae, then all ordinates.
PointTable tableOf(const ReferenceRow& row, std::size_t first) {
  const Numbers points = dataOf(row, first);
  return {points.first(points.size() / 2), points.last(points.size() / 2)};
}

double one(const ReferenceRow&) { return 1; }

// Units of rows that hold their size.
template <std::size_t Place>
double storedSize(const ReferenceRow& row) {
  return 1e-13 * row[Place];
}

// Below the range of normal numbers nothing is nearer than their spacing.
double unitOfSum(Extended sum) {
  return std::max(static_cast<double>(2 * halfEpsilon * sum),
                  std::numeric_limits<double>::denorm_min());
}

// The sum of |c[k] x^k|.
Extended sumOfTerms(Numbers c, Extended x) {
  Extended sum = 0;
  for (std::size_t k = c.size(); k-- > 0;) sum = sum * x + std::fabs(c[k]);
  return sum;
}

// ---- Polynomials ----

double roundingOfValue(const ReferenceRow& row) {
  return unitOfSum(sumOfTerms(dataOf(row, 1), std::fabs(row[0])));
}

double roundingOfSlope(const ReferenceRow& row) {
  std::vector<double> slope;
  const Numbers c = dataOf(row, 1);
  for (std::size_t k = 1; k < c.size(); ++k) slope.push_back(static_cast<double>(k) * c[k]);
  return unitOfSum(sumOfTerms(slope, std::fabs(row[0])));
}

double sizeOfRoot(const ReferenceRow& row) { return 1e-14 * std::hypot(row[1], row[2]); }

// The part that the row names of the root that is nearest to the one that it means.
double partOfRoot(const ReferenceRow& row) {
  const std::complex<double> near(row[1], row[2]);
  const auto roots = *polynomialRoots(dataOf(row, 3));
  const auto root =
      *std::ranges::min_element(roots, {}, [&](auto z) { return std::abs(z - near); });
  return row[0] == 0 ? root.real() : root.imag();
}

// How far the polynomial is from 0 at its roots, in the smallest roundings of its terms.
double worstResidual(const ReferenceRow& row) {
  const Numbers c = dataOf(row, 0);
  const auto roots = *polynomialRoots(c);
  Extended worst = 0;
  for (const std::complex<Extended> z : roots) {
    std::complex<Extended> value = 0;
    for (std::size_t k = c.size(); k-- > 0;) value = value * z + static_cast<Extended>(c[k]);
    if (value == Extended(0)) continue;
    worst = std::max(worst, std::abs(value) / sumOfTerms(c, std::abs(z)));
  }
  return static_cast<double>(worst / (static_cast<Extended>(c.size() - 1) * halfEpsilon));
}

double coefficientThrough(const ReferenceRow& row) {
  const PointTable table = tableOf(row, 2);
  return (*polynomialThrough(table.x, table.y))[static_cast<std::size_t>(row[0])];
}

double worstMissOfPoints(const ReferenceRow& row) {
  const PointTable table = tableOf(row, 0);
  const std::vector<double> c = *polynomialThrough(table.x, table.y);
  double worst = 0;
  for (std::size_t i = 0; i < table.size(); ++i) {
    const double miss = std::fabs(evaluatePolynomial(c, table.x[i]).value - table.y[i]);
    worst = std::max(worst, miss / static_cast<double>(sumOfTerms(c, std::fabs(table.x[i]))));
  }
  return worst / (static_cast<double>(table.size()) * halfEpsilon);
}

// ---- Splines and averages ----

std::vector<double> momentsOf(const ReferenceRow& row, const PointTable& table) {
  std::vector<double> m(table.size());
  splineMoments(table, {static_cast<SplineEnd>(row[0]), row[1], row[2]}, m);
  return m;
}

double splineMoment(const ReferenceRow& row) {
  return momentsOf(row, tableOf(row, 5))[static_cast<std::size_t>(row[3])];
}

double splineQuantity(const ReferenceRow& row) {
  const PointTable table = tableOf(row, 6);
  const std::vector<double> m = momentsOf(row, table);
  return CubicSpline(table, m, static_cast<SplineQuantity>(row[3]))(row[4]);
}

double roundingOfMean(const ReferenceRow& row) { return unitOfSum(row[3]); }

double meanOfWindow(const ReferenceRow& row) {
  const auto means = movingAverage(dataOf(row, 4), static_cast<std::size_t>(row[1]),
                                   static_cast<WindowEnds>(row[0]));
  return means[static_cast<std::size_t>(row[2])];
}

}  // namespace

void addInterpolation(std::vector<AccuracyEntry>& table) {
  table.insert(
      table.end(),
      {{"roots", "interpolation/roots.csv", 1, "1e-14 |z|", sizeOfRoot, partOfRoot},
       {"roots, residual", "interpolation/roots_residual.csv", 8, "n 2^-53 sum|c z^k|", one,
        worstResidual},
       {"poly", "interpolation/poly.csv", 1, "2^-52 sum|c x^k|", roundingOfValue,
        [](Arguments v) { return evaluatePolynomial(dataOf(v, 1), v[0]).value; }},
       {"poly, derivative", "interpolation/poly_slope.csv", 1, "2^-52 sum|kc x^(k-1)|",
        roundingOfSlope,
        [](Arguments v) { return evaluatePolynomial(dataOf(v, 1), v[0]).derivative; }},
       {"polycoe", "interpolation/polycoe.csv", 1, "1e-13 max|c|", storedSize<1>,
        coefficientThrough},
       {"polycoe, residual", "interpolation/polycoe_residual.csv", 4, "n 2^-53 sum|c x^k|", one,
        worstMissOfPoints},
       {"spline", "interpolation/spline.csv", 1, "1e-13 max|m|", storedSize<4>, splineMoment},
       {"splint", "interpolation/splint.csv", 1, "1e-13 max", storedSize<5>, splineQuantity},
       {"movingaverage", "interpolation/movingaverage.csv", 1, "2^-52 mean|y|", roundingOfMean,
        meanOfWindow}});
}

}  // namespace vexa
