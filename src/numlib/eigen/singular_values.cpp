#include "numlib/eigen/singular_values.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "numlib/eigen/plane_rotation.h"
#include "numlib/eigen/reflections.h"
#include "numlib/eigen/rotations.h"
#include "numlib/linear/dense_basics.h"

namespace vexa {

namespace {

using Direction = ColumnRotations::Direction;

constexpr double kLeastSingularValue = 1e-12;

// The bidiagonal matrix: d the diagonal, e[i] the element above d[i] (e[0] is 0), and the h of the
// reflections that led to it, from the left and from the right.
struct Bidiagonal {
  explicit Bidiagonal(std::span<double> diagonal)
      : d(diagonal), e(d.size()), left(d.size()), right(d.size()) {}

  std::span<double> d;
  std::vector<double> e, left, right;
};

// Column i is reflected from the left, then row i from the right. The vectors stay in place: the
// left ones on and below the diagonal, the right ones to the right of it.
bool makeBidiagonal(MatrixView a, Bidiagonal& b, std::span<double> column, std::span<double> work,
                    const InterruptTest& interrupted) {
  const int m = a.rows;
  const int n = a.cols;
  for (int i = 0; i < n; ++i) {
    if (asksToStop(interrupted)) return false;
    const auto at = static_cast<std::size_t>(i);
    const auto u = column.first(static_cast<std::size_t>(m - i));
    for (int k = i; k < m; ++k) u[static_cast<std::size_t>(k - i)] = a(k, i);
    const Reflection left = makeReflection(u, 0);
    b.left[at] = left.h;
    b.d[at] = left.image;
    for (int k = i; k < m; ++k) a(k, i) = u[static_cast<std::size_t>(k - i)];
    if (i + 1 == n) break;

    if (left.h != 0.0) reflectColumns(subMatrix(a, i, i + 1, m - i, n - i - 1), u, left.h, work);
    const std::span<double> v{a.row(i) + i + 1, static_cast<std::size_t>(n - i - 1)};
    const Reflection right = makeReflection(v, 0);
    b.right[at] = right.h;
    b.e[at + 1] = right.image;
    if (right.h != 0.0) reflectRows(subMatrix(a, i + 1, i + 1, m - i - 1, n - i - 1), v, right.h);
  }
  return true;
}

// v = the product of the reflections from the right, built from the last one on.
bool accumulateRight(ConstMatrixView a, const Bidiagonal& b, MatrixView v, std::span<double> work,
                     const InterruptTest& interrupted) {
  const int n = a.cols;
  setIdentity(v);
  std::vector<double> u(static_cast<std::size_t>(n));
  for (int i = n - 2; i >= 0; --i) {
    if (asksToStop(interrupted)) return false;
    const double h = b.right[static_cast<std::size_t>(i)];
    if (h == 0.0) continue;
    std::copy(a.row(i) + i + 1, a.row(i) + n, u.begin());
    reflectColumns(subMatrix(v, i + 1, i + 1, n - i - 1, n - i - 1), u, h, work);
  }
  return true;
}

// a = the first columns of the product of the reflections from the left. They stand in a, so the
// product grows from the last column to the first over the room that they leave.
bool accumulateLeft(MatrixView a, const Bidiagonal& b, std::span<double> column,
                    std::span<double> work, const InterruptTest& interrupted) {
  const int m = a.rows;
  const int n = a.cols;
  for (int i = n - 1; i >= 0; --i) {
    if (asksToStop(interrupted)) return false;
    const double h = b.left[static_cast<std::size_t>(i)];
    const auto u = column.first(static_cast<std::size_t>(m - i));
    for (int k = i; k < m; ++k) {
      u[static_cast<std::size_t>(k - i)] = a(k, i);
      a(k, i) = k == i ? 1.0 : 0.0;
    }
    std::fill(a.row(i) + i + 1, a.row(i) + n, 0.0);
    if (h != 0.0) reflectColumns(subMatrix(a, i, i, m - i, n - i), u, h, work);
  }
  return true;
}

// The iteration on the bidiagonal matrix, with the rotations of both sides noted for U and V.
class DiagonalIteration {
 public:
  DiagonalIteration(Bidiagonal& b, MatrixView u, MatrixView v, const InterruptTest& interrupted)
      : m_d(b.d), m_e(b.e), m_left(u, interrupted), m_right(v, interrupted), m_v(v) {
    double largest = 0.0;
    for (std::size_t i = 0; i < m_d.size(); ++i)
      largest = std::max(largest, std::fabs(m_d[i]) + std::fabs(m_e[i]));
    m_negligible = largest * std::numeric_limits<double>::epsilon() / 2;
  }

  Outcome run(const InterruptTest& interrupted, const SlowIteration& slow) {
    for (std::size_t last = m_d.size(); last-- > 0;) {
      if (asksToStop(interrupted)) return Outcome::interrupted;
      for (int round = 0;; ++round) {
        const std::size_t first = splitBefore(last);
        if (first == last) break;
        if (round == slow.patience && slow.notice) slow.notice();
        iterate(first, last);
        if (!m_left.applyWhenLong() || !m_right.applyWhenLong()) return Outcome::interrupted;
      }
    }
    if (!m_left.applyAll() || !m_right.applyAll()) return Outcome::interrupted;
    makePositive();
    return Outcome::done;
  }

 private:
  // Not-a-number is negligible, or the iteration would never end.
  bool negligible(double x) const { return !(std::fabs(x) > m_negligible); }

