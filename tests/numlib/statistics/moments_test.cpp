#include "numlib/statistics/moments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace vexa {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double undefined = 1e30;

using Values = std::vector<double>;

Moments momentsOf(const Values& values) { return computeMoments(values, undefined).value(); }

// base, then base - 0.1 and base + 0.1 in turn, 1001 in all: sets NumAcc3 and NumAcc4 of NIST's
// Statistical Reference Datasets.
Values alternating(double base) {
  Values values{base};
  for (int i = 0; i < 500; ++i) {
    values.push_back(base - 0.1);
    values.push_back(base + 0.1);
  }
  return values;
}

// Certified: mean and deviation exact. The data themselves are rounded by half an epsilon of their
// size, the mean as much.
TEST(Moments, LargeMeanWithSmallSpreadKeepsTheDigitsOfTheData) {
  struct Case {
    const char* name;
    Values values;
    double mean, deviation;
  };
  const std::vector<Case> cases = {
      {"NumAcc1", {10000001, 10000003, 10000002}, 10000002, 1},
      {"NumAcc3", alternating(1000000.2), 1000000.2, 0.1},
      {"NumAcc4", alternating(10000000.2), 10000000.2, 0.1},
      {"1e15 and its neighbours", {1e15 - 1, 1e15, 1e15 + 1}, 1e15, 1},
  };
  for (const Case& c : cases) {
    const Moments m = momentsOf(c.values);
    EXPECT_NEAR(m.mean, c.mean, 2 * epsilon * c.mean) << c.name;
    EXPECT_NEAR(m.standardDeviation, c.deviation, epsilon * c.mean) << c.name;
  }
}

// Whole numbers are summed without rounding, so every length must agree exactly: a value lost or
// counted twice at the end of a group shows.
TEST(Moments, EveryLengthCountsEachValueOnce) {
  std::vector<int> lengths{600001};
  for (int n = 2; n <= 40; ++n) lengths.push_back(n);
  for (const int n : lengths) {
    Values values;
    double sum = 0, squares = 0;
    for (int i = 0; i < n; ++i) values.push_back(i % 2 == 0 ? -2.0 * (i + 1) : 2.0 * i);
    if (n % 2 != 0) values.back() = 0;
    for (const double x : values) {
      sum += x;
      squares += x * x;
    }
    const Moments m = momentsOf(values);
    ASSERT_EQ(m.sum, sum) << n;
    EXPECT_NEAR(m.variance, (squares - sum * sum / n) / (n - 1), 8 * epsilon * squares) << n;
    EXPECT_EQ(m.largest, *std::max_element(values.begin(), values.end())) << n;
    EXPECT_EQ(m.smallest, *std::min_element(values.begin(), values.end())) << n;
  }
}

TEST(Moments, NoneAreGivenWhenInterrupted) {
  const Values values(600000, 1.0);
  for (const int last : {1, 2, 3, 4}) {
    int questions = 0;
    EXPECT_FALSE(computeMoments(values, undefined, [&] { return ++questions == last; }));
    EXPECT_EQ(questions, last);
  }
}

// Not-a-number is never larger or smaller, and neither is a value beyond the mark.
TEST(Moments, ExtremesPassOverWhatDoesNotCompare) {
  for (std::size_t place = 0; place < 11; ++place) {
    Values values{5, -3, 8, 1, 0, 2, 7, -9, 4, 6, 3};
    values[place] = notANumber;
    const Moments m = momentsOf(values);
    EXPECT_EQ(m.largest, place == 2 ? 7 : 8) << place;
    EXPECT_EQ(m.smallest, place == 7 ? -3 : -9) << place;
    EXPECT_TRUE(std::isnan(m.mean)) << place;
  }
  EXPECT_EQ(momentsOf(Values{2e30, 3e30}).smallest, undefined);
  EXPECT_EQ(momentsOf(Values(300, 1e308)).sum, HUGE_VAL) << "overflow";
}

// The deviations' sums against long double on data whose mean dwarfs their spread.
TEST(Moments, RandomSetsAgreeWithHigherPrecision) {
  constexpr unsigned seed = 20240229;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  for (const double shift : {0.0, 1e3, 1e6}) {
    Values values(1000);
    for (double& x : values) x = shift + normal(random);
    long double sum = 0, squares = 0, cubes = 0, fourths = 0;
    for (const double x : values) sum += x;
    const long double mean = sum / values.size();
    for (const double x : values) {
      const long double d = x - mean;
      squares += d * d;
      cubes += d * d * d;
      fourths += d * d * d * d;
    }
    const long double n = values.size();
    const long double variance = squares / (n - 1);
    const Moments m = momentsOf(values);
    // The mean's own rounding enters the cubes and fourths; the variance is corrected for it.
    const double tolerance = 32 * epsilon * (1 + shift);
    EXPECT_NEAR(m.variance, static_cast<double>(variance), 32 * epsilon) << shift;
    EXPECT_NEAR(m.skewness, static_cast<double>(cubes / (n * variance * std::sqrt(variance))),
                tolerance);
    EXPECT_NEAR(m.kurtosis, static_cast<double>(fourths / (n * variance * variance) - 3),
                tolerance);
  }
}

}  // namespace
}  // namespace vexa
