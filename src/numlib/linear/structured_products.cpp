#include "numlib/linear/structured_products.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "numlib/linear/dense_kernels.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

// Columns of k a that are held at a time.
constexpr int kColumnsHeld = 96;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

void mirrorUpperTriangle(MatrixView r) {
  for (int i = 0; i < r.rows; ++i) {
    for (int j = i + 1; j < r.cols; ++j) r(j, i) = r(i, j);
  }
}

Outcome congruenceByColumns(ConstMatrixView a, ConstMatrixView k, MatrixView r,
                            std::span<double> column, const InterruptTest& interrupted) {
  const VectorKernels& vectors = vectorKernels();
  std::vector<double> sums(size(r.rows));
  for (int j = 0; j < a.cols; ++j) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    for (int i = 0; i < k.rows; ++i) {
      double sum = 0.0;
      const double* const row = k.row(i);
      for (int p = 0; p < k.cols; ++p) sum += row[p] * a(p, j);
      column[size(i)] = sum;
    }
    std::ranges::fill(sums, 0.0);
    vectors.exactAddRows(sums.data(), column.data(), a.rows, a.data, a.cols, size(j + 1));
    for (int i = 0; i <= j; ++i) r(i, j) = sums[size(i)];
  }
  return Outcome::done;
}

Outcome congruenceByBlocks(ConstMatrixView a, ConstMatrixView k, MatrixView r,
                           const InterruptTest& interrupted) {
  const int n = a.rows, m = a.cols;
  std::vector<double> buffer(size(n) * size(std::min(kColumnsHeld, m)));
  std::ranges::fill(r.elements(), 0.0);
  for (int j = 0; j < m; j += kColumnsHeld) {
    const int cols = std::min(kColumnsHeld, m - j);
    std::ranges::fill(buffer, 0.0);
    const Block held{buffer.data(), cols, n, cols};
    if (!addProductInPieces(1.0, blockOf(k), Taken::plain, blockOf(a).part(0, j, n, cols),
                            Taken::plain, held, interrupted) ||
        !addProductInPieces(1.0, blockOf(a).part(0, 0, n, j + cols), Taken::transposed, held,
                            Taken::plain, blockOf(r).part(0, j, j + cols, cols), interrupted)) {
      return Outcome::interrupted;
    }
  }
  return Outcome::done;
}

}  // namespace

Outcome congruenceProduct(ConstMatrixView a, ConstMatrixView k, MatrixView r,
                          std::span<double> column, const InterruptTest& interrupted) {
  const Outcome outcome = worthKernels(a.rows, a.rows, a.cols)
                              ? congruenceByBlocks(a, k, r, interrupted)
                              : congruenceByColumns(a, k, r, column, interrupted);
  if (outcome == Outcome::done) mirrorUpperTriangle(r);
  return outcome;
}

Outcome complexProduct(ConstMatrixView a, ConstMatrixView b, ConstMatrixView c, ConstMatrixView d,
                       MatrixView re, MatrixView im, const InterruptTest& interrupted) {
  if (worthKernels(a.rows, a.cols, c.cols)) {
    std::ranges::fill(re.elements(), 0.0);
    std::ranges::fill(im.elements(), 0.0);
    const auto add = [&](double sign, ConstMatrixView x, ConstMatrixView y, MatrixView z) {
      return addProductInPieces(sign, blockOf(x), Taken::plain, blockOf(y), Taken::plain,
                                blockOf(z), interrupted);
    };
    const bool finished =
        add(1.0, a, c, re) && add(-1.0, b, d, re) && add(1.0, b, c, im) && add(1.0, a, d, im);
    return finished ? Outcome::done : Outcome::interrupted;
  }
  for (int i = 0; i < a.rows; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    std::fill_n(re.row(i), re.cols, 0.0);
    std::fill_n(im.row(i), im.cols, 0.0);
    for (int k = 0; k < a.cols; ++k) {
      const double x = a(i, k), y = b(i, k);
      for (int j = 0; j < c.cols; ++j) {
        re(i, j) += x * c(k, j) - d(k, j) * y;
        im(i, j) += c(k, j) * y + d(k, j) * x;
      }
    }
  }
  return Outcome::done;
}

}  // namespace vexa
