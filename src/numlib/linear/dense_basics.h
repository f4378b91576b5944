// Dense matrices at large: products, transpose, identity, power.
//
// Shapes are the caller's to check; a result never shares storage with an operand. Sums run in the
// order of the inner index, so that a result does not depend on how the work is blocked; only large
// products, those that dense_kernels.h calls worthwhile, add as the kernels do. Work space is
// allocated inside; std::bad_alloc passes through.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// c = a * b, with a of order r x n, b of n x q and c of r x q. Asks at least once per row of the
// result, or once per piece of a large one.
[[nodiscard]] Outcome multiply(ConstMatrixView a, ConstMatrixView b, MatrixView c,
                               const InterruptTest& interrupted = {});

// b = the transpose of a, with b of order cols x rows.
void transpose(ConstMatrixView a, MatrixView b);

// The sum of a[k] * b[k]; the lengths are equal.
double dot(std::span<const double> a, std::span<const double> b);

// x less the sum of a[k] * b[k], subtracted one after the other; beyond kernelOrder elements added
// up first, several at a time. For the rows of a triangular system.
double minusProduct(double x, std::span<const double> a, std::span<const double> b);

// Ones on the diagonal, zeros elsewhere; the matrix need not be square.
void setIdentity(MatrixView a);

// out = a to the power of exponent, a whole number of 0 or more; the identity for 0. a and out are
// square and of the same order. Asks as each product does.
[[nodiscard]] Outcome powerOf(ConstMatrixView a, double exponent, MatrixView out,
                              const InterruptTest& interrupted = {});

}  // namespace vexa
