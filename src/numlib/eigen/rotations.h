// Plane rotations of the columns of a matrix, kept back and applied many at a time.
//
// The iterations for eigenvalues and singular values rotate neighbouring columns, one pair after
// the other, while their decisions depend on a diagonal and its neighbours only. So the rotations
// are noted first; when enough have come together, each group of rows takes all of them in one go
// while it stays in the nearest cache.
#pragma once

#include <cstddef>
#include <vector>

#include "numlib/eigen/iteration_control.h"
#include "numlib/matrix_view.h"

namespace vexa {

class ColumnRotations {
 public:
  // Rotates the columns of `target`, which must outlive this.
  ColumnRotations(MatrixView target, const InterruptTest& interrupted);

  // A chain starts at a column, the carried one, and meets its neighbours one after the other:
  // those above it in number (ascending) or below it (descending). Each rotation (c, s) turns the
  // carried column x and the next one y into the finished column c x + s y, which stays at the
  // place of x, and into c y - s x, which is carried on in the place of y.
  enum class Direction { ascending, descending };
  void beginChain(int column, Direction direction);
  // A fan keeps its hub: each rotation turns the hub x and the next column y, in ascending order
  // from `first`, into c x + s y and c y - s x, each in its place.
  void beginFan(int hub, int first);
  void add(double c, double s) { m_rotations.push_back({c, s}); }

  // Applies what was noted when it has grown long; false when the user wants to stop.
  [[nodiscard]] bool applyWhenLong() { return m_rotations.size() < m_enough || applyAll(); }
  // Applies what was noted; false when the user wants to stop, the matrix is unfinished then.
  [[nodiscard]] bool applyAll();

 private:
  struct Rotation {
    double c, s;
  };
  struct Sweep {
    std::size_t begin;  // of its rotations; they end where those of the next sweep begin
    int start;          // the carried column or the hub
    int first;          // the first column that it meets
    int step;           // from one met column to the next
    bool fan;
  };
  static void applySweep(double* panel, const Sweep& sweep, const Rotation* rotation,
                         std::ptrdiff_t count);
  void applyToPanel(double* panel, int firstRow, int firstCol, int lastCol) const;

  MatrixView m_target;
  const InterruptTest& m_interrupted;
  std::size_t m_enough;
  std::vector<Rotation> m_rotations;
  std::vector<Sweep> m_sweeps;
  std::vector<double> m_panels;  // one for each thread
};

}  // namespace vexa
