#include "numlib/special/two_number_functions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ElementaryTest, NotANumberGoesThroughExceptWhereItIsNotTaken) {
  for (const auto function : {hypotenuse, floorRemainder, magnitudeWithSign, coshOverCosh,
                              coshOverSinh, sinhOverCosh, sinhOverSinh}) {
    EXPECT_TRUE(std::isnan(function(kNaN, 30)));
    EXPECT_TRUE(std::isnan(function(kInfinity, kNaN)));
  }
  EXPECT_TRUE(std::isnan(signOf(kNaN)));
  EXPECT_TRUE(std::isnan(whereNotNegative(kNaN, 1)));
  EXPECT_TRUE(std::isnan(whereNotNegative(0, kNaN)));
  EXPECT_EQ(whereNotNegative(-1, kNaN), 0);
  EXPECT_EQ(whereNotNegative(-0.0, 7), 7);
}

TEST(ElementaryTest, RemaindersCarryTheSignOfTheDivisor) {
  EXPECT_EQ(floorRemainder(-7, 3), 2);
  EXPECT_EQ(floorRemainder(7, -3), -2);
  EXPECT_EQ(floorRemainder(-7, -3), -1);
  EXPECT_EQ(floorRemainder(-1e-20, 1), 1);
  EXPECT_FALSE(std::signbit(floorRemainder(-6, 3)));
  EXPECT_TRUE(std::signbit(floorRemainder(6, -3)));
  EXPECT_EQ(floorRemainder(5, kInfinity), 5);
  EXPECT_EQ(floorRemainder(-5, kInfinity), kInfinity);
  EXPECT_TRUE(std::isnan(floorRemainder(5, 0)));
  EXPECT_TRUE(std::isnan(floorRemainder(kInfinity, 2)));
  EXPECT_EQ(magnitudeWithSign(-3, -0.0), 3);
}

TEST(ElementaryTest, HyperbolicRatiosAtTheEdges) {
  EXPECT_EQ(coshOverCosh(1e6, 0), kInfinity);
  EXPECT_EQ(coshOverCosh(0, 1e6), 0);
  EXPECT_EQ(coshOverCosh(-700, 700), 1);
  EXPECT_EQ(sinhOverSinh(1, 0), kInfinity);
  EXPECT_EQ(sinhOverSinh(-30, 0.0), -kInfinity);
  EXPECT_EQ(coshOverSinh(0, -0.0), -kInfinity);
  EXPECT_TRUE(std::isnan(sinhOverSinh(0, 0)));
  EXPECT_EQ(sinhOverCosh(5, kInfinity), 0);
  EXPECT_EQ(sinhOverCosh(-kInfinity, 5), -kInfinity);
  EXPECT_TRUE(std::isnan(coshOverCosh(kInfinity, kInfinity)));
}

}  // namespace
}  // namespace vexa
