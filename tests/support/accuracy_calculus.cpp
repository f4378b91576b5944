#include <cmath>

#include "numlib/calculus/derivative.h"
#include "numlib/calculus/integral.h"
#include "numlib/calculus/series.h"
#include "support/accuracy_families.h"
#include "support/reference_functions.h"

namespace vexa {

namespace {

const std::function<double(double)>& functionOf(const ReferenceRow& row) {
  return referenceFunctions().at(row.text);
}

// The relative error aimed at when a run starts; of sums ten times that.
double aimed(const ReferenceRow& row) { return 1e-10 * std::fabs(static_cast<double>(row.value)); }

// What a derivative of an order may be off.
double aimedOfOrder(const ReferenceRow& row) {
  constexpr double relative[] = {0, 1e-12, 1e-10, 1e-9, 1e-7};
  return relative[static_cast<int>(row[1])] * std::fabs(static_cast<double>(row.value));
}

}  // namespace

void addCalculus(std::vector<AccuracyEntry>& table) {
  table.push_back({"integ", "calculus/integrals.csv", 1, "1e-10 of it", aimed, [](Arguments v) {
                     return integrate(functionOf(v), v[0], v[1], 1e-10, 100).value;
                   }});
  table.push_back({"imteg", "calculus/improper.csv", 1, "1e-10 of it", aimed, [](Arguments v) {
                     return integrateImproper(functionOf(v), v[0], v[1], 1e-10).value;
                   }});
  table.push_back(
      {"deriv", "calculus/derivatives.csv", 1, "bound of its order", aimedOfOrder, [](Arguments v) {
         return differentiate(functionOf(v), v[0], static_cast<int>(v[1])).value_or(std::nan(""));
       }});
  table.push_back({"series", "calculus/sums.csv", 10, "1e-10 of it", aimed, [](Arguments v) {
                     return sumInfiniteSeries(functionOf(v), v[0], 1e-10, 100'000).value;
                   }});
}

}  // namespace vexa
