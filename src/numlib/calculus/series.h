// Sums of series.
#pragma once

#include <cstdint>

#include "numlib/function_reference.h"

namespace vexa {

enum class SeriesOutcome {
  done,
  notReached,  // the error aimed at, within the bound of terms
  notFinite,   // a term
};

struct SeriesSum {
  double value = 0;
  SeriesOutcome outcome = SeriesOutcome::done;
};

// f(first) + f(first + 1) + ... up to f(last), or to the last term before last + 1e-9; 0 when last
// is below first. Compensated summation (Neumaier).
SeriesSum sumSeries(RealFunction f, double first, double last);

// The same without end. Terms are added until the newest, continued geometrically, are below a
// hundredth of the error aimed at. Beside that, from the 12th term on, Levin's u transform is
// accepted when two successive values agree, and either the terms alternate and fall or they fall
// faster than 1/k to the power of 1.05: the transform of the harmonic series settles, too, on a
// number without meaning. At most `maxTerms`.
SeriesSum sumInfiniteSeries(RealFunction f, double first, double accuracy, std::int64_t maxTerms);

}  // namespace vexa
