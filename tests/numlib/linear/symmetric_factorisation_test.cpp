#include "numlib/linear/symmetric_factorisation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

class SymmetricTest : public RandomTest {
 protected:
  // Orders on both sides of kernelOrder and of the panels behind it.
  static constexpr int orders[] = {1, 2, 5, 47, 127, 128, 145, 310};

  // Factors of a positive definite matrix with a condition number of some thousands.
  TestMatrix positiveDefinite(int n) {
    const TestMatrix g = randomMatrix(n, n);
    TestMatrix a = product(g, g.transposed());
    for (int i = 1; i <= n; ++i) a(i, i) += 0.1;
    return a;
  }
};

TestMatrix lowerPart(const TestMatrix& a, bool unit) {
  return TestMatrix::from(a.rows, a.rows, [&](int i, int j) {
    return i == j && unit ? 1.0 : i >= j ? a(i, j) : 0.0;
  });
}

void spoilUpper(TestMatrix& a) {
  for (int i = 1; i <= a.rows; ++i) {
    for (int j = i + 1; j <= a.rows; ++j) a(i, j) = 1e30;
  }
}

TEST_F(SymmetricTest, LdltMultipliesBackFromTheLowerTriangle) {
  for (const int n : orders) {
    const TestMatrix a = randomSymmetric(n, n);
    const std::vector<double> b = randomVector(n);
    withEachProvider([&] {
      TestMatrix f = a;
      spoilUpper(f);
      ASSERT_EQ(ldltFactor(f.view(), startTolerance), Outcome::done);
      if (n > 1) {
        EXPECT_EQ(f(1, 2), 1e30) << "above the diagonal nothing is touched";
      }
      const TestMatrix l = lowerPart(f, true);
      TestMatrix ld = l;
      for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) ld(i, j) *= f(j, j);
      }
      // Diagonally dominant, so that nothing grows: some units in the last place of the
      // diagonal, which is n.
      EXPECT_LT(largestDifference(product(ld, l.transposed()), a), 16 * n * epsilon) << n;
      std::vector<double> x = b;
      ldltSolve(f.view(), x);
      EXPECT_LT(backwardError(a, x, b), n + 4) << n;
    });
  }
}

TEST_F(SymmetricTest, LdltTestsEveryPivotButTheLast) {
  for (const int n : {1, 2, 3, 48, 96, 130, 144}) {
    const auto withZeroAt = [&](int place) {
      return TestMatrix::from(n, n, [&](int i, int j) { return i == j && i != place ? 2.0 : 0.0; });
    };
    TestMatrix last = withZeroAt(n);
    EXPECT_EQ(ldltFactor(last.view(), startTolerance), Outcome::done) << n;
    for (const int place : {n - 1, n / 2, 48, 96}) {
      if (place < 1 || place >= n) continue;
      TestMatrix earlier = withZeroAt(place);
      EXPECT_EQ(ldltFactor(earlier.view(), startTolerance), Outcome::singular) << n << " " << place;
    }
  }
}

TEST_F(SymmetricTest, LdltLeavesWhatItHadReachedAtASingularPivot) {
  // The second pivot vanishes; the third row has had the first step done and no more.
  TestMatrix a(3, 3, {2, 0, 0, 2, 2, 0, 4, 7, 1});
  EXPECT_EQ(ldltFactor(a.view(), startTolerance), Outcome::singular);
  EXPECT_EQ(a.block, (std::vector<double>{2, 0, 0, 1, 0, 0, 2, 3, 1}));
}

