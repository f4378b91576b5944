#include "numlib/finance/cash_flow.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numlib/finance/rate_search.h"

namespace vexa {

namespace {

constexpr double daysPerYear = 365;

// From the first to the last amount that is not 0. With those at the ends the sums below would
// vanish far out, where there is no return.
struct Range {
  std::size_t first = 0, count = 0;
};

Range rangeOfAmounts(std::span<const double> v) {
  const auto counts = [](double x) { return x != 0; };
  const auto first = std::ranges::find_if(v, counts);
  const auto last = std::find_if(v.rbegin(), v.rend(), counts).base();
  return {static_cast<std::size_t>(first - v.begin()), static_cast<std::size_t>(last - first)};
}

// Sum of v[k] x^k.
long double sumOfPowers(std::span<const double> v, long double x) {
  long double sum = 0;
  for (std::size_t k = v.size(); k-- > 0;) sum = sum * x + v[k];
  return sum;
}

// Sum of v[k] x^(size - 1 - k).
long double sumOfReversedPowers(std::span<const double> v, long double x) {
  long double sum = 0;
  for (const double amount : v) sum = sum * x + amount;
  return sum;
}

}  // namespace

double netPresentValue(double r, std::span<const double> v) {
  const long double discount = 1 / (1 + static_cast<long double>(r));
  return static_cast<double>(discount * sumOfPowers(v, discount));
}

double netPresentValueByDays(double r, std::span<const double> v, std::span<const double> days) {
  const long double u = std::log1p(static_cast<long double>(r)) / daysPerYear;
  long double sum = 0;
  for (std::size_t k = 0; k < v.size(); ++k)
    if (v[k] != 0) sum += v[k] * std::exp(-u * (days[k] - days[0]));
  return static_cast<double>(sum);
}

bool hasBothSigns(std::span<const double> v) {
  return std::ranges::any_of(v, [](double x) { return x > 0; }) &&
         std::ranges::any_of(v, [](double x) { return x < 0; });
}

std::optional<double> internalRate(std::span<const double> v, double guess,
                                   const InterruptTest& interrupted) {
  const Range range = rangeOfAmounts(v);
  const auto amounts = v.subspan(range.first, range.count);
  // At a negative rate the worth at the end: its powers fall where those of the start would grow.
  const auto worth = [&](long double u) {
    asksToStop(interrupted);
    return u >= 0 ? sumOfPowers(amounts, std::exp(-u)) : sumOfReversedPowers(amounts, std::exp(u));
  };
  return searchRate(worth, guess);
}

std::optional<double> internalRateByDays(std::span<const double> v, std::span<const double> days,
                                         double guess, const InterruptTest& interrupted) {
  std::vector<double> amounts, when;
  for (std::size_t k = 0; k < v.size(); ++k) {
    if (v[k] == 0) continue;
    amounts.push_back(v[k]);
    when.push_back(days[k]);
  }
  if (amounts.empty()) return std::nullopt;
  const auto range = std::ranges::minmax(when);
  const auto worth = [&](long double u) {
    asksToStop(interrupted);
    // Days are whole, so nothing is rounded before the exponent.
    const long double perDay = u / daysPerYear;
    const double reference = u >= 0 ? range.min : range.max;
    long double sum = 0;
    for (std::size_t k = 0; k < amounts.size(); ++k)
      sum += amounts[k] * std::exp(-perDay * (when[k] - reference));
    return sum;
  };
  return searchRate(worth, guess);
}

}  // namespace vexa
