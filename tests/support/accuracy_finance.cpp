#include <cmath>

#include "numlib/finance/annuity.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

Due dueOf(double type) { return type == 0 ? Due::end : Due::beginning; }

}  // namespace

// Annuities, with the arguments in the order of a call.
void addFinance(std::vector<AccuracyEntry>& table) {
  const auto add = [&table](std::string_view name, std::string_view file, auto function) {
    table.push_back({name, file, 2, "ulp", lastPlace, function});
  };
  add("pv", "finance/pv.csv", [](Arguments v) {
    return presentValue(v[0], {v[1], v[2], 0, v[3], dueOf(v[4])});
  });
  add("fv", "finance/fv.csv", [](Arguments v) {
    return futureValue(v[0], {v[1], v[2], v[3], 0, dueOf(v[4])});
  });
  add("pmt", "finance/pmt.csv", [](Arguments v) {
    return payment(v[0], {v[1], 0, v[2], v[3], dueOf(v[4])});
  });
  add("nper", "finance/nper.csv", [](Arguments v) {
    return periods(v[0], {0, v[1], v[2], v[3], dueOf(v[4])});
  });
  add("ipmt", "finance/ipmt.csv", [](Arguments v) {
    return interestPart(v[0], v[1], {v[2], 0, v[3], v[4], dueOf(v[5])});
  });
  add("ppmt", "finance/ppmt.csv", [](Arguments v) {
    return principalPart(v[0], v[1], {v[2], 0, v[3], v[4], dueOf(v[5])});
  });
  add("cumipmt", "finance/cumipmt.csv", [](Arguments v) {
    return interestSum(v[0], v[3], v[4], {v[1], 0, v[2], 0, dueOf(v[5])});
  });
  add("cumprinc", "finance/cumprinc.csv", [](Arguments v) {
    return principalSum(v[0], v[3], v[4], {v[1], 0, v[2], 0, dueOf(v[5])});
  });
  // A rate is a small difference of given amounts, so it has an absolute part.
  const auto rateUnit = [](const ReferenceRow& row) { return ulpOf(row.value) + 1e-18; };
  table.push_back({"intrate", "finance/intrate.csv", 2, "ulp + 1e-18", rateUnit, [](Arguments v) {
                     const Annuity a{v[0], v[1], v[2], v[3], dueOf(v[4])};
                     return annuityRate(a, v[5]).value_or(HUGE_VAL);
                   }});
}

}  // namespace vexa
