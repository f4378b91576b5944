#include "numlib/calculus/derivative.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace vexa {

namespace {

constexpr int mostRows = 80;
constexpr std::size_t mostColumns = 8;
constexpr double stepRatio = 1.4;
constexpr std::size_t patience = 3;  // rows without a better entry
constexpr double epsilon = std::numeric_limits<double>::epsilon();

struct Difference {
  long double value = 0;
  double largest = 0;  // magnitude of a function value
};

// The central difference of an order; its error is a series in even powers of h.
class CentralDifference {
 public:
  CentralDifference(RealFunction f, double x, int order) : m_f(f), m_x(x), m_order(order) {}

  Difference operator()(double h) {
    m_largest = 0;
    const long double step = h;
    switch (m_order) {
      case 1:
        return {(at(h) - at(-h)) / (2 * step), m_largest};
      case 2:
        return {(at(h) - 2 * at(0) + at(-h)) / (step * step), m_largest};
      case 3:
        return {(at(2 * h) - 2 * at(h) + 2 * at(-h) - at(-2 * h)) / (2 * step * step * step),
                m_largest};
      default:
        return {(at(2 * h) - 4 * at(h) + 6 * at(0) - 4 * at(-h) + at(-2 * h)) /
                    (step * step * step * step),
                m_largest};
    }
  }

 private:
  long double at(double offset) {
    const double value = m_f(m_x + offset);
    m_largest = std::max(m_largest, std::fabs(value));
    return value;
  }

  RealFunction m_f;
  double m_x;
  int m_order;
  double m_largest = 0;
};

// The step that x + h really takes, so that the division is by what was gone.
double representable(double x, double h) {
  const double sum = x + h;
  return sum - x;
}

// The rows of Ridders' table, of which only the newest is kept, and the best entry so far.
class ExtrapolationTable {
 public:
  void restart() { *this = {}; }

  // A row's first entry, and how far rounding of the function values may have moved it: entries
  // that agree more closely do so by chance.
  void addRow(long double difference, long double rounding) {
    Row next{};
    next[0] = difference;
    double factor = 1;
    const std::size_t columns = std::min(m_rows + 1, mostColumns);
    if (m_rows == 0) m_best = static_cast<double>(difference);
    m_rounding = std::max(m_rounding, rounding);
    ++m_rowsSinceBest;
    for (std::size_t j = 1; j < columns; ++j) {
      factor *= stepRatio * stepRatio;
      next[j] = next[j - 1] + (next[j - 1] - m_row[j - 1]) / (factor - 1);
      const long double change =
          std::max({std::fabs(next[j] - next[j - 1]), std::fabs(next[j] - m_row[j - 1]), rounding});
      if (change < m_error) {
        m_error = static_cast<double>(change);
        m_best = static_cast<double>(next[j]);
        m_rowsSinceBest = 0;
      }
    }
    m_row = next;
    ++m_rows;
  }

  // Whether further rows are not worth their evaluations. Rounding mostly grows with each row;
  // where the derivative is 0 it is all that the error can be compared with.
  bool settled() const {
    if (m_rows <= patience) return false;
    return m_error <= m_rounding ||
           (m_rowsSinceBest >= patience && m_error <= 1e-6 * std::fabs(m_best));
  }
  bool empty() const { return m_rows == 0; }
  double best() const { return m_best; }
  double error() const { return m_error; }

 private:
  using Row = std::array<long double, mostColumns>;
  Row m_row{};
  std::size_t m_rows = 0;
  double m_best = 0;
  double m_error = std::numeric_limits<double>::infinity();
  long double m_rounding = 0;  // the most that a row has had
  std::size_t m_rowsSinceBest = 0;
};

// What the rows from a first step downward gave; the error is infinite when they gave nothing.
struct Estimate {
  double value = 0;
  double error = std::numeric_limits<double>::infinity();
  double noise = 0;  // an error that is no reason to refuse
};

Estimate estimateFrom(double first, RealFunction f, double x, int order) {
  CentralDifference difference(f, x, order);
  ExtrapolationTable table;
  double largest = 0;
  double h = first;
  for (int row = 0; row < mostRows && !table.settled(); ++row, h /= stepRatio) {
    const double step = representable(x, h);
    if (step == 0) break;
    const Difference next = difference(step);
    if (!std::isfinite(next.value)) {
      table.restart();
      largest = 0;
      continue;
    }
    largest = std::max(largest, next.largest);
    table.addRow(next.value, epsilon * next.largest / std::pow(std::fabs(step), order));
  }
  if (table.empty() || !std::isfinite(table.best())) return {};
  return {table.best(), table.error(), 1e-6 * largest / std::pow(first, order)};
}

// Relative errors, by the order, from which on another first step is worth its evaluations.
constexpr double doubtful[] = {0, 1e-12, 1e-10, 1e-9, 1e-7};

}  // namespace

double firstStep(double x) { return x == 0 ? 0.1 : 0.1 * std::fabs(x); }

std::optional<double> differentiate(RealFunction f, double x, int order) {
  Estimate estimate = estimateFrom(firstStep(x), f, x, order);
  // Beside 0 the steps may be so short that rounding is all that the differences show, as of exp
  // at 1e-17.
  const double limit = doubtful[order] * std::fabs(estimate.value);
  if (firstStep(x) < firstStep(0) && !(estimate.error <= limit)) {
    const Estimate wide = estimateFrom(firstStep(0), f, x, order);
    if (wide.error < estimate.error) estimate = wide;
  }
  const double allowed = std::max(1e-3 * std::fabs(estimate.value), estimate.noise);
  if (!(estimate.error <= allowed)) return std::nullopt;
  return estimate.value;
}

std::optional<double> differentiate(FieldFunction f, std::span<double> at, std::size_t j) {
  const double x = at[j];
  const auto along = [&](double moved) {
    at[j] = moved;
    return f(at);
  };
  const auto derivative = differentiate(along, x);
  at[j] = x;
  return derivative;
}

}  // namespace vexa
