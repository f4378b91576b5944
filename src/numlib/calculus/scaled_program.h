// A linear program in numbers around 1, as a library with absolute tolerances wants it.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "numlib/calculus/linear_program.h"

namespace vexa {

// Rows, columns, costs and sides are scaled by powers of two, each by the geometric mean of its
// largest and smallest magnitude again and again, so nothing is rounded. Always a minimum; the
// matrix by columns, without its zeros.
class ScaledProgram {
 public:
  // Bounds of rows and columns, infinite where there is none.
  struct Sides {
    std::vector<double> rowLow, rowHigh, columnLow, columnHigh;
  };

  explicit ScaledProgram(const LinearProgram& program);

  int rows() const { return m_program.a.rows; }
  int cols() const { return m_program.a.cols; }
  std::span<const int> starts() const { return m_starts; }
  std::span<const int> indices() const { return m_indices; }
  std::span<const double> values() const { return m_values; }
  std::span<const double> costs() const { return m_costs; }
  const Sides& sides() const { return m_sides; }
  // Whether a column without elements lowers the costs for ever. It stands still in the sides, as
  // all such columns do, where it is best: the library takes one for a contradiction.
  bool hasFreeGain() const { return m_hasFreeGain; }
  // Puts a point between the bounds of the columns.
  void clamp(std::span<long double> x) const;

  // The same program about a point, magnified: what is left of the sides there, times 2^exponent.
  Sides sidesAbout(std::span<const long double> x, int exponent) const;
  // The largest excess of a row over its side, against the magnitudes that meet there.
  long double excess(std::span<const long double> x) const;

  // Numbers of the program as it was given; columns and rows counted from 0.
  long double unscaledX(long double x, std::size_t column) const;
  double unscaledDual(double price, std::size_t row) const;

 private:
  void findExponents();
  void scaleRow(int row, bool withSide);
  void scaleColumn(int column);
  void scaleCosts();
  void scaleSides();
  void gather();
  void settleEmptyColumns();
  // A x, and the sums of the magnitudes in it.
  struct RowSums {
    std::vector<long double> value, magnitude;
  };
  RowSums rowSums(std::span<const long double> x) const;

  const LinearProgram& m_program;
  // a(i, j) is multiplied by 2^(row i + column j), c(j) by 2^(cost + column j), b(i) by
  // 2^(row i + side), bounds and x(j) by 2^(side - column j).
  std::vector<int> m_rowExponents, m_columnExponents;
  int m_costExponent = 0, m_sideExponent = 0;
  std::vector<double> m_costs, m_values;
  std::vector<int> m_starts, m_indices;
  Sides m_sides;
  bool m_hasFreeGain = false;
};

}  // namespace vexa
