// Sums, symmetry and exactness; single nodes and weights are in the accuracy table.
#include "numlib/calculus/gauss_points.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>

namespace vexa {
namespace {

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

double gamma(double x) { return std::tgamma(x); }

TEST(GaussPointsTest, WeightsAddUpToTheIntegralOfTheirFunction) {
  const double pi = std::numbers::pi;
  const struct {
    GaussWeight weight;
    double total;
  } cases[] = {
      {{GaussFamily::legendre}, 2},
      {{GaussFamily::laguerre}, 1},
      {{GaussFamily::laguerre, 2.5}, gamma(3.5)},
      {{GaussFamily::laguerre, -0.9}, gamma(0.1)},
      {{GaussFamily::hermite}, std::sqrt(pi)},
      {{GaussFamily::chebyshev}, pi},
      {{GaussFamily::jacobi, -0.5, -0.5}, pi},
      {{GaussFamily::jacobi, 1, 0}, 2},
  };
  for (const auto& row : cases)
    for (const int n : {1, 2, 7, 64})
      EXPECT_NEAR(sum(gaussPoints(n, row.weight).weights) / row.total, 1, 1e-14)
          << static_cast<int>(row.weight.family) << ", " << n;
}

TEST(GaussPointsTest, SymmetricFamiliesAreExactlySymmetric) {
  for (const GaussWeight weight : {GaussWeight{GaussFamily::legendre},
                                   {GaussFamily::hermite},
                                   {GaussFamily::chebyshev},
                                   {GaussFamily::jacobi, 0.7, 0.7}}) {
    for (const int n : {1, 3, 8, 101}) {
      const auto [x, w] = gaussPoints(n, weight);
      for (std::size_t i = 0, j = x.size() - 1; i < x.size(); ++i, --j) {
        EXPECT_EQ(x[i], -x[j]);
        EXPECT_EQ(w[i], w[j]);
        EXPECT_FALSE(i == j && std::signbit(x[i]));
        EXPECT_TRUE(i == 0 || x[i - 1] < x[i]);
      }
    }
  }
}

TEST(GaussPointsTest, PolynomialsUpToTheDegreeAreExact) {
  for (const int n : {1, 2, 5, 20, 500}) {
    const auto [x, w] = gaussPointsBetween(n, 0, 1);
    const int degree = 2 * n - 1;
    double value = 0;
    for (std::size_t i = 0; i < x.size(); ++i) value += w[i] * std::pow(x[i], degree);
    EXPECT_NEAR(value * (degree + 1), 1, 1e-13 * n) << n;
  }
  const auto forward = gaussPointsBetween(9, -1, 4), backward = gaussPointsBetween(9, 4, -1);
  EXPECT_EQ(forward.nodes, backward.nodes);
  EXPECT_EQ(sum(forward.weights), -sum(backward.weights));
}

TEST(GaussPointsTest, TheLargestNumbersOfPointsKeepTheirSums) {
  for (const GaussWeight weight : {GaussWeight{GaussFamily::legendre},
                                   {GaussFamily::chebyshev},
                                   {GaussFamily::jacobi, -0.9, 30}}) {
    const auto [x, w] = gaussPoints(gaussPointLimit, weight);
    const double one = sum(gaussPoints(1, weight).weights);
    EXPECT_NEAR(sum(w) / one, 1, 1e-13);
    EXPECT_TRUE(std::is_sorted(x.begin(), x.end()));
  }
  const auto [x, w] = gaussPoints(gaussPointLimit, {GaussFamily::laguerre, 100});
  EXPECT_NEAR(sum(w) / gamma(101), 1, 1e-13);
  EXPECT_EQ(w.back(), 0) << "below the range";
}

}  // namespace
}  // namespace vexa
