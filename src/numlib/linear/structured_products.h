// Products of several matrices at once. Shapes are the caller's to check; results share nothing
// with operands. std::bad_alloc may come out of large ones.
#pragma once

#include <span>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// r = aᵀ k a, symmetric whatever k is: the upper triangle is computed and mirrored. a is n x m,
// k n x n, r m x m; column is work space of n elements.
[[nodiscard]] Outcome congruenceProduct(ConstMatrixView a, ConstMatrixView k, MatrixView r,
                                        std::span<double> column,
                                        const InterruptTest& interrupted = {});

// re + i im = (a + i b)(c + i d), with a and b of order r x p, c and d of p x q.
[[nodiscard]] Outcome complexProduct(ConstMatrixView a, ConstMatrixView b, ConstMatrixView c,
                                     ConstMatrixView d, MatrixView re, MatrixView im,
                                     const InterruptTest& interrupted = {});

}  // namespace vexa
