#include "numlib/linear/lu_factorisation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/linear/dense_basics.h"
#include "numlib/linear/dense_kernels.h"
#include "numlib/linear/vector_kernels.h"

namespace vexa {

namespace {

// Columns that are eliminated one by one; wider parts are halved.
constexpr int kLeaf = 16;
// Columns that smaller orders bring up to date together.
constexpr int kPanel = 64;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// One factorisation. Every element undergoes the operations of the column-by-column form in the
// same order; only the order among elements is changed, to walk along rows, and from kernelOrder
// on the sums are the kernels'.
class Factorisation {
 public:
  Factorisation(MatrixView a, PivotList pivots, std::span<double> scale, double tolerance,
                double& sign, const InterruptTest& interrupted)
      : m_a(a),
        m_pivots(pivots),
        m_scale(scale),
        m_tolerance(tolerance),
        m_sign(sign),
        m_interrupted(interrupted),
        m_useKernels(a.rows >= kernelOrder),
        m_provider(a.rows >= frugalOrder ? Provider::own : Provider::inForce) {}

  Outcome run() {
    m_sign = 1.0;
    for (int i = 0; i < m_a.rows; ++i) {
      if (asksToStop(m_interrupted)) return Outcome::interrupted;
      double largest = 0.0;
      const double* const row = m_a.row(i);
      for (int j = 0; j < m_a.cols; ++j) largest = std::max(largest, std::fabs(row[j]));
      if (largest == 0.0) return Outcome::singular;
      m_scale[size(i)] = 1.0 / largest;
    }
    return m_useKernels ? factorColumns(0, m_a.rows) : factorPanelByPanel();
  }

 private:
  // No panel is touched before its turn, and what was ahead of a failing column inside its panel is
  // put back: so a singular matrix is left as the column-by-column form leaves it.
  Outcome factorPanelByPanel() {
    const int n = m_a.rows;
    std::vector<double> untouched(size(n) * size(std::min(n, kPanel)));
    for (int first = 0; first < n; first += kPanel) {
      const int last = std::min(first + kPanel, n);
      const MatrixView kept{untouched.data(), n, last - first};
      for (int i = 0; i < n; ++i) std::copy_n(m_a.row(i) + first, kept.cols, kept.row(i));
      update(0, first, last);
      const Outcome outcome = factorColumns(first, last);
      if (outcome == Outcome::singular) restoreBehindFailure(first, kept);
      if (outcome != Outcome::done) return outcome;
    }
    return Outcome::done;
  }

  void restoreBehindFailure(int first, MatrixView kept) {
    for (int j = first; j <= m_failedColumn; ++j) {
      if (m_pivots[j] != j)
        std::swap_ranges(kept.row(j), kept.row(j) + kept.cols, kept.row(m_pivots[j]));
    }
    const int behind = m_failedColumn + 1;
    for (int i = 0; i < kept.rows; ++i) {
      std::copy(kept.row(i) + (behind - first), kept.row(i) + kept.cols, m_a.row(i) + behind);
    }
  }

  // Columns first to last - 1, which all earlier columns have updated.
  Outcome factorColumns(int first, int last) {
    if (last - first <= kLeaf) return eliminateColumns(first, last);
    const int middle = first + (last - first + 2 * kLeaf - 1) / (2 * kLeaf) * kLeaf;
    const Outcome outcome = factorColumns(first, middle);
    if (outcome != Outcome::done) return outcome;
    if (!update(first, middle, last)) return Outcome::interrupted;
    return factorColumns(middle, last);
  }

  Outcome eliminateColumns(int first, int last) {
    if (asksToStop(m_interrupted)) return Outcome::interrupted;
    const VectorKernels& vectors = vectorKernels();
    const int n = m_a.rows;
    for (int j = first; j < last; ++j) {
      int pivotRow = j;
      double best = 0.0;
      for (int i = j; i < n; ++i) {
        const double candidate = m_scale[size(i)] * std::fabs(m_a(i, j));
        if (candidate >= best) {  // the last of equals wins
          best = candidate;
          pivotRow = i;
        }
      }
      if (pivotRow != j) {
        std::swap_ranges(m_a.row(j), m_a.row(j) + n, m_a.row(pivotRow));
        m_scale[size(pivotRow)] = m_scale[size(j)];
        m_sign = -m_sign;
      }
      m_pivots.set(j, pivotRow);
      if (std::fabs(m_a(j, j)) < m_tolerance) {
        m_failedColumn = j;
        return Outcome::singular;
      }
      if (j + 1 < n) {
        vectors.exactEliminate(m_a.row(j + 1) + j, n, n - 1 - j, 1.0 / m_a(j, j), m_a.row(j) + j,
                               size(last - j));
      }
    }
    return Outcome::done;
  }

