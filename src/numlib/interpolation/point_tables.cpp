#include "numlib/interpolation/point_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace vexa {

namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// Three columns of a scheme; small tables need no memory from elsewhere.
class Columns {
 public:
  explicit Columns(std::size_t n) : m_length(n) {
    if (3 * n > m_few.size()) m_many.resize(3 * n);
  }
  std::span<double> first() { return {data(), m_length}; }
  std::span<double> second() { return {data() + m_length, m_length}; }
  std::span<double> third() { return {data() + 2 * m_length, m_length}; }

 private:
  double* data() { return m_many.empty() ? m_few.data() : m_many.data(); }

  std::size_t m_length;
  std::array<double, 96> m_few;
  std::vector<double> m_many;
};

std::size_t nearestPoint(std::span<const double> x, double at) {
  std::size_t nearest = 0;
  for (std::size_t i = 1; i < x.size(); ++i)
    if (std::fabs(at - x[i]) < std::fabs(at - x[nearest])) nearest = i;
  return nearest;
}

double largestOrdinate(std::span<const double> y) {
  double largest = 0.0;
  for (const double value : y) largest = std::max(largest, std::fabs(value));
  return largest;
}

// What the rational function through all points of a group is, given those without the first
// point, without the last, and without both; one of the three may be infinite, for which the limit
// is taken. An infinite result has no sign yet: it stands for a pole. `ratio` is
// (at - first abscissa) / (at - last abscissa).
double joinRational(double withoutFirst, double withoutLast, double inner, double ratio) {
  if (std::isinf(withoutFirst)) return withoutLast - ratio * (withoutLast - inner);
  if (std::isinf(withoutLast)) return withoutFirst - (withoutFirst - inner) / ratio;
  const double difference = withoutFirst - withoutLast;
  if (difference == 0.0) return withoutFirst;
  if (std::isinf(inner)) return withoutFirst + difference / (ratio - 1.0);
  const double step = withoutFirst - inner;
  const double denominator = ratio * (withoutLast - inner) - step;
  // When no digit is left of the denominator, the limit is nearer to the truth than the quotient.
  if (std::fabs(denominator) <= 8.0 * kEpsilon * std::fabs(step)) return kInfinity;
  return withoutFirst + difference * step / denominator;
}

// Neighbours that agree to this share could have agreed but for the rounding of the data.
constexpr double kDoubtful = 1e-10;

struct RationalValue {
  double value = 0.0;
  // Somewhere all three neighbours had the ordinate of one of their points. That leaves a value
  // undetermined, unless the data are constant: no function of the group's degree passes through
  // its points.
  bool doubtful = false;
};

// The scheme of Bulirsch and Stoer. `at` is no abscissa.
RationalValue joinAll(const PointTable& table, double at, const InterruptTest& interrupted) {
  const std::size_t n = table.size();
  Columns columns(n);
  const std::span<double> inner = columns.first();
  const std::span<double> values = columns.second();
  const std::span<double> scales = columns.third();  // the largest ordinate of each inner group
  std::ranges::fill(inner, 0.0);
  std::ranges::fill(scales, 0.0);
  std::ranges::copy(table.y, values.begin());
  RationalValue result;
  Pace pace(interrupted);
  for (std::size_t m = 1; m < n; ++m) {
    if (pace.stopsAfter(n)) return {kNotANumber};
    for (std::size_t i = 0; i + m < n; ++i) {
      // inner[i + 1] is still of the level before the last, one point less on either side.
      const double middle = inner[i + 1];
      const double scale =
          std::isinf(middle) ? scales[i + 1] : std::max(std::fabs(middle), scales[i + 1]);
      const auto agrees = [&](double other, double share) {
        return std::fabs(other - middle) <= share * scale;
      };
      const auto bothAgree = [&](double share) {
        return m > 1 && agrees(values[i], share) && agrees(values[i + 1], share);
      };
      const auto ordinateAgrees = [&](double y) { return agrees(y, kDoubtful); };
      if (bothAgree(kDoubtful) &&
          std::ranges::any_of(table.y.subspan(i + 1, m - 1), ordinateAgrees))
        result.doubtful = true;
      const double ratio = (at - table.x[i]) / (at - table.x[i + m]);
      // Differences of neighbours that agree are noise, and the quotient of two could be anything.
      const double joined = bothAgree(16.0 * kEpsilon)
                                ? values[i + 1]
                                : joinRational(values[i + 1], values[i], middle, ratio);
      inner[i] = values[i];
      values[i] = joined;
      scales[i] = std::max(scales[i], std::fabs(table.y[i + m - 1]));
    }
  }
  result.value = values[0];
  return result;
}

