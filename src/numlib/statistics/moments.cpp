#include "numlib/statistics/moments.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vexa {

namespace {

// Sums are kept in eight lanes, of which each adds every eighth value. That lets the processor add
// several at once, and rounds less than one long sum would. The lanes are the same on every
// processor, and with them every digit.
using Four = double __attribute__((vector_size(32)));
constexpr std::size_t laneCount = 8;

struct Lanes {
  Four low{}, high{};
};

[[gnu::always_inline]] inline double total(const Lanes& x) {
  const Four sum = x.low + x.high;
  return (sum[0] + sum[2]) + (sum[1] + sum[3]);
}

[[gnu::always_inline]] inline Lanes eightFrom(const double* x) {
  Lanes group;
  std::memcpy(&group.low, x, sizeof group.low);
  std::memcpy(&group.high, x + 4, sizeof group.high);
  return group;
}

// A sum that keeps beside it what rounding took away (Neumaier, Zeitschrift für Angewandte
// Mathematik und Mechanik 54 (1974), page 39). An overflow stays the infinity that it is.
class CompensatedSum {
 public:
  void add(double x) {
    const double sum = m_sum + x;
    m_lost += std::fabs(m_sum) >= std::fabs(x) ? (m_sum - sum) + x : (x - sum) + m_sum;
    m_sum = sum;
  }
  double value() const { return std::isfinite(m_lost) ? m_sum + m_lost : m_sum; }

 private:
  double m_sum = 0, m_lost = 0;
};

// Values whose lanes are added up before the next ones: short sums round little.
constexpr std::size_t blockSize = 16 * laneCount;
// Values between two questions whether to stop; whole blocks, so that the digits are the same.
constexpr std::size_t stretchSize = 2048 * blockSize;

// Sum and extremes of the values so far. Not-a-number is never an extreme: it compares false.
struct Extent {
  explicit Extent(double undefined) {
    const Four none = {undefined, undefined, undefined, undefined};
    largest = {-none, -none};
    smallest = {none, none};
  }

  CompensatedSum sum;
  Lanes largest, smallest;
};

[[gnu::always_inline]] inline void addExtent(Extent& extent, std::span<const double> values) {
  CompensatedSum sum = extent.sum;
  Lanes largest = extent.largest, smallest = extent.smallest;
  const std::size_t grouped = values.size() / laneCount * laneCount;
  for (std::size_t i = 0; i < grouped;) {
    Lanes part;
    for (const std::size_t end = std::min(grouped, i + blockSize); i < end; i += laneCount) {
      const Lanes x = eightFrom(values.data() + i);
      part.low += x.low;
      part.high += x.high;
      largest.low = x.low > largest.low ? x.low : largest.low;
      largest.high = x.high > largest.high ? x.high : largest.high;
      smallest.low = x.low < smallest.low ? x.low : smallest.low;
      smallest.high = x.high < smallest.high ? x.high : smallest.high;
    }
    sum.add(total(part));
  }
  for (const double x : values.subspan(grouped)) {
    sum.add(x);
    if (x > largest.low[0]) largest.low[0] = x;
    if (x < smallest.low[0]) smallest.low[0] = x;
  }
  extent.sum = sum;
  extent.largest = largest;
  extent.smallest = smallest;
}

double largestOf(const Lanes& x) {
  double largest = x.low[0];
  for (int k = 0; k < 4; ++k) largest = std::max({largest, x.low[k], x.high[k]});
  return largest;
}

double smallestOf(const Lanes& x) {
  double smallest = x.low[0];
  for (int k = 0; k < 4; ++k) smallest = std::min({smallest, x.low[k], x.high[k]});
  return smallest;
}

// Sums of the powers of the deviations from `mean` so far.
struct Deviations {
  double mean = 0;
  Lanes absolute, plain, squares, cubes, fourths;
};

[[gnu::always_inline]] inline void addDeviations(Deviations& sums, std::span<const double> values) {
  const Four centre = {sums.mean, sums.mean, sums.mean, sums.mean};
  Deviations s = sums;
  const std::size_t grouped = values.size() / laneCount * laneCount;
  for (std::size_t i = 0; i < grouped; i += laneCount) {
    const Lanes x = eightFrom(values.data() + i);
    const auto add = [&](Four Lanes::*half) __attribute__((always_inline)) {
      const Four d = x.*half - centre;
      const Four d2 = d * d;
      const Four d3 = d2 * d;
      s.absolute.*half += d < 0 ? -d : d;
      s.plain.*half += d;
      s.squares.*half += d2;
      s.cubes.*half += d3;
      s.fourths.*half += d3 * d;
    };
    add(&Lanes::low);
    add(&Lanes::high);
  }
  for (const double x : values.subspan(grouped)) {
    const double d = x - sums.mean;
    const double d2 = d * d;
    s.absolute.low[0] += std::fabs(d);
    s.plain.low[0] += d;
    s.squares.low[0] += d2;
    s.cubes.low[0] += d2 * d;
    s.fourths.low[0] += d2 * d * d;
  }
  sums = s;
}

#if defined(__x86_64__)
// The same loops for processors with wider registers.
[[gnu::target("avx2")]] void addExtentWide(Extent& extent, std::span<const double> values) {
  addExtent(extent, values);
}
[[gnu::target("avx2")]] void addDeviationsWide(Deviations& sums, std::span<const double> values) {
  addDeviations(sums, values);
}
bool hasWideRegisters() { return __builtin_cpu_supports("avx2"); }
#else
void addExtentWide(Extent& extent, std::span<const double> values) { addExtent(extent, values); }
void addDeviationsWide(Deviations& sums, std::span<const double> values) {
  addDeviations(sums, values);
}
bool hasWideRegisters() { return false; }
#endif

// Hands stretches of the values to `add`, or to `addWide` where registers are wide. False when the
// user wants to stop.
template <class Sums>
bool addAll(Sums& sums, void (*add)(Sums&, std::span<const double>),
            void (*addWide)(Sums&, std::span<const double>), std::span<const double> values,
            const InterruptTest& interrupted) {
  const auto addStretch = hasWideRegisters() ? addWide : add;
  while (values.size() > stretchSize) {
    addStretch(sums, values.first(stretchSize));
    values = values.subspan(stretchSize);
    if (asksToStop(interrupted)) return false;
  }
  addStretch(sums, values);
  return true;
}

}  // namespace

