// Matrices for the tests of linear systems: owned blocks, families that are easy and hard, and
// what a result is measured by.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "numlib/linear/dense_kernels.h"
#include "numlib/matrix_view.h"

namespace vexa {

inline constexpr double epsilon = std::numeric_limits<double>::epsilon();
// tol# times 1e-10, as at the start of a run.
inline constexpr double startTolerance = 1e-14;

struct TestMatrix {
  TestMatrix(int rowCount, int colCount, double value = 99.0)
      : rows(rowCount),
        cols(colCount),
        block(std::size_t(rowCount) * std::size_t(colCount), value) {}
  TestMatrix(int rowCount, int colCount, std::vector<double> elements)
      : rows(rowCount), cols(colCount), block(std::move(elements)) {}
  static TestMatrix from(int rowCount, int colCount, const std::function<double(int, int)>& f) {
    TestMatrix m(rowCount, colCount);
    for (int i = 1; i <= rowCount; ++i) {
      for (int j = 1; j <= colCount; ++j) m(i, j) = f(i, j);
    }
    return m;
  }

  // Counted from 1.
  double& operator()(int i, int j) { return view().at(i, j); }
  double operator()(int i, int j) const { return view().at(i, j); }
  MatrixView view() { return {block.data(), rows, cols}; }
  ConstMatrixView view() const { return {block.data(), rows, cols}; }

  TestMatrix transposed() const {
    return from(cols, rows, [&](int i, int j) { return (*this)(j, i); });
  }

  int rows, cols;
  std::vector<double> block;
};

// Sums in extended precision, so that a reference's own error does not count.
inline TestMatrix product(const TestMatrix& a, const TestMatrix& b) {
  return TestMatrix::from(a.rows, b.cols, [&](int i, int j) {
    long double sum = 0;
    for (int k = 1; k <= a.cols; ++k) sum += static_cast<long double>(a(i, k)) * b(k, j);
    return static_cast<double>(sum);
  });
}

inline double largest(std::span<const double> values) {
  double most = 0;
  for (const double x : values) most = std::max(most, std::fabs(x));
  return most;
}

inline double largestDifference(const TestMatrix& a, const TestMatrix& b) {
  double most = 0;
  for (std::size_t k = 0; k < a.block.size(); ++k) {
    most = std::max(most, std::fabs(a.block[k] - b.block[k]));
  }
  return most;
}

// The largest sum of magnitudes in a row.
inline double norm(const TestMatrix& a) {
  double most = 0;
  for (int i = 1; i <= a.rows; ++i) {
    double sum = 0;
    for (int j = 1; j <= a.cols; ++j) sum += std::fabs(a(i, j));
    most = std::max(most, sum);
  }
  return most;
}

// |b - a x| relative to |a| |x|, in units of epsilon: of the size of the order for a solution that
// is as good as the data allow, however ill-conditioned a is.
inline double backwardError(const TestMatrix& a, std::span<const double> x,
                            std::span<const double> b) {
  double most = 0;
  for (int i = 1; i <= a.rows; ++i) {
    long double rest = b[std::size_t(i - 1)];
    for (int j = 1; j <= a.cols; ++j) {
      rest -= static_cast<long double>(a(i, j)) * x[std::size_t(j - 1)];
    }
    most = std::max(most, static_cast<double>(std::fabs(rest)));
  }
  return most / (norm(a) * largest(x) * epsilon);
}

inline TestMatrix hilbert(int n) {
  return TestMatrix::from(n, n, [](int i, int j) { return 1.0 / (i + j - 1); });
}
inline TestMatrix vandermonde(int n) {
  return TestMatrix::from(n, n, [n](int i, int j) { return std::pow(double(i) / n, j - 1); });
}

// Runs a body with our own kernels and, where there is one, with the system's BLAS.
inline void withEachProvider(const std::function<void()>& body) {
  const bool before = systemBlasAllowed();
  for (const bool blas : {false, true}) {
    if (blas && !systemBlasKernels()) continue;
    const testing::ScopedTrace trace(__FILE__, __LINE__, blas ? "system BLAS" : "own kernels");
    allowSystemBlas(blas);
    body();
  }
  allowSystemBlas(before);
}

class RandomTest : public testing::Test {
 protected:
  static constexpr unsigned seed = 404;

  double uniform() { return std::uniform_real_distribution<double>(-1, 1)(m_Generator); }
  double smallWhole() { return static_cast<double>(m_Generator() % 5) - 2; }
  TestMatrix randomMatrix(int rows, int cols) {
    return TestMatrix::from(rows, cols, [&](int, int) { return uniform(); });
  }
  // Small whole numbers bring equal pivots and zeros.
  TestMatrix wholeMatrix(int rows, int cols) {
    return TestMatrix::from(rows, cols, [&](int, int) { return smallWhole(); });
  }
  std::vector<double> randomVector(int n) { return randomMatrix(1, n).block; }
  TestMatrix randomSymmetric(int n, double diagonal) {
    TestMatrix a = randomMatrix(n, n);
    for (int i = 1; i <= n; ++i) {
      a(i, i) += diagonal;
      for (int j = 1; j < i; ++j) a(i, j) = a(j, i);
    }
    return a;
  }
  // Each row a thousand times the one before, so that scaling decides about pivots.
  TestMatrix graded(int n) {
    return TestMatrix::from(n, n, [&](int i, int) { return uniform() * std::pow(10, i % 8); });
  }
  // A matrix of rank n - 1 moved by a little.
  TestMatrix nearlySingular(int n) {
    TestMatrix a = randomMatrix(n, n);
    for (int j = 1; j <= n; ++j) a(n, j) = a(1, j) + 1e-10 * uniform();
    return a;
  }

  std::mt19937 m_Generator{seed};
  testing::ScopedTrace m_Trace{__FILE__, __LINE__, "seed " + std::to_string(seed)};
};

// Whether `work` ends as interrupted at each of the given questions.
inline void expectStops(std::initializer_list<int> questions,
                        const std::function<bool(const InterruptTest&)>& work) {
  for (const int last : questions) {
    int left = last;
    EXPECT_TRUE(work([&left] { return left-- == 0; })) << "question " << last;
    EXPECT_EQ(left, -1);
  }
}

}  // namespace vexa
