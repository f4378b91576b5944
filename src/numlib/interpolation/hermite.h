// Piecewise cubic Hermite interpolation with the monotone slopes of Fritsch and Carlson (SIAM
// Journal on Numerical Analysis 17, 1980) and three-point formulas at the ends.
#pragma once

#include <optional>
#include <span>

#include "numlib/interpolation/point_tables.h"

namespace vexa {

// Whether each abscissa is greater than the one before; false where one is not a number.
bool strictlyIncreasing(std::span<const double> x);

// The slopes d at the n >= 2 points of a table with strictly increasing abscissae. Between points
// that rise or fall together the interpolant with these slopes does too; at an extremum of the data
// the slope is 0.
void monotoneSlopes(const PointTable& table, std::span<double> d);

struct HermiteValue {
  double value = 0.0;
  double derivative = 0.0;
};

// The cubic between the two points around `at` with the slopes d; outside the table that of the
// nearest two points. None when their abscissae are equal or not numbers.
std::optional<HermiteValue> interpolateHermite(const PointTable& table, std::span<const double> d,
                                               double at);

}  // namespace vexa
