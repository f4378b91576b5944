// Interpolating cubic splines by their second derivatives m at the n >= 2 points of a table with
// strictly increasing abscissae. Second derivatives follow from a tridiagonal system, cyclic for a
// periodic spline (Spaeth, One Dimensional Spline Interpolation Algorithms, 1995).
#pragma once

#include <span>
#include <vector>

#include "numlib/interpolation/point_tables.h"

namespace vexa {

enum class SplineEnd {
  natural,   // m is 0 at both ends
  clamped,   // given slopes
  notAKnot,  // the first two pieces are one cubic, the last two likewise; 3 points give a parabola
  periodic,  // the ends agree in value, slope and second derivative; n >= 3
};

struct SplineEnds {
  SplineEnd kind = SplineEnd::natural;
  double firstSlope = 0, lastSlope = 0;  // for clamped
};

// Not finite where the data leave the range of numbers.
void splineMoments(const PointTable& table, const SplineEnds& ends, std::span<double> m);

enum class SplineQuantity { value, slope, curvature, integral };

// One quantity of the spline with the second derivatives m. At a point the value is its ordinate;
// outside of the table the end piece goes on; the integral begins at the first abscissa. A piece
// that has no length, or one of not-a-number, gives not-a-number.
class CubicSpline {
 public:
  // Adds up the pieces when it is to give integrals; the other quantities look at one piece only.
  CubicSpline(const PointTable& table, std::span<const double> m, SplineQuantity quantity);

  double operator()(double at) const;

 private:
  PointTable m_table;
  std::span<const double> m_m;
  SplineQuantity m_quantity;
  std::vector<double> m_sums;  // integrals up to each point
};

}  // namespace vexa
