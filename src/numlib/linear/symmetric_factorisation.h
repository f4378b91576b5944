// Symmetric square matrices: LDLᵀ without pivoting, Cholesky's LLᵀ, and elimination from the last
// unknown upward.
//
// Sums run in the order of the inner index below kernelOrder, and as the dense kernels add from
// there on. std::bad_alloc may come out of such orders.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// --- LDLᵀ. Only the lower triangle is read and written.

// Replaces the lower triangle by D on the diagonal and the unit lower triangle L below it. Singular
// when a pivot is below tolerance in magnitude; the last one divides nothing and is not looked at.
[[nodiscard]] Outcome ldltFactor(MatrixView a, double tolerance,
                                 const InterruptTest& interrupted = {});
// Replaces b by the solution.
Outcome ldltSolve(ConstMatrixView a, std::span<double> b, const InterruptTest& interrupted = {});

// --- Cholesky. The upper triangle with the diagonal is the input, the lower one with the diagonal
// receives L; what stands strictly above the diagonal stays.

// Singular stands for a pivot that is not positive: a then holds the columns of L before it.
[[nodiscard]] Outcome choleskyFactor(MatrixView a, const InterruptTest& interrupted = {});
Outcome choleskySolve(ConstMatrixView a, std::span<double> b,
                      const InterruptTest& interrupted = {});
// Replaces L by its inverse; row is work space of n elements.
[[nodiscard]] Outcome choleskyInvertFactor(MatrixView a, std::span<double> row,
                                           const InterruptTest& interrupted = {});

// --- Elimination from the bottom. Only the lower triangle is read.

enum class Reduce {
  matrixAndVector,
  vectorOnly,  // the matrix has been reduced before
};
// Eliminates the unknowns n down to retained + 1 from a and b: the rows and columns up to
// `retained` become the condensed system, the rows behind keep what recovers the others, and
// above the diagonal an eliminated column becomes zero wherever its row below had an element.
// Singular when a pivot is below tolerance.
[[nodiscard]] Outcome eliminateUpward(MatrixView a, std::span<double> b, int retained,
                                      double tolerance, Reduce reduce,
                                      const InterruptTest& interrupted = {});
// Solves for the unknowns first + 1 to n, from those before them, row by row; in place.
Outcome substituteDownward(ConstMatrixView a, std::span<double> b, int first,
                           const InterruptTest& interrupted = {});

}  // namespace vexa
