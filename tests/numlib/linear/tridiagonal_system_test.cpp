#include "numlib/linear/tridiagonal_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

using TridiagonalTest = RandomTest;

TEST_F(TridiagonalTest, SolvesTheFullSystem) {
  for (const int n : {2, 3, 4, 50, 1000}) {
    std::vector<double> a = randomVector(n + 2), d = randomVector(n), c = randomVector(n - 1);
    for (double& x : d) x += 3;
    a[0] = 1e300;  // not part of the system
    const std::vector<double> r = randomVector(n);
    std::vector<double> x = r, gamma(std::size_t(n), 7.0);
    ASSERT_EQ(tridiagonalSolve(a, d, c, x, gamma), Outcome::done);
    const auto full = TestMatrix::from(n, n, [&](int i, int j) {
      const auto at = std::size_t(i - 1);
      return i == j ? d[at] : j == i - 1 ? a[at] : j == i + 1 ? c[at] : 0.0;
    });
    EXPECT_LT(backwardError(full, x, r), 8) << n;
  }
}

TEST_F(TridiagonalTest, TinyPivotsEndTheElimination) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  struct Case {
    double first, second;
    Outcome outcome;
  };
  // At the threshold itself the first pivot passes and the second does not.
  for (const Case& c : {Case{1e-30, 1, Outcome::done},
                        {0.99e-30, 1, Outcome::singular},
                        {1, 1e-30, Outcome::singular},
                        {1, -1.01e-30, Outcome::done},
                        {1, nan, Outcome::singular}}) {
    const std::vector<double> d = {c.first, c.second}, zeros = {0, 0};
    std::vector<double> r = {0, 0}, gamma(2);
    EXPECT_EQ(tridiagonalSolve(zeros, d, zeros, r, gamma), c.outcome) << c.first << " " << c.second;
  }
}

TEST_F(TridiagonalTest, LongWorkStopsWhenAskedAndIsSolvedAcrossItsStretches) {
  // d = 3 between ones: a right side of fives, fours at the ends, is solved by ones.
  const std::size_t n = elementsBetweenQuestions + 10;
  const std::vector<double> ones(n, 1.0), d(n, 3.0);
  std::vector<double> r(n), gamma(n);
  expectStops({0, 1}, [&](const InterruptTest& stop) {
    return tridiagonalSolve(ones, d, ones, r, gamma, stop) == Outcome::interrupted;
  });
  std::ranges::fill(r, 5.0);
  r.front() = r.back() = 4.0;
  EXPECT_EQ(tridiagonalSolve(ones, d, ones, r, gamma), Outcome::done);
  EXPECT_LT(largest(r), 1 + 8 * epsilon);
  EXPECT_GT(*std::ranges::min_element(r), 1 - 8 * epsilon);
}

}  // namespace
}  // namespace vexa
