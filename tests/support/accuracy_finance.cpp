// Annuities, cash flows and dates.
#include <algorithm>
#include <cmath>

#include "numlib/finance/annuity.h"
#include "numlib/finance/cash_flow.h"
#include "numlib/finance/serial_date.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

// A rate is a small difference of given amounts, so it has an absolute part.
double rateUnit(const ReferenceRow& row) { return ulpOf(row.value) + 1e-18; }

Due dueOf(double type) { return type == 0 ? Due::end : Due::beginning; }

// With the arguments in the order of a call.
void addAnnuities(std::vector<AccuracyEntry>& table) {
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
  table.push_back({"intrate", "finance/intrate.csv", 2, "ulp + 1e-18", rateUnit, [](Arguments v) {
                     const Annuity a{v[0], v[1], v[2], v[3], dueOf(v[4])};
                     return annuityRate(a, v[5]).value_or(HUGE_VAL);
                   }});
}

// Rate or guess, amounts, days.
void addCashFlows(std::vector<AccuracyEntry>& table) {
  const auto add = [&table](std::string_view name, std::string_view file, auto function) {
    table.push_back({name, file, 2, "ulp", lastPlace, function});
  };
  const auto addRate = [&table](std::string_view name, std::string_view file, auto function) {
    table.push_back({name, file, 2, "ulp + 1e-18", rateUnit,
                     [function](Arguments v) { return function(v).value_or(NAN); }});
  };
  add("npv", "finance/npv.csv", [](Arguments v) { return netPresentValue(v[0], v.list(1)); });
  addRate("irr", "finance/irr.csv", [](Arguments v) { return internalRate(v.list(1), v[0]); });
  add("xnpv", "finance/xnpv.csv",
      [](Arguments v) { return netPresentValueByDays(v[0], v.list(1), v.list(2)); });
  addRate("xirr", "finance/xirr.csv",
          [](Arguments v) { return internalRateByDays(v.list(1), v.list(2), v[0]); });
}

double serialOfRow(Arguments v) {
  const auto whole = [v](std::size_t k) { return static_cast<int>(v[k]); };
  return serialOf({whole(0), whole(1), whole(2), whole(3), whole(4), v[5]}).value_or(NAN);
}

// Rows of a serial and which part of its date.
double partOfDate(Arguments v) {
  const DateTime d = dateOf(v[0], TimeStep::millisecond).value_or(DateTime{});
  const double parts[] = {double(d.year),   double(d.month), double(d.day),    double(d.hour),
                          double(d.minute), d.second,        double(d.weekday)};
  return parts[static_cast<std::size_t>(v[1])];
}

void addDates(std::vector<AccuracyEntry>& table) {
  // The last place is below 1e-11 days until 2079, 1.5e-11 until 2258 and 5e-10 in the year 9999.
  table.push_back({"date2serial", "dates/date2serial.csv", 0.51, "ulp", lastPlace, serialOfRow});
  // All parts are whole but the seconds, the double next to so many thousandths; some are 0.
  const auto lastPlaceOrOne = [](const ReferenceRow& row) {
    return ulpOf(std::max(1.0L, row.value));
  };
  table.push_back({"serial2date", "dates/serial2date.csv", 0.5, "ulp", lastPlaceOrOne, partOfDate});
}

}  // namespace

void addFinance(std::vector<AccuracyEntry>& table) {
  addAnnuities(table);
  addCashFlows(table);
  addDates(table);
}

}  // namespace vexa
