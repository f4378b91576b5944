// The least value of a function of one variable on an interval.
#pragma once

#include <optional>

#include "numlib/function_reference.h"

namespace vexa {

struct Extremum {
  double x = 0;
  double value = 0;
  bool reached = true;  // false: not within the bound of steps
};

// Where f is least between a and b, ends included, in either order: 33 equally spaced samples, the
// first from a on, Brent's method between the neighbours of the best, at most `maxSteps`, and at
// last parabolas of a width that suits f, or golden section at an edge. A sample wins unless
// something between is lower, and of equal samples the first. Values that are not finite count as
// the worst; when all samples are so there is no result.
//
// The value of a smooth f is good to a few roundings, the abscissa to about 1e-8 of the length on
// which f changes, which is all that the values tell.
std::optional<Extremum> findMinimum(RealFunction f, double a, double b, int maxSteps);

}  // namespace vexa
