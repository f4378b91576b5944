// General square matrices: Crout's factorisation with row-scaled partial pivoting, what is solved
// with it, and elimination with full pivoting.
//
// Work space comes from the caller where its size is that of a vector. std::bad_alloc may come out
// of orders from kernelOrder on, where panels are copied.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/linear/pivot_list.h"
#include "numlib/matrix_view.h"

namespace vexa {

// Replaces a by its factors: below the diagonal the multipliers of a unit lower triangle, on and
// above it the upper triangle. The pivot of a column is the row with the largest magnitude relative
// to its row's largest element, the last of equals. pivots[j] becomes the row, counted from 0, that
// changed places with row j; sign becomes -1 after an odd number of exchanges. Singular when a row
// holds only zeros or a pivot is below tolerance in magnitude; a is left partly factorised then.
// Below kernelOrder that means the columns up to the failing one, and those behind it have only
// followed the exchanges. scale has n elements. From kernelOrder on the dense kernels do the bulk.
[[nodiscard]] Outcome luFactor(MatrixView a, PivotList pivots, std::span<double> scale,
                               double tolerance, double& sign,
                               const InterruptTest& interrupted = {});

// Replaces b by the solution, a and pivots being what luFactor left.
Outcome luSolve(ConstMatrixView a, const PivotList& pivots, std::span<double> b,
                const InterruptTest& interrupted = {});
// Whether the numbers could come from luFactor of order n: as many as that, each a row at or below
// its own.
bool fitsOrder(const PivotList& pivots, int n);

// The product of the diagonal, from the top, times sign.
double diagonalProduct(ConstMatrixView a, double sign);

// Replaces the n x n matrix x by the inverse of what luFactor factorised into a.
[[nodiscard]] Outcome luInverse(ConstMatrixView a, const PivotList& pivots, MatrixView x,
                                const InterruptTest& interrupted = {});

// The whole way from a to its inverse x, with vectors of its own. a is left holding its factors;
// singular as luFactor has it, and x is unspecified then.
[[nodiscard]] Outcome invertInto(MatrixView a, MatrixView x, double tolerance,
                                 const InterruptTest& interrupted = {});

// Elimination with full pivoting: replaces a by its inverse and b, when it has elements, by the
// solution. The pivot is the element of largest magnitude among rows and columns not used yet, the
// last of equals. A pivot below tolerance is counted in replaced and taken as 1. Singular when no
// element can be compared, that is when only not-a-numbers are left. rows, cols and used hold n
// numbers each.
[[nodiscard]] Outcome gaussJordan(MatrixView a, std::span<double> b, PivotList rows, PivotList cols,
                                  PivotList used, double tolerance, int& replaced,
                                  const InterruptTest& interrupted = {});

}  // namespace vexa
