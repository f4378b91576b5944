#include "numlib/linear/dense_basics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <utility>
#include <vector>

namespace vexa {
namespace {

constexpr double kTolerance = 1e-16;

// A matrix that owns its block, so that one can be returned.
struct Matrix {
  Matrix(int rowCount, int colCount)
      : rows(rowCount),
        cols(colCount),
        block(static_cast<std::size_t>(rowCount * colCount), 99.0) {}
  Matrix(int rowCount, int colCount, std::vector<double> elements)
      : rows(rowCount), cols(colCount), block(std::move(elements)) {}

  MatrixView view() { return {block.data(), rows, cols}; }
  ConstMatrixView view() const { return {block.data(), rows, cols}; }

  int rows, cols;
  std::vector<double> block;
};

class DenseBasicsTest : public testing::Test {
 protected:
  // Fractions of all lengths, or small whole numbers, which bring equal pivots and zeros.
  Matrix randomMatrix(int rows, int cols, bool whole = false) {
    Matrix m(rows, cols);
    for (double& x : m.block) {
      x = whole ? static_cast<double>(m_Generator() % 5) - 2
                : std::uniform_real_distribution<double>(-1, 1)(m_Generator);
    }
    return m;
  }

  std::mt19937 m_Generator{404};
  testing::ScopedTrace m_Trace{__FILE__, __LINE__, "seed 404"};
};

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix c(a.rows, b.cols);
  for (int i = 1; i <= a.rows; ++i) {
    for (int j = 1; j <= b.cols; ++j) {
      double sum = 0.0;
      for (int k = 1; k <= a.cols; ++k) sum += a.view().at(i, k) * b.view().at(k, j);
      c.view().at(i, j) = sum;
    }
  }
  return c;
}

TEST_F(DenseBasicsTest, ProductsSumInOrder) {
  for (auto [r, n, q] :
       {std::array{1, 1, 1}, {1, 7, 1}, {5, 1, 3}, {4, 8, 6}, {13, 11, 2}, {2, 3, 50}}) {
    const Matrix a = randomMatrix(r, n);
    const Matrix b = randomMatrix(n, q);
    Matrix c(r, q);
    EXPECT_EQ(multiply(a.view(), b.view(), c.view()), Outcome::done);
    EXPECT_EQ(c.block, product(a, b).block) << r << " x " << n << " x " << q;
  }
}

TEST_F(DenseBasicsTest, DotSumsFromTheLeft) {
  const std::vector<double> a = {1e16, 1, -1e16, 3};
  const std::vector<double> ones(4, 1.0);
  EXPECT_EQ(dot(a, ones), 3);  // the 1 is lost beside 1e16
}

TEST_F(DenseBasicsTest, TransposeAndIdentity) {
  for (auto [rows, cols] : {std::pair{1, 9}, {70, 1}, {33, 65}, {64, 32}}) {
    const Matrix a = randomMatrix(rows, cols);
    Matrix b(cols, rows);
    transpose(a.view(), b.view());
    for (int i = 1; i <= rows; ++i) {
      for (int j = 1; j <= cols; ++j) ASSERT_EQ(b.view().at(j, i), a.view().at(i, j));
    }
  }
  Matrix unit(2, 3);
  setIdentity(unit.view());
  EXPECT_EQ(unit.block, (std::vector<double>{1, 0, 0, 0, 1, 0}));
}

// The textbook's column-by-column form, solving for one unit vector after the other.
bool invertByColumns(MatrixView a, double tolerance) {
  const int n = a.rows;
  std::vector<double> scale(static_cast<std::size_t>(n) + 1);
  std::vector<int> pivots(static_cast<std::size_t>(n) + 1);
  for (int i = 1; i <= n; ++i) {
    double largest = 0;
    for (int j = 1; j <= n; ++j) largest = std::max(largest, std::fabs(a.at(i, j)));
    if (largest == 0) return false;
    scale[static_cast<std::size_t>(i)] = 1 / largest;
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 2; i < j; ++i) {
      for (int k = 1; k < i; ++k) a.at(i, j) -= a.at(i, k) * a.at(k, j);
    }
    double best = 0;
    int p = j;
    for (int i = j; i <= n; ++i) {
      for (int k = 1; k < j; ++k) a.at(i, j) -= a.at(i, k) * a.at(k, j);
      const double candidate = scale[static_cast<std::size_t>(i)] * std::fabs(a.at(i, j));
      if (candidate >= best) best = candidate, p = i;
    }
    for (int k = 1; k <= n && p != j; ++k) std::swap(a.at(p, k), a.at(j, k));
    scale[static_cast<std::size_t>(p)] = scale[static_cast<std::size_t>(j)];
    pivots[static_cast<std::size_t>(j)] = p;
    if (std::fabs(a.at(j, j)) < tolerance) return false;
    for (int i = j + 1; i <= n; ++i) a.at(i, j) *= 1 / a.at(j, j);
  }
  Matrix inverse(n, n);
  for (int j = 1; j <= n; ++j) {
    std::vector<double> x(static_cast<std::size_t>(n) + 1);
    const auto at = [&](int i) -> double& { return x[static_cast<std::size_t>(i)]; };
    at(j) = 1;
    for (int i = 1; i <= n; ++i) {
      std::swap(at(i), at(pivots[static_cast<std::size_t>(i)]));
      for (int k = 1; k < i; ++k) at(i) -= a.at(i, k) * at(k);
    }
    for (int i = n; i >= 1; --i) {
      for (int k = i + 1; k <= n; ++k) at(i) -= a.at(i, k) * at(k);
      at(i) /= a.at(i, i);
    }
    for (int i = 1; i <= n; ++i) inverse.view().at(i, j) = at(i);
  }
  std::ranges::copy(inverse.block, a.data);
  return true;
}

