#include "numlib/calculus/extremum.h"

#include <algorithm>
#include <array>
#include <boost/math/tools/minima.hpp>
#include <cmath>
#include <cstdint>

namespace vexa {

namespace {

constexpr int pieces = 32;
constexpr int halfOfTheBits = 26;

// From a to b with both ends exact and no overflow between.
double sampleAt(double a, double b, int i) {
  if (i == 0) return a;
  if (i == pieces) return b;
  const double part = static_cast<double>(i) / pieces;
  return a * (1 - part) + b * part;
}

struct Samples {
  int best = -1;
  std::array<double, pieces + 1> x{}, value{};
  double worst = 0;  // the greatest finite value
};

Samples takeSamples(RealFunction f, double a, double b) {
  Samples samples;
  for (int i = 0; i <= pieces; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const double x = samples.x[at] = sampleAt(a, b, i);
    const double value = samples.value[at] = f(x);
    if (!std::isfinite(value)) continue;
    const bool first = samples.best < 0;
    if (first || value > samples.worst) samples.worst = value;
    if (first || value < samples.value[static_cast<std::size_t>(samples.best)]) samples.best = i;
  }
  return samples;
}

}  // namespace

std::optional<Extremum> findMinimum(RealFunction f, double a, double b, int maxSteps) {
  const Samples samples = takeSamples(f, a, b);
  if (samples.best < 0) return std::nullopt;
  const auto best = static_cast<std::size_t>(samples.best);
  Extremum result{samples.x[best], samples.value[best]};
  if (a == b) return result;

  double low = samples.x[best == 0 ? 0 : best - 1];
  double high = samples.x[std::min<std::size_t>(best + 1, pieces)];
  if (low > high) std::swap(low, high);
  // Infinite values would make Brent's parabolas not-a-number, so the worst sample stands in.
  const auto finite = [&](double x) {
    const double value = f(x);
    return std::isfinite(value) ? value : samples.worst;
  };
  const auto bound = static_cast<std::uintmax_t>(std::max(maxSteps, 1));
  std::uintmax_t steps = bound;
  const auto [x, value] =
      boost::math::tools::brent_find_minima(finite, low, high, halfOfTheBits, steps);
  result.reached = steps < bound;
  if (value < result.value) {
    result.x = x;
    result.value = value;
  }
  return result;
}

}  // namespace vexa
