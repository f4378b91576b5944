#include "numlib/finance/annuity.h"

#include <cmath>
#include <limits>

#include "numlib/finance/rate_search.h"

namespace vexa {

namespace {

// (e^((a + width) u) - e^(a u)) / (e^(n u) - 1) for 0 <= a and n, without overflow where the
// quotient has none. Every part of a payment is a multiple of one such quotient. The width is an
// argument of its own because a + 1 may be a.
long double segment(long double u, long double a, long double width, long double n) {
  if (u == 0) return width / n;
  if (n * u > 0)
    return std::exp(-((n - a) - width) * u) * std::expm1(-width * u) / std::expm1(-n * u);
  return std::exp(a * u) * std::expm1(width * u) / std::expm1(n * u);
}

// (e^x - 1 - x)/x, by its series where the difference would cancel.
long double exponentialRest(long double x) {
  if (std::fabs(x) > 0.5L) return (std::expm1(x) - x) / x;
  long double term = x / 2, sum = 0;
  for (int k = 3; std::fabs(term) > std::fabs(sum) * std::numeric_limits<long double>::epsilon();
       ++k) {
    sum += term;
    term *= x / k;
  }
  return sum;
}

// A product in which 0 wins over infinity: an amount of 0 grows to 0.
long double grown(long double amount, long double factor) {
  return amount == 0 ? 0 : amount * factor;
}

// What one payment is worth at the end of its period.
long double paymentWorth(double r, const Annuity& a) {
  return a.due == Due::beginning ? a.pmt * (1 + static_cast<long double>(r)) : a.pmt;
}

// A payment at the beginning is that at the end, discounted by one period.
double discounted(double r, long double x, const Annuity& a) {
  return static_cast<double>(a.due == Due::beginning ? x / (1 + static_cast<long double>(r)) : x);
}

long double logOfGrowth(double r) { return std::log1p(static_cast<long double>(r)); }

// Sum over j from 0 to m - 1 of e^(m u) - e^(j u), divided by e^(m u) where that is above 1.
long double summedShortfall(long double u, long double m) {
  const long double w = m * u;
  if (w < -1) return m * std::exp(w) - std::expm1(w) / std::expm1(u);
  const long double sum = w * (exponentialRest(u) - exponentialRest(-w)) / std::expm1(u);
  return w < 0 ? std::exp(w) * sum : sum;
}

// Interest in the payments after period `from` up to period `to`, all due at the end: what is owed
// at the start of each period is a sum of e^(n u) - e^(j u).
long double interestBetween(double r, long double from, long double to, const Annuity& a) {
  const long double u = logOfGrowth(r), m = to - from, n = a.n;
  if (m <= 0 || r == 0) return 0;
  const long double later = m * segment(u, to, n - to, n);
  const long double share = u > 0 ? std::exp(-(n - to) * u) / -std::expm1(-n * u)
                                  : std::exp(from * u) / std::expm1(n * u);
  return -static_cast<long double>(r) * a.pv * (later + share * summedShortfall(u, m));
}

long double principalBetween(double r, long double from, long double to, const Annuity& a) {
  return to > from ? -a.pv * segment(logOfGrowth(r), from, to - from, a.n) : 0;
}

}  // namespace

double presentValue(double r, const Annuity& a) {
  const long double u = logOfGrowth(r), shrink = -a.n * u;
  const long double worth = paymentWorth(r, a);
  const long double sum = r == 0 ? grown(worth, a.n) : grown(worth, -std::expm1(shrink) / r);
  return static_cast<double>(-(grown(a.fv, std::exp(shrink)) + sum));
}

double futureValue(double r, const Annuity& a) {
  const long double growth = a.n * logOfGrowth(r);
  const long double worth = paymentWorth(r, a);
  const long double sum = r == 0 ? grown(worth, a.n) : grown(worth, std::expm1(growth) / r);
  return static_cast<double>(-(grown(a.pv, std::exp(growth)) + sum));
}

double payment(double r, const Annuity& a) {
  const long double u = logOfGrowth(r), n = a.n;
  return discounted(r, -(a.pv * segment(u, n, 1, n) + a.fv * segment(u, 0, 1, n)), a);
}

double periods(double r, const Annuity& a) {
  const long double pv = a.pv, fv = a.fv, rate = r;
  if (r == 0) return static_cast<double>(-(pv + fv) / a.pmt);
  const long double worth = paymentWorth(r, a);
  const long double atStart = worth + pv * rate, atEnd = worth - fv * rate;
  // ln(atEnd/atStart); while the quotient is near 1 by what it lacks.
  const long double change = -(pv + fv) * rate / atStart;
  const long double logarithm =
      std::fabs(change) < 0.5L ? std::log1p(change) : std::log(atEnd / atStart);
  return static_cast<double>(logarithm / logOfGrowth(r));
}

double interestPart(double r, double k, const Annuity& a) {
  if (a.due == Due::beginning && k == 1) return 0;
  const long double u = logOfGrowth(r), before = k - 1, n = a.n;
  return discounted(
      r, -r * (a.pv * segment(u, before, n - before, n) - a.fv * segment(u, 0, before, n)), a);
}

double principalPart(double r, double k, const Annuity& a) {
  if (a.due == Due::beginning && k == 1) return payment(r, a);
  const long double owed = static_cast<long double>(a.pv) + a.fv;
  return discounted(r, -owed * segment(logOfGrowth(r), k - 1, 1, a.n), a);
}

double interestSum(double r, double first, double last, const Annuity& a) {
  const bool skipsFirst = a.due == Due::beginning && first == 1;
  return discounted(r, interestBetween(r, skipsFirst ? 1 : first - 1, last, a), a);
}

double principalSum(double r, double first, double last, const Annuity& a) {
  if (a.due == Due::end || first > 1)
    return discounted(r, principalBetween(r, first - 1, last, a), a);
  // The first payment is principal wholly: 1 period of pv and none of interest.
  const long double u = logOfGrowth(r), n = a.n;
  const long double whole = -a.pv * segment(u, n, 1, n) + principalBetween(r, 1, last, a);
  return discounted(r, whole, a);
}

std::optional<double> annuityRate(const Annuity& a, double guess) {
  const bool anyRate = a.n == 0 || (a.pmt == 0 && a.pv == 0 && a.fv == 0);
  if (anyRate) return std::numeric_limits<double>::quiet_NaN();
  const long double n = a.n, pv = a.pv, fv = a.fv, pmt = a.pmt;
  // Without payments both sides vanish far out and would seem to be equal there.
  if (pmt == 0) {
    const long double growth = -fv / pv;
    if (!(growth > 0) || !std::isfinite(growth)) return std::nullopt;
    return static_cast<double>(std::expm1(std::log(growth) / n));
  }
  // The balance at the end for a shrinking amount, its present value for a growing one: they differ
  // by a positive factor, and neither overflows.
  const auto balance = [&](long double u) {
    const long double worth = a.due == Due::beginning ? pmt * std::exp(u) : pmt;
    const long double growth = n * u;
    if (u == 0) return pv + worth * n + fv;
    if (growth > 0)
      return pv + worth * -std::expm1(-growth) / std::expm1(u) + fv * std::exp(-growth);
    return pv * std::exp(growth) + worth * std::expm1(growth) / std::expm1(u) + fv;
  };
  return searchRate(balance, guess);
}

}  // namespace vexa
