#include "numlib/calculus/scaled_program.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vexa {

namespace {

constexpr int passes = 8;
// Of rows and columns: beyond it a program has numbers that cannot matter beside others.
constexpr int largestExponent = 200;
// Magnified sides beyond this are out of reach of what a correction can be.
constexpr double outOfReach = 1e15;

// The magnitudes of some numbers, as exponents of two; zeros and infinities have no say.
class Magnitudes {
 public:
  // A number times 2^exponent.
  void take(double x, int exponent) {
    if (x == 0 || !std::isfinite(x)) return;
    const int size = std::ilogb(x) + exponent;
    m_least = std::min(m_least, size);
    m_greatest = std::max(m_greatest, size);
  }
  // What brings the middle of them to 1.
  int toMiddle() const {
    return any() ? std::clamp(-(m_least + m_greatest) / 2, -largestExponent, largestExponent) : 0;
  }
  // What brings the greatest below 1.
  int toGreatest() const { return any() ? -m_greatest - 1 : 0; }

 private:
  bool any() const { return m_least <= m_greatest; }

  int m_least = std::numeric_limits<int>::max();
  int m_greatest = std::numeric_limits<int>::min();
};

double magnified(long double distance, int exponent) {
  const auto x = static_cast<double>(std::ldexp(distance, exponent));
  if (std::fabs(x) <= outOfReach) return x;
  return std::copysign(std::numeric_limits<double>::infinity(), x);
}

// How far a value lies beyond its sides, against `magnitude` and the side.
long double excessOf(long double value, double low, double high, long double magnitude) {
  const long double below = low - value, above = value - high;
  if (below > 0) return below / std::max(magnitude, std::fabs(static_cast<long double>(low)));
  if (above > 0) return above / std::max(magnitude, std::fabs(static_cast<long double>(high)));
  return 0;
}

}  // namespace

ScaledProgram::ScaledProgram(const LinearProgram& program)
    : m_program(program), m_rowExponents(program.b.size()), m_columnExponents(program.c.size()) {
  findExponents();
  const double sign = program.objective == Objective::least ? 1.0 : -1.0;
  const double none = std::numeric_limits<double>::infinity();
  for (std::size_t j = 0; j < program.c.size(); ++j) {
    const int side = m_sideExponent - m_columnExponents[j];
    m_costs.push_back(sign * std::ldexp(program.c[j], m_costExponent + m_columnExponents[j]));
    m_sides.columnLow.push_back(std::ldexp(program.low[j], side));
    m_sides.columnHigh.push_back(std::ldexp(program.high[j], side));
  }
  for (std::size_t i = 0; i < program.b.size(); ++i) {
    const double side = std::ldexp(program.b[i], m_rowExponents[i] + m_sideExponent);
    m_sides.rowLow.push_back(program.senses[i] == RowSense::below ? -none : side);
    m_sides.rowHigh.push_back(program.senses[i] == RowSense::above ? none : side);
  }
  gather();
  settleEmptyColumns();
}

void ScaledProgram::findExponents() {
  for (int pass = 0; pass < passes; ++pass) {
    for (int i = 0; i < rows(); ++i) scaleRow(i, true);
    scaleSides();
    for (int j = 0; j < cols(); ++j) scaleColumn(j);
    scaleCosts();
  }
  // The matrix has the last word, however far from its numbers the sides are.
  for (int i = 0; i < rows(); ++i) scaleRow(i, false);
  scaleSides();
}

void ScaledProgram::scaleRow(int row, bool withSide) {
  const auto i = static_cast<std::size_t>(row);
  Magnitudes sizes;
  for (int j = 0; j < cols(); ++j)
    sizes.take(m_program.a(row, j), m_columnExponents[static_cast<std::size_t>(j)]);
  if (withSide) sizes.take(m_program.b[i], m_sideExponent);
  m_rowExponents[i] = sizes.toMiddle();
}

void ScaledProgram::scaleColumn(int column) {
  const auto j = static_cast<std::size_t>(column);
  Magnitudes sizes;
  for (int i = 0; i < rows(); ++i)
    sizes.take(m_program.a(i, column), m_rowExponents[static_cast<std::size_t>(i)]);
  sizes.take(m_program.c[j], m_costExponent);
  m_columnExponents[j] = sizes.toMiddle();
}

