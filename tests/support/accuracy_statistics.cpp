// Tests of significance.
#include <cmath>

#include "numlib/statistics/significance.h"
#include "support/accuracy_families.h"

namespace vexa {

// Rows of part (0 the statistic, 1 its p) and samples.
void addSignificance(std::vector<AccuracyEntry>& table) {
  const auto unit = [](const ReferenceRow& row) {
    return (row[0] == 0 ? 1e-13 : 1e-12) * sizeOf(row);
  };
  const auto add = [&table, unit](std::string_view name, std::string_view file, auto test) {
    table.push_back(
        {name, file, 1, "1e-13, p 1e-12", unit, [test](Arguments v) {
           const Significance found = test(v.list(1), v.list(2)).value_or(Significance{NAN, NAN});
           return v[0] == 0 ? found.statistic : found.p;
         }});
  };
  add("correlation", "statistics/correlation.csv",
      [](auto x, auto y) { return correlation(x, y, NAN); });
  add("ftest", "statistics/ftest.csv", varianceRatio);
  add("studente", "statistics/studente.csv", equalVarianceTest);
  add("studentp", "statistics/studentp.csv", pairedTest);
  add("studentu", "statistics/studentu.csv", unequalVarianceTest);
}

}  // namespace vexa
