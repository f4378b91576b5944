#include "numlib/eigen/symmetric_eigen.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "numlib/eigen/dense_checks.h"

namespace vexa {
namespace {

using checks::Dense;
using checks::epsilon;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Eigen {
  std::vector<double> values;
  Dense vectors;
  std::vector<double> sorted;
};

Eigen decompose(const Dense& a, const SlowIteration& slow = {}) {
  Eigen result{std::vector<double>(static_cast<std::size_t>(a.rows)), a, {}};
  EXPECT_EQ(eigenSymmetric(result.vectors.view(), result.values, {}, slow), Outcome::done);
  result.sorted = result.values;
  std::ranges::sort(result.sorted);
  return result;
}

// A V = V diag(values) and V'V = I, each to a few roundings for every row.
void expectDecomposed(const Dense& a, const Eigen& e) {
  const double roundings = 8.0 * a.rows * epsilon;
  EXPECT_LE(checks::skewness(e.vectors), roundings);
  EXPECT_LE(checks::distance(a * e.vectors, e.vectors * checks::diagonal(e.values)),
            roundings * checks::largest(a));
}

Dense rosser() {
  return {8, 8, {611, 196, -192, 407,  -8,  -52,  -49, 29,  196, 899, 113,  -192, -71,
                 -43, -8,  -44,  -192, 113, 899,  196, 61,  49,  8,   52,   407,  -192,
                 196, 611, 8,    44,   59,  -23,  -8,  -71, 61,  8,   411,  -599, 208,
                 208, -52, -43,  49,   44,  -599, 411, 208, 208, -49, -8,   8,    59,
                 208, 208, 99,   -911, 29,  -44,  52,  -23, 208, 208, -911, 99}};
}

Dense wilkinson(int n) {
  return {n, n, [n](int i, int j) {
            if (i == j) return std::fabs(i - n / 2);
            return std::abs(i - j) == 1 ? 1.0 : 0.0;
          }};
}

TEST(SymmetricEigen, KnownEigenvaluesAreFound) {
  const auto nearly = [](const Dense& a, std::size_t index, double value) {
    const Eigen e = decompose(a);
    expectDecomposed(a, e);
    // Eigenvalues of a symmetric matrix move by no more than the matrix does.
    EXPECT_NEAR(e.sorted[index], value, 8.0 * a.rows * epsilon * checks::largest(a)) << index;
  };
  // Rosser's matrix: one zero, one pair, three near 1020, two opposite ones; in closed form.
  const double rosserValues[] = {
      -10 * std::sqrt(10405),    0,    510 - 100 * std::sqrt(26), 1000, 1000,
      510 + 100 * std::sqrt(26), 1020, 10 * std::sqrt(10405)};
  for (std::size_t k = 0; k < 8; ++k) nearly(rosser(), k, rosserValues[k]);
  // From here on by Jacobi rotations with 70 digits. The two largest of W21 agree to 13 digits.
  nearly(wilkinson(21), 18, 9.21067864736133210792);
  nearly(wilkinson(21), 19, 10.7461941829033218323);
  nearly(wilkinson(21), 20, 10.7461941829033934319);
  const double hilbertValues[] = {1.11153896637244242707e-10, 1.79887374581757667726e-8,
                                  1.29433209187281148030e-6,  5.43694336974994236237e-5,
                                  1.46768811774186731158e-3,  2.62128435781190477966e-2,
                                  2.98125211316930706184e-1,  1.69593899692194945208};
  for (std::size_t k = 0; k < 8; ++k) nearly(checks::hilbert(8, 8), k, hilbertValues[k]);
  // Second differences: 2 - 2 cos(k pi / (n + 1)). The larger one is reduced in blocks, in which
  // nothing needs to be reflected.
  for (const int n : {30, 300}) {
    const Dense second(n, n, [](int i, int j) {
      return i == j ? 2.0 : std::abs(i - j) == 1 ? -1.0 : 0.0;
    });
    const Eigen e = decompose(second);
    expectDecomposed(second, e);
    for (int k = 1; k <= n; ++k) {
      EXPECT_NEAR(e.sorted[static_cast<std::size_t>(k - 1)],
                  2.0 - 2.0 * std::cos(k * 3.14159265358979323846 / (n + 1)), 16 * n * epsilon);
    }
  }
}

TEST(SymmetricEigen, RandomMatricesAreDecomposed) {
  constexpr unsigned seed = 2101;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  for (const int n : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 100, 256, 300}) {
    SCOPED_TRACE("order " + std::to_string(n));
    const Dense a = checks::randomSymmetric(n, generator);
    expectDecomposed(a, decompose(a));
    // Projections have the eigenvalues 0 and 1 only, each many times.
    const Dense u = checks::randomDense(n, 1, generator);
    const double square = (checks::transposed(u) * u)(0, 0);
    const Dense projection(n, n, [&](int i, int j) { return u(i, 0) * u(j, 0) / square; });
    const Eigen e = decompose(projection);
    expectDecomposed(projection, e);
    EXPECT_NEAR(e.sorted.back(), 1.0, 8 * n * epsilon);
    if (n > 1) {
      EXPECT_NEAR(e.sorted[static_cast<std::size_t>(n - 2)], 0.0, 8 * n * epsilon);
    }
  }
}

TEST(SymmetricEigen, GradedMatrixKeepsItsSmallEigenvalues) {
  // Elements 2^(-10 (i+j)), doubled on the diagonal. From the second row on, each eigenvalue is
  // that of what elimination from the top leaves, to a factor of about 1 + 2^-20; relative to
  // itself.
  const int n = 5;
  const Dense rising(
      n, n, [](int i, int j) { return std::ldexp(i == j ? 2.0 : 1.0, -10 * (8 - i - j)); });
  const Eigen e = decompose(rising);
  for (int k = 0; k < n; ++k) {
    const double leftOver = 2.0 - static_cast<double>(k) / (k + 1);
    const double expected = std::ldexp(leftOver, -20 * k);
    EXPECT_NEAR(e.sorted[static_cast<std::size_t>(n - 1 - k)] / expected, 1.0, 1e-5) << k;
  }
}

TEST(SymmetricEigen, DiagonalStaysInOrderWithTheIdentity) {
  const std::vector<double> d{3, -1, 0, 2, 2};
  const Eigen e = decompose(checks::diagonal(d));
  EXPECT_EQ(e.values, d);
  EXPECT_EQ(e.vectors.block, checks::diagonal(std::vector<double>(5, 1.0)).block);
  EXPECT_EQ(decompose(Dense(3, 3)).values, (std::vector<double>{0, 0, 0}));
}

TEST(SymmetricEigen, OnlyTheLowerTriangleIsRead) {
  std::mt19937 generator(5);
  const Dense a = checks::randomSymmetric(9, generator);
  Dense lower = a;
  for (int i = 0; i < 9; ++i)
    for (int j = i + 1; j < 9; ++j) lower.view()(i, j) = 1e3;
  EXPECT_EQ(decompose(a).values, decompose(lower).values);
}

TEST(SymmetricEigen, ExtremeMagnitudesNeitherOverflowNorVanish) {
  const Dense one(3, 3, {2, -1, 0.5, -1, 3, 1, 0.5, 1, -4});
  const Eigen plain = decompose(one);
  // Powers of two: what is computed must be the same but for its exponent.
  for (const int exponent : {-1000, -600, 600, 1018}) {
    Dense a = one;
    for (double& x : a.block) x = std::ldexp(x, exponent);
    const Eigen e = decompose(a);
    for (std::size_t k = 0; k < 3; ++k)
      EXPECT_NEAR(std::ldexp(e.values[k], -exponent), plain.values[k], 32 * epsilon) << exponent;
    EXPECT_LE(checks::skewness(e.vectors), 32 * epsilon);
  }
}

TEST(SymmetricEigen, WhatIsNoNumberEndsTheIteration) {
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), kInfinity}) {
    Dense a(6, 6, 1.0);
    a.view()(3, 1) = bad;
    EXPECT_TRUE(
        std::ranges::any_of(decompose(a).values, [](double x) { return !std::isfinite(x); }));
  }
}

TEST(SymmetricEigen, SlowValueIsReportedOnceAndStillFound) {
  const Dense a = rosser();
  int notices = 0;
  const Eigen e = decompose(a, {[&] { ++notices; }, 1});
  expectDecomposed(a, e);
  EXPECT_GT(notices, 0);
  EXPECT_LE(notices, 8);
  decompose(a, {[&] { ADD_FAILURE() << "30 rounds are more than it needs"; }});
}

TEST(SymmetricEigen, InterruptStopsAtEachStage) {
  std::mt19937 generator(6);
  const Dense a = checks::randomSymmetric(40, generator);
  int asked = 0;
  std::vector<double> values(40);
  const auto run = [&](int stopAt) {
    Dense copy = a;
    asked = 0;
    return eigenSymmetric(copy.view(), values, [&] { return ++asked == stopAt; });
  };
  ASSERT_EQ(run(-1), Outcome::done);
  const int all = asked;
  EXPECT_GE(all, 3 * 39);
  for (int stopAt = 1; stopAt <= all; ++stopAt) {
    EXPECT_EQ(run(stopAt), Outcome::interrupted);
    EXPECT_EQ(asked, stopAt);
  }
}

}  // namespace
}  // namespace vexa
