#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/finance/annuity.h"
#include "numlib/finance/cash_flow.h"
#include "numlib/finance/finance_builtins.h"
#include "numlib/finance/serial_date.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

constexpr double usualGuess = 0.1;

// Key 34.
bool requireValid(bool valid) {
  if (!valid) raiseError(ErrorKey::invalidData);
  return valid;
}

// A result that does not exist is key 63. A negative zero becomes 0: nothing is due.
double finiteResult(double x) {
  if (!requireFinite({&x, 1})) return 0.0;
  return x == 0.0 ? 0.0 : x;
}

double rateResult(const std::optional<double>& rate) {
  if (rate) return finiteResult(*rate);
  raiseError(ErrorKey::notConvergent);
  return 0.0;
}

// ---- Annuities ----

// The numbers of a call in the order of its signature, and how many were given.
struct Numbers {
  std::array<double, 6> values{};
  std::size_t count = 0;

  double operator[](std::size_t i) const { return values[i]; }
  std::span<const double> given() const { return std::span(values).first(count); }
};

Numbers readNumbers(std::size_t least, std::size_t most) {
  Numbers numbers;
  for (;;) {
    numbers.values[numbers.count++] = evalScalarArg();
    if (numbers.count < least)
      expectChar(',');
    else if (numbers.count == most)
      break;
    else if (!moreArguments())
      return numbers;
  }
  expectChar(')');
  return numbers;
}

bool checkRate(double r) { return requireValid(r > -1); }

std::optional<Due> dueOf(double type) {
  if (!requireValid(type == 0 || type == 1)) return std::nullopt;
  return type == 0 ? Due::end : Due::beginning;
}

// pv, fv, pmt, nper: (r, two quantities [, a third [, type]]).
double annuityQuantity(int builtin) {
  const Numbers x = readNumbers(3, 5);
  if (!requireFinite(x.given()) || !checkRate(x[0])) return 0.0;
  const std::optional<Due> due = dueOf(x[4]);
  if (!due) return 0.0;
  switch (builtin) {
    case builtinCode("pv"):
      return finiteResult(presentValue(x[0], {.n = x[1], .pmt = x[2], .fv = x[3], .due = *due}));
    case builtinCode("fv"):
      return finiteResult(futureValue(x[0], {.n = x[1], .pmt = x[2], .pv = x[3], .due = *due}));
    case builtinCode("pmt"):
      return finiteResult(payment(x[0], {.n = x[1], .pv = x[2], .fv = x[3], .due = *due}));
    default:
      return finiteResult(periods(x[0], {.pmt = x[1], .pv = x[2], .fv = x[3], .due = *due}));
  }
}

// intrate(n, pmt, pv [, fv [, type [, guess]]])
double annuityRateCall() {
  const Numbers x = readNumbers(3, 6);
  if (!requireFinite(x.given())) return 0.0;
  const std::optional<Due> due = dueOf(x[4]);
  const double guess = x.count > 5 ? x[5] : usualGuess;
  if (!due || !checkRate(guess)) return 0.0;
  return rateResult(
      annuityRate({.n = x[0], .pmt = x[1], .pv = x[2], .fv = x[3], .due = *due}, guess));
}

// ipmt, ppmt: (r, k, n, pv [, fv [, type]])
double paymentPart(int builtin) {
  const Numbers x = readNumbers(4, 6);
  if (!requireFinite(x.given()) || !checkRate(x[0])) return 0.0;
  const std::optional<Due> due = dueOf(x[5]);
  const double k = std::trunc(x[1]);
  if (!due || !requireValid(k >= 1 && k <= x[2])) return 0.0;
  const Annuity loan{.n = x[2], .pv = x[3], .fv = x[4], .due = *due};
  const bool interest = builtin == builtinCode("ipmt");
  return finiteResult(interest ? interestPart(x[0], k, loan) : principalPart(x[0], k, loan));
}

