#include "numlib/linear/lu_factorisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

using LuTest = RandomTest;

struct Factors {
  explicit Factors(const TestMatrix& a, double tolerance = startTolerance,
                   const InterruptTest& interrupted = {})
      : lu(a), storage(PivotList::elementsFor(std::size_t(a.rows))), scale(std::size_t(a.rows)) {
    outcome = luFactor(lu.view(), pivots(), scale, tolerance, sign, interrupted);
  }
  PivotList pivots() { return PivotList(storage); }
  std::vector<double> solve(std::vector<double> b) {
    luSolve(lu.view(), pivots(), b);
    return b;
  }

  TestMatrix lu;
  std::vector<double> storage, scale;
  double sign = 0;
  Outcome outcome;
};

// The column-by-column form with its sums in order.
bool factorByColumns(TestMatrix& a, std::vector<int>& pivots, double tolerance) {
  const int n = a.rows;
  std::vector<double> scale(std::size_t(n) + 1);
  for (int i = 1; i <= n; ++i) {
    double most = 0;
    for (int j = 1; j <= n; ++j) most = std::max(most, std::fabs(a(i, j)));
    if (most == 0) return false;
    scale[std::size_t(i)] = 1 / most;
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 2; i < j; ++i) {
      for (int k = 1; k < i; ++k) a(i, j) -= a(i, k) * a(k, j);
    }
    double best = 0;
    int p = j;
    for (int i = j; i <= n; ++i) {
      for (int k = 1; k < j; ++k) a(i, j) -= a(i, k) * a(k, j);
      const double candidate = scale[std::size_t(i)] * std::fabs(a(i, j));
      if (candidate >= best) best = candidate, p = i;
    }
    for (int k = 1; k <= n && p != j; ++k) std::swap(a(p, k), a(j, k));
    scale[std::size_t(p)] = scale[std::size_t(j)];
    pivots.push_back(p - 1);
    if (std::fabs(a(j, j)) < tolerance) return false;
    for (int i = j + 1; i <= n; ++i) a(i, j) *= 1 / a(j, j);
  }
  return true;
}

TEST_F(LuTest, SmallFactorsAreThoseOfTheColumnByColumnForm) {
  int singular = 0;
  for (const int n : {1, 2, 3, 4, 5, 8, 16, 17, 31, 33, 67, 127}) {
    for (int round = 0; round < (n < 100 ? 40 : 4); ++round) {
      TestMatrix a = round % 2 == 0 ? wholeMatrix(n, n) : randomMatrix(n, n);
      if (n > 2 && round % 4 == 3) {  // singular before the last column
        for (int i = 1; i <= n; ++i) a(i, n / 2 + 1) = 2 * a(i, 1);
      }
      TestMatrix reference = a;
      std::vector<int> pivots;
      const bool regular = factorByColumns(reference, pivots, startTolerance);
      Factors factors(a);
      ASSERT_EQ(factors.outcome, regular ? Outcome::done : Outcome::singular) << n;
      singular += !regular;
      ASSERT_EQ(factors.lu.block, reference.block) << n;  // also what a failure leaves
      if (!regular) continue;
      for (int j = 0; j < n; ++j) ASSERT_EQ(factors.pivots()[j], pivots[std::size_t(j)]);
    }
  }
  EXPECT_GT(singular, 10);
}

TEST_F(LuTest, LargeFactorsChooseTheSamePivotsAndMultiplyBack) {
  for (const int n : {128, 150, 257}) {
    const TestMatrix a = randomMatrix(n, n);
    TestMatrix reference = a;
    std::vector<int> pivots;
    ASSERT_TRUE(factorByColumns(reference, pivots, startTolerance));
    withEachProvider([&] {
      Factors factors(a);
      ASSERT_EQ(factors.outcome, Outcome::done);
      TestMatrix permuted = a;
      for (int j = 0; j < n; ++j) {
        const int p = factors.pivots()[j];
        // Random candidates lie far enough apart for roundings not to reorder them.
        ASSERT_EQ(p, pivots[std::size_t(j)]) << n << " column " << j;
        std::swap_ranges(permuted.view().row(j), permuted.view().row(j) + n,
                         permuted.view().row(p));
      }
      const auto lower = TestMatrix::from(n, n, [&](int i, int j) {
        return i == j ? 1.0 : i > j ? factors.lu(i, j) : 0.0;
      });
      const auto upper =
          TestMatrix::from(n, n, [&](int i, int j) { return i <= j ? factors.lu(i, j) : 0.0; });
      // Backward error of elimination: n eps times the growth of the elements, below 20 here.
      EXPECT_LT(largestDifference(product(lower, upper), permuted), 20 * n * epsilon);
    });
  }
}

