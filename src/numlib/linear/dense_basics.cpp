#include "numlib/linear/dense_basics.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace vexa {

namespace {

// Columns that are eliminated together, so that the rest of the matrix passes through the cache
// once for all of them.
constexpr int kPanel = 32;
// Side of the square tiles in which a matrix is transposed; two of them fit the first cache.
constexpr int kTile = 32;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// target[j] += f[0] row0[j] + f[1] row1[j] + ... for the `length` first j, where row k+1 lies
// `stride` behind row k. Each sum is taken from the left, one rounding after the other, as if the
// rows were added singly; taking four at a time only saves loads and stores of target.
void addRows(double* __restrict target, const double* f, int count, const double* rows,
             std::size_t stride, std::size_t length) {
  int k = 0;
  for (; k + 4 <= count; k += 4, rows += 4 * stride) {
    const double f0 = f[k], f1 = f[k + 1], f2 = f[k + 2], f3 = f[k + 3];
    const double* const row1 = rows + stride;
    const double* const row2 = row1 + stride;
    const double* const row3 = row2 + stride;
    for (std::size_t j = 0; j < length; ++j) {
      target[j] = target[j] + f0 * rows[j] + f1 * row1[j] + f2 * row2[j] + f3 * row3[j];
    }
  }
  for (; k < count; ++k, rows += stride) {
    for (std::size_t j = 0; j < length; ++j) target[j] += f[k] * rows[j];
  }
}

// target[j] -= f[0] row0[j] + ..., in the same order. Adding a negated product rounds as
// subtracting it does.
void subtractRows(double* target, const double* f, int count, const double* rows,
                  std::size_t stride, std::size_t length, std::vector<double>& negated) {
  negated.resize(size(count));
  std::transform(f, f + count, negated.begin(), [](double factor) { return -factor; });
  addRows(target, negated.data(), count, rows, stride, length);
}

bool asksToStop(const InterruptTest& interrupted) { return interrupted && interrupted(); }

// Crout's factorisation with row-scaled partial pivoting, in place: below the diagonal the
// multipliers, on and above it the upper triangle; pivots[j] is the row that changed places with
// row j. Every element undergoes the operations of the column-by-column form in the same order;
// only the order among elements is changed, to walk along rows.
Outcome factorise(MatrixView a, std::vector<int>& pivots, double pivotTolerance,
                  const InterruptTest& interrupted) {
  const int n = a.rows;
  std::vector<double> scale(size(n));
  for (int i = 0; i < n; ++i) {
    double largest = 0.0;
    for (int j = 0; j < n; ++j) largest = std::max(largest, std::fabs(a(i, j)));
    if (largest == 0.0) return Outcome::singular;
    scale[size(i)] = 1.0 / largest;
  }

  std::vector<double> negated;
  pivots.resize(size(n));
  for (int first = 0; first < n; first += kPanel) {
    const int last = std::min(first + kPanel, n);
    for (int j = first; j < last; ++j) {
      int pivotRow = j;
      double best = 0.0;
      for (int i = j; i < n; ++i) {
        const double candidate = scale[size(i)] * std::fabs(a(i, j));
        if (candidate >= best) {  // the last of equals wins
          best = candidate;
          pivotRow = i;
        }
      }
      if (pivotRow != j) {
        std::swap_ranges(a.row(j), a.row(j) + n, a.row(pivotRow));
        scale[size(pivotRow)] = scale[size(j)];
      }
      pivots[size(j)] = pivotRow;
      if (std::fabs(a(j, j)) < pivotTolerance) return Outcome::singular;

      const double reciprocal = 1.0 / a(j, j);
      for (int i = j + 1; i < n; ++i) {
        double* const row = a.row(i);
        row[j] *= reciprocal;
        for (int k = j + 1; k < last; ++k) row[k] -= row[j] * a(j, k);
      }
    }
    // The columns behind the panel catch up, from the top: row i needs the finished rows above it.
    for (int i = first + 1; i < n && last < n; ++i) {
      if (asksToStop(interrupted)) return Outcome::interrupted;
      subtractRows(a.row(i) + last, a.row(i) + first, std::min(i, last) - first,
                   a.row(first) + last, size(n), size(n - last), negated);
    }
  }
  return Outcome::done;
}

}  // namespace

Outcome multiply(ConstMatrixView a, ConstMatrixView b, MatrixView c,
                 const InterruptTest& interrupted) {
  for (int i = 0; i < c.rows; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    std::fill_n(c.row(i), c.cols, 0.0);
    addRows(c.row(i), a.row(i), a.cols, b.data, size(b.cols), size(c.cols));
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

Outcome invertInPlace(MatrixView a, double pivotTolerance, const InterruptTest& interrupted) {
  std::vector<int> pivots;
  const Outcome outcome = factorise(a, pivots, pivotTolerance, interrupted);
  if (outcome != Outcome::done) return outcome;

  // All unit vectors are solved for together, as the columns of x.
  const int n = a.rows;
  std::vector<double> block(a.size());
  const MatrixView x{block.data(), n, n};
  setIdentity(x);
  for (int j = 0; j < n; ++j) {
    if (pivots[size(j)] != j) std::swap_ranges(x.row(j), x.row(j) + n, x.row(pivots[size(j)]));
  }
  std::vector<double> negated;
  for (int i = 1; i < n; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    subtractRows(x.row(i), a.row(i), i, x.data, size(n), size(n), negated);
  }
  for (int i = n - 1; i >= 0; --i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    if (i + 1 < n) {
      subtractRows(x.row(i), a.row(i) + i + 1, n - 1 - i, x.row(i + 1), size(n), size(n), negated);
    }
    for (int j = 0; j < n; ++j) x(i, j) /= a(i, i);
  }
  std::ranges::copy(block, a.data);
  return Outcome::done;
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
  for (; exponent >= 0x1p53; exponent /= 2.0) ++squaringsAfterwards;
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