TEST_F(SymmetricTest, CholeskyReadsAboveAndWritesBelowTheDiagonal) {
  for (const int n : orders) {
    const TestMatrix a = positiveDefinite(n);
    const std::vector<double> b = randomVector(n);
    withEachProvider([&] {
      TestMatrix f = a;
      for (int i = 1; i <= n; ++i) {
        for (int j = 1; j < i; ++j) f(i, j) = 1e30;  // not input
      }
      ASSERT_EQ(choleskyFactor(f.view()), Outcome::done);
      const TestMatrix l = lowerPart(f, false);
      for (int i = 1; i <= n; ++i) {
        for (int j = i + 1; j <= n; ++j) ASSERT_EQ(f(i, j), a(i, j));
      }
      EXPECT_LT(largestDifference(product(l, l.transposed()), a), n * epsilon * largest(a.block));
      std::vector<double> x = b;
      choleskySolve(f.view(), x);
      EXPECT_LT(backwardError(a, x, b), n + 4) << n;

      std::vector<double> row(static_cast<std::size_t>(n));
      ASSERT_EQ(choleskyInvertFactor(f.view(), row), Outcome::done);
      const TestMatrix inverse = lowerPart(f, false);
      TestMatrix unit(n, n, 0.0);
      for (int i = 1; i <= n; ++i) unit(i, i) = 1;
      EXPECT_LT(largestDifference(product(inverse, l), unit), epsilon * norm(inverse) * norm(l));
    });
  }
}

TEST_F(SymmetricTest, CholeskyStopsBeforeTheFirstPivotThatIsNotPositive) {
  for (const int n : {3, 60, 200}) {
    for (const int bad : {1, 2, n / 2, n}) {
      TestMatrix a = positiveDefinite(n);
      for (int i = 1; i <= n; ++i) {
        for (int j = 1; j < i; ++j) a(i, j) = 7;  // what stands there until L comes
      }
      TestMatrix good = a;
      ASSERT_EQ(choleskyFactor(good.view()), Outcome::done);
      a(bad, bad) = -1;
      TestMatrix f = a;
      EXPECT_EQ(choleskyFactor(f.view()), Outcome::singular);
      for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= i; ++j) {
          if (j < bad && i != bad) {
            ASSERT_NEAR(f(i, j), good(i, j), n * epsilon * 10) << n << " column " << j;
          } else if (j >= bad) {
            ASSERT_EQ(f(i, j), a(i, j)) << n << " row " << i << " column " << j;
          }
        }
      }
    }
  }
  TestMatrix zero(1, 1, 0.0);
  EXPECT_EQ(choleskyFactor(zero.view()), Outcome::singular);
}

TEST_F(SymmetricTest, UpwardEliminationSolvesAndCondenses) {
  for (const int n : {2, 5, 47, 49, 110, 127, 128, 180, 300}) {
    const TestMatrix a = randomSymmetric(n, n);
    const std::vector<double> b = randomVector(n);
    for (const int retained : {1, 2, n / 2, n}) {
      if (retained < 1) continue;
      withEachProvider([&] {
        TestMatrix f = a;
        std::vector<double> x = b;
        const auto eliminate = [&](Reduce reduce) {
          return eliminateUpward(f.view(), x, retained, startTolerance, reduce);
        };
        ASSERT_EQ(eliminate(Reduce::matrixAndVector), Outcome::done);
        for (int i = 1; i <= n; ++i) {
          for (int j = i + 1; j <= n; ++j) ASSERT_EQ(f(i, j), j > retained ? 0.0 : a(i, j));
        }
        // The condensed system, solved from its lower triangle, gives the retained unknowns.
        const auto condensed = TestMatrix::from(
            retained, retained, [&](int i, int j) { return i >= j ? f(i, j) : f(j, i); });
        TestMatrix factors = condensed;
        ASSERT_EQ(ldltFactor(factors.view(), startTolerance), Outcome::done);
        ldltSolve(factors.view(), std::span(x).first(static_cast<std::size_t>(retained)));
        substituteDownward(f.view(), x, retained);
        EXPECT_LT(backwardError(a, x, b), n + 8) << n << " retained " << retained;

        const std::vector<double> first = x;
        x = b;
        ASSERT_EQ(eliminate(Reduce::vectorOnly), Outcome::done);
        ldltSolve(factors.view(), std::span(x).first(static_cast<std::size_t>(retained)));
        substituteDownward(f.view(), x, retained);
        for (int i = 0; i < n; ++i) {
          ASSERT_NEAR(x[std::size_t(i)], first[std::size_t(i)], 8 * epsilon) << "solved again";
        }
      });
    }
  }
}

