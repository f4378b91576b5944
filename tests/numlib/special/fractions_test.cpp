#include "numlib/special/fractions.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(FractionsTest, KnownFractions) {
  const double pi = 3.14159265358979323846;
  const struct {
    double x, limit, numerator, denominator;
  } rows[] = {{0.375, 1e6, 3, 8},
              {pi, 1000, 355, 113},
              {-0.0, 5, 0, 1},
              {0x1p53, 3, 0x1p53, 1},
              // Whole numbers, a tie goes away from zero.
              {0x1p52 - 0.5, 1, 0x1p52, 1},
              {-2.5, 1, -3, 1},
              {5e-324, 0x1p53, 0, 1},
              {0x1p-54, 0x1p53, 0, 1},
              {std::nextafter(0x1p-54, 1), 0x1p53, 1, 0x1p53},
              // From Python's Fraction(x).limit_denominator(limit).
              {pi, 0x1p53, 884279719003555.0, 281474976710656.0},
              {1e-10, 6e9, 1, 6e9},
              {123456789.123456789, 1e6, 9999999919.0, 81},
              {0.002718281828459045, 1e12, 2707911647.0, 996185023440.0}};
  for (const auto& row : rows) {
    const auto fraction = nearestFraction(row.x, row.limit);
    ASSERT_TRUE(fraction) << row.x;
    EXPECT_EQ(fraction->numerator, row.numerator) << row.x << " up to " << row.limit;
    EXPECT_EQ(fraction->denominator, row.denominator) << row.x << " up to " << row.limit;
    EXPECT_FALSE(fraction->numerator == 0 && std::signbit(fraction->numerator)) << row.x;
  }
  for (double x : {kInfinity, -kInfinity, kNaN, 0x1p53 + 2, -DBL_MAX}) {
    EXPECT_FALSE(nearestFraction(x, 10)) << x;
  }
}

// Every denominator is tried, with whole numbers: |x - p/q| = |n q - p 2^20| / (q 2^20).
TEST(FractionsTest, NoFractionIsNearer) {
  SCOPED_TRACE("seed 31");
  std::mt19937_64 generator(31);
  constexpr std::int64_t scale = 1 << 20;
  for (int round = 0; round < 3000; ++round) {
    const std::int64_t n = static_cast<std::int64_t>(generator() % (4 * scale)) &
                           -(std::int64_t{1} << (generator() % 20));  // simple ones too, for ties
    const auto limit = static_cast<std::int64_t>(2 + generator() % 120);
    std::int64_t bestP = 0, bestQ = 1, bestDistance = n;
    for (std::int64_t q = 1; q <= limit; ++q) {
      const std::int64_t p = (n * q + scale / 2) / scale;
      const std::int64_t distance = std::abs(n * q - p * scale);
      if (distance * bestQ < bestDistance * q) bestP = p, bestQ = q, bestDistance = distance;
    }
    const double x = std::ldexp(static_cast<double>(n), -20);
    const auto fraction = nearestFraction(-x, static_cast<double>(limit));
    ASSERT_TRUE(fraction);
    ASSERT_EQ(fraction->numerator, static_cast<double>(-bestP)) << x << " up to " << limit;
    ASSERT_EQ(fraction->denominator, static_cast<double>(bestQ)) << x << " up to " << limit;
  }
}

TEST(FractionsTest, MantissasComeFromTheShortestDecimal) {
  const struct {
    double x, mantissa;
    int exponent;
  } rows[] = {{0.1, 1, -1}, {-12345.678, -1.2345678, 4}, {5e-324, 5, -324}, {1e23, 1, 23},
              {0, 0, 0},    {-kInfinity, -kInfinity, 0}};
  for (const auto& row : rows) {
    const DecimalParts parts = decimalMantissa(row.x);
    EXPECT_EQ(parts.mantissa, row.mantissa) << row.x;
    EXPECT_EQ(parts.exponent, row.exponent) << row.x;
  }
  EXPECT_TRUE(std::isnan(decimalMantissa(kNaN).mantissa));

  // Digits such as 9.9999999999999997 would read as 10. They could stand only right below a power
  // of ten, and do not.
  for (int power = -323; power <= 308; ++power) {
    const double x =
        std::nextafter(std::strtod(("1e" + std::to_string(power)).c_str(), nullptr), 0);
    if (x == 0) continue;
    const double m = decimalMantissa(x).mantissa;
    EXPECT_TRUE(m >= 1 && m < 10) << x;
  }
}

}  // namespace
}  // namespace vexa
