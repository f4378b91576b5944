// Tridiagonal systems by elimination without pivoting.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

// Replaces r by the solution of the system with the diagonal d, a[i] left of d[i] and c[i] right of
// it (a[0] and the last c are not looked at). All have at least as many elements as d, c one less;
// gamma is work space of that size. Singular when a pivot is 1e-30 or smaller in magnitude (the
// first: smaller than 1e-30) or not a number; r is then unspecified.
[[nodiscard]] Outcome tridiagonalSolve(std::span<const double> a, std::span<const double> d,
                                       std::span<const double> c, std::span<double> r,
                                       std::span<double> gamma,
                                       const InterruptTest& interrupted = {});

}  // namespace vexa