// Elimination as it is written down, one unknown after the other.
bool eliminateOneByOne(TestMatrix& a, std::vector<double>& b, int retained, double tolerance) {
  const auto at = [&b](int i) -> double& { return b[std::size_t(i - 1)]; };
  for (int i = a.rows; i > retained; --i) {
    if (std::fabs(a(i, i)) < tolerance) return false;
    for (int j = 1; j < i; ++j) {
      if (a(i, j) == 0) continue;
      const double f = a(i, j) / a(i, i);
      a(j, i) = 0;
      for (int m = j; m < i; ++m) a(m, j) -= f * a(i, m);
    }
    const double f = at(i) / a(i, i);
    for (int m = 1; m < i && at(i) != 0; ++m) at(m) -= f * a(i, m);
  }
  return true;
}

TEST_F(SymmetricTest, UpwardEliminationByPanelsChangesNoBitOfSmallOrders) {
  int singular = 0;
  for (const int n : {3, 10, 48, 60, 100, 127}) {
    for (int round = 0; round < 12; ++round) {
      TestMatrix a = wholeMatrix(n, n);
      if (round % 3 == 0) a(n / 2 + 1, n / 2 + 1) = 0;
      if (round % 2 == 0) a = randomSymmetric(n, 1.0);
      if (round == 11)
        a = TestMatrix::from(n, n, [&](int i, int j) { return i == j && i != n / 2; });
      TestMatrix reference = a;
      std::vector<double> x = randomVector(n), y = x;
      const bool regular = eliminateOneByOne(reference, y, 1, 1e-9);
      singular += !regular;
      const Outcome outcome = eliminateUpward(a.view(), x, 1, 1e-9, Reduce::matrixAndVector);
      ASSERT_EQ(outcome, regular ? Outcome::done : Outcome::singular) << n << " " << round;
      ASSERT_EQ(a.block, reference.block) << n << " " << round;
      ASSERT_EQ(x, y);
    }
  }
  EXPECT_GT(singular, 5);
}

TEST_F(SymmetricTest, LongWorkStopsWhenAsked) {
  const int n = 300;
  const TestMatrix a = positiveDefinite(n);
  std::vector<double> b = randomVector(n);
  expectStops({0, 20}, [&](const InterruptTest& stop) {
    TestMatrix f = a;
    return ldltFactor(f.view(), startTolerance, stop) == Outcome::interrupted;
  });
  expectStops({0, 6}, [&](const InterruptTest& stop) {
    TestMatrix f = a;
    return choleskyFactor(f.view(), stop) == Outcome::interrupted;
  });
  expectStops({0, 290}, [&](const InterruptTest& stop) {
    TestMatrix f = a;
    return choleskyInvertFactor(f.view(), b, stop) == Outcome::interrupted;
  });
  expectStops({0, 200}, [&](const InterruptTest& stop) {
    TestMatrix f = a;
    return eliminateUpward(f.view(), b, 1, startTolerance, Reduce::matrixAndVector, stop) ==
           Outcome::interrupted;
  });
  const TestMatrix huge(1500, 1500, 1.0);
  std::vector<double> v(1500, 1.0);
  expectStops({0, 1}, [&](const InterruptTest& stop) {
    return ldltSolve(huge.view(), v, stop) == Outcome::interrupted;
  });
  expectStops({0, 1}, [&](const InterruptTest& stop) {
    return choleskySolve(huge.view(), v, stop) == Outcome::interrupted;
  });
  expectStops({0}, [&](const InterruptTest& stop) {
    return substituteDownward(huge.view(), v, 1, stop) == Outcome::interrupted;
  });
}

}  // namespace
}  // namespace vexa
