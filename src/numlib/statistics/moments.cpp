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

struct Extent {
  double sum, largest, smallest;
};

// Not-a-number is never an extreme: it compares false.
[[gnu::always_inline]] inline Extent measureExtent(std::span<const double> values,
                                                   double undefined) {
  const Four none = {undefined, undefined, undefined, undefined};
  Lanes largest{-none, -none}, smallest{none, none};
  CompensatedSum sum;
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
  largest.low = largest.high > largest.low ? largest.high : largest.low;
  smallest.low = smallest.high < smallest.low ? smallest.high : smallest.low;
  Extent extent{0.0, -undefined, undefined};
  for (int k = 0; k < 4; ++k) {
    if (largest.low[k] > extent.largest) extent.largest = largest.low[k];
    if (smallest.low[k] < extent.smallest) extent.smallest = smallest.low[k];
  }
  for (const double x : values.subspan(grouped)) {
    sum.add(x);
    if (x > extent.largest) extent.largest = x;
    if (x < extent.smallest) extent.smallest = x;
  }
  extent.sum = sum.value();
  return extent;
}

struct Deviations {
  double absolute, plain, squares, cubes, fourths;
};

[[gnu::always_inline]] inline Deviations sumDeviations(std::span<const double> values,
                                                       double mean) {
  const Four centre = {mean, mean, mean, mean};
  Lanes absolute, plain, squares, cubes, fourths;
  const std::size_t grouped = values.size() / laneCount * laneCount;
  for (std::size_t i = 0; i < grouped; i += laneCount) {
    const Lanes x = eightFrom(values.data() + i);
    const auto add = [&](Four Lanes::*half) __attribute__((always_inline)) {
      const Four d = x.*half - centre;
      const Four d2 = d * d;
      const Four d3 = d2 * d;
      absolute.*half += d < 0 ? -d : d;
      plain.*half += d;
      squares.*half += d2;
      cubes.*half += d3;
      fourths.*half += d3 * d;
    };
    add(&Lanes::low);
    add(&Lanes::high);
  }
  Deviations sums{total(absolute), total(plain), total(squares), total(cubes), total(fourths)};
  for (const double x : values.subspan(grouped)) {
    const double d = x - mean;
    const double d2 = d * d;
    sums.absolute += std::fabs(d);
    sums.plain += d;
    sums.squares += d2;
    sums.cubes += d2 * d;
    sums.fourths += d2 * d * d;
  }
  return sums;
}

#if defined(__x86_64__)
// The same loops for processors with wider registers.
[[gnu::target("avx2")]] Extent measureExtentWide(std::span<const double> values, double undefined) {
  return measureExtent(values, undefined);
}
[[gnu::target("avx2")]] Deviations sumDeviationsWide(std::span<const double> values, double mean) {
  return sumDeviations(values, mean);
}
bool hasWideRegisters() { return __builtin_cpu_supports("avx2"); }
#else
Extent measureExtentWide(std::span<const double> values, double undefined) {
  return measureExtent(values, undefined);
}
Deviations sumDeviationsWide(std::span<const double> values, double mean) {
  return sumDeviations(values, mean);
}
bool hasWideRegisters() { return false; }
#endif

Extent extentOf(std::span<const double> values, double undefined) {
  return hasWideRegisters() ? measureExtentWide(values, undefined)
                            : measureExtent(values, undefined);
}
Deviations deviationsOf(std::span<const double> values, double mean) {
  return hasWideRegisters() ? sumDeviationsWide(values, mean) : sumDeviations(values, mean);
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

std::vector<double> selectValues(std::span<const double> elements, const Selection& selection) {
  std::vector<double> values;
  values.reserve(elements.size());
  for (const double x : elements) {
    const double value = selection.valueOf(x);
    if (selection.selects(value)) values.push_back(value);
  }
  return values;
}

Moments computeMoments(std::span<const double> values, double undefined) {
  Moments m;
  const Extent extent = extentOf(values, undefined);
  const auto n = static_cast<double>(values.size());
  m.count = n;
  m.sum = extent.sum;
  m.largest = extent.largest;
  m.smallest = extent.smallest;
  m.mean = m.meanDeviation = m.variance = m.standardDeviation = undefined;
  m.skewness = m.kurtosis = undefined;
  if (values.empty()) return m;
  m.mean = m.sum / n;
  const Deviations d = deviationsOf(values, m.mean);
  m.meanDeviation = d.absolute / n;
  if (values.size() == 1) return m;
  m.variance = (d.squares - d.plain * d.plain / n) / (n - 1);
  m.standardDeviation = std::sqrt(m.variance);
  if (m.variance == 0) return m;
  m.skewness = d.cubes / (n * m.variance * m.standardDeviation);
  m.kurtosis = d.fourths / (n * m.variance * m.variance) - 3.0;
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