void ScaledProgram::scaleCosts() {
  Magnitudes sizes;
  for (std::size_t j = 0; j < m_program.c.size(); ++j)
    sizes.take(m_program.c[j], m_columnExponents[j]);
  m_costExponent = sizes.toGreatest();
}

void ScaledProgram::scaleSides() {
  Magnitudes sizes;
  for (std::size_t i = 0; i < m_program.b.size(); ++i)
    sizes.take(m_program.b[i], m_rowExponents[i]);
  for (std::size_t j = 0; j < m_program.c.size(); ++j) {
    sizes.take(m_program.low[j], -m_columnExponents[j]);
    sizes.take(m_program.high[j], -m_columnExponents[j]);
  }
  m_sideExponent = sizes.toGreatest();
}

void ScaledProgram::gather() {
  const ConstMatrixView& a = m_program.a;
  m_starts.push_back(0);
  for (int j = 0; j < a.cols; ++j) {
    for (int i = 0; i < a.rows; ++i) {
      if (a(i, j) == 0) continue;
      const int exponent = m_rowExponents[static_cast<std::size_t>(i)] +
                           m_columnExponents[static_cast<std::size_t>(j)];
      m_indices.push_back(i);
      m_values.push_back(std::ldexp(a(i, j), exponent));
    }
    m_starts.push_back(static_cast<int>(m_indices.size()));
  }
}

void ScaledProgram::settleEmptyColumns() {
  for (std::size_t j = 0; j < m_costs.size(); ++j) {
    if (m_starts[j] != m_starts[j + 1]) continue;
    double& low = m_sides.columnLow[j];
    double& high = m_sides.columnHigh[j];
    double best = std::clamp(0.0, low, high);
    if (m_costs[j] != 0) best = m_costs[j] > 0 ? low : high;
    if (std::isinf(best)) {
      m_hasFreeGain = true;
      best = std::clamp(0.0, low, high);
    }
    low = high = best;
  }
}

ScaledProgram::RowSums ScaledProgram::rowSums(std::span<const long double> x) const {
  const std::size_t count = m_sides.rowLow.size();
  RowSums sums{std::vector<long double>(count), std::vector<long double>(count)};
  for (std::size_t j = 0; j < x.size(); ++j)
    for (auto k = static_cast<std::size_t>(m_starts[j]);
         k < static_cast<std::size_t>(m_starts[j + 1]); ++k) {
      const long double term = m_values[k] * x[j];
      const auto row = static_cast<std::size_t>(m_indices[k]);
      sums.value[row] += term;
      sums.magnitude[row] += std::fabs(term);
    }
  return sums;
}

void ScaledProgram::clamp(std::span<long double> x) const {
  for (std::size_t j = 0; j < x.size(); ++j)
    x[j] = std::clamp<long double>(x[j], m_sides.columnLow[j], m_sides.columnHigh[j]);
}

ScaledProgram::Sides ScaledProgram::sidesAbout(std::span<const long double> x, int exponent) const {
  Sides about;
  const std::vector<long double> at = rowSums(x).value;
  for (std::size_t i = 0; i < at.size(); ++i) {
    about.rowLow.push_back(magnified(m_sides.rowLow[i] - at[i], exponent));
    about.rowHigh.push_back(magnified(m_sides.rowHigh[i] - at[i], exponent));
  }
  for (std::size_t j = 0; j < x.size(); ++j) {
    about.columnLow.push_back(magnified(m_sides.columnLow[j] - x[j], exponent));
    about.columnHigh.push_back(magnified(m_sides.columnHigh[j] - x[j], exponent));
  }
  return about;
}

long double ScaledProgram::excess(std::span<const long double> x) const {
  const RowSums at = rowSums(x);
  long double largest = 0;
  for (std::size_t i = 0; i < at.value.size(); ++i)
    largest = std::max(
        largest, excessOf(at.value[i], m_sides.rowLow[i], m_sides.rowHigh[i], at.magnitude[i]));
  return largest;
}

long double ScaledProgram::unscaledX(long double x, std::size_t column) const {
  return std::ldexp(x, m_columnExponents[column] - m_sideExponent);
}

double ScaledProgram::unscaledDual(double price, std::size_t row) const {
  const double sign = m_program.objective == Objective::least ? 1.0 : -1.0;
  const double dual = sign * std::ldexp(price, m_rowExponents[row] - m_costExponent);
  return dual == 0 ? 0 : dual;
}

}  // namespace vexa
