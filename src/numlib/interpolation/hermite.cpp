#include "numlib/interpolation/hermite.h"

#include <algorithm>
#include <cmath>

namespace vexa {

namespace {

int signOf(double x) { return (x > 0.0) - (x < 0.0); }

// The sign of the product, which is not formed: it could underflow.
int productSign(double a, double b) { return signOf(a) * signOf(b); }

// The slope at an end: of the parabola through the last three points, kept from turning against
// the interval at the end. That one has length hEnd and slope chordEnd, its neighbour hNext and
// chordNext.
double endSlope(double hEnd, double chordEnd, double hNext, double chordNext) {
  const double both = hEnd + hNext;
  const double slope = (hEnd + both) / both * chordEnd - hEnd / both * chordNext;
  if (productSign(slope, chordEnd) <= 0) return 0.0;
  if (productSign(chordEnd, chordNext) < 0 && std::fabs(slope) > std::fabs(3.0 * chordEnd))
    return 3.0 * chordEnd;
  return slope;
}

// The slope between two intervals: a weighted harmonic mean of theirs, 0 at an extremum.
double innerSlope(double h1, double chord1, double h2, double chord2) {
  if (productSign(chord1, chord2) <= 0) return 0.0;
  const double both = h1 + h2;
  const double weight1 = (both + h1) / (3.0 * both);
  const double weight2 = (both + h2) / (3.0 * both);
  const double larger = std::max(std::fabs(chord1), std::fabs(chord2));
  const double smaller = std::min(std::fabs(chord1), std::fabs(chord2));
  return smaller / (weight1 * (chord1 / larger) + weight2 * (chord2 / larger));
}

}  // namespace

bool strictlyIncreasing(std::span<const double> x) {
  for (std::size_t i = 1; i < x.size(); ++i)
    if (!(x[i] > x[i - 1])) return false;
  return true;
}

void monotoneSlopes(const PointTable& table, std::span<double> d) {
  const std::size_t n = table.size();
  const auto length = [&](std::size_t i) { return table.x[i + 1] - table.x[i]; };
  const auto chord = [&](std::size_t i) { return (table.y[i + 1] - table.y[i]) / length(i); };
  double h1 = length(0);
  double chord1 = chord(0);
  if (n == 2) {
    d[0] = d[1] = chord1;
    return;
  }
  double h2 = length(1);
  double chord2 = chord(1);
  d[0] = endSlope(h1, chord1, h2, chord2);
  for (std::size_t i = 1; i + 1 < n; ++i) {
    if (i > 1) {
      h1 = h2;
      chord1 = chord2;
      h2 = length(i);
      chord2 = chord(i);
    }
    d[i] = innerSlope(h1, chord1, h2, chord2);
  }
  d[n - 1] = endSlope(h2, chord2, h1, chord1);
}

std::optional<HermiteValue> interpolateHermite(const PointTable& table, std::span<const double> d,
                                               double at) {
  const std::size_t low = findInterval(table.x, at);
  const double h = table.x[low + 1] - table.x[low];
  if (h == 0.0 || std::isnan(h)) return std::nullopt;
  const double chord = (table.y[low + 1] - table.y[low]) / h;
  const double c1 = (d[low] - chord) / h;
  const double c2 = (d[low + 1] - chord) / h;
  const double b = -(2.0 * c1 + c2);
  const double a = (c1 + c2) / h;
  const double t = at - table.x[low];
  return HermiteValue{((a * t + b) * t + d[low]) * t + table.y[low],
                      (3.0 * a * t + 2.0 * b) * t + d[low]};
}

}  // namespace vexa
