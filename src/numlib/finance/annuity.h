// Equal payments at equal intervals: loans and savings.
//
// Money received is positive, money paid negative; r is the rate per period (0.01 is one percent)
// and above -1, n the number of periods. With g = (1 + r)^n everything rests on
//
//   pv g + pmt (1 + r type) (g - 1)/r + fv = 0,   and for r = 0 on   pv + pmt n + fv = 0,
//
// where type is 0 for payments at the end of a period and 1 for payments at its beginning. Powers
// are formed by way of ln(1 + r), sums of them in closed forms without cancellation, so a rate of
// 1e-12 loses no digits; all in long double. Results that do not exist are not-a-number or
// infinite.
#pragma once

#include <optional>

namespace vexa {

enum class Due { end, beginning };

struct Annuity {
  double n = 0;    // periods
  double pmt = 0;  // payment of each
  double pv = 0;   // present value
  double fv = 0;   // future value
  Due due = Due::end;
};

// Each is computed from r and the other members; its own is not looked at.
double presentValue(double r, const Annuity& a);
double futureValue(double r, const Annuity& a);
double payment(double r, const Annuity& a);
double periods(double r, const Annuity& a);

// Interest and principal in payment k of a loan, 1 <= k <= n; pmt is not looked at. The first of
// payments at the beginning holds no interest.
double interestPart(double r, double k, const Annuity& a);
double principalPart(double r, double k, const Annuity& a);

// Their sums over the payments from `first` to `last`, for a loan repaid wholly (fv is 0).
double interestSum(double r, double first, double last, const Annuity& a);
double principalSum(double r, double first, double last, const Annuity& a);

// The rate, of several the one nearest to `guess` (above -1) as rate_search.h says; none when there
// is none.
std::optional<double> annuityRate(const Annuity& a, double guess);

}  // namespace vexa
