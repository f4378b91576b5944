#include "numlib/linear/symmetric_factorisation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/linear/dense_basics.h"
#include "numlib/linear/dense_kernels.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// Up to four numbers, each less the product of its own row with a common one. Side by side, their
// sums do not wait for each other; each is taken in the order of k, upward or downward.
enum class Direction { upward, downward };
struct RowGroup {
  std::array<const double*, 4> rows{};
  std::array<double, 4> values{};
};
void subtractProducts(RowGroup& group, const double* common, int count, Direction direction) {
  auto [v0, v1, v2, v3] = group.values;
  const auto [r0, r1, r2, r3] = group.rows;
  const bool upward = direction == Direction::upward;
  for (int step = 0; step < count; ++step) {
    const int k = upward ? step : count - 1 - step;
    v0 -= r0[k] * common[k];
    v1 -= r1[k] * common[k];
    v2 -= r2[k] * common[k];
    v3 -= r3[k] * common[k];
  }
  group.values = {v0, v1, v2, v3};
}

// --- LDLᵀ

// The square a by itself. Row m holds the products l * d left of the column that is being worked
// on, until its own turn comes and they are divided by the pivots.
Outcome ldltPlain(Block a, double tolerance, bool testLast, Pace& pace) {
  const int n = a.rows;
  for (int j = 0; j < n; ++j) {
    double* const row = a.row(j);
    // Earlier pivots have passed the test in earlier rows.
    const bool usable = j == 0 || !(std::fabs(a.row(j - 1)[j - 1]) < tolerance);
    const int count = usable ? j : j - 1;
    double diagonal = row[j];
    for (int k = 0; k < count; ++k) {
      const double l = row[k] / a.row(k)[k];
      diagonal -= l * row[k];
      row[k] = l;
    }
    if (pace.stopsAfter(size(n - j) * size(count))) return Outcome::interrupted;
    for (int m = j + 1; m < n; m += 4) {
      const int last = std::min(m + 4, n);
      RowGroup group;
      for (int r = m; r < m + 4; ++r) {
        const double* const other = a.row(std::min(r, last - 1));
        group.rows[size(r - m)] = other;
        group.values[size(r - m)] = other[j];
      }
      subtractProducts(group, row, count, Direction::upward);
      for (int r = m; r < last; ++r) a.row(r)[j] = group.values[size(r - m)];
    }
    if (!usable) return Outcome::singular;
    row[j] = diagonal;
  }
  const bool lastUsable = !testLast || !(std::fabs(a.row(n - 1)[n - 1]) < tolerance);
  return lastUsable ? Outcome::done : Outcome::singular;
}

Outcome ldltByPanels(MatrixView matrix, double tolerance, const InterruptTest& interrupted) {
  const int n = matrix.rows;
  const Block a = blockOf(matrix);
  Pace pace(interrupted);
  std::vector<double> buffer(size(n) * size(panelColumns));
  for (int first = 0; first < n; first += panelColumns) {
    const int width = std::min(panelColumns, n - first);
    const int rest = n - first - width;
    const Block corner = a.part(first, first, width, width);
    const Outcome outcome = ldltPlain(corner, tolerance, rest > 0, pace);
    if (outcome != Outcome::done || rest == 0) return outcome;
    // The rows below become L D; a copy stays while they are divided into L.
    const Block below = a.part(first + width, first, rest, width);
    if (!solveInPieces(TriangularSystem::lowerUnitTransposed, corner, below, interrupted)) {
      return Outcome::interrupted;
    }
    const Block scaled{buffer.data(), width, rest, width};
    for (int i = 0; i < rest; ++i) {
      std::copy_n(below.row(i), width, scaled.row(i));
      for (int k = 0; k < width; ++k) below.row(i)[k] /= corner.row(k)[k];
    }
    if (!subtractLowerProduct(below, Taken::plain, scaled, Taken::transposed,
                              a.part(first + width, first + width, rest, rest), interrupted)) {
      return Outcome::interrupted;
    }
  }
  return Outcome::done;
}

