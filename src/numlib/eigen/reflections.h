// Householder reflections I - u u' / h, and the passes over a matrix that apply them.
//
// A pass walks along rows, so that it moves through memory in order. Sums over a row are taken in
// eight interleaved parts, which are the same on every machine.
#pragma once

#include <cstddef>
#include <span>

#include "numlib/matrix_view.h"

namespace vexa {

// A rectangular part of a matrix: rows of `cols` numbers, each row `stride` behind the one before.
struct SubMatrix {
  double* data = nullptr;
  int rows = 0;
  int cols = 0;
  std::ptrdiff_t stride = 0;

  double* row(int i) const { return data + i * stride; }
};

// The part of m whose first element is (i, j), counted from 0.
inline SubMatrix subMatrix(MatrixView m, int i, int j, int rows, int cols) {
  return {m.row(i) + j, rows, cols, m.cols};
}

// The sum of a[k] * b[k] for the n first k.
double rowProduct(const double* a, const double* b, int n);

// y[j] += the sum over the rows k of factors[k] * block(k, j), the first row first.
void addRows(double* y, const double* factors, const SubMatrix& block);

// block(i, j) += factors[i] * y[j].
void addProducts(const SubMatrix& block, const double* factors, const double* y);

struct Reflection {
  double h = 0.0;      // half of u'u; 0 when nothing needs to be reflected
  double image = 0.0;  // what the pivot becomes; the other elements become 0
};

// Turns x into the vector u of the reflection that leaves only x[pivot]. u is x times a power of
// two, changed at the pivot. x stays as it is when only its pivot differs from 0.
Reflection makeReflection(std::span<double> x, int pivot);

// block = (I - u u' / h) * block. `work` holds block.cols numbers.
void reflectColumns(const SubMatrix& block, std::span<const double> u, double h,
                    std::span<double> work);

// block = block * (I - u u' / h).
void reflectRows(const SubMatrix& block, std::span<const double> u, double h);

// The symmetric matrix whose lower triangle stands in block is reflected from both sides. `work`
// holds block.rows numbers; the upper triangle is neither read nor changed.
void reflectSymmetric(const SubMatrix& block, std::span<const double> u, double h,
                      std::span<double> work);

// p = S u for the symmetric matrix S whose lower triangle stands in block.
void multiplySymmetric(const SubMatrix& block, std::span<const double> u, std::span<double> p);

// Turns p = S u into q, for which the reflected S is S - u q' - q u'.
void makePartner(std::span<double> p, std::span<const double> u, double h);

// A power of two that brings numbers of the given largest magnitude near 1; 1 when they are so
// near to it that their squares and the squares' sums are safe, and for 0, infinity and
// not-a-number.
double safeScale(double largest);
// The largest magnitude; not-a-number is passed over.
double largestMagnitude(std::span<const double> x);

}  // namespace vexa
