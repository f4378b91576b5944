// Singular value decomposition A = U diag(w) V' by Golub and Reinsch (Numerische Mathematik 14,
// 1970), and least squares with it.
#pragma once

#include <span>

#include "numlib/eigen/iteration_control.h"
#include "numlib/matrix_view.h"

namespace vexa {

// a is m x n with m >= n and becomes U, whose columns are orthonormal; v is n x n and becomes V,
// orthogonal; w has n elements and takes the singular values, 0 or more, in the order in which the
// iteration yields them. Elements that are not numbers give results that are none, in the usual
// time. `interrupted` is asked in each outer step; when the outcome is `interrupted` rather than
// `done`, all three are unfinished. Work space of a few rows is allocated inside.
[[nodiscard]] Outcome decomposeSingular(MatrixView a, std::span<double> w, MatrixView v,
                                        const InterruptTest& interrupted = {},
                                        const SlowIteration& slow = {});

// Sets every w below tolerance * 0.001 * (the largest w) to 0 and returns the largest over the
// smallest w as they were, or `infinite` when the smallest was not above that threshold.
double cutSmallValues(std::span<double> w, double tolerance, double infinite);

// The vector x of least length among those that bring U diag(w) V' x nearest to b. Singular values
// of magnitude 1e-12 or less count as 0. u is m x n, w and x have n elements, v is n x n and b has
// m elements; x shares nothing with the others. False when the user wants to stop.
[[nodiscard]] bool leastSquares(ConstMatrixView u, std::span<const double> w, ConstMatrixView v,
                                std::span<const double> b, std::span<double> x,
                                const InterruptTest& interrupted = {});

}  // namespace vexa
