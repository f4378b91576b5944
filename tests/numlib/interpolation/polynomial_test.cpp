#include "numlib/interpolation/polynomial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "numlib/interpolation/point_tables.h"

namespace vexa {
namespace {

using Numbers = std::vector<double>;

constexpr double kHalfEpsilon = 0x1p-53;

Numbers chebyshevPoints(int n) {
  Numbers x;
  for (int k = 0; k < n; ++k) x.push_back(std::cos(3.141592653589793 * (k + 0.5) / n));
  return x;
}

TEST(PolynomialTest, ValuesAndDerivativesAtTheEdges) {
  const Numbers c = {-6, 11, -6, 1};
  EXPECT_EQ(evaluatePolynomial(c, 2.5).value, -0.375);
  EXPECT_EQ(evaluatePolynomial(c, 2.5).derivative, -0.25);
  EXPECT_EQ(evaluatePolynomial(c, 0).value, -6);
  EXPECT_EQ(evaluatePolynomial(Numbers{7}, 1e300).value, 7);
  EXPECT_EQ(evaluatePolynomial(Numbers{7}, 3).derivative, 0);
}

// (x - 1)^9 multiplied out, next to its root: the terms cancel in twelve digits.
TEST(PolynomialTest, ValuesKeepToTheirTerms) {
  const Numbers c = {-1, 9, -36, 84, -126, 126, -84, 36, -9, 1};
  for (const double x : {0.95, 0.9999, 1.0001, 1.07}) {
    const double sum = std::pow(1 + std::fabs(x), 9);
    EXPECT_NEAR(evaluatePolynomial(c, x).value, std::pow(x - 1, 9), 2 * kHalfEpsilon * sum) << x;
  }
}

TEST(PolynomialTest, PolynomialsGoThroughTheirPoints) {
  for (const int n : {2, 5, 8, 13, 20}) {
    const Numbers x = chebyshevPoints(n);
    Numbers y;
    for (const double at : x) y.push_back(std::exp(at) * std::cos(3 * at));
    const Numbers c = *polynomialThrough(x, y);
    for (std::size_t i = 0; i < x.size(); ++i) {
      double sum = 0;
      for (std::size_t k = 0; k < c.size(); ++k)
        sum += std::fabs(c[k]) * std::pow(std::fabs(x[i]), static_cast<double>(k));
      EXPECT_NEAR(evaluatePolynomial(c, x[i]).value, y[i], 4 * n * kHalfEpsilon * sum) << n;
    }
    const double between = evaluatePolynomial(c, 0.123).value;
    EXPECT_NEAR(between, *interpolatePolynomial({x, y}, 0.123), 1e-13) << n;
  }
}

TEST(PolynomialTest, CoefficientsComeBackWhateverTheOrderOfThePoints) {
  const Numbers wanted = {3, -2, 0.5, 7, -1, 4, 0.25, 2};
  Numbers x = {-2, -1.25, -0.5, 0.25, 0.75, 1.5, 2, 3};
  for (int order = 0; order < 50; ++order) {
    std::next_permutation(x.begin(), x.end());
    if (order == 25) std::reverse(x.begin(), x.end());
    Numbers y;
    for (const double at : x) y.push_back(evaluatePolynomial(wanted, at).value);
    const Numbers c = *polynomialThrough(x, y);
    for (std::size_t k = 0; k < c.size(); ++k) EXPECT_NEAR(c[k], wanted[k], 7e-13) << order;
  }
  const Numbers line = *polynomialThrough(Numbers{1, 2, 4, 5, 7}, Numbers{3, 5, 9, 11, 15});
  for (std::size_t k = 2; k < 5; ++k) EXPECT_LT(std::fabs(line[k]), 1e-13);
}

}  // namespace
}  // namespace vexa
