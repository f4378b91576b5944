#include "numlib/linear/structured_products.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "numlib/linear/test_matrices.h"

namespace vexa {
namespace {

using StructuredProductsTest = RandomTest;

TEST_F(StructuredProductsTest, CongruenceMirrorsItsUpperTriangle) {
  for (const std::array<int, 2>& orders :
       {std::array{1, 1}, {3, 2}, {2, 5}, {60, 40}, {130, 260}, {200, 150}}) {
    const int n = orders[0], m = orders[1];
    const TestMatrix a = randomMatrix(n, m), k = randomMatrix(n, n);  // k need not be symmetric
    const TestMatrix reference = product(a.transposed(), product(k, a));
    withEachProvider([&] {
      TestMatrix r(m, m);
      std::vector<double> column(static_cast<std::size_t>(n));
      ASSERT_EQ(congruenceProduct(a.view(), k.view(), r.view(), column), Outcome::done);
      for (int i = 1; i <= m; ++i) {
        for (int j = 1; j <= m; ++j) {
          // Two sums of n products each.
          ASSERT_NEAR(r(i, j), reference(std::min(i, j), std::max(i, j)), n * n * epsilon);
        }
      }
    });
  }
}

TEST_F(StructuredProductsTest, ComplexProductsAreFourRealOnes) {
  for (const std::array<int, 3>& orders : {std::array{1, 1, 1}, {3, 4, 2}, {140, 150, 131}}) {
    const int r = orders[0], p = orders[1], q = orders[2];
    const TestMatrix a = randomMatrix(r, p), b = randomMatrix(r, p);
    const TestMatrix c = randomMatrix(p, q), d = randomMatrix(p, q);
    const TestMatrix ac = product(a, c), bd = product(b, d), ad = product(a, d), bc = product(b, c);
    withEachProvider([&] {
      TestMatrix re(r, q), im(r, q);
      ASSERT_EQ(complexProduct(a.view(), b.view(), c.view(), d.view(), re.view(), im.view()),
                Outcome::done);
      for (std::size_t i = 0; i < re.block.size(); ++i) {
        ASSERT_NEAR(re.block[i], ac.block[i] - bd.block[i], 2 * p * epsilon);
        ASSERT_NEAR(im.block[i], ad.block[i] + bc.block[i], 2 * p * epsilon);
      }
    });
  }
}

TEST_F(StructuredProductsTest, LongWorkStopsWhenAsked) {
  const TestMatrix small = randomMatrix(20, 20), large = randomMatrix(200, 200);
  for (const TestMatrix* a : {&small, &large}) {
    TestMatrix r = *a, i = *a;
    std::vector<double> column(200);
    expectStops({0, 1}, [&](const InterruptTest& stop) {
      return congruenceProduct(a->view(), a->view(), r.view(), column, stop) ==
             Outcome::interrupted;
    });
    expectStops({0, 3}, [&](const InterruptTest& stop) {
      return complexProduct(a->view(), a->view(), a->view(), a->view(), r.view(), i.view(), stop) ==
             Outcome::interrupted;
    });
  }
}

}  // namespace
}  // namespace vexa
