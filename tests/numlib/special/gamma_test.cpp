// The reference rows and their source are in data/special.
#include "numlib/special/gamma.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct ReferenceRow {
  std::vector<double> arguments;
  long double value;
};

std::vector<ReferenceRow> referenceRows(const std::string& file) {
  std::ifstream stream(std::string(VEXA_TEST_DATA) + "/special/" + file);
  std::string line;
  std::getline(stream, line);  // the heading
  std::vector<ReferenceRow> rows;
  while (std::getline(stream, line)) {
    std::istringstream fields(line);
    std::vector<std::string> texts;
    for (std::string text; std::getline(fields, text, ',');) texts.push_back(text);
    ReferenceRow row{{}, std::strtold(texts.back().c_str(), nullptr)};
    texts.pop_back();
    for (const std::string& text : texts) {
      row.arguments.push_back(std::strtod(text.c_str(), nullptr));
    }
    rows.push_back(row);
  }
  EXPECT_GT(rows.size(), 40u) << file;
  return rows;
}

// How far a result is from the true value, in units of its last place.
double errorInUlp(double result, long double exact) {
  const double nearest = std::fabs(static_cast<double>(exact));
  const double ulp = std::nextafter(nearest, kInfinity) - nearest;
  return static_cast<double>(std::fabs(result - exact) / ulp);
}

template <typename Function>
void expectRows(const std::string& file, double allowedUlp, Function function) {
  double worst = 0;
  for (const ReferenceRow& row : referenceRows(file)) {
    const double result = function(row.arguments);
    const double error = errorInUlp(result, row.value);
    EXPECT_LE(error, allowedUlp) << file << ": " << testing::PrintToString(row.arguments)
                                 << " gives " << testing::PrintToString(result);
    worst = std::max(worst, error);
  }
  testing::Test::RecordProperty("worst_error_in_ulp", std::to_string(worst));
}

// One half is the rounding to double; the rest comes from long double.
TEST(GammaTest, LogarithmIsRightToOneRounding) {
  expectRows("log_gamma.csv", 0.51, [](const auto& x) { return logGamma(x[0]); });
}

TEST(GammaTest, LogarithmAtTheEdges) {
  for (double pole : {0.0, -0.0, -1.0, -2.0, -1e6, kInfinity, -kInfinity}) {
    EXPECT_EQ(logGamma(pole), kInfinity) << pole;
  }
  EXPECT_EQ(logGamma(1), 0);
  EXPECT_EQ(logGamma(2), 0);
  EXPECT_TRUE(std::isnan(logGamma(kNaN)));
}

// Where P is near the smallest doubles, the exponent's own rounding adds to it.
TEST(GammaTest, IncompleteFunctionIsRightToOneUlp) {
  expectRows("gamma_p.csv", 1, [](const auto& x) { return regularizedGammaP(x[0], x[1]); });
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

TEST(GammaTest, ErrorFunctionIsRightToOneUlp) {
  expectRows("erf.csv", 1, [](const auto& x) { return erfValue(x[0]); });
  expectRows("erf.csv", 1, [](const auto& x) { return -erfValue(-x[0]); });
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
