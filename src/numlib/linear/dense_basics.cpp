#include "numlib/linear/dense_basics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "numlib/linear/dense_kernels.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

// Side of the square tiles in which a matrix is transposed; two of them fit the first cache.
constexpr int kTile = 32;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// Four rows of a times the column b, side by side: their sums do not wait for each other.
void fourDots(ConstMatrixView a, int i, const double* b, double* c) {
  const double *const row0 = a.row(i), *const row1 = a.row(i + 1);
  const double *const row2 = a.row(i + 2), *const row3 = a.row(i + 3);
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0, sum3 = 0.0;
  for (int k = 0; k < a.cols; ++k) {
    sum0 += row0[k] * b[k];
    sum1 += row1[k] * b[k];
    sum2 += row2[k] * b[k];
    sum3 += row3[k] * b[k];
  }
  c[i] = sum0;
  c[i + 1] = sum1;
  c[i + 2] = sum2;
  c[i + 3] = sum3;
}

Outcome multiplyColumn(ConstMatrixView a, const double* b, double* c,
                       const InterruptTest& interrupted) {
  int i = 0;
  for (; i + 4 <= a.rows; i += 4) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    fourDots(a, i, b, c);
  }
  for (; i < a.rows; ++i) c[i] = dot({a.row(i), size(a.cols)}, {b, size(a.cols)});
  return Outcome::done;
}

}  // namespace

Outcome multiply(ConstMatrixView a, ConstMatrixView b, MatrixView c,
                 const InterruptTest& interrupted) {
  if (c.cols == 1) return multiplyColumn(a, b.data, c.data, interrupted);
  if (worthKernels(a.rows, a.cols, b.cols)) {
    std::ranges::fill(c.elements(), 0.0);
    return addProductInPieces(1.0, blockOf(a), Taken::plain, blockOf(b), Taken::plain, blockOf(c),
                              interrupted)
               ? Outcome::done
               : Outcome::interrupted;
  }
  const VectorKernels& vectors = vectorKernels();
  for (int i = 0; i < c.rows; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    std::fill_n(c.row(i), c.cols, 0.0);
    vectors.exactAddRows(c.row(i), a.row(i), a.cols, b.data, b.cols, size(c.cols));
  }
  return Outcome::done;
}

void transpose(ConstMatrixView a, MatrixView b) {
  for (int i0 = 0; i0 < a.rows; i0 += kTile) {
    const int i1 = std::min(i0 + kTile, a.rows);
    for (int j0 = 0; j0 < a.cols; j0 += kTile) {
      const int j1 = std::min(j0 + kTile, a.cols);
      for (int i = i0; i < i1; ++i) {
        for (int j = j0; j < j1; ++j) b(j, i) = a(i, j);
      }
    }
  }
}

double dot(std::span<const double> a, std::span<const double> b) {
  double sum = 0.0;
  for (std::size_t k = 0; k < a.size(); ++k) sum += a[k] * b[k];
  return sum;
}

void setIdentity(MatrixView a) {
  std::ranges::fill(a.elements(), 0.0);
  for (int i = 0; i < std::min(a.rows, a.cols); ++i) a(i, i) = 1.0;
}

double minusProduct(double x, std::span<const double> a, std::span<const double> b) {
  if (a.size() >= size(kernelOrder)) return x - vectorKernels().dot(a.data(), b.data(), a.size());
  for (std::size_t k = 0; k < a.size(); ++k) x -= a[k] * b[k];
  return x;
}

Outcome powerOf(ConstMatrixView a, double exponent, MatrixView out,
                const InterruptTest& interrupted) {
  if (exponent == 0.0) {
    setIdentity(out);
    return Outcome::done;
  }
  // The product of n equal matrices is the same in whatever order it is taken, so it is taken by
  // squaring: from the highest bit of n down, square and perhaps multiply with a. That needs at
  // most 2 log2(n) products instead of n - 1, forms nothing but powers up to the n-th (whole
  // elements stay exact), and gathers fewer roundings.
  int squaringsAfterwards = 0;  // for exponents beyond the whole numbers that a double holds
  while (exponent >= 0x1p53) {
    exponent /= 2.0;
    ++squaringsAfterwards;
  }
  const auto bits = static_cast<std::uint64_t>(exponent);

  std::vector<double> block(a.size());
  MatrixView power = out;
  MatrixView next{block.data(), a.rows, a.cols};
  std::ranges::copy(a.elements(), power.data);
  const auto multiplyWith = [&](ConstMatrixView factor) {
    const Outcome outcome = multiply(power, factor, next, interrupted);
    std::swap(power, next);
    return outcome == Outcome::done;
  };
  for (std::uint64_t bit = std::bit_floor(bits) / 2; bit > 0; bit /= 2) {
    if (!multiplyWith(power)) return Outcome::interrupted;
    if ((bits & bit) && !multiplyWith(a)) return Outcome::interrupted;
  }
  for (; squaringsAfterwards > 0; --squaringsAfterwards) {
    if (!multiplyWith(power)) return Outcome::interrupted;
  }
  if (power.data != out.data) std::ranges::copy(power.elements(), out.data);
  return Outcome::done;
}

}  // namespace vexa
