// Value and return of cash flows: amounts v[k], received positive and paid negative, at equal
// intervals or on given days. Sums are formed in long double.
#pragma once

#include <optional>
#include <span>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

// Sum of v[k]/(1 + r)^(k + 1): the first amount is one period away. r > -1.
double netPresentValue(double r, std::span<const double> v);

// Sum of v[k]/(1 + r)^((days[k] - days[0])/365). r > -1; as many days as amounts.
double netPresentValueByDays(double r, std::span<const double> v, std::span<const double> days);

// Whether some amounts are received and some paid, without which there is no return.
bool hasBothSigns(std::span<const double> v);

// The rate r at which the sum of v[k]/(1 + r)^k, or that by days, is zero; the search and its start
// are those of rate_search.h. None when there is none. Days must not precede the first.
std::optional<double> internalRate(std::span<const double> v, double guess,
                                   const InterruptTest& interrupted = {});
std::optional<double> internalRateByDays(std::span<const double> v, std::span<const double> days,
                                         double guess, const InterruptTest& interrupted = {});

}  // namespace vexa
