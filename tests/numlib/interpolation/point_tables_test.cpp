#include "numlib/interpolation/point_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class Function>
Numbers valuesOf(const Numbers& x, Function f) {
  Numbers y;
  for (const double at : x) y.push_back(f(at));
  return y;
}

TEST(PointTables, IntervalHoldsItsLeftEnd) {
  struct Case {
    double at;
    std::size_t low;
  };
  for (const Case& c : {Case{-9, 0}, {0, 0}, {0.5, 0}, {1, 1}, {3.99, 2}, {4, 3}, {7, 3}, {8, 3}})
    EXPECT_EQ(findInterval(Numbers{0, 1, 3, 4, 8}, c.at), c.low) << c.at;
  EXPECT_EQ(findInterval(Numbers{0, 1}, 5), 0U);
}

TEST(PointTables, LineGoesThroughNeighboursAndBeyondTheEnds) {
  const Numbers x{0, 1, 3};
  const Numbers y{2, 4, -2};
  for (const auto& [at, expected] : std::vector<std::pair<double, double>>{
           {-1, 0}, {0, 2}, {0.5, 3}, {1, 4}, {2, 1}, {3, -2}, {4, -5}})
    EXPECT_EQ(interpolateLinear({x, y}, at), expected) << at;
  // Only the interval that is used can fail.
  const Numbers repeated{0, 1, 1};
  EXPECT_EQ(interpolateLinear({repeated, y}, 0.5), 3);
  EXPECT_FALSE(interpolateLinear({repeated, y}, 2));
  EXPECT_FALSE(interpolateLinear({Numbers{0, std::nan(""), 1}, y}, 0.5));
}

TEST(PointTables, PolynomialIsReproduced) {
  const auto quartic = [](double x) { return (((x - 2) * x + 0.5) * x - 1) * x + 3; };
  const Numbers x{-2, -1, 0.5, 2, 3, 4.5};
  const Numbers y = valuesOf(x, quartic);
  for (double at = -3; at <= 6; at += 0.375)
    EXPECT_NEAR(*interpolatePolynomial({x, y}, at), quartic(at),
                1024 * kEpsilon * (1 + std::fabs(quartic(at))))
        << at;  // the weights of six points add up to some hundreds at the ends
  // Order does not matter, and so far out that the points seem to be one, they are still told
  // apart.
  const Numbers shuffled{2, -1, 4.5, 0.5, -2, 3};
  EXPECT_NEAR(*interpolatePolynomial({shuffled, valuesOf(shuffled, quartic)}, 1.25), quartic(1.25),
              64 * kEpsilon);
  EXPECT_EQ(interpolatePolynomial({Numbers{1, 2}, Numbers{1, 2}}, 1e17), 1e17);
}

TEST(PointTables, EqualAbscissaeHaveNoPolynomial) {
  EXPECT_FALSE(interpolatePolynomial({Numbers{1, 1}, Numbers{1, 2}}, 3));
  EXPECT_FALSE(interpolatePolynomial({Numbers{1, 2, 3, 1}, Numbers{1, 2, 3, 4}}, 2));  // the ends
}

TEST(PointTables, CurvesPassThroughTheirPoints) {
  constexpr unsigned seed = 3301;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> fraction(-1, 1);
  for (const int n : {2, 3, 5, 12, 40}) {
    Numbers x;
    Numbers y;
    for (int i = 0; i < n; ++i) {
      x.push_back(i + 0.4 * fraction(generator));
      y.push_back(fraction(generator));
    }
    for (std::size_t k = 0; k < x.size(); ++k) {
      EXPECT_EQ(interpolateLinear({x, y}, x[k]).value_or(99), y[k]) << n << ' ' << k;
      EXPECT_EQ(interpolatePolynomial({x, y}, x[k]).value_or(99), y[k]) << n << ' ' << k;
      EXPECT_EQ(interpolateRational({x, y}, x[k]), y[k]) << n << ' ' << k;
    }
  }
}

TEST(PointTables, RationalFunctionIsReproduced) {
  struct Case {
    const char* what;
    double (*f)(double);
    Numbers x;
  };
  const Case cases[] = {
      {"a constant", [](double) { return 5.0; }, {1, 2, 3, 4, 6}},
      {"zero", [](double) { return 0.0; }, {1, 2, 3}},
      {"1/(1+x)", [](double x) { return 1 / (1 + x); }, {0, 1, 2, 3}},
      {"(1+2x)/(3+x)", [](double x) { return (1 + 2 * x) / (3 + x); }, {-1, 0, 2, 5}},
      {"degrees 2 and 2",
       [](double x) { return (x * x - 2) / (x * x + x + 3); },
       {-2, -1, 0, 1.5, 3}},
      {"even, on a symmetric grid", [](double x) { return 1 / (1 + 25 * x * x); }, {-2, -1, 1, 2}},
      {"even, with poles of groups on the way",
       [](double x) { return 1 / (1 + 25 * x * x); },
       {-1, -0.6, -0.2, 0.2, 0.6, 1}},
      {"odd, on a symmetric grid", [](double x) { return x / (4 + x * x); }, {-3, -2, -1, 1, 2, 3}},
  };
  for (const Case& c : cases)
    for (const double at : {-0.9, -0.3, -0.25, 0.0, 0.125, 0.5, 0.875, 1.75, 2.5})
      EXPECT_NEAR(interpolateRational({c.x, valuesOf(c.x, c.f)}, at), c.f(at),
                  256 * kEpsilon * (1 + std::fabs(c.f(at))))
          << c.what << " at " << at;
}

TEST(PointTables, PoleOnTheWayIsNoPoleOfTheFunction) {
  // The two middle points alone would put a pole at 0; all four give an odd function.
  const Numbers x{-1.5, -0.5, 0.5, 1.5};
  const Numbers y = valuesOf(x, [](double at) { return std::sin(at); });
  EXPECT_NEAR(interpolateRational({x, y}, 0), 0.0, 4 * kEpsilon);
}

TEST(PointTables, PoleIsInfiniteWithTheSignOfBothSides) {
  const Numbers x{-2, -1, 0.5, 2, 3};
  const auto at0 = [&](double (*f)(double)) { return interpolateRational({x, valuesOf(x, f)}, 0); };
  EXPECT_EQ(at0([](double v) { return 1 / (v * v); }), kInfinity);
  EXPECT_EQ(at0([](double v) { return -2 / (v * v); }), -kInfinity);
  EXPECT_TRUE(std::isnan(at0([](double v) { return 1 / v; })));
}

}  // namespace
}  // namespace vexa
