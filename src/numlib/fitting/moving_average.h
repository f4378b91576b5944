#pragma once

#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

enum class WindowEnds {
  inside,  // only windows that lie wholly inside: size - n + 1 means
  cutOff,  // a window about each element, cut off at the ends: size means; n is odd
};

// Means of n neighbouring elements, 1 <= n <= size. Each window is summed for itself with the
// compensation of Neumaier (Zeitschrift fuer Angewandte Mathematik und Mechanik 54, 1974), so
// nothing that has left a window is left in its mean. Shorter than promised when interrupted.
std::vector<double> movingAverage(std::span<const double> y, std::size_t n, WindowEnds ends,
                                  const InterruptTest& interrupted = {});

}  // namespace vexa