// cumipmt, cumprinc: (r, n, pv, k1, k2 [, type])
double summedParts(int builtin) {
  const Numbers x = readNumbers(5, 6);
  if (!requireFinite(x.given()) || !checkRate(x[0])) return 0.0;
  const std::optional<Due> due = dueOf(x[5]);
  const double first = std::trunc(x[3]), last = std::trunc(x[4]);
  if (!due || !requireValid(first >= 1 && first <= last && last <= x[1])) return 0.0;
  const Annuity loan{.n = x[1], .pv = x[2], .due = *due};
  const bool interest = builtin == builtinCode("cumipmt");
  return finiteResult(interest ? interestSum(x[0], first, last, loan)
                               : principalSum(x[0], first, last, loan));
}

// ---- Cash flows ----

// npv(r, data list)
double presentValueOfList() {
  const double r = evalScalarArg();
  expectChar(',');
  const std::vector<double> amounts = readDataList();
  expectChar(')');
  if (!requireFinite({&r, 1}) || !requireFinite(amounts) || !checkRate(r)) return 0.0;
  return finiteResult(netPresentValue(r, amounts));
}

// At least two amounts.
bool checkAmounts(const DataArgument& amounts) {
  if (amounts.size() >= 2) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

// Serials without the time of day, none before the first.
std::vector<double> readDays(std::span<const double> serials) {
  std::vector<double> days;
  for (const double serial : serials) {
    const double day = std::floor(serial);
    if (!isSerial(serial) || (!days.empty() && day < days.front())) {
      raiseError(ErrorKey::invalidDate);
      return {};
    }
    days.push_back(day);
  }
  return days;
}

// xnpv(r, v, d)
double presentValueByDays() {
  const double r = evalScalarArg();
  expectChar(',');
  DataArgument amounts = readData();
  expectChar(',');
  DataArgument dates = readData();
  expectChar(')');
  if (!requireVectors({&amounts, &dates}) || !checkAmounts(amounts)) return 0.0;
  const std::span<const double> v = amounts.elements(), serials = dates.elements();
  if (!requireFinite({&r, 1}) || !requireFinite(v) || !requireFinite(serials) || !checkRate(r))
    return 0.0;
  const std::vector<double> days = readDays(serials);
  if (days.size() != v.size()) return 0.0;
  return finiteResult(netPresentValueByDays(r, v, days));
}

// irr(v [, guess]) and xirr(v, d [, guess])
double returnOfFlows(bool byDays) {
  DataArgument amounts = readData();
  DataArgument dates;
  if (byDays) {
    expectChar(',');
    dates = readData();
  }
  double guess = usualGuess;
  if (moreArguments()) {
    guess = evalScalarArg();
    expectChar(')');
  }
  if (!requireVectors({&amounts, byDays ? &dates : &amounts}) || !checkAmounts(amounts)) return 0.0;
  const std::span<const double> v = amounts.elements();
  const std::span<const double> serials = byDays ? dates.elements() : std::span<const double>{};
  if (!requireFinite(v) || !requireFinite(serials) || !requireFinite({&guess, 1})) return 0.0;
  const std::vector<double> days = readDays(serials);
  if (days.size() != serials.size()) return 0.0;
  if (!hasBothSigns(v))
    return refuse(byDays ? "xirr> values of both signs are needed"
                         : "irr> values of both signs are needed");
  if (!checkRate(guess)) return 0.0;
  return rateResult(byDays ? internalRateByDays(v, days, guess, askUser)
                           : internalRate(v, guess, askUser));
}

}  // namespace

double moneyBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  switch (builtin) {
    case builtinCode("intrate"):
      return annuityRateCall();
    case builtinCode("ipmt"):
    case builtinCode("ppmt"):
      return paymentPart(builtin);
    case builtinCode("cumipmt"):
    case builtinCode("cumprinc"):
      return summedParts(builtin);
    case builtinCode("npv"):
      return presentValueOfList();
    case builtinCode("xnpv"):
      return presentValueByDays();
    case builtinCode("irr"):
      return returnOfFlows(false);
    case builtinCode("xirr"):
      return returnOfFlows(true);
    default:
      return annuityQuantity(builtin);
  }
}

}  // namespace vexa
