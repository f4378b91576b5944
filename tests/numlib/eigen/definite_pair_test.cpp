#include "numlib/eigen/definite_pair.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "numlib/eigen/dense_checks.h"

namespace vexa {
namespace {

using checks::Dense;
using checks::epsilon;

// A chain of n equal springs and masses, the first spring fixed, the last mass halved: the squares
// of its frequencies are 2 - 2 cos((2k - 1) pi / (2n)).
Dense chainStiffness(int n) {
  return {n, n, [n](int i, int j) {
            if (i == j) return i == n - 1 ? 1.0 : 2.0;
            return std::abs(i - j) == 1 ? -1.0 : 0.0;
          }};
}
Dense chainMass(int n) {
  return {n, n, [n](int i, int j) { return i != j ? 0.0 : i == n - 1 ? 0.5 : 1.0; }};
}

void expectSolved(const Dense& a, const Dense& b, const Dense& x, const std::vector<double>& values,
                  double condition) {
  const double roundings = 8.0 * a.rows * epsilon * condition;
  EXPECT_LE(checks::distance(checks::transposed(x) * (b * x),
                             checks::diagonal(std::vector<double>(values.size(), 1.0))),
            roundings);
  EXPECT_LE(checks::distance(checks::transposed(x) * (a * x), checks::diagonal(values)),
            roundings * checks::largest(checks::diagonal(values)));
}

TEST(DefinitePair, ChainHasItsFrequencies) {
  const int n = 12;
  const Dense a = chainStiffness(n);
  const Dense b = chainMass(n);
  Dense x = a;
  Dense lent = b;
  std::vector<double> values(n);
  ASSERT_EQ(eigenDefinitePair(x.view(), lent.view(), values), Outcome::done);
  expectSolved(a, b, x, values, 2.0);
  EXPECT_EQ(lent.block, b.block);
  std::ranges::sort(values);
  for (int k = 1; k <= n; ++k) {
    const double expected = 2.0 - 2.0 * std::cos((2 * k - 1) * 3.14159265358979323846 / (2 * n));
    EXPECT_NEAR(values[static_cast<std::size_t>(k - 1)], expected, 8 * n * epsilon * 4) << k;
  }
}

TEST(DefinitePair, RandomPairsDiagonalizeTogether) {
  constexpr unsigned seed = 2102;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  for (const int n : {1, 2, 3, 5, 8, 17, 40}) {
    SCOPED_TRACE("order " + std::to_string(n));
    const Dense a = checks::randomSymmetric(n, generator);
    const Dense r = checks::randomDense(n, n, generator);
    Dense b = r * checks::transposed(r);
    for (int i = 0; i < n; ++i) b.view()(i, i) += 0.5;
    Dense x = a;
    std::vector<double> values(static_cast<std::size_t>(n));
    ASSERT_EQ(eigenDefinitePair(x.view(), b.view(), values), Outcome::done);
    // B's eigenvalues lie between 1/2 and its trace.
    expectSolved(a, b, x, values, 2.0 * n * checks::largest(b));
  }
}

TEST(DefinitePair, LentMatrixIsGivenBackWhateverHappens) {
  const Dense a = chainStiffness(4);
  // Not quite symmetric, as products of matrices come out; only the upper triangle counts.
  Dense b = chainMass(4);
  b.view()(3, 1) = 1e-17;
  b.view()(2, 0) = -2e-17;
  Dense indefinite = chainMass(4);
  indefinite.view()(2, 2) = 0.0;
  indefinite.view()(3, 0) = 7.0;
  Dense undefined = chainMass(4);
  undefined.view()(1, 1) = std::nan("");
  std::vector<double> values(4, 99.0);

  for (Dense* bad : {&indefinite, &undefined}) {
    Dense x = a;
    const Dense before = *bad;
    EXPECT_EQ(eigenDefinitePair(x.view(), bad->view(), values), Outcome::singular);
    EXPECT_EQ(x.block, a.block);
    EXPECT_EQ(values, std::vector<double>(4, 99.0));
    for (std::size_t k = 0; k < 16; ++k)
      EXPECT_TRUE(bad->block[k] == before.block[k] || std::isnan(before.block[k])) << k;
  }
  const Dense before = b;
  for (int stopAt = 1; stopAt <= 8; ++stopAt) {
    Dense x = a;
    int asked = 0;
    const InterruptTest leave = [&]() -> bool {
      if (++asked == stopAt) throw std::runtime_error("stopped");
      return false;
    };
    EXPECT_THROW((void)eigenDefinitePair(x.view(), b.view(), values, leave), std::runtime_error);
    EXPECT_EQ(b.block, before.block) << stopAt;
  }
  Dense x = a;
  EXPECT_EQ(eigenDefinitePair(x.view(), b.view(), values), Outcome::done);
  EXPECT_EQ(b.block, before.block);
}

}  // namespace
}  // namespace vexa