TEST_F(LuTest, ResidualsAreSmallHoweverIllConditioned) {
  constexpr double lowTolerance = startTolerance / 100;
  for (const int n : {6, 12, 40, 130, 300}) {
    std::vector<std::pair<const char*, TestMatrix>> families = {
        {"random", randomMatrix(n, n)},
        {"graded", graded(n)},
        {"nearly singular", nearlySingular(n)}};
    // Beyond these orders their smallest pivots fall below even this threshold.
    if (n <= 12) families.emplace_back("Hilbert", hilbert(n));
    if (n <= 12) families.emplace_back("Vandermonde", vandermonde(n));
    const std::vector<double> b = randomVector(n);
    for (const auto& named : families) {
      const char* const family = named.first;
      const TestMatrix& a = named.second;
      withEachProvider([&] {
        Factors factors(a, lowTolerance);
        ASSERT_EQ(factors.outcome, Outcome::done) << family << " " << n;
        EXPECT_LT(backwardError(a, factors.solve(b), b), 4 * n) << family << " " << n;
      });
    }
  }
}

TEST_F(LuTest, HilbertInverseAndDeterminant) {
  // det of order 5 is 1/266716800000 and the inverse holds whole numbers (Choi, American
  // Mathematical Monthly 90, 1983); the condition number is 4.8e5.
  Factors factors(hilbert(5));
  const double determinant = diagonalProduct(factors.lu.view(), factors.sign);
  EXPECT_NEAR(determinant * 266716800000.0, 1.0, 4.8e5 * 4 * epsilon);
  TestMatrix inverse(5, 5);
  ASSERT_EQ(luInverse(factors.lu.view(), factors.pivots(), inverse.view()), Outcome::done);
  EXPECT_NEAR(inverse(1, 1), 25, 25 * 4.8e5 * epsilon);
  EXPECT_NEAR(inverse(3, 4), -117600, 117600 * 4.8e5 * epsilon);
}

TEST_F(LuTest, InversesMultiplyBackToTheIdentity) {
  for (const int n : {1, 9, 70, 140, 200}) {
    TestMatrix a = randomMatrix(n, n), unit(n, n, 0.0);
    for (int i = 1; i <= n; ++i) {
      a(i, i) += n;  // well conditioned
      unit(i, i) = 1;
    }
    withEachProvider([&] {
      TestMatrix factors = a, x(n, n);
      ASSERT_EQ(invertInto(factors.view(), x.view(), startTolerance), Outcome::done);
      EXPECT_LT(largestDifference(product(a, x), unit), 8 * epsilon) << n;
    });
  }
}

TEST_F(LuTest, TheLastOfEqualCandidatesBecomesThePivot) {
  // Relative to their rows' largest elements all three are equal.
  Factors factors(TestMatrix(3, 3, {1, 1, 0, 20, 20, 1, -3, 1, 3}));
  EXPECT_EQ(factors.pivots()[0], 2);
  EXPECT_EQ(factors.lu(1, 1), -3);
  std::int32_t stored = 0;
  std::memcpy(&stored, factors.storage.data(), sizeof stored);
  EXPECT_EQ(stored, 3) << "rows count from 1 in a file";
}

TEST_F(LuTest, SingularByZeroRowOrByTolerance) {
  EXPECT_EQ(Factors(TestMatrix(2, 2, {0, 0, 1, 2}), 0.0).outcome, Outcome::singular);
  const TestMatrix small(1, 1, 0x1p-52);
  EXPECT_EQ(Factors(small, 0x1p-51).outcome, Outcome::singular);
  EXPECT_EQ(Factors(small, 0x1p-52).outcome, Outcome::done);  // not below
  TestMatrix twins = randomMatrix(200, 200);
  for (int j = 1; j <= 200; ++j) twins(150, j) = twins(20, j);
  withEachProvider([&] { EXPECT_EQ(Factors(twins, 1e-12).outcome, Outcome::singular); });
}

