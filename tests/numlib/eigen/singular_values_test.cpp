#include "numlib/eigen/singular_values.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "numlib/eigen/dense_checks.h"

namespace vexa {
namespace {

using checks::Dense;
using checks::epsilon;

struct Singular {
  Dense u;
  std::vector<double> w;
  Dense v;
  std::vector<double> sorted;
};

// A = U diag(w) V', with orthonormal columns and values of 0 or more.
Singular decompose(const Dense& a, const SlowIteration& slow = {}) {
  const int n = a.cols;
  Singular s{a, std::vector<double>(static_cast<std::size_t>(n)), Dense(n, n, 99.0), {}};
  EXPECT_EQ(decomposeSingular(s.u.view(), s.w, s.v.view(), {}, slow), Outcome::done);
  s.sorted = s.w;
  std::ranges::sort(s.sorted);
  return s;
}

void expectDecomposed(const Dense& a, const Singular& s) {
  const double roundings = 8.0 * a.rows * epsilon;
  EXPECT_LE(checks::skewness(s.u), roundings);
  EXPECT_LE(checks::skewness(s.v), roundings);
  EXPECT_LE(checks::distance(a, s.u * (checks::diagonal(s.w) * checks::transposed(s.v))),
            roundings * checks::largest(checks::diagonal(s.w)));
  EXPECT_GE(s.sorted.front(), 0.0);
}

TEST(SingularValues, KnownValuesAreFound) {
  const Dense a = checks::hilbert(6, 4);
  const Singular s = decompose(a);
  expectDecomposed(a, s);
  // Roots of the eigenvalues of A'A by Jacobi rotations with 70 digits.
  const double expected[] = {2.39804792069333425793e-4, 1.03566881208033791808e-2,
                             2.01046091770216806282e-1, 1.55522916759603636355};
  // A singular value moves by no more than the matrix does.
  for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(s.sorted[k], expected[k], 48 * epsilon) << k;
}

TEST(SingularValues, MatricesOfAllShapesAreDecomposed) {
  constexpr unsigned seed = 2103;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  for (const auto& [m, n] : std::vector<std::pair<int, int>>{
           {1, 1}, {7, 1}, {2, 2}, {3, 2}, {5, 5}, {9, 4}, {17, 16}, {33, 32}, {60, 45}}) {
    SCOPED_TRACE(std::to_string(m) + " x " + std::to_string(n));
    const Dense full = checks::randomDense(m, n, generator);
    expectDecomposed(full, decompose(full));
    // Of rank 2 at most.
    const Dense flat = checks::randomDense(m, 2, generator) * checks::randomDense(2, n, generator);
    const Singular s = decompose(flat);
    expectDecomposed(flat, s);
    if (n > 2) {
      EXPECT_LE(s.sorted[static_cast<std::size_t>(n - 3)], 8 * m * epsilon * s.sorted.back());
    }
    // A diagonal element that vanishes in the middle of the bidiagonal form.
    Dense broken(m, n, [](int i, int j) { return i == j || i + 1 == j ? 1.0 + i : 0.0; });
    broken.view()(n / 2, n / 2) = 0.0;
    expectDecomposed(broken, decompose(broken));
  }
}

TEST(SingularValues, SpecialMatricesGiveExactValues) {
  EXPECT_EQ(decompose(Dense(3, 2)).w, (std::vector<double>{0, 0}));
  expectDecomposed(Dense(3, 2), decompose(Dense(3, 2)));
  EXPECT_EQ(decompose(checks::diagonal(std::vector<double>{3, -2, 0, 1})).w,
            (std::vector<double>{3, 2, 0, 1}));
  EXPECT_EQ(decompose(Dense(2, 1, {-3, 4})).w, (std::vector<double>{5}));
}

TEST(SingularValues, ExtremeMagnitudesNeitherOverflowNorVanish) {
  const Dense one(3, 2, {2, -1, 0.5, 3, 1, -4});
  const Singular plain = decompose(one);
  for (const int exponent : {-1000, -600, 600, 1018}) {
    Dense a = one;
    for (double& x : a.block) x = std::ldexp(x, exponent);
    const Singular s = decompose(a);
    for (std::size_t k = 0; k < 2; ++k)
      EXPECT_NEAR(std::ldexp(s.w[k], -exponent), plain.w[k], 32 * epsilon) << exponent;
    EXPECT_LE(checks::skewness(s.u), 32 * epsilon);
  }
  Dense bad(4, 3, 1.0);
  bad.view()(2, 1) = std::nan("");
  EXPECT_TRUE(std::ranges::any_of(decompose(bad).w, [](double x) { return std::isnan(x); }));
}

TEST(SingularValues, SlowValueIsReportedOnceAndInterruptHeard) {
  const Dense a = checks::hilbert(12, 9);
  int notices = 0;
  expectDecomposed(a, decompose(a, {[&] { ++notices; }, 1}));
  EXPECT_GT(notices, 0);
  EXPECT_LE(notices, 9);

  std::vector<double> w(9);
  Dense v(9, 9);
  int asked = 0;
  const auto run = [&](int stopAt) {
    Dense u = a;
    asked = 0;
    return decomposeSingular(u.view(), w, v.view(), [&] { return ++asked == stopAt; });
  };
  ASSERT_EQ(run(-1), Outcome::done);
  const int all = asked;
  EXPECT_GE(all, 4 * 8);
  for (int stopAt = 1; stopAt <= all; ++stopAt) EXPECT_EQ(run(stopAt), Outcome::interrupted);
}

TEST(SingularValues, SmallValuesAreCutStrictlyBelowTheThreshold) {
  struct Case {
    std::vector<double> w;
    double condition;
    std::vector<double> left;
  };
  // With a tolerance of 125 the threshold is an eighth of the largest value.
  // The third is exactly at the threshold: it is kept, yet the matrix is singular.
  const Case cases[] = {
      {{4, 8, 2}, 4, {4, 8, 2}},
      {{8, 0.5, 2}, 1e30, {8, 0, 2}},
      {{1, 8, 2}, 1e30, {1, 8, 2}},
      {{0, 0}, 1e30, {0, 0}},
      {{3}, 1, {3}},
  };
  for (const Case& c : cases) {
    std::vector<double> w = c.w;
    EXPECT_EQ(cutSmallValues(w, 125.0, 1e30), c.condition);
    EXPECT_EQ(w, c.left);
  }
}

TEST(SingularValues, LeastSquaresSolutionIsTheShortest) {
  // Columns 2 and 3 are equal, so only their sum is determined; x is the shortest then.
  const Dense a(4, 3, {1, 0, 0, 1, 1, 1, 1, 2, 2, 1, 3, 3});
  Singular s = decompose(a);
  (void)cutSmallValues(s.w, 1e-4, 1e30);
  std::vector<double> x(3, 99.0);
  ASSERT_TRUE(leastSquares(s.u.view(), s.w, s.v.view(), std::vector<double>{1, 3, 5, 7}, x));
  EXPECT_NEAR(x[0], 1.0, 64 * epsilon);
  EXPECT_NEAR(x[1], 1.0, 64 * epsilon);
  EXPECT_NEAR(x[2], 1.0, 64 * epsilon);

  // The fixed limit: a value of exactly 1e-12 counts as zero, whatever its sign.
  const Dense one(1, 1, 1.0);
  for (const auto& [w, expected] : std::vector<std::pair<double, double>>{
           {1e-12, 0.0}, {-1e-12, 0.0}, {1.0000001e-12, 1 / 1.0000001e-12}, {-2, -0.5}}) {
    std::vector<double> y(1, 99.0);
    ASSERT_TRUE(leastSquares(one.view(), {&w, 1}, one.view(), std::vector<double>{1.0}, y));
    EXPECT_EQ(y[0], expected) << w;
  }
}

}  // namespace
}  // namespace vexa
