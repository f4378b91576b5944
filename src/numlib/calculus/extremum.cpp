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
constexpr int refinements = 3;
constexpr double firstSpread = 0x1p-14;  // of the bracket
constexpr double usefulBend = 1e-8;      // of the value
constexpr double edgeReach = 0x1p-23;    // of the bracket
constexpr double edgeRise = 1e-15;       // of the value
constexpr int goldenSteps = 64;

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

// Brent's method leaves half of the digits of the bracket's length to be told, which is too little
// where f bends sharply: the vertex of a parabola through values that lie further apart, but not so
// far that f is none, brings the rest.
Extremum refine(RealFunction f, Extremum found, double low, double high) {
  double h = (high - low) * firstSpread;
  for (int round = 0; round < refinements; ++round) {
    if (!(found.x - h > low && found.x + h < high)) break;
    const double left = f(found.x - h), right = f(found.x + h);
    const double bend = (left - found.value) + (right - found.value);
    if (!(bend > 0 && std::isfinite(bend))) break;
    const double x = found.x + std::clamp(h / 2 * (left - right) / bend, -h, h);
    const double value = f(x);
    if (value < found.value) found = {x, value};
    h *= std::clamp(std::sqrt(usefulBend * std::fabs(value) / bend), 1e-3, 1.0);
  }
  return found;
}

// How much f is higher at a distance from the place found, at the higher side.
double riseAt(RealFunction f, const Extremum& found, double distance) {
  return std::max(f(found.x - distance), f(found.x + distance)) - found.value;
}

// A smooth f is flat around its lowest value; at an edge it is not, and every digit of the place
// counts. There golden section brings the rest, as far as numbers go.
Extremum sharpen(RealFunction f, Extremum found, double low, double high) {
  const double reach = (high - low) * edgeReach;
  if (!(found.x - reach > low && found.x + reach < high)) return found;
  const double rise = riseAt(f, found, reach);
  if (!(rise > edgeRise * std::fabs(found.value) && rise < 3 * riseAt(f, found, reach / 2)))
    return found;
  const auto at = [&](double x) {
    const Extremum here{x, f(x)};
    if (here.value < found.value) found = here;
    return here;
  };
  constexpr double golden = 0.6180339887498949;
  double a = found.x - reach, b = found.x + reach;
  Extremum left = at(b - golden * (b - a)), right = at(a + golden * (b - a));
  for (int step = 0; step < goldenSteps && left.x < right.x; ++step) {
    if (left.value < right.value) {
      b = right.x;
      right = left;
      left = at(b - golden * (b - a));
    } else {
      a = left.x;
      left = right;
      right = at(a + golden * (b - a));
    }
  }
  return found;
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
  // The library's tolerance has an absolute part, so it gets the bracket as a part of -1 to 1.
  const double middle = result.x, length = std::max(high - middle, middle - low);
  const auto placeOf = [=](double u) { return std::clamp(middle + u * length, low, high); };
  const auto bound = static_cast<std::uintmax_t>(std::max(maxSteps, 1));
  std::uintmax_t steps = bound;
  const auto [u, value] = boost::math::tools::brent_find_minima(
      [&](double at) { return finite(placeOf(at)); }, (low - middle) / length,
      (high - middle) / length, halfOfTheBits, steps);
  if (value < result.value) {
    result = refine(finite, {placeOf(u), value}, low, high);
    result = sharpen(finite, result, low, high);
  }
  result.reached = steps < bound;
  return result;
}

}  // namespace vexa