// --- Cholesky

// The square corner of a panel by itself. Gives the number of columns done; fewer than all when a
// pivot is not positive.
int choleskyCorner(Block corner) {
  const int n = corner.rows;
  for (int i = 0; i < n; ++i) {
    double* const pivotRow = corner.row(i);
    for (int j = i; j < n; j += 4) {
      const int last = std::min(j + 4, n);
      RowGroup group;
      for (int r = j; r < j + 4; ++r) {
        const double* const other = corner.row(std::min(r, last - 1));
        group.rows[size(r - j)] = other;
        group.values[size(r - j)] = other[i];
      }
      subtractProducts(group, pivotRow, i, Direction::downward);
      for (int r = j; r < last; ++r) corner.row(r)[i] = group.values[size(r - j)];
    }
    if (pivotRow[i] <= 0.0) return i;
    pivotRow[i] = std::sqrt(pivotRow[i]);
    for (int r = i + 1; r < n; ++r) corner.row(r)[i] /= pivotRow[i];
  }
  return n;
}

Outcome choleskyPlain(MatrixView a, const InterruptTest& interrupted) {
  const int n = a.rows;
  for (int i = 0; i < n; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    double* const pivotRow = a.row(i);
    const double square = [&] {
      double s = pivotRow[i];
      for (int k = i - 1; k >= 0; --k) s -= pivotRow[k] * pivotRow[k];
      return s;
    }();
    if (square <= 0.0) return Outcome::singular;
    pivotRow[i] = std::sqrt(square);
    for (int j = i + 1; j < n; j += 4) {
      const int last = std::min(j + 4, n);
      RowGroup group;
      for (int r = j; r < j + 4; ++r) {
        group.rows[size(r - j)] = a.row(std::min(r, last - 1));
        group.values[size(r - j)] = pivotRow[std::min(r, last - 1)];
      }
      subtractProducts(group, pivotRow, i, Direction::downward);
      for (int r = j; r < last; ++r) a(r, i) = group.values[size(r - j)] / pivotRow[i];
    }
  }
  return Outcome::done;
}

Outcome choleskyByPanels(MatrixView matrix, const InterruptTest& interrupted) {
  const int n = matrix.rows;
  const Block a = blockOf(matrix);
  std::vector<double> buffer(size(n) * size(panelColumns));
  for (int first = 0; first < n; first += panelColumns) {
    const int width = std::min(panelColumns, n - first);
    const int rows = n - first;
    const Block panel{buffer.data(), width, rows, width};
    for (int c = 0; c < width; ++c) {
      // The input stands above the diagonal. Left of it, inside the corner, nothing is read.
      const double* const input = a.row(first + c) + first;
      for (int r = 0; r < rows; ++r) panel.row(r)[c] = r < c ? 0.0 : input[r];
    }
    if (!addProductInPieces(-1.0, a.part(first, 0, rows, first), Taken::plain,
                            a.part(first, 0, width, first), Taken::transposed, panel,
                            interrupted)) {
      return Outcome::interrupted;
    }
    // The corner by itself; the rows below it then as one triangular system. Only finished columns
    // reach the matrix.
    const int finished = choleskyCorner(panel.part(0, 0, width, width));
    const Block below = panel.part(width, 0, rows - width, finished);
    if (below.rows > 0 && finished > 0 &&
        !solveInPieces(TriangularSystem::lowerTransposed, panel.part(0, 0, finished, finished),
                       below, interrupted)) {
      return Outcome::interrupted;
    }
    for (int r = 0; r < rows; ++r) {
      std::copy_n(panel.row(r), std::min(finished, r + 1), a.row(first + r) + first);
    }
    if (finished < width) return Outcome::singular;
  }
  return Outcome::done;
}

// --- Elimination from the bottom

