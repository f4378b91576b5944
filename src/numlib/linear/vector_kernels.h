// Loops over rows and tiles, each compiled for several vector widths; the processor's best is
// chosen at the first use.
//
// Functions named `exact...` round every product and every sum by itself, in the stated order, so
// that they give the same bits on every machine. The others fuse and reorder.
#pragma once

#include <cstddef>

namespace vexa {

struct VectorKernels {
  const char* name;

  // target[j] += f[0] row0[j] + f[1] row1[j] + ..., added from the left, where row k+1 lies
  // `stride` behind row k. With negative `stride` the rows go upward. target may not overlap the
  // rows.
  void (*exactAddRows)(double* target, const double* f, int count, const double* rows,
                       std::ptrdiff_t stride, std::size_t length);
  // target[j] -= f * row[j].
  void (*exactSubtractRow)(double* target, double f, const double* row, std::size_t length);
  // A step of elimination in `count` rows, `stride` apart: the first element of each is multiplied
  // by reciprocal, and the row loses that many times the pivot's row from the second on.
  void (*exactEliminate)(double* rows, std::ptrdiff_t stride, int count, double reciprocal,
                         const double* pivot, std::size_t length);
  // As exactAddRows.
  void (*addRows)(double* target, const double* f, int count, const double* rows,
                  std::ptrdiff_t stride, std::size_t length);
  double (*dot)(const double* a, const double* b, std::size_t length);

  // A tile of tileRows x tileCols: c[i][j] += sum over k < depth of a[k*tileRows + i] times
  // b[k*tileCols + j]; rows of c are `stride` apart. a and b are packed without gaps.
  int tileRows, tileCols;
  void (*addTile)(int depth, const double* a, const double* b, double* c, std::ptrdiff_t stride);
};

// The best that this processor runs.
const VectorKernels& vectorKernels();
// Those of a width: 0 for plain, then wider; null beyond what this processor runs. For tests.
const VectorKernels* vectorKernelsOfWidth(int width);

}  // namespace vexa
