#pragma once

// Evaluates typed text as the calculator does: expressions separated by `;`, each shown.

#include <string_view>

#include "interp/core_view.h"

namespace vexa {

// Inside a run the names of the running function are visible, otherwise only globals are. Faults
// are caught, shown with "CALC" and reported in `result`, unless `faultsEndRun` is set: then they
// go on to the run.
void evaluateTypedText(std::string_view text, Evaluation& result, bool faultsEndRun = false);

}  // namespace vexa