// Factors of some pivot rows, in the order of elimination: row p of `factors` belongs to matrix row
// last - 1 - p and holds a(i,j) / a(i,i), zero where a(i,j) is zero.
class UpwardElimination {
 public:
  UpwardElimination(MatrixView a, std::span<double> b, double tolerance,
                    const InterruptTest& interrupted)
      : m_a(a),
        m_b(b),
        m_tolerance(tolerance),
        m_interrupted(interrupted),
        m_factors(size(a.rows) * size(std::min(panelColumns, a.rows))) {}

  Outcome run(int retained) {
    for (int last = m_a.rows; last > retained;) {
      const int first = std::max(last - panelColumns, retained);
      const Outcome outcome = eliminatePanel(first, last);
      if (outcome != Outcome::done) return outcome;
      if (!updateAbove(first, last)) return Outcome::interrupted;
      last = first;
    }
    return Outcome::done;
  }

 private:
  // Rows last - 1 down to first, with all their columns.
  Outcome eliminatePanel(int first, int last) {
    const VectorKernels& vectors = vectorKernels();
    for (int i = last - 1; i >= first; --i) {
      if (asksToStop(m_interrupted)) return Outcome::interrupted;
      double* const row = m_a.row(i);
      const double pivot = row[i];
      if (std::fabs(pivot) < m_tolerance) {
        // What the finished pivots of this panel owe to the rows above, they pay now.
        return updateAbove(first, last, i + 1) ? Outcome::singular : Outcome::interrupted;
      }
      double* const factors = factorsOf(last - 1 - i);
      for (int j = 0; j < i; ++j) {
        factors[j] = row[j] == 0.0 ? 0.0 : row[j] / pivot;
        if (row[j] != 0.0) m_a(j, i) = 0.0;
      }
      for (int m = first; m < i; ++m) {
        if (row[m] != 0.0) vectors.exactSubtractRow(m_a.row(m), row[m], factors, size(m + 1));
      }
      eliminateFromVector(m_a, m_b, i);
    }
    return Outcome::done;
  }

  // Rows above the panel, for its pivots from the last down to lowestDone.
  bool updateAbove(int first, int last, int lowestDone = -1) {
    const int lowest = std::max(lowestDone, first);
    const int pivots = last - lowest;
    if (pivots == 0 || first == 0) return true;
    const Block a = blockOf(m_a);
    if (m_a.rows >= kernelOrder && first >= panelColumns) {
      // The factors stand in the order of elimination, the rows in the opposite one; turned over,
      // both can be taken as they are.
      for (int p = 0; p < pivots / 2; ++p) {
        std::swap_ranges(factorsOf(p), factorsOf(p) + first, factorsOf(pivots - 1 - p));
      }
      return subtractLowerProduct(a.part(lowest, 0, pivots, first), Taken::transposed,
                                  ConstBlock{factorsOf(0), m_a.cols, pivots, first}, Taken::plain,
                                  a.part(0, 0, first, first), m_interrupted);
    }
    const VectorKernels& vectors = vectorKernels();
    std::array<double, panelColumns> negated{};
    for (int m = 0; m < first; ++m) {
      for (int p = 0; p < pivots; ++p) negated[size(p)] = -m_a(last - 1 - p, m);
      vectors.exactAddRows(m_a.row(m), negated.data(), pivots, factorsOf(0), m_a.cols, size(m + 1));
    }
    return true;
  }

  double* factorsOf(int p) { return m_factors.data() + size(p) * size(m_a.cols); }

 public:
  static void eliminateFromVector(ConstMatrixView a, std::span<double> b, int i) {
    if (b[size(i)] == 0.0) return;
    vectorKernels().exactSubtractRow(b.data(), b[size(i)] / a(i, i), a.row(i), size(i));
  }

 private:
  MatrixView m_a;
  std::span<double> m_b;
  double m_tolerance;
  const InterruptTest& m_interrupted;
  std::vector<double> m_factors;
};

}  // namespace

