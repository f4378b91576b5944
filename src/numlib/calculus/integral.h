// Definite and improper integrals of a function of one variable.
#pragma once

#include "numlib/function_reference.h"

namespace vexa {

enum class IntegralOutcome {
  done,
  notReached,  // the error aimed at, within the bound
  notFinite,   // a value of the integrand
};

struct Integral {
  double value = 0;
  IntegralOutcome outcome = IntegralOutcome::done;
};

// The integral of f from a to b, both finite, in either order; f is not evaluated at a or b, unless
// there is no number between.
//
// Adaptive and global: of at most `maxPieces` subintervals the one with the largest error is halved
// next, each by the 21-point Gauss-Kronrod pair with the error estimate of QUADPACK. Done when the
// errors add up to at most `accuracy` of the integral, or to 1e-13 of that of |f|. A piece too
// short to be halved ends the search as not reached.
Integral integrate(RealFunction f, double a, double b, double accuracy, int maxPieces);

// The same where limits are infinite or f is singular at the ends: the double exponential
// substitution with the step halved from 1 at most ten times. Done from the third halving on when
// two successive sums agree within `accuracy` of the sum of magnitudes (a sum of exactly 0 from the
// sixth).
//
// Where f still counts at the last number before a finite end, the singularity cannot be resolved
// further and 1e-7 replaces the accuracy: full accuracy needs the singular end at 0. Values that
// are not finite are passed over where terms have become negligible, otherwise the integral is not
// reached.
Integral integrateImproper(RealFunction f, double a, double b, double accuracy);

}  // namespace vexa
