#pragma once

// The entries of the accuracy table, family by family, and what their rows have in common.

#include <cmath>
#include <limits>
#include <vector>

#include "support/accuracy_table.h"

namespace vexa {

void addSpecialFunctions(std::vector<AccuracyEntry>& table);
void addCalculus(std::vector<AccuracyEntry>& table);
void addFits(std::vector<AccuracyEntry>& table);
void addSignificance(std::vector<AccuracyEntry>& table);
void addEngineering(std::vector<AccuracyEntry>& table);
void addFinance(std::vector<AccuracyEntry>& table);
void addInterpolation(std::vector<AccuracyEntry>& table);

using Arguments = const ReferenceRow&;

inline constexpr double halfEpsilon = std::numeric_limits<double>::epsilon() / 2;

inline double sizeOf(const ReferenceRow& row) { return std::fabs(static_cast<double>(row.value)); }

inline double lastPlace(const ReferenceRow& row) { return ulpOf(row.value); }

}  // namespace vexa