Outcome ldltFactor(MatrixView a, double tolerance, const InterruptTest& interrupted) {
  if (a.rows >= kernelOrder) return ldltByPanels(a, tolerance, interrupted);
  Pace pace(interrupted);
  return ldltPlain(blockOf(a), tolerance, false, pace);
}

Outcome ldltSolve(ConstMatrixView a, std::span<double> b, const InterruptTest& interrupted) {
  const int n = a.rows;
  Pace pace(interrupted);
  for (int j = 1; j < n; ++j) {
    if (pace.stopsAfter(size(j))) return Outcome::interrupted;
    b[size(j)] = minusProduct(b[size(j)], {a.row(j), size(j)}, b.first(size(j)));
  }
  for (int j = 0; j < n; ++j) b[size(j)] /= a(j, j);
  // By columns of Lᵀ, which are rows of L.
  const VectorKernels& vectors = vectorKernels();
  for (int m = n - 1; m > 0; --m) {
    if (pace.stopsAfter(size(m))) return Outcome::interrupted;
    vectors.exactSubtractRow(b.data(), b[size(m)], a.row(m), size(m));
  }
  return Outcome::done;
}

Outcome choleskyFactor(MatrixView a, const InterruptTest& interrupted) {
  return a.rows >= kernelOrder ? choleskyByPanels(a, interrupted) : choleskyPlain(a, interrupted);
}

Outcome choleskySolve(ConstMatrixView a, std::span<double> b, const InterruptTest& interrupted) {
  const int n = a.rows;
  Pace pace(interrupted);
  for (int i = 0; i < n; ++i) {
    if (pace.stopsAfter(size(i))) return Outcome::interrupted;
    b[size(i)] = minusProduct(b[size(i)], {a.row(i), size(i)}, b.first(size(i))) / a(i, i);
  }
  const VectorKernels& vectors = vectorKernels();
  for (int i = n - 1; i >= 0; --i) {
    if (pace.stopsAfter(size(i))) return Outcome::interrupted;
    b[size(i)] /= a(i, i);
    vectors.exactSubtractRow(b.data(), b[size(i)], a.row(i), size(i));
  }
  return Outcome::done;
}

Outcome choleskyInvertFactor(MatrixView a, std::span<double> row,
                             const InterruptTest& interrupted) {
  // Row by row: the rows above are finished and are added up as L has it in the row at hand.
  const VectorKernels& vectors = vectorKernels();
  for (int j = 0; j < a.rows; ++j) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    const double pivot = a(j, j);
    std::fill_n(row.begin(), j, 0.0);
    for (int k = 0; k < j; ++k) {
      vectors.exactAddRows(row.data(), a.row(j) + k, 1, a.row(k), 0, size(k + 1));
    }
    for (int i = 0; i < j; ++i) a(j, i) = -row[size(i)] / pivot;
    a(j, j) = 1.0 / pivot;
  }
  return Outcome::done;
}

Outcome eliminateUpward(MatrixView a, std::span<double> b, int retained, double tolerance,
                        Reduce reduce, const InterruptTest& interrupted) {
  if (reduce == Reduce::matrixAndVector) {
    return UpwardElimination(a, b, tolerance, interrupted).run(retained);
  }
  Pace pace(interrupted);
  for (int i = a.rows - 1; i >= retained; --i) {
    if (pace.stopsAfter(size(i))) return Outcome::interrupted;
    if (std::fabs(a(i, i)) < tolerance) return Outcome::singular;
    UpwardElimination::eliminateFromVector(a, b, i);
  }
  return Outcome::done;
}

Outcome substituteDownward(ConstMatrixView a, std::span<double> b, int first,
                           const InterruptTest& interrupted) {
  Pace pace(interrupted);
  for (int m = first; m < a.rows; ++m) {
    if (pace.stopsAfter(size(m))) return Outcome::interrupted;
    b[size(m)] = minusProduct(b[size(m)], {a.row(m), size(m)}, b.first(size(m))) / a(m, m);
  }
  return Outcome::done;
}

}  // namespace vexa
