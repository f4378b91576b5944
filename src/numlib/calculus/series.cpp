#include "numlib/calculus/series.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace vexa {

namespace {

constexpr double lastTermSlack = 1e-9;
constexpr int levinFrom = 12;  // terms
constexpr int levinColumns = 14;
constexpr double nodeRatio = 1.25;
// Terms that fall like 1/k^p: with a lower p there is no sum, or it is not found this way.
constexpr double leastPower = 1.05;
constexpr double leastAlternatingPower = 0.05;
constexpr int promisesNeeded = 3;

class CompensatedSum {
 public:
  void add(double x) {
    const double sum = m_sum + x;
    // What the sum could not take, from the smaller of the two.
    if (std::fabs(m_sum) >= std::fabs(x))
      m_lost += (m_sum - sum) + x;
    else
      m_lost += (x - sum) + m_sum;
    m_sum = sum;
  }
  double value() const { return m_sum + m_lost; }

 private:
  double m_sum = 0, m_lost = 0;
};

// Levin's u transform of the partial sums, as divided differences in 1/k of S_k / (k t_k) and of
// 1 / (k t_k) (Sidi's W algorithm). It takes every partial sum at first, which alternating series
// need, then some at growing distances: neighbours would lose the digits of slow series.
class LevinTransform {
 public:
  explicit LevinTransform(double first) : m_origin(std::max(first, 1.0)) {}

  // The next term and the sum with it.
  void add(long double sum, long double term) {
    const long double k = m_origin + static_cast<long double>(m_terms++);
    if (term == 0) m_usable = false;  // nothing to estimate the rest with
    if (!m_usable || (m_nodes >= levinFrom && k < m_nextNode)) return;
    m_nextNode = k * nodeRatio;
    addNode(1 / k, sum / (k * term), 1 / (k * term));
    ++m_nodes;
    m_before = m_value;
    m_value = m_last.denominator != 0 ? m_last.numerator / m_last.denominator : sum;
  }

  double value() const { return static_cast<double>(m_value); }
  // Whether the newest two values agree; the test is for once after each new one.
  bool settled(double accuracy) const {
    return m_usable && m_nodes >= levinFrom &&
           std::fabs(m_value - m_before) <= accuracy * std::fabs(m_value);
  }

 private:
  struct Entry {
    long double numerator = 0, denominator = 0;
  };

  // Brings the newest diagonal of the difference table up to date.
  void addNode(long double x, long double numerator, long double denominator) {
    std::shift_right(m_x.begin(), m_x.end(), 1);
    m_x[0] = x;
    m_last = {numerator, denominator};
    const auto columns = static_cast<std::size_t>(std::min(m_nodes, levinColumns - 1));
    for (std::size_t j = 0; j < columns; ++j) {
      const Entry old = std::exchange(m_diagonal[j], m_last);
      const long double distance = x - m_x[j + 1];
      m_last = {(m_last.numerator - old.numerator) / distance,
                (m_last.denominator - old.denominator) / distance};
    }
    m_diagonal[columns] = m_last;
  }

  std::array<Entry, levinColumns> m_diagonal{};
  std::array<long double, levinColumns> m_x{};  // the nodes 1/k, the newest first
  Entry m_last;
  long double m_origin, m_nextNode = 0;
  int m_nodes = 0;
  std::int64_t m_terms = 0;
  bool m_usable = true;
  long double m_value = 0, m_before = 0;
};

// What the newest terms say about the rest of the series.
class TermHistory {
 public:
  void add(double term) {
    const bool turned = std::signbit(term) != std::signbit(m_terms[0]);
    const double fall = m_count > 0 && term != 0 ? std::fabs(m_terms[0] / term) - 1 : 0;
    // 1 / fall grows by 1/p a term for terms like 1/(k + c)^p, wherever the series starts.
    const double slope = 1 / fall - 1 / m_fall;
    const bool alternates = turned && fall > 0 && slope < 1 / leastAlternatingPower;
    const bool decays = !turned && fall > 0 && slope < 1 / leastPower;
    m_alternating = alternates ? m_alternating + 1 : 0;
    m_decaying = decays ? m_decaying + 1 : 0;
    m_fall = fall;
    std::shift_right(m_terms.begin(), m_terms.end(), 1);
    m_terms[0] = term;
    ++m_count;
  }

  // The rest, if the terms go on as a geometric series; pairs, so that every other may be 0.
  double geometricRest() const {
    if (m_count < 4) return HUGE_VAL;
    const double newer = std::max(std::fabs(m_terms[0]), std::fabs(m_terms[1]));
    const double older = std::max(std::fabs(m_terms[2]), std::fabs(m_terms[3]));
    if (newer == 0) return 0;
    if (newer >= older) return HUGE_VAL;
    const double ratio = newer / older;
    return 2 * newer * ratio / (1 - ratio);
  }

  // Whether the sum exists as far as the terms tell.
  bool promising() const { return m_alternating >= promisesNeeded || m_decaying >= promisesNeeded; }

 private:
  std::array<double, 4> m_terms{};  // the newest first
  double m_fall = 0;                // |t before / t| - 1
  int m_count = 0;
  int m_alternating = 0, m_decaying = 0;
};

}  // namespace

SeriesSum sumSeries(RealFunction f, double first, double last) {
  CompensatedSum sum;
  const double count = std::floor(last + lastTermSlack - first) + 1;
  for (double i = 0; i < count; ++i) {
    const double term = f(first + i);
    if (!std::isfinite(term)) return {sum.value(), SeriesOutcome::notFinite};
    sum.add(term);
  }
  return {sum.value()};
}

SeriesSum sumInfiniteSeries(RealFunction f, double first, double accuracy, std::int64_t maxTerms) {
  CompensatedSum sum;
  long double partial = 0;
  TermHistory history;
  LevinTransform levin(first);
  for (std::int64_t i = 0; i < maxTerms; ++i) {
    const double term = f(first + static_cast<double>(i));
    if (!std::isfinite(term)) return {sum.value(), SeriesOutcome::notFinite};
    sum.add(term);
    partial += term;
    history.add(term);
    if (history.geometricRest() <= accuracy / 100 * std::fabs(sum.value())) return {sum.value()};
    levin.add(partial, term);
    if (levin.settled(accuracy) && history.promising()) return {levin.value()};
  }
  return {sum.value(), SeriesOutcome::notReached};
}

}  // namespace vexa
