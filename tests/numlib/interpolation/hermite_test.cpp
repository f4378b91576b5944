#include "numlib/interpolation/hermite.h"

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

Numbers slopesOf(const Numbers& x, const Numbers& y) {
  Numbers d(x.size(), 99.0);
  monotoneSlopes({x, y}, d);
  return d;
}

TEST(Hermite, AbscissaeMustIncrease) {
  const double nan = std::nan("");
  EXPECT_TRUE(strictlyIncreasing(Numbers{-1, 0, 2}));
  for (const Numbers& x : {Numbers{1, 1}, {0, 2, 1}, {0, nan, 2}, {nan, 0}, {0, nan}})
    EXPECT_FALSE(strictlyIncreasing(x)) << testing::PrintToString(x);
}

TEST(Hermite, SlopesOfMeasuredDataAgreeWithAnotherProgram) {
  // Data RPN 14 of Fritsch and Carlson's paper. Slopes and values: PchipInterpolator of SciPy
  // 1.10.1, which computes the same slopes; so only roundings may differ.
  const Numbers x{7.99, 8.09, 8.19, 8.7, 9.2, 10, 12, 15, 20};
  const Numbers y{0,        2.76429e-5, 4.37498e-2, 0.169183, 0.469428,
                  0.943740, 0.998636,   0.999919,   0.999994};
  const Numbers expected{0.0,
                         0.0005525086818680746,
                         0.3358768346083505,
                         0.3494491676859672,
                         0.5969582389267871,
                         0.06032184552297048,
                         0.0009003953827692708,
                         3.142468363044495e-05,
                         3.3881317890172014e-21};
  const Numbers d = slopesOf(x, y);
  for (std::size_t k = 0; k < d.size(); ++k)
    // The last one is a difference of equals; one rounding of its operands is 5e-21.
    EXPECT_NEAR(d[k], expected[k], k == 8 ? 1e-20 : 16 * kEpsilon * expected[k]) << k;
  for (const auto& [at, value] :
       std::vector<std::pair<double, double>>{{8.0, 2.767433863187248e-07},
                                              {8.5, 0.1166325769392755},
                                              {9.5, 0.6852179451108994},
                                              {13.0, 0.9993618220922759}})
    EXPECT_NEAR(interpolateHermite({x, y}, d, at)->value, value, 16 * kEpsilon * value + 1e-20)
        << at;
}

TEST(Hermite, EndSlopesAreLimited) {
  struct Case {
    const char* what;
    Numbers y;
    double first, last;
  };
  // Abscissae 0, 1, 2. The parabola's slopes at the ends are (3 c1 - c2)/2 and (3 c2 - c1)/2 for
  // chords of slope c1 and c2.
  const Case cases[] = {
      {"the parabola's", {0, 1, 4}, 0.0, 4.0},
      {"turned against the chord: 0", {0, 1, 6}, 0.0, 7.0},
      {"the same at the other end", {0, 5, 6}, 7.0, 0.0},
      {"beyond an extremum at most three times the chord", {0, 1, -9}, 3.0, -15.5},
      {"likewise falling", {0, -1, 9}, -3.0, 15.5},
      {"level", {0, 0, 1}, 0.0, 1.5},
  };
  for (const Case& c : cases) {
    const Numbers d = slopesOf({0, 1, 2}, c.y);
    EXPECT_EQ(d.front(), c.first) << c.what;
    EXPECT_EQ(d.back(), c.last) << c.what;
  }
}

TEST(Hermite, TwoPointsGiveTheirChord) {
  const Numbers x{1, 3};
  const Numbers y{2, 8};
  const Numbers d = slopesOf(x, y);
  EXPECT_EQ(d, (Numbers{3, 3}));
  for (const double at : {0.0, 1.0, 2.5, 3.0, 4.0}) {
    const auto result = interpolateHermite({x, y}, d, at);
    EXPECT_EQ(result->value, 3 * at - 1);
    EXPECT_EQ(result->derivative, 3);
  }
}

TEST(Hermite, CubicWithItsOwnSlopesIsReproduced) {
  const Numbers x{-1, 0.5, 2};
  const auto cubic = [](double t) { return ((t - 2) * t + 3) * t - 1; };
  const auto slope = [](double t) { return (3 * t - 4) * t + 3; };
  Numbers y;
  Numbers d;
  for (const double at : x) y.push_back(cubic(at)), d.push_back(slope(at));
  for (double at = -2; at <= 3; at += 0.25) {
    const auto result = interpolateHermite({x, y}, d, at);
    EXPECT_NEAR(result->value, cubic(at), 256 * kEpsilon) << at;
    EXPECT_NEAR(result->derivative, slope(at), 256 * kEpsilon) << at;
  }
  EXPECT_FALSE(interpolateHermite({Numbers{1, 1}, Numbers{1, 2}}, Numbers{0, 0}, 1));
  EXPECT_FALSE(interpolateHermite({Numbers{1, std::nan("")}, Numbers{1, 2}}, Numbers{0, 0}, 1));
}

// Between two points the curve neither leaves the range of their ordinates nor turns.
TEST(Hermite, CurveIsMonotoneBetweenItsPoints) {
  constexpr unsigned seed = 3302;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  std::uniform_real_distribution<double> fraction(0, 1);
  for (int table = 0; table < 50; ++table) {
    const int n = 3 + table % 8;
    Numbers x{0};
    Numbers y{0};
    for (int i = 1; i < n; ++i) {
      x.push_back(x.back() + 0.01 + std::pow(fraction(generator), 4));
      // Odd tables only rise, the others go up and down, both with level parts.
      const double step = std::max(0.0, std::pow(fraction(generator), 4) - 0.01);
      y.push_back(y.back() + (table % 2 == 0 && generator() % 2 == 0 ? -step : step));
    }
    const Numbers d = slopesOf(x, y);
    for (std::size_t k = 0; k + 1 < x.size(); ++k) {
      const double h = x[k + 1] - x[k];
      const double rise = y[k + 1] - y[k];
      double before = y[k];
      for (int part = 1; part < 32; ++part) {
        const auto result = *interpolateHermite({x, y}, d, x[k] + h * part / 32);
        const double tolerance = 64 * kEpsilon * (1 + std::fabs(y[k]));
        EXPECT_GE((result.value - before) * (rise < 0 ? -1 : 1), -tolerance) << table << ' ' << k;
        if (rise == 0) {
          EXPECT_EQ(result.value, y[k]) << table << ' ' << k;
        }
        before = result.value;
      }
      if (k > 0 && (y[k] - y[k - 1]) * rise <= 0) {
        EXPECT_EQ(d[k], 0) << table << ' ' << k;
      }
    }
  }
}

}  // namespace
}  // namespace vexa
