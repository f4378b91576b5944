// What matrix expressions need of dense matrices: products, transpose, identity, inverse, power.
//
// Shapes are the caller's to check; a result never shares storage with an operand. Sums run in the
// order of the inner index, so that a result does not depend on how the work is blocked. Work space
// is allocated inside; std::bad_alloc passes through.
#pragma once

#include <functional>
#include <span>

#include "numlib/matrix_view.h"

namespace vexa {

// Asked now and then by long routines; true means that the user wants to stop. It may throw: the
// routines hold nothing that unwinding would lose. An empty one is never asked.
using InterruptTest = std::function<bool()>;

enum class Outcome {
  done,
  singular,     // no usable pivot
  interrupted,  // the interrupt test said so; the result is unfinished
};

// c = a * b, with a of order r x n, b of n x q and c of r x q. Asks once per row of the result.
[[nodiscard]] Outcome multiply(ConstMatrixView a, ConstMatrixView b, MatrixView c,
                               const InterruptTest& interrupted = {});

// b = the transpose of a, with b of order cols x rows.
void transpose(ConstMatrixView a, MatrixView b);

// The sum of a[k] * b[k]; the lengths are equal.
double dot(std::span<const double> a, std::span<const double> b);

// Ones on the diagonal, zeros elsewhere; the matrix need not be square.
void setIdentity(MatrixView a);

// Replaces the square matrix a by its inverse. It is singular when a row holds only zeros or when a
// pivot is below pivotTolerance in magnitude (the language passes tol# times 1e-10). Unless the
// outcome is done, a is left partly factorised. Asks once per row that is eliminated or solved for.
[[nodiscard]] Outcome invertInPlace(MatrixView a, double pivotTolerance,
                                    const InterruptTest& interrupted = {});

// out = a to the power of exponent, a whole number of 0 or more; the identity for 0. a and out are
// square and of the same order. Asks once per row of each product.
[[nodiscard]] Outcome powerOf(ConstMatrixView a, double exponent, MatrixView out,
                              const InterruptTest& interrupted = {});

}  // namespace vexa
