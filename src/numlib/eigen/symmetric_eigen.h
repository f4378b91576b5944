// Eigenvalues and eigenvectors of a real symmetric matrix: Householder reduction to tridiagonal
// form, then QL iteration with implicit shifts (Martin and Wilkinson, Numerische Mathematik 11 and
// 12, 1968).
#pragma once

#include <span>

#include "numlib/eigen/iteration_control.h"
#include "numlib/matrix_view.h"

namespace vexa {

// Replaces the n x n matrix a by its eigenvectors, one per column, orthonormal, and gives column
// k's eigenvalue in values[k]; there are n values, in the order in which the iteration yields
// them. Only the lower triangle of a is read. Elements that are not numbers give results that are
// none, in the usual time. `interrupted` is asked in each outer step; when the outcome is
// `interrupted` rather than `done`, a and values are unfinished. Work space of some 60 rows is
// allocated inside.
[[nodiscard]] Outcome eigenSymmetric(MatrixView a, std::span<double> values,
                                     const InterruptTest& interrupted = {},
                                     const SlowIteration& slow = {});

}  // namespace vexa
