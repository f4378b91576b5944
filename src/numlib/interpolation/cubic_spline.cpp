#include "numlib/interpolation/cubic_spline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "numlib/linear/tridiagonal_system.h"

namespace vexa {

namespace {

// The equations of the second derivatives, one for each point, divided by the lengths beside it:
// 2 stands on the diagonal and the neighbours have weights that add up to 1, so that elimination
// needs no pivoting and no unit of x matters.
class MomentEquations {
 public:
  explicit MomentEquations(const PointTable& table)
      : m_table(table), m_left(n()), m_diagonal(n(), 2.0), m_right(n()), m_sides(n()) {
    for (std::size_t i = 1; i + 1 < n(); ++i) setInner(i, i - 1, i);
  }

  std::size_t n() const { return m_table.size(); }
  double length(std::size_t k) const { return m_table.x[k + 1] - m_table.x[k]; }
  double chordSlope(std::size_t k) const { return (m_table.y[k + 1] - m_table.y[k]) / length(k); }

  // Point i between the pieces `before` and `after`.
  void setInner(std::size_t i, std::size_t before, std::size_t after) {
    const double both = length(before) + length(after);
    m_left[i] = length(before) / both;
    m_right[i] = length(after) / both;
    m_sides[i] = 6.0 * (chordSlope(after) - chordSlope(before)) / both;
  }

  void clamp(double firstSlope, double lastSlope) {
    const std::size_t last = n() - 1;
    m_right[0] = 1;
    m_sides[0] = 6.0 * (chordSlope(0) - firstSlope) / length(0);
    m_left[last] = 1;
    m_sides[last] = 6.0 * (lastSlope - chordSlope(last - 1)) / length(last - 1);
  }

  // Puts the condition that pieces `outer` and `inner` are one cubic into the equation of the point
  // between them.
  void joinPieces(std::size_t point, std::size_t outer, std::size_t inner, double& neighbour) {
    const double h = length(outer), k = length(inner), both = h + k;
    m_diagonal[point] = (h + 2 * k) / both;
    neighbour = (k - h) / both;
    m_sides[point] *= k / both;
  }
  void joinEnds() {
    joinPieces(1, 0, 1, m_right[1]);
    joinPieces(n() - 2, n() - 2, n() - 3, m_left[n() - 2]);
  }

  // Solves the equations `first` to `last`, both included; others are taken as settled.
  void solve(std::size_t first, std::size_t last, std::span<double> m) const {
    std::ranges::copy(m_sides, m.begin());
    eliminate(first, last, m);
  }

  // The last point is the first one again.
  void solveCyclic(std::span<double> m) {
    const std::size_t last = n() - 2;
    setInner(0, last, 0);
    solve(0, last - 1, m);
    // What a unit in the last unknown adds to the others, and the last equation.
    std::vector<double> unit(n());
    unit[0] -= m_left[0];
    unit[last - 1] -= m_right[last - 1];
    eliminate(0, last - 1, unit);
    const double atLast = m_sides[last] - m_right[last] * m[0] - m_left[last] * m[last - 1];
    m[last] = atLast / (2.0 + m_right[last] * unit[0] + m_left[last] * unit[last - 1]);
    for (std::size_t i = 0; i < last; ++i) m[i] += unit[i] * m[last];
    m[last + 1] = m[0];
  }

 private:
  void eliminate(std::size_t first, std::size_t last, std::span<double> m) const {
    const std::size_t count = last - first + 1;
    const auto part = [=](std::span<const double> v) { return v.subspan(first, count); };
    std::vector<double> work(count);
    const Outcome outcome = tridiagonalSolve(part(m_left), part(m_diagonal), part(m_right),
                                             m.subspan(first, count), work);
    // Only numbers that are none make a pivot fail.
    if (outcome != Outcome::done) std::ranges::fill(m, std::numeric_limits<double>::quiet_NaN());
  }

  PointTable m_table;
  std::vector<double> m_left, m_diagonal, m_right, m_sides;
};

void solveNotAKnot(MomentEquations& equations, std::span<double> m) {
  const std::size_t n = equations.n();
  if (n == 3) {
    // A parabola.
    const double curvature = 2.0 * (equations.chordSlope(1) - equations.chordSlope(0)) /
                             (equations.length(0) + equations.length(1));
    std::ranges::fill(m, curvature);
    return;
  }
  equations.joinEnds();
  equations.solve(1, n - 2, m);
  m[0] = m[1] + equations.length(0) / equations.length(1) * (m[1] - m[2]);
  m[n - 1] = m[n - 2] + equations.length(n - 2) / equations.length(n - 3) * (m[n - 2] - m[n - 3]);
}

// One piece of a spline and where a position lies in it: a + b = 1.
struct Piece {
  double h, a, b, y0, y1, m0, m1;

  double value() const {
    return a * y0 + b * y1 - a * b * (h * h / 6.0) * ((1.0 + a) * m0 + (1.0 + b) * m1);
  }
  double slope() const {
    return (y1 - y0) / h - h / 6.0 * ((3.0 * a * a - 1.0) * m0 - (3.0 * b * b - 1.0) * m1);
  }
  double curvature() const { return a * m0 + b * m1; }
  // From the piece's start.
  double integral() const {
    const double c = b * (2.0 - b);
    return h *
           (0.5 * (c * y0 + b * b * y1) - h * h / 24.0 * (c * c * m0 + b * b * (2.0 - b * b) * m1));
  }
};

}  // namespace

void splineMoments(const PointTable& table, const SplineEnds& ends, std::span<double> m) {
  MomentEquations equations(table);
  const std::size_t n = table.size();
  std::ranges::fill(m, 0.0);
  if (ends.kind == SplineEnd::clamped) {
    equations.clamp(ends.firstSlope, ends.lastSlope);
    equations.solve(0, n - 1, m);
  } else if (n == 2) {
    return;  // the chord
  } else if (ends.kind == SplineEnd::notAKnot) {
    solveNotAKnot(equations, m);
  } else if (ends.kind == SplineEnd::periodic) {
    equations.solveCyclic(m);
  } else {
    equations.solve(1, n - 2, m);
    m.front() = m.back() = 0.0;
  }
}

CubicSpline::CubicSpline(const PointTable& table, std::span<const double> m,
                         SplineQuantity quantity)
    : m_table(table), m_m(m), m_quantity(quantity) {
  if (quantity != SplineQuantity::integral) return;
  m_sums.push_back(0.0);
  for (std::size_t k = 0; k + 1 < table.size(); ++k) {
    const double h = table.x[k + 1] - table.x[k];
    const Piece whole{h, 0.0, 1.0, table.y[k], table.y[k + 1], m[k], m[k + 1]};
    m_sums.push_back(h > 0 ? m_sums.back() + whole.integral()
                           : std::numeric_limits<double>::quiet_NaN());
  }
}

double CubicSpline::operator()(double at) const {
  const std::size_t k = findInterval(m_table.x, at);
  const double start = m_table.x[k], end = m_table.x[k + 1], h = end - start;
  if (!(h > 0)) return std::numeric_limits<double>::quiet_NaN();
  const Piece piece{h,      (end - at) / h, (at - start) / h, m_table.y[k], m_table.y[k + 1],
                    m_m[k], m_m[k + 1]};
  switch (m_quantity) {
    case SplineQuantity::value:
      return piece.value();
    case SplineQuantity::slope:
      return piece.slope();
    case SplineQuantity::curvature:
      return piece.curvature();
    case SplineQuantity::integral:
      break;
  }
  return m_sums[k] + piece.integral();
}

}  // namespace vexa
