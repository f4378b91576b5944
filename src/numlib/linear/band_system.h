// Symmetric band matrices. The half bandwidth b counts the diagonal: row i (from 1) of the n x b
// storage holds the diagonal element a(i,i) in column 1 and a(i, i+k-1) in column k; what would lie
// beyond the matrix's edge is not looked at. b may be larger than n.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

enum class Assembly { done, bandTooNarrow };
// Adds the element matrix `element` to the band. unknowns[i] is the global number of the element's
// unknown i + 1, at most n in magnitude; zero leaves the unknown out, and the sign of an entry is
// the direction of its unknown. Stops at the first pair outside of the band; what came before it
// has been added.
[[nodiscard]] Assembly bandAssemble(MatrixView band, ConstMatrixView element,
                                    std::span<const int> unknowns);

// product = the whole symmetric matrix times v.
Outcome bandMultiply(ConstMatrixView band, std::span<const double> v, std::span<double> product,
                     const InterruptTest& interrupted = {});

// Replaces the band by its factors without pivoting: the diagonal of D in column 1, the rows of the
// unit upper triangle behind it. A pivot of zero leads to elements that are not finite;
// zeroPivots counts how often a row was divided by one.
[[nodiscard]] Outcome bandFactor(MatrixView band, long& zeroPivots,
                                 const InterruptTest& interrupted = {});
// Replaces v by the solution, the band being what bandFactor left.
Outcome bandSolve(ConstMatrixView band, std::span<double> v, const InterruptTest& interrupted = {});

}  // namespace vexa
