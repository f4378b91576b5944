#include "numlib/linear/band_system.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// Elements of row i (from 0) that lie inside the matrix.
int lengthOfRow(ConstMatrixView band, int i) { return std::min(band.cols, band.rows - i); }

}  // namespace

Assembly bandAssemble(MatrixView band, ConstMatrixView element, std::span<const int> unknowns) {
  for (int i = 1; i <= element.rows; ++i) {
    const int from = unknowns[size(i - 1)];
    const int p = std::abs(from);
    if (p == 0) continue;
    for (int j = 1; j <= element.cols; ++j) {
      const int to = unknowns[size(j - 1)];
      const int q = std::abs(to);
      if (q < p) continue;
      if (q - p + 1 > band.cols) return Assembly::bandTooNarrow;
      const bool sameDirection = (from < 0) == (to < 0);
      const double x = element.at(i, j);
      band.at(p, q - p + 1) += sameDirection ? x : -x;
    }
  }
  return Assembly::done;
}

Outcome bandMultiply(ConstMatrixView band, std::span<const double> v, std::span<double> product,
                     const InterruptTest& interrupted) {
  // Row i adds to its own element and, by symmetry, to those that it reaches. The part below the
  // diagonal of an element has then been added before its own row's turn.
  std::ranges::fill(product, 0.0);
  const VectorKernels& vectors = vectorKernels();
  Pace pace(interrupted);
  for (int i = 0; i < band.rows; ++i) {
    const double* const row = band.row(i);
    const int length = lengthOfRow(band, i);
    if (pace.stopsAfter(size(length))) return Outcome::interrupted;
    double sum = product[size(i)];
    for (int k = 0; k < length; ++k) sum += row[k] * v[size(i + k)];
    product[size(i)] = sum;
    vectors.exactAddRows(product.data() + i + 1, v.data() + i, 1, row + 1, 0, size(length - 1));
  }
  return Outcome::done;
}

Outcome bandFactor(MatrixView band, long& zeroPivots, const InterruptTest& interrupted) {
  zeroPivots = 0;
  const VectorKernels& vectors = vectorKernels();
  Pace pace(interrupted);
  for (int i = 0; i + 1 < band.rows; ++i) {
    double* const row = band.row(i);
    const int length = lengthOfRow(band, i);
    if (pace.stopsAfter(size(length) * size(length))) return Outcome::interrupted;
    for (int k = 1; k < length; ++k) {
      if (row[k] == 0.0) continue;
      if (row[0] == 0.0) ++zeroPivots;
      const double c = row[k] / row[0];
      vectors.exactSubtractRow(band.row(i + k), c, row + k, size(length - k));
      row[k] = c;
    }
  }
  return Outcome::done;
}

Outcome bandSolve(ConstMatrixView band, std::span<double> v, const InterruptTest& interrupted) {
  const int n = band.rows;
  if (band.cols == 1) {
    for (int i = 0; i < n; ++i) v[size(i)] /= band(i, 0);
    return Outcome::done;
  }
  const VectorKernels& vectors = vectorKernels();
  Pace pace(interrupted);
  for (int i = 0; i + 1 < n; ++i) {
    if (pace.stopsAfter(size(band.cols))) return Outcome::interrupted;
    if (v[size(i)] == 0.0) continue;
    const double* const row = band.row(i);
    vectors.exactSubtractRow(v.data() + i + 1, v[size(i)], row + 1, size(lengthOfRow(band, i) - 1));
    v[size(i)] /= row[0];
  }
  v[size(n - 1)] /= band(n - 1, 0);
  for (int i = n - 2; i >= 0; --i) {
    if (pace.stopsAfter(size(band.cols))) return Outcome::interrupted;
    const double* const row = band.row(i);
    const int length = lengthOfRow(band, i);
    // From the far end, so that the newest unknown, still on its way, is needed last.
    double sum = 0.0;
    for (int k = length - 1; k >= 1; --k) sum += row[k] * v[size(i + k)];
    v[size(i)] -= sum;
  }
  return Outcome::done;
}

}  // namespace vexa
