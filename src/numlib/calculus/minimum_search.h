// The least value of a function of several variables, without derivatives.
#pragma once

#include <span>
#include <vector>

#include "numlib/function_reference.h"

namespace vexa {

enum class SearchOutcome {
  done,
  notReached,      // the accuracy, within the bound of evaluations
  withoutMinimum,  // the function falls below every bound
  notFinite,       // at the start
  libraryMissing,  // NLopt could not be opened
};

struct SearchResult {
  double value = 0;
  std::vector<double> place;
  SearchOutcome outcome = SearchOutcome::done;
};

struct SearchLimits {
  // A bound for each variable, infinite for none; empty for no bounds at all. A start beyond them
  // is moved to the nearest point inside.
  std::span<const double> lower = {}, upper = {};
  double accuracy = 1e-10;       // relative, of the value
  int evaluations = 1000;        // of a round, for each variable and one more
  double withoutMinimum = 1e30;  // below minus this there is no minimum
};

// Searches from `start` with Powell's BOBYQA (Nelder and Mead's simplex for a single variable),
// then with the simplex and BOBYQA in turn from where the last one ended, with a hundredth of the
// steps, until a round lowers the value by no more than the accuracy; at most six rounds. Values
// that are not finite count as worse than all others. When nothing lower than the start is found,
// the start is the place. What f throws comes out of here.
SearchResult searchMinimum(FieldFunction f, std::span<const double> start,
                           const SearchLimits& limits);

}  // namespace vexa