double Selection::valueOf(double x) const { return absolute ? std::fabs(x) : x; }

bool Selection::selects(double value) const {
  if (!filtered) return true;
  switch (relation) {
    case Relation::less:
      return value < threshold;
    case Relation::lessOrEqual:
      return value <= threshold;
    case Relation::greater:
      return value > threshold;
    case Relation::greaterOrEqual:
      return value >= threshold;
    case Relation::equal:
      return std::fabs(value - threshold) <= tolerance;
    case Relation::notEqual:
      return std::fabs(value - threshold) > tolerance;
  }
  return false;
}

std::vector<double> selectValues(std::span<const double> elements, const Selection& selection,
                                 const InterruptTest& interrupted) {
  std::vector<double> values;
  values.reserve(elements.size());
  Pace pace(interrupted);
  for (const double x : elements) {
    if (pace.stopsAfter(1)) return {};
    const double value = selection.valueOf(x);
    if (selection.selects(value)) values.push_back(value);
  }
  return values;
}

std::optional<Moments> computeMoments(std::span<const double> values, double undefined,
                                      const InterruptTest& interrupted) {
  Extent extent(undefined);
  if (!addAll(extent, addExtent, addExtentWide, values, interrupted)) return std::nullopt;
  const auto n = static_cast<double>(values.size());
  Moments m;
  m.count = n;
  m.sum = extent.sum.value();
  m.largest = largestOf(extent.largest);
  m.smallest = smallestOf(extent.smallest);
  m.mean = m.meanDeviation = m.variance = m.standardDeviation = undefined;
  m.skewness = m.kurtosis = undefined;
  if (values.empty()) return m;
  m.mean = m.sum / n;
  Deviations d;
  d.mean = m.mean;
  if (!addAll(d, addDeviations, addDeviationsWide, values, interrupted)) return std::nullopt;
  m.meanDeviation = total(d.absolute) / n;
  if (values.size() == 1) return m;
  const double plain = total(d.plain);
  m.variance = (total(d.squares) - plain * plain / n) / (n - 1);
  m.standardDeviation = std::sqrt(m.variance);
  if (m.variance == 0) return m;
  m.skewness = total(d.cubes) / (n * m.variance * m.standardDeviation);
  m.kurtosis = total(d.fourths) / (n * m.variance * m.variance) - 3.0;
  return m;
}

std::size_t firstPlaceOf(double value, std::span<const double> elements,
                         const Selection& selection) {
  if (selection.all()) {
    const auto at = std::find(elements.begin(), elements.end(), value);
    return at == elements.end() ? 0 : static_cast<std::size_t>(at - elements.begin()) + 1;
  }
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const double x = selection.valueOf(elements[i]);
    if (x == value && selection.selects(x)) return i + 1;
  }
  return 0;
}

std::size_t lastPlace(std::span<const double> elements, const Selection& selection) {
  for (std::size_t i = elements.size(); i > 0; --i)
    if (selection.selects(selection.valueOf(elements[i - 1]))) return i;
  return 0;
}

}  // namespace vexa
