#include "numlib/fitting/moving_average.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vexa {

namespace {

constexpr std::size_t additionsBetweenPolls = 1 << 20;

double meanOf(std::span<const double> window) {
  double sum = 0, lost = 0;
  for (const double x : window) {
    const double next = sum + x;
    lost += std::fabs(sum) >= std::fabs(x) ? (sum - next) + x : (x - next) + sum;
    sum = next;
  }
  const auto count = static_cast<double>(window.size());
  if (std::isfinite(sum)) return (sum + lost) / count;
  // The sum is beyond the range, the mean is not: parts of it instead.
  double mean = 0;
  for (const double x : window) mean += x / count;
  return mean;
}

}  // namespace

std::vector<double> movingAverage(std::span<const double> y, std::size_t n, WindowEnds ends,
                                  const InterruptTest& interrupted) {
  const bool cut = ends == WindowEnds::cutOff;
  const std::size_t half = n / 2, count = cut ? y.size() : y.size() - n + 1;
  const std::size_t windowsBetweenPolls = additionsBetweenPolls / n + 1;
  std::vector<double> means;
  means.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (i % windowsBetweenPolls == 0 && asksToStop(interrupted)) return means;
    const std::size_t first = cut ? i - std::min(i, half) : i;
    const std::size_t last = cut ? std::min(i + half + 1, y.size()) : i + n;
    means.push_back(meanOf(y.subspan(first, last - first)));
  }
  return means;
}

}  // namespace vexa
