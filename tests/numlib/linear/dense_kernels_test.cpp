#include "numlib/linear/dense_kernels.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "numlib/linear/test_matrices.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {
namespace {

class DenseKernelsTest : public RandomTest {
 protected:
  static std::vector<const DenseKernels*> providers() {
    std::vector<const DenseKernels*> all = {&ownKernels()};
    if (const DenseKernels* blas = systemBlasKernels()) all.push_back(blas);
    return all;
  }

  // A triangle with ones or larger numbers on the diagonal, and what must not be read beside it.
  TestMatrix triangle(int n, bool lower, bool unit) {
    return TestMatrix::from(n, n, [&](int i, int j) {
      if (i == j) return unit ? 1e30 : 2 + uniform();
      return (i > j) == lower ? uniform() / n : 1e30;
    });
  }
};

TestMatrix cleaned(const TestMatrix& t, bool lower, bool unit) {
  return TestMatrix::from(t.rows, t.cols, [&](int i, int j) {
    if (i == j) return unit ? 1.0 : t(i, j);
    return (i > j) == lower ? t(i, j) : 0.0;
  });
}

TEST_F(DenseKernelsTest, ProductsOfBlocksInsideLargerMatrices) {
  constexpr int margin = 3;
  for (auto [r, n, q] : {std::array{1, 1, 1},
                         {8, 5, 24},
                         {9, 7, 25},
                         {97, 258, 31},
                         {3, 40, 1541},
                         {211, 310, 190}}) {
    for (const Taken aTaken : {Taken::plain, Taken::transposed}) {
      for (const Taken bTaken : {Taken::plain, Taken::transposed}) {
        const TestMatrix a = randomMatrix(r, n), b = randomMatrix(n, q);
        const TestMatrix storedA = aTaken == Taken::plain ? a : a.transposed();
        const TestMatrix storedB = bTaken == Taken::plain ? b : b.transposed();
        const TestMatrix reference = product(a, b);
        for (const DenseKernels* kernels : providers()) {
          TestMatrix c(r + margin, q + margin, 1.0);
          kernels->addProduct(-1.0, blockOf(storedA.view()), aTaken, blockOf(storedB.view()),
                              bTaken, blockOf(c.view()).part(1, 2, r, q));
          for (int i = 1; i <= c.rows; ++i) {
            for (int j = 1; j <= c.cols; ++j) {
              const bool inside = i > 1 && i <= r + 1 && j > 2 && j <= q + 2;
              // Each of the n sums rounds once, near 1 at most n.
              ASSERT_NEAR(c(i, j), inside ? 1 - reference(i - 1, j - 2) : 1.0, n * epsilon)
                  << r << " x " << n << " x " << q << " at " << i << "," << j;
            }
          }
        }
      }
    }
  }
}

TEST_F(DenseKernelsTest, TriangularSystemsReadTheirTriangleOnly) {
  struct Case {
    TriangularSystem system;
    bool lower, unit, fromRight;
  };
  for (const Case& c : {Case{TriangularSystem::lowerUnit, true, true, false},
                        {TriangularSystem::upper, false, false, false},
                        {TriangularSystem::lowerTransposed, true, false, true},
                        {TriangularSystem::lowerUnitTransposed, true, true, true}}) {
    for (const int n : {1, 7, 8, 33, 64, 65, 150}) {
      const TestMatrix t = triangle(n, c.lower, c.unit), clean = cleaned(t, c.lower, c.unit);
      const TestMatrix y = c.fromRight ? randomMatrix(11, n) : randomMatrix(n, 11);
      const TestMatrix x = c.fromRight ? product(y, clean.transposed()) : product(clean, y);
      for (const DenseKernels* kernels : providers()) {
        TestMatrix solution = x;
        kernels->solve(c.system, blockOf(t.view()), blockOf(solution.view()));
        // The triangle's off-diagonal rows add up to less than its diagonal: condition below 4.
        EXPECT_LT(largestDifference(solution, y), 40 * epsilon) << int(c.system) << " n " << n;
      }
      withEachProvider([&] {
        TestMatrix solution = x;
        EXPECT_TRUE(solveInPieces(c.system, blockOf(t.view()), blockOf(solution.view()), {}));
        EXPECT_LT(largestDifference(solution, y), 40 * epsilon) << int(c.system) << " n " << n;
      });
    }
  }
}

TEST_F(DenseKernelsTest, LowerTrianglesLeaveWhatIsAboveThem) {
  const int n = 205, depth = 48;
  const TestMatrix a = randomMatrix(n, depth), b = randomMatrix(depth, n),
                   before = randomMatrix(n, n);
  const TestMatrix reference = product(a, b);
  withEachProvider([&] {
    TestMatrix c = before;
    ASSERT_TRUE(subtractLowerProduct(blockOf(a.transposed().view()), Taken::transposed,
                                     blockOf(b.view()), Taken::plain, blockOf(c.view()), {}));
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= n; ++j) {
        const double change = j <= i ? reference(i, j) : 0.0;
        ASSERT_NEAR(c(i, j), before(i, j) - change, j <= i ? depth * epsilon : 0.0);
      }
    }
  });
}

