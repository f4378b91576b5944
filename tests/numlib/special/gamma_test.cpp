#include "numlib/special/gamma.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <utility>

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(GammaTest, LogarithmAtTheEdges) {
  for (double pole : {0.0, -0.0, -1.0, -2.0, -1e6, kInfinity, -kInfinity}) {
    EXPECT_EQ(logGamma(pole), kInfinity) << pole;
  }
  EXPECT_EQ(logGamma(1), 0);
  EXPECT_EQ(logGamma(2), 0);
  EXPECT_TRUE(std::isnan(logGamma(kNaN)));
}

TEST(GammaTest, IncompleteFunctionAtTheEdges) {
  EXPECT_EQ(regularizedGammaP(3, 0), 0);
  EXPECT_EQ(regularizedGammaP(3, kInfinity), 1);
  EXPECT_EQ(regularizedGammaP(kInfinity, 3), 0);
  EXPECT_EQ(regularizedGammaP(1e300, 1e299), 0);
  EXPECT_EQ(regularizedGammaP(1e8, 1e300), 1);
  EXPECT_EQ(regularizedGammaP(5, DBL_MAX), 1);
  EXPECT_EQ(regularizedGammaP(DBL_TRUE_MIN, 1), 1);
  for (auto [a, x] : {std::pair{0.0, 1.0},
                      {-1.0, 1.0},
                      {1.0, -1.0},
                      {kNaN, 1.0},
                      {1.0, kNaN},
                      {kInfinity, kInfinity}}) {
    EXPECT_TRUE(std::isnan(regularizedGammaP(a, x))) << a << ", " << x;
  }
}

TEST(GammaTest, UpperTailComplementsTheLowerOne) {
  for (const double a : {1.0, 3.5, 2e4, 3e7}) {
    for (const double d : {-3.0, 0.0, 3.0}) {
      const double x = std::fmax(0, a + d * std::sqrt(a));
      EXPECT_NEAR(regularizedGammaP(a, x) + regularizedGammaQ(a, x), 1, DBL_EPSILON) << a;
    }
  }
  EXPECT_EQ(regularizedGammaQ(3, 0), 1);
  EXPECT_EQ(regularizedGammaQ(3, kInfinity), 0);
  EXPECT_EQ(regularizedGammaQ(kInfinity, 3), 1);
  for (auto [a, x] : {std::pair{0.0, 1.0}, {1.0, -1.0}, {kNaN, 1.0}, {kInfinity, kInfinity}})
    EXPECT_TRUE(std::isnan(regularizedGammaQ(a, x))) << a << ", " << x;
}

TEST(GammaTest, ErrorFunctionAtTheEdges) {
  EXPECT_EQ(erfValue(-0.7), -erfValue(0.7));
  EXPECT_EQ(erfValue(kInfinity), 1);
  EXPECT_EQ(erfValue(-kInfinity), -1);
  EXPECT_TRUE(std::isnan(erfValue(kNaN)));
}

TEST(GammaTest, ErrorFunctionIsTheIncompleteFunctionOfTheSquare) {
  for (double x = 0x1p-20; x < 7; x += 0x1.9p-7) {
    // The square is rounded, which moves P by at most as much relatively.
    EXPECT_NEAR(erfValue(x) / regularizedGammaP(0.5, x * x), 1, 2 * DBL_EPSILON) << x;
  }
}

TEST(GammaTest, FactorialsComeFromASinglePrecisionTable) {
  // Asked from the top, so that the table must grow by itself.
  float product = 1;
  for (int n = 1; n <= 32; ++n) product *= static_cast<float>(n);
  EXPECT_EQ(factorial(32), static_cast<double>(product));
  EXPECT_NE(factorial(32), 263130836933693530167218012160000000.0);

  EXPECT_EQ(factorial(0), 1);
  EXPECT_EQ(factorial(3), 6);
  EXPECT_EQ(factorial(13), 6227020800.0);
  EXPECT_EQ(factorial(14), 87178289152.0);  // exact: 87178291200
  EXPECT_TRUE(std::isnan(factorial(-1)));
}

TEST(GammaTest, LargeFactorialsComeFromTheLogarithm) {
  double exact = 1;
  for (int n = 1; n <= 170; ++n) {
    exact *= n;
    if (n <= 32) continue;
    // The logarithm's rounding, up to 2^-44, becomes a relative error.
    EXPECT_NEAR(factorial(n) / exact, 1, 0x1p-43) << n;
  }
  EXPECT_EQ(factorial(171), kInfinity);
  EXPECT_EQ(factorial(2147483647), kInfinity);
}

}  // namespace
}  // namespace vexa
