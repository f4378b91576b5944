// All roots of a polynomial with real coefficients.
#pragma once

#include <complex>
#include <optional>
#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

inline constexpr int polynomialDegreeLimit = 500;

// The n roots of c[0] + c[1] x + ... + c[n] x^n, sorted by their real and then by their imaginary
// parts. c[n] is not 0, n at least 1, all coefficients are finite. Complex roots come in exactly
// conjugate pairs, real ones have an imaginary part of exactly 0. For each root z the polynomial is
// within 8n 2^-53 times the sum of |c[k] z^k| of 0. None when interrupted.
//
// The eigenvalues of the balanced companion matrix, in a variable scaled by a power of 2, are the
// starting values of simultaneous corrections by Ehrlich and Aberth in long double.
std::optional<std::vector<std::complex<double>>> polynomialRoots(
    std::span<const double> c, const InterruptTest& interrupted = {});

}  // namespace vexa