TEST_F(LuTest, RowNumbersThatCannotBePivotsAreRefused) {
  std::vector<double> storage(PivotList::elementsFor(3));
  PivotList pivots(storage);
  for (int j = 0; j < 3; ++j) pivots.set(j, 2);
  EXPECT_TRUE(fitsOrder(pivots, 3));
  EXPECT_FALSE(fitsOrder(pivots, 5)) << "more than are stored";
  EXPECT_FALSE(fitsOrder(pivots, 2)) << "a row beyond the order";
  pivots.set(1, 0);
  EXPECT_FALSE(fitsOrder(pivots, 3)) << "a row above its own";
}

struct Jordan {
  explicit Jordan(TestMatrix matrix, std::vector<double> right = {},
                  const InterruptTest& interrupted = {})
      : a(std::move(matrix)), b(std::move(right)) {
    const std::size_t n = PivotList::elementsFor(std::size_t(a.rows));
    std::vector<double> rows(n), cols(n), used(n);
    outcome = gaussJordan(a.view(), b, PivotList(rows), PivotList(cols), PivotList(used),
                          startTolerance, replaced, interrupted);
  }
  TestMatrix a;
  std::vector<double> b;
  int replaced = -1;
  Outcome outcome;
};

TEST_F(LuTest, FullPivotingInvertsAndSolvesInPlace) {
  for (const int n : {1, 2, 9, 60, 140}) {
    const TestMatrix a = randomMatrix(n, n);
    const std::vector<double> b = randomVector(n);
    const Jordan result(a, b);
    ASSERT_EQ(result.outcome, Outcome::done);
    EXPECT_EQ(result.replaced, 0);
    EXPECT_LT(backwardError(a, result.b, b), 8 * n);
    TestMatrix factors = a, reference(n, n);
    ASSERT_EQ(invertInto(factors.view(), reference.view(), startTolerance), Outcome::done);
    // Both are off by the condition number, norm times norm of the inverse.
    EXPECT_LT(largestDifference(result.a, reference),
              8 * epsilon * norm(a) * norm(reference) * norm(reference));
  }
}

TEST_F(LuTest, FullPivotingCountsPivotsThatItReplaces) {
  EXPECT_EQ(Jordan(TestMatrix(3, 3, 0.0)).replaced, 3);
  EXPECT_EQ(Jordan(TestMatrix(3, 3, {1, 2, 3, 2, 4, 6, 0, 0, 1})).replaced, 1);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Jordan(TestMatrix(2, 2, nan)).outcome, Outcome::singular);
}

TEST_F(LuTest, LongWorkStopsWhenAsked) {
  const TestMatrix small = randomMatrix(40, 40), large = randomMatrix(300, 300);
  for (const TestMatrix* a : {&small, &large}) {
    expectStops({0, a->rows + 1}, [&](const InterruptTest& stop) {
      return Factors(*a, startTolerance, stop).outcome == Outcome::interrupted;
    });
  }
  Factors factors(large);
  TestMatrix x = large;
  expectStops({0, 3}, [&](const InterruptTest& stop) {
    return luInverse(factors.lu.view(), factors.pivots(), x.view(), stop) == Outcome::interrupted;
  });
  expectStops({0, 5}, [&](const InterruptTest& stop) {
    return Jordan(large, {}, stop).outcome == Outcome::interrupted;
  });
  // Both triangles of a solution with given factors, a million elements each.
  const TestMatrix huge(1500, 1500, 1.0);
  std::vector<double> b(1500, 1.0), rows(PivotList::elementsFor(1500));
  PivotList pivots(rows);
  for (int j = 0; j < 1500; ++j) pivots.set(j, j);
  expectStops({0, 1}, [&](const InterruptTest& stop) {
    return luSolve(huge.view(), pivots, b, stop) == Outcome::interrupted;
  });
}

}  // namespace
}  // namespace vexa
