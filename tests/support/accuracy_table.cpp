#include "support/accuracy_table.h"

#include <cmath>
#include <limits>

#include "support/accuracy_families.h"

namespace vexa {

namespace {

std::vector<AccuracyEntry> makeTable() {
  std::vector<AccuracyEntry> table;
  addSpecialFunctions(table);
  addCalculus(table);
  addFits(table);
  addSignificance(table);
  addEngineering(table);
  addFinance(table);
  addInterpolation(table);
  return table;
}

}  // namespace

const std::vector<AccuracyEntry>& accuracyTable() {
  static const std::vector<AccuracyEntry> table = makeTable();
  return table;
}

WorstError worstError(const AccuracyEntry& entry) {
  WorstError worst;
  const auto rows = referenceRows(std::string(entry.file));
  worst.rows = rows.size();
  for (const ReferenceRow& row : rows) {
    const double result = entry.function(row);
    const long double error = std::fabs(result - row.value);
    double units = 0;
    if (std::isnan(result))
      units = std::numeric_limits<double>::infinity();
    else if (error != 0)
      units = static_cast<double>(error) / entry.unitOf(row);
    if (units > worst.units || &row == rows.data()) {
      worst.units = units;
      worst.row = row;
      worst.result = result;
    }
  }
  return worst;
}

}  // namespace vexa