// The order of the points does not change the function, only the groups on the way. Those of an
// even function on a symmetric grid are undetermined in the natural order; with the second half
// turned round, mirrored points never stand together.
double rationalAt(const PointTable& table, double at, const InterruptTest& interrupted) {
  const RationalValue natural = joinAll(table, at, interrupted);
  if (!natural.doubtful) return natural.value;
  std::vector<double> x(table.x.begin(), table.x.end());
  std::vector<double> y(table.y.begin(), table.y.end());
  const auto half = static_cast<std::ptrdiff_t>(x.size() / 2);
  std::reverse(x.begin() + half, x.end());
  std::reverse(y.begin() + half, y.end());
  const RationalValue other = joinAll({x, y}, at, interrupted);
  const bool agree = std::fabs(natural.value - other.value) <= 1e-8 * largestOrdinate(y);
  return other.doubtful || agree ? natural.value : other.value;
}

// An infinity with the sign that the function has on both sides of a pole. They are looked at from
// so far that a pole of fourth order still leaves them digits.
double signedPole(const PointTable& table, double at, double nearest,
                  const InterruptTest& interrupted) {
  const double aside = std::ldexp(std::fabs(at - nearest), -10);
  const double below = rationalAt(table, at - aside, interrupted);
  const double above = rationalAt(table, at + aside, interrupted);
  if (!std::isfinite(below) || !std::isfinite(above) || (below < 0.0) != (above < 0.0))
    return kNotANumber;
  return std::copysign(kInfinity, above);
}

}  // namespace

std::size_t findInterval(std::span<const double> x, double at) {
  std::size_t low = 0;
  std::size_t high = x.size() - 1;
  while (high - low > 1) {
    const std::size_t middle = (high + low) / 2;
    if (x[middle] <= at)
      low = middle;
    else
      high = middle;
  }
  return low;
}

std::size_t placeInTable(std::span<const double> x, double at) {
  const auto beyond = x.front() <= x.back() ? std::ranges::upper_bound(x, at)
                                            : std::ranges::upper_bound(x, at, std::greater{});
  return static_cast<std::size_t>(beyond - x.begin());
}

std::optional<double> interpolateLinear(const PointTable& table, double at) {
  const std::size_t low = findInterval(table.x, at);
  const double h = table.x[low + 1] - table.x[low];
  if (h == 0.0 || std::isnan(h)) return std::nullopt;
  return table.y[low] + (table.y[low + 1] - table.y[low]) * (at - table.x[low]) / h;
}

std::optional<double> interpolatePolynomial(const PointTable& table, double at,
                                            const InterruptTest& interrupted) {
  const std::size_t n = table.size();
  Columns columns(n);
  const std::span<double> c = columns.first();
  const std::span<double> d = columns.second();
  std::ranges::copy(table.y, c.begin());
  std::ranges::copy(table.y, d.begin());
  // From the nearest point's ordinate to the value that uses all points, as near to the middle of
  // the scheme as it allows: c[i] adds the point behind the i-th group, d[i] the one before it.
  std::size_t before = nearestPoint(table.x, at);
  double value = table.y[before];
  Pace pace(interrupted);
  for (std::size_t m = 1; m < n; ++m) {
    if (pace.stopsAfter(n)) return std::nullopt;
    for (std::size_t i = 0; i + m < n; ++i) {
      const double first = table.x[i];
      const double last = table.x[i + m];
      // Not the difference of the distances from `at`: far away, that is 0 for unequal points too.
      const double width = first - last;
      if (width == 0.0) return std::nullopt;
      const double w = (c[i + 1] - d[i]) / width;
      c[i] = (first - at) * w;
      d[i] = (last - at) * w;
    }
    value += 2 * before < n - m ? c[before] : d[--before];
  }
  return value;
}

double interpolateRational(const PointTable& table, double at, const InterruptTest& interrupted) {
  const std::size_t nearest = nearestPoint(table.x, at);
  if (at == table.x[nearest]) return table.y[nearest];
  const double value = rationalAt(table, at, interrupted);
  return std::isinf(value) ? signedPole(table, at, table.x[nearest], interrupted) : value;
}

}  // namespace vexa