TEST_F(DenseBasicsTest, InverseIsThatOfTheColumnByColumnForm) {
  int singular = 0;
  for (int n : {1, 2, 3, 4, 5, 8, 31, 32, 33, 67}) {
    for (int round = 0; round < 40; ++round) {
      const bool whole = round % 2 == 0;
      const Matrix a = randomMatrix(n, n, whole);
      Matrix x = a, reference = a;
      const Outcome outcome = invertInPlace(x.view(), kTolerance);
      const bool regular = invertByColumns(reference.view(), kTolerance);
      ASSERT_EQ(outcome, regular ? Outcome::done : Outcome::singular) << n;
      singular += !regular;
      if (!regular) continue;
      ASSERT_EQ(x.block, reference.block) << n;
    }
  }
  EXPECT_GT(singular, 10);
}

TEST_F(DenseBasicsTest, InverseMultipliesBackToTheIdentity) {
  Matrix a = randomMatrix(70, 70);
  for (int i = 0; i < 70; ++i) a.view()(i, i) += 70;  // well conditioned
  Matrix x = a, unit = a;
  ASSERT_EQ(invertInPlace(x.view(), kTolerance), Outcome::done);
  setIdentity(unit.view());
  const Matrix check = product(a, x);
  for (std::size_t k = 0; k < check.block.size(); ++k) {
    ASSERT_NEAR(check.block[k], unit.block[k], 1e-14);
  }
}

TEST_F(DenseBasicsTest, SingularByZeroRowOrByTolerance) {
  Matrix zeroRow(2, 2, {0, 0, 1, 2});
  EXPECT_EQ(invertInPlace(zeroRow.view(), 0.0), Outcome::singular);
  const Matrix small(1, 1, {0x1p-52});
  Matrix a = small;
  EXPECT_EQ(invertInPlace(a.view(), 0x1p-51), Outcome::singular);
  a = small;
  EXPECT_EQ(invertInPlace(a.view(), 0x1p-52), Outcome::done);  // not below
  EXPECT_EQ(a.block[0], 0x1p52);
}

TEST_F(DenseBasicsTest, PowersAreRepeatedProducts) {
  const Matrix fibonacci(2, 2, {1, 1, 1, 0});
  Matrix power(2, 2);
  EXPECT_EQ(powerOf(fibonacci.view(), 77, power.view()), Outcome::done);
  EXPECT_EQ(power.block, (std::vector<double>{8944394323791464, 5527939700884757, 5527939700884757,
                                              3416454622906707}));
  const Matrix turn(2, 2, {0, -1, 1, 0});
  ASSERT_EQ(powerOf(turn.view(), 0x1p60 + 0x1p8, power.view()), Outcome::done);
  EXPECT_EQ(power.block, (std::vector<double>{1, 0, 0, 1}));

  const Matrix a = randomMatrix(5, 5, true);
  Matrix expected(5, 5);
  setIdentity(expected.view());
  for (int n = 0; n <= 12; ++n) {
    Matrix result(5, 5);
    ASSERT_EQ(powerOf(a.view(), n, result.view()), Outcome::done);
    EXPECT_EQ(result.block, expected.block) << n;  // whole and small, so exact
    expected = product(expected, a);
  }
}

TEST_F(DenseBasicsTest, LongWorkStopsWhenAsked) {
  const Matrix a = randomMatrix(40, 40);
  int left = 0;  // questions until the answer is yes
  const InterruptTest stop = [&] { return left-- == 0; };
  Matrix c = a;
  left = 39;
  EXPECT_EQ(multiply(a.view(), a.view(), c.view(), stop), Outcome::interrupted);
  left = 60;  // in the second product
  EXPECT_EQ(powerOf(a.view(), 3, c.view(), stop), Outcome::interrupted);
  for (int elimination : {3, 60, 100}) {  // and both passes of the solution
    c = a;
    left = elimination;
    EXPECT_EQ(invertInPlace(c.view(), kTolerance, stop), Outcome::interrupted) << elimination;
  }
}

}  // namespace
}  // namespace vexa
