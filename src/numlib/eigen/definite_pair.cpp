#include "numlib/eigen/definite_pair.h"

#include <cmath>
#include <utility>
#include <vector>

#include "numlib/eigen/reflections.h"
#include "numlib/eigen/symmetric_eigen.h"

namespace vexa {

namespace {

bool mirrored(ConstMatrixView b) {
  for (int i = 1; i < b.rows; ++i)
    for (int j = 0; j < i; ++j)
      if (b(i, j) != b(j, i)) return false;
  return true;
}

void transposeInPlace(MatrixView a) {
  for (int i = 1; i < a.rows; ++i)
    for (int j = 0; j < i; ++j) std::swap(a(i, j), a(j, i));
}

void divideRow(MatrixView a, int i, double divisor) {
  for (int j = 0; j < a.cols; ++j) a(i, j) /= divisor;
}

// The factor L of a symmetric matrix B, which lends the room: L stands below B's diagonal while
// this lives. A lower triangle that is no exact mirror image of the upper one is kept aside.
class BorrowedCholesky {
 public:
  explicit BorrowedCholesky(MatrixView b);
  ~BorrowedCholesky();
  BorrowedCholesky(const BorrowedCholesky&) = delete;
  BorrowedCholesky& operator=(const BorrowedCholesky&) = delete;

  // Comes first. `singular` when B is not positive definite.
  Outcome factorize(const InterruptTest& interrupted);
  // a = inverse(L) a inverse(L') for a symmetric a of which the lower triangle is read.
  Outcome reduce(MatrixView a, const InterruptTest& interrupted);
  // The columns y of a become inverse(L') y.
  Outcome transformBack(MatrixView a, const InterruptTest& interrupted);

 private:
  bool solveForward(MatrixView a, const InterruptTest& interrupted);

  MatrixView m_b;
  std::vector<double> m_diagonal;  // of L; B keeps its own
  std::vector<double> m_factors;
  std::vector<double> m_lower;  // B's lower triangle, row by row, where it is no mirror image
};

BorrowedCholesky::BorrowedCholesky(MatrixView b)
    : m_b(b),
      m_diagonal(static_cast<std::size_t>(b.rows)),
      m_factors(static_cast<std::size_t>(b.rows)) {
  if (mirrored(b)) return;
  const auto n = static_cast<std::size_t>(b.rows);
  m_lower.reserve(n * (n - 1) / 2);
  for (int i = 1; i < b.rows; ++i) m_lower.insert(m_lower.end(), b.row(i), b.row(i) + i);
}

BorrowedCholesky::~BorrowedCholesky() {
  std::size_t at = 0;
  for (int i = 1; i < m_b.rows; ++i)
    for (int j = 0; j < i; ++j) m_b(i, j) = m_lower.empty() ? m_b(j, i) : m_lower[at++];
}

Outcome BorrowedCholesky::factorize(const InterruptTest& interrupted) {
  for (int i = 0; i < m_b.rows; ++i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    double* const row = m_b.row(i);
    for (int j = 0; j < i; ++j) {
      row[j] =
          (m_b(j, i) - rowProduct(row, m_b.row(j), j)) / m_diagonal[static_cast<std::size_t>(j)];
    }
    const double square = row[i] - rowProduct(row, row, i);
    if (!(square > 0.0)) return Outcome::singular;
    m_diagonal[static_cast<std::size_t>(i)] = std::sqrt(square);
  }
  return Outcome::done;
}

// a = inverse(L) a.
bool BorrowedCholesky::solveForward(MatrixView a, const InterruptTest& interrupted) {
  for (int i = 0; i < a.rows; ++i) {
    if (asksToStop(interrupted)) return false;
    for (int k = 0; k < i; ++k) m_factors[static_cast<std::size_t>(k)] = -m_b(i, k);
    addRows(a.row(i), m_factors.data(), subMatrix(a, 0, 0, i, a.cols));
    divideRow(a, i, m_diagonal[static_cast<std::size_t>(i)]);
  }
  return true;
}

Outcome BorrowedCholesky::reduce(MatrixView a, const InterruptTest& interrupted) {
  for (int i = 1; i < a.rows; ++i)
    for (int j = 0; j < i; ++j) a(j, i) = a(i, j);
  if (!solveForward(a, interrupted)) return Outcome::interrupted;
  transposeInPlace(a);
  return solveForward(a, interrupted) ? Outcome::done : Outcome::interrupted;
}

Outcome BorrowedCholesky::transformBack(MatrixView a, const InterruptTest& interrupted) {
  const int n = a.rows;
  for (int i = n - 1; i >= 0; --i) {
    if (asksToStop(interrupted)) return Outcome::interrupted;
    for (int k = i + 1; k < n; ++k) m_factors[static_cast<std::size_t>(k - i - 1)] = -m_b(k, i);
    if (i + 1 < n) addRows(a.row(i), m_factors.data(), subMatrix(a, i + 1, 0, n - 1 - i, a.cols));
    divideRow(a, i, m_diagonal[static_cast<std::size_t>(i)]);
  }
  return Outcome::done;
}

}  // namespace

Outcome eigenDefinitePair(MatrixView a, MatrixView b, std::span<double> values,
                          const InterruptTest& interrupted, const SlowIteration& slow) {
  BorrowedCholesky factor(b);
  Outcome outcome = factor.factorize(interrupted);
  if (outcome == Outcome::done) outcome = factor.reduce(a, interrupted);
  if (outcome == Outcome::done) outcome = eigenSymmetric(a, values, interrupted, slow);
  if (outcome == Outcome::done) outcome = factor.transformBack(a, interrupted);
  return outcome;
}

}  // namespace vexa
