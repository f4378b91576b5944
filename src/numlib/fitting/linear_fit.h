// Least-squares fits that are linear in their coefficients.
//
// Column-pivoted Householder QR (Eigen) on scaled columns, then two steps of iterative refinement
// of coefficients and residuals together, the residuals in long double (Bjoerck, BIT 7, 1967).
// Columns are centred about their means where there is a constant; polynomials are fitted by
// Chebyshev polynomials on the range of x and expanded in long double.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"
#include "numlib/matrix_view.h"

namespace vexa {

// m ordinates, and m weights w >= 0 or none. The sum of w r^2 is made least; a point of weight 0
// does not count at all. The covariance costs about as much as the fit.
struct FitData {
  std::span<const double> y, weights;
  bool wantsCovariance = true;
};

enum class FitOutcome {
  done,
  tooFewPoints,  // less than coefficients
  dependent,     // columns, or too few different abscissae
  interrupted,
};

struct LinearFit {
  FitOutcome outcome = FitOutcome::done;
  std::vector<double> coefficients;  // k of them
  double deviation = 0;              // sqrt(sum w r^2/(m - k)), 0 for m = k
  std::vector<double> covariance;    // k x k, row by row; empty for m = k and when not wanted
};

// a[0] + a[1] x + ... + a[degree] x^degree.
LinearFit fitPolynomial(std::span<const double> x, const FitData& data, int degree,
                        const InterruptTest& interrupted = {});

// a[0] + a[1] x1 + a[2] x2 + ... for the columns of the m x p matrix x.
LinearFit fitMultiple(ConstMatrixView x, const FitData& data,
                      const InterruptTest& interrupted = {});

// a[0] f1 + a[1] f2 + ... for the columns of the m x k matrix f.
LinearFit fitColumns(ConstMatrixView f, const FitData& data, const InterruptTest& interrupted = {});

}  // namespace vexa
