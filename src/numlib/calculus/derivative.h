// Derivatives of a function of one variable by extrapolated differences.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "numlib/function_reference.h"

namespace vexa {

inline constexpr int highestDerivative = 4;

// The first step of the differences at x: 0.1 |x|, or 0.1 at 0.
double firstStep(double x);

// The derivative of the given order, 1 to highestDerivative, at x: central differences in the
// extrapolation table of Ridders. Each step after the first is 1.4 times shorter (a factor of 2
// would meet periodic functions in step), over at most 80 rows of at most eight columns; a row with
// a value that is not finite starts the table anew. The entry with the least error estimate counts.
// Where that is uncertain beside 0 the first step at 0 is tried too. Nothing when the estimate is
// too uncertain all the same.
std::optional<double> differentiate(RealFunction f, double x, int order = 1);

// The first derivative of a function of several variables in the j-th, counted from 0, at a point,
// which is as it was afterwards.
std::optional<double> differentiate(FieldFunction f, std::span<double> at, std::size_t j);

}  // namespace vexa
