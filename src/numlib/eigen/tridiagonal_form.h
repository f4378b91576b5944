// Householder reduction of a real symmetric matrix to tridiagonal form, and the orthogonal matrix
// that does it (Martin, Reinsch and Wilkinson, Numerische Mathematik 11, 1968; large matrices in
// blocks of reflections: Dongarra, Sorensen and Hammarling, Journal of Computational and Applied
// Mathematics 27, 1989, and Schreiber and Van Loan, SIAM Journal on Scientific and Statistical
// Computing 10, 1989).
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// From the last row upward each row is reflected until only the neighbour of the diagonal is left
// of it. Only the lower triangle of the n x n matrix a is read. Afterwards the vector of row i's
// reflection stands in that row, its h in h[i], and the diagonal is that of the tridiagonal form;
// coupling[i] joins i - 1 and i. False when the user wants to stop; a is unfinished then.
[[nodiscard]] bool makeTridiagonal(MatrixView a, std::span<double> h, std::span<double> coupling,
                                   const InterruptTest& interrupted);

// Multiplies the reflections into a, which becomes orthogonal; the diagonal moves to `values`,
// which holds their h before. False when the user wants to stop.
[[nodiscard]] bool accumulateReflections(MatrixView a, std::span<double> values,
                                         const InterruptTest& interrupted);

}  // namespace vexa
