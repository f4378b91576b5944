#pragma once

// Count, sum, extremes, mean, deviations, skewness and kurtosis of selected elements.

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

// Codes in the order of the relational operators.
enum class Relation { less = 1, lessOrEqual, greater, greaterOrEqual, equal, notEqual };

// Which elements count: the magnitude of each if `absolute`, and of these all, or those that stand
// in `relation` to `threshold`. Equality is meant within `tolerance`.
struct Selection {
  bool absolute = false;
  bool filtered = false;
  Relation relation = Relation::less;
  double threshold = 0;
  double tolerance = 0;

  bool all() const { return !absolute && !filtered; }
  double valueOf(double x) const;
  bool selects(double value) const;
};

// The selected values in their order; none when interrupted.
std::vector<double> selectValues(std::span<const double> elements, const Selection& selection,
                                 const InterruptTest& interrupted = {});

struct Moments {
  double count = 0;
  double sum = 0;
  double largest = 0, smallest = 0;
  double mean = 0;
  double meanDeviation = 0;      // mean of |x - mean|
  double variance = 0;           // with divisor count - 1
  double standardDeviation = 0;  // its square root
  double skewness = 0;
  double kurtosis = 0;  // minus 3, so that a normal distribution has 0
};

// Two passes: the mean first, then the powers of the deviations from it. The sum of the deviations,
// which rounding keeps from being 0, corrects the variance (Chan, Golub and LeVeque, The American
// Statistician 37 (1983), page 242). What is not defined takes the value `undefined`: everything
// but count and sum without values, variance and beyond for a single one, skewness and kurtosis of
// equal values. The search for the extremes starts from minus `undefined` and from `undefined`.
// None when interrupted.
std::optional<Moments> computeMoments(std::span<const double> values, double undefined,
                                      const InterruptTest& interrupted = {});

// The place, counted from 1, of the first selected element of the given value, or of the last
// selected element; 0 when there is none.
std::size_t firstPlaceOf(double value, std::span<const double> elements,
                         const Selection& selection);
std::size_t lastPlace(std::span<const double> elements, const Selection& selection);

}  // namespace vexa
