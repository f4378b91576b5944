#include "numlib/special/complex_arithmetic.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <numbers>
#include <ostream>
#include <random>

namespace vexa {

// Shown by failing checks.
void PrintTo(const Complex& z, std::ostream* out) {
  *out << '(' << testing::PrintToString(z.re) << ", " << testing::PrintToString(z.im) << ')';
}

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

testing::AssertionResult isSame(Complex actual, Complex expected) {
  if (actual.re == expected.re && actual.im == expected.im) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << testing::PrintToString(actual) << ", expected " << testing::PrintToString(expected);
}

// Each part within so many epsilons of the whole number's size.
testing::AssertionResult isNear(Complex actual, Complex expected, double epsilons) {
  const double allowed = epsilons * DBL_EPSILON * complexAbs(expected);
  if (std::fabs(actual.re - expected.re) <= allowed &&
      std::fabs(actual.im - expected.im) <= allowed) {
    return testing::AssertionSuccess();
  }
  return isSame(actual, expected);
}

TEST(ComplexArithmeticTest, WholePartsStayExact) {
  std::mt19937 generator(11);
  SCOPED_TRACE("seed 11");
  const auto part = [&] { return static_cast<double>(generator() % 2001) - 1000; };
  for (int round = 0; round < 1000; ++round) {
    const Complex a{part(), part()};
    const Complex b{part(), part() + 0.5};
    const Complex product{a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    EXPECT_TRUE(isSame(multiply(a, b), product));
    EXPECT_TRUE(isSame(divide(product, b), a));
    EXPECT_TRUE(isSame(subtract(add(a, b), b), a));
  }
}

TEST(ComplexArithmeticTest, QuotientsAvoidOverflowAndUnderflow) {
  EXPECT_TRUE(isSame(divide({DBL_MAX, DBL_MAX}, {DBL_MAX, DBL_MAX}), {1, 0}));
  EXPECT_TRUE(isSame(divide({5e-324, 0}, {0, 5e-324}), {0, -1}));
  EXPECT_TRUE(isSame(divide({0x1p1000, 0x1p-1000}, {0x1p1000, 0}), {1, 0}));
  EXPECT_TRUE(isSame(divide({1, 0}, {0x1p-600, 0x1p-600}), {0x1p599, -0x1p599}));
  EXPECT_TRUE(isSame(divide({1, 2}, {kInfinity, 0}), {0, 0}));
  EXPECT_FALSE(std::isfinite(complexAbs(divide({1, 2}, {0, 0}))));
}

TEST(ComplexArithmeticTest, FunctionsAtTheirEdges) {
  EXPECT_TRUE(isSame(complexTan({0, 400}), {0, 1}));
  EXPECT_TRUE(isSame(complexExp({-1000, 1}), {0, 0}));
  EXPECT_TRUE(isSame(complexSqrt({-4, -0.0}), {0, 2}));
  EXPECT_TRUE(isSame(complexLog({-1, -0.0}), {0, std::numbers::pi}));
  EXPECT_TRUE(isSame(complexLog({-0.0, 0}), {-kInfinity, 0}));
  EXPECT_EQ(complexAbs({3e300, -4e300}), 5e300);
  // cos^2 z + sin^2 z = 1 and cos z + i sin z = exp(iz) in all four quadrants.
  for (Complex z : {Complex{1, 2}, {-2, 0.5}, {3, -1}, {-0.5, -0.25}}) {
    const Complex s = complexSin(z);
    const Complex c = complexCos(z);
    EXPECT_TRUE(isNear(add(multiply(s, s), multiply(c, c)), {1, 0}, 50));
    EXPECT_TRUE(isNear(divide(s, c), complexTan(z), 4));
    EXPECT_TRUE(isNear(add(c, multiply({0, 1}, s)), complexExp(multiply({0, 1}, z)), 50));
  }
}

TEST(ComplexArithmeticTest, WholePowersAreProducts) {
  const struct {
    Complex base;
    double exponent;
    Complex power;
  } rows[] = {{{1, 2}, 20, {-9653287, -1476984}},
              {{0, 1}, 1023, {0, -1}},
              {{0, 2}, -3, {0, 0.125}},
              {{2, 0}, -1024, {0x1p-1024, 0}},
              {{2, 0}, 1024, {kInfinity, 0}},
              {{0x1p700, 0x1p700}, 2, {0, kInfinity}},
              {{0x1p-700, 0}, -2, {kInfinity, 0}},
              {{3, -4}, 0, {1, 0}},
              {{0, 0}, 0, {1, 0}},
              {{0, 0}, 7, {0, 0}}};
  for (const auto& row : rows) {
    const auto power = complexPower(row.base, {row.exponent, 0});
    ASSERT_TRUE(power);
    EXPECT_TRUE(isSame(*power, row.power))
        << testing::PrintToString(row.base) << " to the power of " << row.exponent;
  }
}

// The values are from 40-digit arithmetic. The logarithm's rounding is magnified by the exponent.
TEST(ComplexArithmeticTest, PrincipalPowers) {
  const struct {
    Complex base, exponent, power;
    double epsilons;
  } rows[] = {
      {{1, 2}, {2.5, -1.25}, {-5.6693680365416554291, 29.292941867207198022}, 4},
      {{-3, 0.5}, {0.75, 2}, {-0.0015119584846898126077, -0.0057899128715957939389}, 8},
      {{1e-3, -2e-3}, {-40.5, 3}, {1.0581018090129562512e108, 6.050650908740597611e108}, 150},
      {{0, 1}, {0, 1}, {0.20787957635076190855, 0}, 4},
      {{0.75, 0.75}, {1024, 0}, {1.549142943340320853552385e26, 0}, 1024},
      {{-8, 0}, {1.0 / 3, 0}, {1.0000000000000000622, 1.7320508075688771688}, 4},
      {{1.0001, 0.5}, {1500, 0}, {-2.3675219854329046479e72, -4.884241081177960732e72}, 1500},
      {{1e200, 1e200}, {1.5, 0}, {6.4359425290558259552e299, 1.5537739740300372368e300}, 4}};
  for (const auto& row : rows) {
    const auto power = complexPower(row.base, row.exponent);
    ASSERT_TRUE(power);
    EXPECT_TRUE(isNear(*power, row.power, row.epsilons))
        << testing::PrintToString(row.base) << " to the power of "
        << testing::PrintToString(row.exponent);
  }
  // On the axes nothing is left of the other part.
  EXPECT_TRUE(isSame(*complexPower({-4, 0}, {0.5, 0}), {0, 2}));
  EXPECT_TRUE(isSame(*complexPower({-4, -0.0}, {-0.5, 0}), {0, -0.5}));
  EXPECT_TRUE(isSame(*complexPower({0, 4}, {3, 0}), {0, -64}));
  EXPECT_TRUE(isSame(*complexPower({-1, 0}, {2001, 0}), {-1, 0}));
  EXPECT_TRUE(isSame(*complexPower({10, 0}, {2000, 0}), {kInfinity, 0}));
}

TEST(ComplexArithmeticTest, PowersOfZeroAndNotANumber) {
  EXPECT_FALSE(complexPower({0, 0}, {-1, 0}));
  EXPECT_FALSE(complexPower({-0.0, 0}, {-0.5, 3}));
  EXPECT_TRUE(isSame(*complexPower({0, 0}, {0.5, -3}), {0, 0}));
  EXPECT_TRUE(std::isnan(complexPower({0, 0}, {0, 1})->re));
  EXPECT_TRUE(std::isnan(complexPower({-2, 0}, {std::nan(""), 0})->re));
}

}  // namespace
}  // namespace vexa
