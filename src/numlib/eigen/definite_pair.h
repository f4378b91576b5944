// The generalised symmetric eigenproblem A x = lambda B x with B positive definite, brought to the
// standard one by a Cholesky factor of B: with B = L L' it is C y = lambda y, where
// C = inverse(L) A inverse(L') and x = inverse(L') y, so that x'Bx = y'y = 1.
#pragma once

#include <span>

#include "numlib/eigen/iteration_control.h"
#include "numlib/matrix_view.h"

namespace vexa {

// Replaces the n x n matrix a by the eigenvectors x, one per column, with x'bx = 1, and gives
// column k's eigenvalue in values[k]. Only the lower triangle of a and the upper one of b are
// read. b, of a's order, lends the room for its factor and is whole again afterwards, whatever
// happens. `singular` when b is not positive definite; a and values are untouched then. Otherwise
// as eigenSymmetric. Work space of a few rows is allocated inside, and half a matrix when b is not
// exactly symmetric.
[[nodiscard]] Outcome eigenDefinitePair(MatrixView a, MatrixView b, std::span<double> values,
                                        const InterruptTest& interrupted = {},
                                        const SlowIteration& slow = {});

}  // namespace vexa
