#include "numlib/special/rounding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vexa {
namespace {

TEST(RoundingTest, HalvesGoAwayFromZero) {
  const struct {
    int n;
    double x, rounded;
  } rows[] = {{2, 2.375, 2.38},     {0, -2.5, -3},       {0, 2.4999, 2}, {0, 0.5, 1},
              {3, -1.0005, -1.001}, {-1, 1255, 1260},    {-1, 4.9, 0},   {15, 0.1, 0.1},
              {1, -0.25, -0.3},     {0, 0x1p53, 0x1p53}, {4, 1e30, 1e30}};
  for (const auto& row : rows) {
    EXPECT_EQ(roundDecimals(row.n, row.x), row.rounded) << row.n << ", " << row.x;
  }
}

TEST(RoundingTest, TheScaleIsARepeatedProduct) {
  // 0.1 * 0.1 * 0.1 is a little above 0.001, and the quotient shows it.
  const double scale = 1.0 * 0.1 * 0.1 * 0.1;
  ASSERT_NE(scale, 0.001);
  EXPECT_EQ(roundDecimals(-3, 123456), 123 / scale);
}

TEST(RoundingTest, OddValues) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(roundDecimals(2, -infinity), -infinity);
  EXPECT_EQ(roundDecimals(15, 1e300), infinity);
  EXPECT_TRUE(std::isnan(roundDecimals(2, std::numeric_limits<double>::quiet_NaN())));
  EXPECT_TRUE(std::signbit(roundDecimals(0, -0.25)));
}

}  // namespace
}  // namespace vexa
