// Interpolation in a table of n points (x[k], y[k]), n >= 2.
//
// Abscissae are meant to ascend. Nothing here raises or shows anything: a function that can fail
// on the data returns no value, and its caller says why.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

struct PointTable {
  std::span<const double> x, y;

  std::size_t size() const { return x.size(); }
};

// The interval that holds at, by its left end counted from 0: the one that starts at a point that
// equals `at`, the first or the last one outside the table.
std::size_t findInterval(std::span<const double> x, double at);

// The place, from 1, of the last of n >= 1 ordered entries that `at` has reached: x[k] <= at for
// ascending ones, x[k] >= at for descending ones. 0 before the first. First and last entry tell the
// direction (equal ones: ascending); the order itself is taken for granted.
std::size_t placeInTable(std::span<const double> x, double at);

// The straight line through the two points around `at`; outside the table that of the nearest two.
// None when their abscissae are equal or not numbers.
std::optional<double> interpolateLinear(const PointTable& table, double at);

// The polynomial of degree n - 1 through all points, by Neville's scheme. At an abscissa it gives
// that point's ordinate. None when two abscissae are equal, or when interrupted.
std::optional<double> interpolatePolynomial(const PointTable& table, double at,
                                            const InterruptTest& interrupted = {});

// The diagonal rational function through all points, by the scheme of Bulirsch and Stoer
// (Numerische Mathematik 6, 1964). At an abscissa it gives that point's ordinate. At a pole it is
// infinite where the function has one sign on both sides, and not-a-number otherwise, or when
// interrupted.
double interpolateRational(const PointTable& table, double at,
                           const InterruptTest& interrupted = {});

}  // namespace vexa
