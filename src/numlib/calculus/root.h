// A zero of a function of one variable on an interval.
#pragma once

#include "numlib/function_reference.h"

namespace vexa {

enum class RootOutcome {
  found,
  noSignChange,
  pole,        // |f| has grown on the bracket
  notReached,  // within the bound
  notFinite,   // a value of f
};

struct Root {
  double x = 0;
  RootOutcome outcome = RootOutcome::found;
};

// x between a and b with f(x) = 0: an end where f is exactly 0, a first; with opposite signs at the
// ends the bracket is narrowed to two neighbouring numbers by the method of Alefeld, Potra and Shi
// (TOMS 748); with equal signs the first change of sign among `bound` equal pieces, from a, is
// taken. `bound` is also that of steps, of three evaluations each; a bracket that is wider when
// they are used up serves if it tells x to `accuracy`, or lies within one rounding of the interval.
Root findRoot(RealFunction f, double a, double b, double accuracy, int bound);

}  // namespace vexa