  // The first column of the part that ends with `last` and can be iterated on. A diagonal element
  // that counts as 0 splits the matrix behind it, once the element to its right is rotated away.
  std::size_t splitBefore(std::size_t last) {
    std::size_t first = last;
    for (; !negligible(m_e[first]); --first) {
      if (!negligible(m_d[first - 1])) continue;
      cancel(first, last);
      break;
    }
    return first;
  }

  void cancel(std::size_t first, std::size_t last) {
    m_left.beginFan(static_cast<int>(first) - 1, static_cast<int>(first));
    double x = m_e[first];
    m_e[first] = 0.0;
    for (std::size_t i = first; i <= last && !negligible(x); ++i) {
      const PlaneRotation turn = rotationOnto(m_d[i], x);
      m_d[i] = turn.length;
      m_left.add(turn.c, -turn.s);
      if (i == last) break;
      x = -turn.s * m_e[i + 1];
      m_e[i + 1] *= turn.c;
    }
  }

  // The first column of B'B less its shift, divided by the first diagonal element: that element's
  // partner is e[first + 1]. The shift is the eigenvalue of the last two rows of B'B nearer to the
  // last, written with sums and differences instead of squares.
  double start(std::size_t first, std::size_t last) const {
    const double x = m_d[first];
    const double y = m_d[last - 1];
    const double z = m_d[last];
    const double g = m_e[last - 1];
    const double h = m_e[last];
    const double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
    const double root = f + std::copysign(std::hypot(f, 1.0), f);
    return ((x - z) * (x + z) + h * (y / root - h)) / x;
  }

  // One implicit QR step: rotations from the right and from the left in turn chase the element that
  // does not belong down the matrix.
  void iterate(std::size_t first, std::size_t last) {
    m_right.beginChain(static_cast<int>(first), Direction::ascending);
    m_left.beginChain(static_cast<int>(first), Direction::ascending);
    double x = start(first, last);
    double y = m_e[first + 1];
    for (std::size_t i = first; i < last; ++i) {
      const PlaneRotation right = rotationOnto(x, y);
      m_right.add(right.c, right.s);
      if (i > first) m_e[i] = right.length;
      const double a = right.c * m_d[i] + right.s * m_e[i + 1];
      const double b = right.s * m_d[i + 1];
      m_e[i + 1] = right.c * m_e[i + 1] - right.s * m_d[i];
      m_d[i + 1] *= right.c;

      const PlaneRotation left = rotationOnto(a, b);
      m_left.add(left.c, left.s);
      m_d[i] = left.length;
      const double above = m_e[i + 1];
      m_e[i + 1] = left.c * above + left.s * m_d[i + 1];
      m_d[i + 1] = left.c * m_d[i + 1] - left.s * above;
      if (i + 1 < last) {
        x = m_e[i + 1];
        y = left.s * m_e[i + 2];
        m_e[i + 2] *= left.c;
      }
    }
  }

  // Singular values are not negative; the sign goes to their columns of V.
  void makePositive() {
    for (int i = 0; i < m_v.rows; ++i) {
      double* const row = m_v.row(i);
      for (std::size_t j = 0; j < m_d.size(); ++j)
        if (m_d[j] < 0.0) row[j] = -row[j];
    }
    for (double& value : m_d) value = std::fabs(value);
  }

  std::span<double> m_d, m_e;
  ColumnRotations m_left, m_right;
  MatrixView m_v;
  double m_negligible = 0.0;
};

}  // namespace

Outcome decomposeSingular(MatrixView a, std::span<double> w, MatrixView v,
                          const InterruptTest& interrupted, const SlowIteration& slow) {
  const double scale = safeScale(largestMagnitude(a.elements()));
  if (scale != 1.0)
    for (double& element : a.elements()) element *= scale;

  Bidiagonal b(w);
  std::vector<double> column(static_cast<std::size_t>(a.rows));
  std::vector<double> work(static_cast<std::size_t>(a.cols));
  if (!makeBidiagonal(a, b, column, work, interrupted)) return Outcome::interrupted;
  if (!accumulateRight(a, b, v, work, interrupted)) return Outcome::interrupted;
  if (!accumulateLeft(a, b, column, work, interrupted)) return Outcome::interrupted;

  DiagonalIteration iteration(b, a, v, interrupted);
  const Outcome outcome = iteration.run(interrupted, slow);
  if (scale != 1.0)
    for (double& value : w) value /= scale;
  return outcome;
}

double cutSmallValues(std::span<double> w, double tolerance, double infinite) {
  const double largest = *std::ranges::max_element(w);
  const double smallest = *std::ranges::min_element(w);
  const double threshold = tolerance * 0.001 * largest;
  for (double& value : w)
    if (value < threshold) value = 0.0;
  return smallest > threshold ? largest / smallest : infinite;
}

bool leastSquares(ConstMatrixView u, std::span<const double> w, ConstMatrixView v,
                  std::span<const double> b, std::span<double> x,
                  const InterruptTest& interrupted) {
  std::vector<double> s(w.size());
  for (int i = 0; i < u.rows; ++i) {
    if (i % 256 == 0 && asksToStop(interrupted)) return false;
    const double factor = b[static_cast<std::size_t>(i)];
    const double* const row = u.row(i);
    for (std::size_t j = 0; j < s.size(); ++j) s[j] += row[j] * factor;
  }
  for (std::size_t j = 0; j < s.size(); ++j)
    s[j] = std::fabs(w[j]) > kLeastSingularValue ? s[j] / w[j] : 0.0;
  for (int i = 0; i < v.rows; ++i)
    x[static_cast<std::size_t>(i)] = rowProduct(v.row(i), s.data(), v.cols);
  return true;
}

}  // namespace vexa
