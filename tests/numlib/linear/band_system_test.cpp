#include "numlib/linear/band_system.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

class BandTest : public RandomTest {
 protected:
  // Diagonally dominant; what lies beyond the edge would ruin any result.
  TestMatrix randomBand(int n, int b) {
    return TestMatrix::from(n, b, [&](int i, int k) {
      if (k == 1) return 2.0 * b + uniform();
      return i + k - 1 <= n ? uniform() : 1e300;
    });
  }
};

TestMatrix full(const TestMatrix& band) {
  const int n = band.rows;
  return TestMatrix::from(n, n, [&](int i, int j) {
    const int k = std::abs(i - j) + 1;
    return k <= band.cols ? band(std::min(i, j), k) : 0.0;
  });
}

constexpr std::array<std::array<int, 2>, 8> shapes = {
    {{1, 1}, {5, 1}, {2, 2}, {6, 2}, {9, 4}, {7, 7}, {3, 5}, {120, 17}}};

TEST_F(BandTest, MultipliesAsTheFullMatrixDoes) {
  for (const auto [n, b] : shapes) {
    const TestMatrix band = randomBand(n, b);
    const std::vector<double> v = randomVector(n);
    std::vector<double> w(v.size(), 5.0);
    bandMultiply(band.view(), v, w);
    const TestMatrix expected = product(full(band), TestMatrix(n, 1, v));
    for (std::size_t i = 0; i < w.size(); ++i) {
      EXPECT_NEAR(w[i], expected.block[i], 8 * b * epsilon) << n << " x " << b;
    }
  }
}

TEST_F(BandTest, SolvesAndSolvesAgain) {
  for (const auto [n, b] : shapes) {
    const TestMatrix band = randomBand(n, b);
    TestMatrix factors = band;
    long zeroPivots = -1;
    if (b > 1) {
      ASSERT_EQ(bandFactor(factors.view(), zeroPivots), Outcome::done);
      EXPECT_EQ(zeroPivots, 0);
    }
    for (int round = 0; round < 2; ++round) {
      const std::vector<double> v = randomVector(n);
      std::vector<double> x = v;
      if (round == 1 && n > 1) x[0] = 0;
      const std::vector<double> right = x;
      bandSolve(factors.view(), x);
      EXPECT_LT(backwardError(full(band), x, right), b + 4) << n << " x " << b;
    }
  }
}

TEST_F(BandTest, ZeroPivotsAreCountedForEachElementBehindThem) {
  TestMatrix band(3, 3, {0, 1, 2, 5, 0, 0, 1, 0, 0});
  long zeroPivots = 0;
  EXPECT_EQ(bandFactor(band.view(), zeroPivots), Outcome::done);
  EXPECT_EQ(zeroPivots, 2);
  EXPECT_TRUE(std::isinf(band(1, 2)));
}

TEST_F(BandTest, ElementsAreAssembledByTheirUnknowns) {
  const TestMatrix element(3, 3, {1, 2, 3, 2, 5, 6, 3, 6, 9});
  // The first unknown is global number 4, the second is left out, the third is number 2 turned
  // round; so the pair (2, 4) gets -3, in column 3 of row 2.
  TestMatrix band(4, 3, 0.0);
  EXPECT_EQ(bandAssemble(band.view(), element.view(), std::array{4, 0, -2}), Assembly::done);
  EXPECT_EQ(band.block, (std::vector<double>{0, 0, 0, 9, 0, -3, 0, 0, 0, 1, 0, 0}));
  // Two unknowns of the element are one of the structure: all four elements meet.
  band = TestMatrix(4, 3, 0.0);
  EXPECT_EQ(bandAssemble(band.view(), element.view(), std::array{3, -3, 0}), Assembly::done);
  EXPECT_EQ(band(3, 1), 1 + 5 - 2 - 2);
  // What precedes the first pair outside of the band stays added.
  band = TestMatrix(4, 3, 0.0);
  EXPECT_EQ(bandAssemble(band.view(), element.view(), std::array{1, 2, 4}),
            Assembly::bandTooNarrow);
  EXPECT_EQ(band.block, (std::vector<double>{1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(BandTest, LongWorkStopsWhenAsked) {
  const TestMatrix band = randomBand(400, 399);
  expectStops({0, 3}, [&](const InterruptTest& stop) {
    TestMatrix factors = band;
    long zeroPivots = 0;
    return bandFactor(factors.view(), zeroPivots, stop) == Outcome::interrupted;
  });
  const TestMatrix large(3000, 400, 1.0);
  std::vector<double> v(3000, 1.0), product(3000);
  expectStops({0}, [&](const InterruptTest& stop) {
    return bandMultiply(large.view(), v, product, stop) == Outcome::interrupted;
  });
  expectStops({0, 1}, [&](const InterruptTest& stop) {
    return bandSolve(large.view(), v, stop) == Outcome::interrupted;
  });
}

}  // namespace
}  // namespace vexa
