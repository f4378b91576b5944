#pragma once

// The entries of the accuracy table, family by family, and what their rows have in common.

#include <limits>
#include <vector>

#include "support/accuracy_table.h"

namespace vexa {

void addSpecialFunctions(std::vector<AccuracyEntry>& table);
void addFinance(std::vector<AccuracyEntry>& table);
void addCalculus(std::vector<AccuracyEntry>& table);

using Arguments = const ReferenceRow&;

inline constexpr double halfEpsilon = std::numeric_limits<double>::epsilon() / 2;

inline double lastPlace(const ReferenceRow& row) { return ulpOf(row.value); }

}  // namespace vexa