TEST_F(DenseKernelsTest, WorkIsCutIntoPiecesBetweenQuestions) {
  // 5e8 multiplications, a tenth of a second at some billions a second: tens of pieces.
  const TestMatrix a = randomMatrix(800, 800), b = randomMatrix(800, 800);
  const TestMatrix reference = product(a, b);
  TestMatrix c(800, 800, 0.0);
  int questions = 0;
  const InterruptTest count = [&] { return ++questions, false; };
  ASSERT_TRUE(addProductInPieces(1.0, blockOf(a.view()), Taken::plain, blockOf(b.view()),
                                 Taken::plain, blockOf(c.view()), count));
  EXPECT_GE(questions, 5);
  EXPECT_LE(questions, 40);
  EXPECT_LT(largestDifference(c, reference), 800 * epsilon);
  expectStops({0, 4}, [&](const InterruptTest& stop) {
    return !addProductInPieces(1.0, blockOf(a.view()), Taken::plain, blockOf(b.view()),
                               Taken::plain, blockOf(c.view()), stop);
  });
}

TEST_F(DenseKernelsTest, TheSwitchKeepsTheSystemsLibraryOut) {
  const bool before = systemBlasAllowed();
  allowSystemBlas(false);
  EXPECT_EQ(&denseKernels(), &ownKernels());
  allowSystemBlas(true);
  EXPECT_EQ(&denseKernels(), systemBlasKernels() ? systemBlasKernels() : &ownKernels());
  allowSystemBlas(before);
}

TEST_F(DenseKernelsTest, ExactLoopsGiveTheSameBitsInEveryWidth) {
  const VectorKernels& plain = *vectorKernelsOfWidth(0);
  for (const std::size_t length : {0, 1, 2, 3, 5, 8, 9, 15, 31, 64, 67}) {
    const TestMatrix rows = randomMatrix(7, 80);
    const std::vector<double> f = randomVector(7), start = randomVector(80);
    const auto results = [&](const VectorKernels& kernels) {
      TestMatrix r(4, 80);
      for (int i = 0; i < 4; ++i) std::ranges::copy(start, r.view().row(i));
      kernels.exactAddRows(r.view().row(0), f.data(), 7, rows.block.data(), 80, length);
      kernels.exactSubtractRow(r.view().row(1), f[0], rows.block.data(), length);
      if (length > 0) {
        kernels.exactEliminate(r.view().row(2), 80, 2, f[1], rows.block.data(), length);
      }
      return r;
    };
    const TestMatrix expected = results(plain);
    double sum = start[0];
    for (int k = 0; k < 7; ++k) sum += f[std::size_t(k)] * rows(k + 1, 1);
    EXPECT_EQ(expected(1, 1), length > 0 ? sum : start[0]);
    EXPECT_EQ(expected(1, int(length) + 1), start[length]) << "beyond the end";
    for (int width = 1; width <= 2; ++width) {
      const VectorKernels* const wider = vectorKernelsOfWidth(width);
      if (!wider) continue;
      EXPECT_EQ(results(*wider).block, expected.block) << wider->name << " " << length;
    }
  }
}

TEST_F(DenseKernelsTest, FusedLoopsAreGoodInEveryWidth) {
  for (int width = 0; width <= 2; ++width) {
    const VectorKernels* const kernels = vectorKernelsOfWidth(width);
    if (!kernels) continue;
    for (const std::size_t length : {0, 1, 7, 8, 31, 32, 100}) {
      const TestMatrix rows = randomMatrix(5, 100);
      const std::vector<double> f = randomVector(5), start = randomVector(100);
      std::vector<double> target = start;
      kernels->addRows(target.data(), f.data(), 5, rows.block.data(), 100, length);
      long double dot = 0;
      for (std::size_t j = 0; j < 100; ++j) {
        long double sum = start[j];
        for (int k = 0; k < 5 && j < length; ++k)
          sum += f[std::size_t(k)] * rows(k + 1, int(j) + 1);
        EXPECT_NEAR(target[j], static_cast<double>(sum), 8 * epsilon) << kernels->name;
        if (j < length) dot += static_cast<long double>(start[j]) * rows(1, int(j) + 1);
      }
      EXPECT_NEAR(kernels->dot(start.data(), rows.block.data(), length), double(dot),
                  100 * epsilon);
    }
  }
}

}  // namespace
}  // namespace vexa