  // Columns middle to last - 1 catch up with the finished columns first to middle - 1.
  bool update(int first, int middle, int last) {
    const int n = m_a.rows;
    const Block whole = blockOf(m_a);
    const Block top = whole.part(first, middle, middle - first, last - middle);
    if (m_useKernels) {
      return solveInPieces(TriangularSystem::lowerUnit,
                           whole.part(first, first, middle - first, middle - first), top,
                           m_interrupted, m_provider) &&
             addProductInPieces(-1.0, whole.part(middle, first, n - middle, middle - first),
                                Taken::plain, top, Taken::plain,
                                whole.part(middle, middle, n - middle, last - middle),
                                m_interrupted, m_provider);
    }
    // From the top: row i needs the finished rows above it.
    const VectorKernels& vectors = vectorKernels();
    std::vector<double> negated(size(middle - first));
    for (int i = first + 1; i < n; ++i) {
      const int count = std::min(i, middle) - first;
      const double* const multipliers = m_a.row(i) + first;
      std::transform(multipliers, multipliers + count, negated.begin(),
                     [](double f) { return -f; });
      vectors.exactAddRows(m_a.row(i) + middle, negated.data(), count, top.data, top.stride,
                           size(last - middle));
    }
    return true;
  }

  MatrixView m_a;
  PivotList m_pivots;
  std::span<double> m_scale;
  double m_tolerance;
  double& m_sign;
  const InterruptTest& m_interrupted;
  bool m_useKernels;
  Provider m_provider;
  int m_failedColumn = 0;
};

// The same operations on all columns of x that luSolve does on one.
bool solveColumns(ConstMatrixView a, MatrixView x, const InterruptTest& interrupted) {
  const int n = a.rows;
  if (n >= kernelOrder) {
    return solveInPieces(TriangularSystem::lowerUnit, blockOf(a), blockOf(x), interrupted) &&
           solveInPieces(TriangularSystem::upper, blockOf(a), blockOf(x), interrupted);
  }
  const VectorKernels& vectors = vectorKernels();
  std::vector<double> negated(size(n));
  const auto subtractRows = [&](int i, int firstRow, int count) {
    const double* const factors = a.row(i) + firstRow;
    std::transform(factors, factors + count, negated.begin(), [](double f) { return -f; });
    vectors.exactAddRows(x.row(i), negated.data(), count, x.row(firstRow), x.cols, size(x.cols));
  };
  for (int i = 1; i < n; ++i) subtractRows(i, 0, i);
  for (int i = n - 1; i >= 0; --i) {
    if (i + 1 < n) subtractRows(i, i + 1, n - 1 - i);
    for (int j = 0; j < x.cols; ++j) x(i, j) /= a(i, i);
  }
  return true;
}

}  // namespace

Outcome luFactor(MatrixView a, PivotList pivots, std::span<double> scale, double tolerance,
                 double& sign, const InterruptTest& interrupted) {
  return Factorisation(a, pivots, scale, tolerance, sign, interrupted).run();
}

Outcome luSolve(ConstMatrixView a, const PivotList& pivots, std::span<double> b,
                const InterruptTest& interrupted) {
  const int n = a.rows;
  Pace pace(interrupted);
  for (int j = 0; j < n; ++j) std::swap(b[size(j)], b[size(pivots[j])]);
  for (int i = 1; i < n; ++i) {
    if (pace.stopsAfter(size(i))) return Outcome::interrupted;
    b[size(i)] = minusProduct(b[size(i)], {a.row(i), size(i)}, b.first(size(i)));
  }
  for (int i = n - 1; i >= 0; --i) {
    const std::size_t behind = size(n - 1 - i);
    if (pace.stopsAfter(behind)) return Outcome::interrupted;
    b[size(i)] = minusProduct(b[size(i)], {a.row(i) + i + 1, behind}, b.last(behind)) / a(i, i);
  }
  return Outcome::done;
}

bool fitsOrder(const PivotList& pivots, int n) {
  if (pivots.capacity() < size(n)) return false;
  for (int j = 0; j < n; ++j) {
    if (pivots[j] < j || pivots[j] >= n) return false;
  }
  return true;
}

double diagonalProduct(ConstMatrixView a, double sign) {
  double product = sign;
  for (int i = 0; i < a.rows; ++i) product *= a(i, i);
  return product;
}

Outcome luInverse(ConstMatrixView a, const PivotList& pivots, MatrixView x,
                  const InterruptTest& interrupted) {
  const int n = a.rows;
  setIdentity(x);
  for (int j = 0; j < n; ++j) {
    if (pivots[j] != j) std::swap_ranges(x.row(j), x.row(j) + n, x.row(pivots[j]));
  }
  return solveColumns(a, x, interrupted) ? Outcome::done : Outcome::interrupted;
}

Outcome invertInto(MatrixView a, MatrixView x, double tolerance, const InterruptTest& interrupted) {
  const std::size_t n = size(a.rows);
  std::vector<double> scale(n), pivotElements(PivotList::elementsFor(n));
  const PivotList pivots(pivotElements);
  double sign = 1.0;
  const Outcome outcome = luFactor(a, pivots, scale, tolerance, sign, interrupted);
  return outcome == Outcome::done ? luInverse(a, pivots, x, interrupted) : outcome;
}

Outcome gaussJordan(MatrixView a, std::span<double> b, PivotList rows, PivotList cols,
                    PivotList used, double tolerance, int& replaced,
                    const InterruptTest& interrupted) {
  const int n = a.rows;
  const VectorKernels& vectors = vectorKernels();
  replaced = 0;
  for (int i = 0; i < n; ++i) used.set(i, 0);
  Pace pace(interrupted);
  for (int step = 0; step < n; ++step) {
    int pivotRow = -1, pivotCol = -1;
    double best = 0.0;
    for (int i = 0; i < n; ++i) {
      if (used[i]) continue;
      if (pace.stopsAfter(size(n))) return Outcome::interrupted;
      for (int k = 0; k < n; ++k) {
        if (!used[k] && std::fabs(a(i, k)) >= best) {  // the last of equals wins
          best = std::fabs(a(i, k));
          pivotRow = i;
          pivotCol = k;
        }
      }
    }
    if (pivotRow < 0) return Outcome::singular;
    used.set(pivotCol, 1);
    if (pivotRow != pivotCol) {
      std::swap_ranges(a.row(pivotRow), a.row(pivotRow) + n, a.row(pivotCol));
      if (!b.empty()) std::swap(b[size(pivotRow)], b[size(pivotCol)]);
    }
    rows.set(step, pivotRow);
    cols.set(step, pivotCol);

    double* const row = a.row(pivotCol);
    if (std::fabs(row[pivotCol]) < tolerance) {
      row[pivotCol] = 1.0;
      ++replaced;
    }
    const double reciprocal = 1.0 / row[pivotCol];
    row[pivotCol] = 1.0;
    std::for_each_n(row, n, [reciprocal](double& e) { e *= reciprocal; });
    if (!b.empty()) b[size(pivotCol)] *= reciprocal;
    for (int i = 0; i < n; ++i) {
      if (i == pivotCol) continue;
      if (pace.stopsAfter(size(n))) return Outcome::interrupted;
      const double f = a(i, pivotCol);
      a(i, pivotCol) = 0.0;
      vectors.exactSubtractRow(a.row(i), f, row, size(n));
      if (!b.empty()) b[size(i)] -= f * b[size(pivotCol)];
    }
  }
  for (int step = n - 1; step >= 0; --step) {
    if (rows[step] == cols[step]) continue;
    for (int i = 0; i < n; ++i) std::swap(a(i, rows[step]), a(i, cols[step]));
  }
  return Outcome::done;
}

}  // namespace vexa
