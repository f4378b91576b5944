#include "numlib/linear/dense_basics.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

using DenseBasicsTest = RandomTest;

TestMatrix plainProduct(const TestMatrix& a, const TestMatrix& b) {
  return TestMatrix::from(a.rows, b.cols, [&](int i, int j) {
    double sum = 0.0;
    for (int k = 1; k <= a.cols; ++k) sum += a(i, k) * b(k, j);
    return sum;
  });
}

TEST_F(DenseBasicsTest, ProductsSumInOrder) {
  for (auto [r, n, q] : {std::array{1, 1, 1},
                         {1, 7, 1},
                         {5, 1, 3},
                         {4, 8, 6},
                         {13, 11, 2},
                         {2, 3, 50},
                         {127, 127, 127},
                         {300, 300, 1},
                         {400, 3, 400}}) {
    const TestMatrix a = randomMatrix(r, n);
    const TestMatrix b = randomMatrix(n, q);
    TestMatrix c(r, q);
    EXPECT_EQ(multiply(a.view(), b.view(), c.view()), Outcome::done);
    EXPECT_EQ(c.block, plainProduct(a, b).block) << r << " x " << n << " x " << q;
  }
}

TEST_F(DenseBasicsTest, LargeProductsAreGoodToTheirLength) {
  for (const std::array<int, 3>& orders :
       {std::array{128, 128, 128}, {131, 200, 145}, {50, 700, 90}, {900, 8, 400}}) {
    const int r = orders[0], n = orders[1], q = orders[2];
    const TestMatrix a = randomMatrix(r, n), b = randomMatrix(n, q), reference = product(a, b);
    withEachProvider([&] {
      TestMatrix c(r, q);
      EXPECT_EQ(multiply(a.view(), b.view(), c.view()), Outcome::done);
      // n products of at most 1, each sum of at most n: n² eps at the very worst, in practice n.
      EXPECT_LT(largestDifference(c, reference), n * epsilon) << r << " x " << n << " x " << q;
    });
  }
}

TEST_F(DenseBasicsTest, DotSumsFromTheLeft) {
  const std::vector<double> a = {1e16, 1, -1e16, 3};
  const std::vector<double> ones(4, 1.0);
  EXPECT_EQ(dot(a, ones), 3);  // the 1 is lost beside 1e16
}

TEST_F(DenseBasicsTest, LongRowsOfASystemAddUpInParts) {
  const std::vector<double> a(kernelOrder, 1.0), b(kernelOrder, 0x1p-53);
  EXPECT_EQ(minusProduct(1.0, std::span(a).first(2), b), 1.0 - 0x1p-52);
  EXPECT_EQ(minusProduct(1.0, a, b), 1.0 - kernelOrder * 0x1p-53);
}

TEST_F(DenseBasicsTest, TransposeAndIdentity) {
  for (auto [rows, cols] : {std::pair{1, 9}, {70, 1}, {33, 65}, {64, 32}}) {
    const TestMatrix a = randomMatrix(rows, cols);
    TestMatrix b(cols, rows);
    transpose(a.view(), b.view());
    for (int i = 1; i <= rows; ++i) {
      for (int j = 1; j <= cols; ++j) ASSERT_EQ(b(j, i), a(i, j));
    }
  }
  TestMatrix unit(2, 3);
  setIdentity(unit.view());
  EXPECT_EQ(unit.block, (std::vector<double>{1, 0, 0, 0, 1, 0}));
}

TEST_F(DenseBasicsTest, PowersAreRepeatedProducts) {
  const TestMatrix fibonacci(2, 2, {1, 1, 1, 0});
  TestMatrix power(2, 2);
  EXPECT_EQ(powerOf(fibonacci.view(), 77, power.view()), Outcome::done);
  EXPECT_EQ(power.block, (std::vector<double>{8944394323791464, 5527939700884757, 5527939700884757,
                                              3416454622906707}));
  const TestMatrix turn(2, 2, {0, -1, 1, 0});
  ASSERT_EQ(powerOf(turn.view(), 0x1p60 + 0x1p8, power.view()), Outcome::done);
  EXPECT_EQ(power.block, (std::vector<double>{1, 0, 0, 1}));

  const TestMatrix a = wholeMatrix(5, 5);
  TestMatrix expected(5, 5);
  setIdentity(expected.view());
  for (int n = 0; n <= 12; ++n) {
    TestMatrix result(5, 5);
    ASSERT_EQ(powerOf(a.view(), n, result.view()), Outcome::done);
    EXPECT_EQ(result.block, expected.block) << n;  // whole and small, so exact
    expected = plainProduct(expected, a);
  }
}

TEST_F(DenseBasicsTest, LongWorkStopsWhenAsked) {
  const TestMatrix a = randomMatrix(40, 40);
  TestMatrix c = a;
  expectStops({0, 39}, [&](const InterruptTest& stop) {
    return multiply(a.view(), a.view(), c.view(), stop) == Outcome::interrupted;
  });
  expectStops({60}, [&](const InterruptTest& stop) {  // in the second product
    return powerOf(a.view(), 3, c.view(), stop) == Outcome::interrupted;
  });
}

}  // namespace
}  // namespace vexa
