#include "numlib/interpolation/cubic_spline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;
using Quantity = SplineQuantity;

struct Curve {
  Numbers x, y;
  SplineEnds ends;
  Numbers m = moments();

  PointTable table() const { return {x, y}; }
  Numbers moments() const {
    Numbers result(x.size());
    splineMoments(table(), ends, result);
    return result;
  }
  double at(double xv, Quantity quantity = Quantity::value) const {
    return CubicSpline(table(), m, quantity)(xv);
  }
};

void expectNear(const Numbers& found, const Numbers& expected, double allowed) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], allowed) << i;
}

// The natural, clamped and not-a-knot systems of four points solved by hand in fractions; the
// periodic one is 6, -18, 6 fifths.
TEST(CubicSpline, SecondDerivativesOfFourPoints) {
  const Numbers x{0, 1, 2, 4}, y{0, 1, 0, 2};
  expectNear(Curve{x, y, {}}.m, {0, -84.0 / 23, 60.0 / 23, 0}, 1e-15);
  expectNear(Curve{x, y, {SplineEnd::notAKnot}}.m, {-4.5, -2, 0.5, 5.5}, 1e-14);
  expectNear(Curve{x, y, {SplineEnd::clamped, 0, 0}}.m,
             {63.0 / 11, -60.0 / 11, 45.0 / 11, -39.0 / 11}, 1e-14);
  expectNear(Curve{x, {0, 1, 0, 0}, {SplineEnd::periodic}}.m, {1.2, -3.6, 1.2, 1.2}, 1e-15);
}

TEST(CubicSpline, FewPoints) {
  const Numbers x2{1, 3}, y2{5, 1}, x3{0, 1, 3}, y3{1, 0, 4};
  EXPECT_EQ(Curve({x2, y2, {}}).at(2), 3);
  EXPECT_EQ(Curve({x2, y2, {SplineEnd::notAKnot}}).at(5), -3);
  // 5 - 2t + 0t^2 has the slopes -2 at both ends; a bend needs others.
  const Curve bent{x2, y2, {SplineEnd::clamped, 0, 0}};
  EXPECT_NEAR(bent.at(1, Quantity::slope), 0, 1e-15);
  EXPECT_NEAR(bent.at(3, Quantity::slope), 0, 1e-15);
  const Curve parabola{x3, y3, {SplineEnd::notAKnot}};
  EXPECT_NEAR(parabola.at(2), 1 - 2 + 0 + 2, 1e-15) << "x^2 - 2x + 1";
  const Curve closed{x3, {1, 0, 1}, {SplineEnd::periodic}};
  EXPECT_NEAR(closed.at(0, Quantity::slope), closed.at(3, Quantity::slope), 1e-15);
  EXPECT_EQ(closed.m[0], closed.m[2]);
}

TEST(CubicSpline, CubicsAreReproducedByEndsThatKnowThem) {
  const auto f = [](double x) { return ((2 * x - 3) * x + 0.5) * x - 7; };
  const auto slope = [](double x) { return (6 * x - 6) * x + 0.5; };
  const auto area = [](double x) { return ((x / 2 - 1) * x + 0.25) * x * x - 7 * x; };
  const Numbers x{-1, -0.9, 0.3, 1, 1.01, 2.5};
  Numbers y;
  for (const double at : x) y.push_back(f(at));
  for (const SplineEnds ends :
       {SplineEnds{SplineEnd::notAKnot}, SplineEnds{SplineEnd::clamped, slope(-1), slope(2.5)}}) {
    const Curve curve{x, y, ends};
    for (double at = -2; at <= 3.5; at += 0.11) {
      const double allowed = 1e-13 * 20;
      EXPECT_NEAR(curve.at(at), f(at), allowed) << at;
      EXPECT_NEAR(curve.at(at, Quantity::slope), slope(at), 4 * allowed) << at;
      EXPECT_NEAR(curve.at(at, Quantity::curvature), 12 * at - 6, 30 * allowed) << at;
      EXPECT_NEAR(curve.at(at, Quantity::integral), area(at) - area(-1), allowed) << at;
    }
  }
}

// Random tables with spacings of very different sizes: what makes a curve a spline of its kind.
TEST(CubicSpline, PassesThroughPointsAndIsSmooth) {
  std::mt19937 generator(505);  // the seed of the random case
  std::uniform_real_distribution<double> any(0, 1);
  for (const SplineEnd kind :
       {SplineEnd::natural, SplineEnd::clamped, SplineEnd::notAKnot, SplineEnd::periodic}) {
    Numbers x{-3}, y;
    for (int i = 1; i < 40; ++i) x.push_back(x.back() + std::pow(10, 2 * any(generator) - 1));
    for (std::size_t i = 0; i < x.size(); ++i) y.push_back(any(generator));
    if (kind == SplineEnd::periodic) y.back() = y.front();
    const Curve curve{x, y, {kind, 3, -2}};
    double largestSlope = 0;
    for (const double at : x)
      largestSlope = std::max(largestSlope, std::fabs(curve.at(at, Quantity::slope)));
    for (std::size_t k = 0; k < x.size(); ++k) EXPECT_EQ(curve.at(x[k]), y[k]) << k;
    for (std::size_t k = 1; k + 1 < x.size(); ++k) {
      // The piece before the point, with a table that ends there.
      const Numbers headX(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(k) + 1);
      const CubicSpline before({headX, y}, curve.m, Quantity::slope);
      EXPECT_NEAR(before(x[k]), curve.at(x[k], Quantity::slope), 1e-13 * largestSlope) << k;
    }
    const double first = curve.at(x.front(), Quantity::slope);
    const double last = curve.at(x.back(), Quantity::slope);
    if (kind == SplineEnd::clamped) {
      EXPECT_NEAR(first, 3, 1e-13 * largestSlope);
      EXPECT_NEAR(last, -2, 1e-13 * largestSlope);
    } else if (kind == SplineEnd::periodic) {
      EXPECT_NEAR(first, last, 1e-13 * largestSlope);
    }
  }
}

TEST(CubicSpline, UnitsOfTheAbscissaDoNotMatter) {
  const Numbers y{0, 1, 0, 2};
  for (const double unit : {1e-120, 1e-40, 1e40, 1e120}) {
    const Curve curve{{0, unit, 2 * unit, 4 * unit}, y, {}};
    EXPECT_NEAR(curve.at(1.5 * unit), 13 / 23.0, 1e-15) << unit;
  }
  // A piece without length has no value.
  EXPECT_TRUE(std::isnan(CubicSpline({Numbers{0, 1, 1}, y}, y, Quantity::value)(2)));
}

}  // namespace
}  // namespace vexa
