// Correlation and tests of significance of two samples. Sums are formed in long double about the
// means. Every p is two-sided: the probability of a statistic at least as far out when the samples
// are of one normal population (the hypothesis of each test), from the tails, not their
// complements.
#pragma once

#include <optional>
#include <span>

namespace vexa {

struct Significance {
  double statistic = 0;
  double p = 0;
};

// What a test divides by may be zero; then there is none. Samples hold finite numbers.
using TestResult = std::optional<Significance>;

// Pearson's r, within -1 and 1, of n >= 2 pairs; p by Student's distribution with n - 2 degrees of
// freedom, which loses digits where the points leave a line by less than some 1e-6 of their spread.
// For n = 2 the statistic says nothing and p is `undefined`.
TestResult correlation(std::span<const double> x, std::span<const double> y, double undefined);

// Ratio of the variances of x and y, each of two or more elements, and twice the smaller tail.
TestResult varianceRatio(std::span<const double> x, std::span<const double> y);

// Difference of the means over its standard error: for equal variances, for unequal ones (Welch,
// with the degrees of freedom of Satterthwaite), and for pairs. Two elements or more in each.
TestResult equalVarianceTest(std::span<const double> x, std::span<const double> y);
TestResult unequalVarianceTest(std::span<const double> x, std::span<const double> y);
TestResult pairedTest(std::span<const double> x, std::span<const double> y);

}  // namespace vexa
