#include "numlib/eigen/tridiagonal_form.h"

#include <algorithm>
#include <array>
#include <vector>

#include "numlib/eigen/reflections.h"
#include "numlib/linear/dense_kernels.h"

namespace vexa {

namespace {

// Matrices from this order on are worth blocks, of so many reflections.
constexpr int kBlockedOrder = 256;
constexpr int kBlock = 32;

std::size_t size(int count) { return static_cast<std::size_t>(count); }

// Notes h and coupling of row i, whose first i elements become the vector of its reflection.
Reflection reflectRow(MatrixView a, int i, std::span<double> h, std::span<double> coupling) {
  const Reflection reflection = makeReflection({a.row(i), size(i)}, i - 1);
  h[size(i)] = reflection.h;
  coupling[size(i)] = reflection.image;
  return reflection;
}

// The rows first to last - 1. A reflection takes u q' + q u' from the rows above; while the block
// lasts the rows keep what they were, and each catches up when its turn comes.
class TridiagonalBlock {
 public:
  TridiagonalBlock(MatrixView a, MatrixView q, int first, int last)
      : m_a(a), m_q(q), m_first(first), m_last(last) {}

  bool reduce(std::span<double> h, std::span<double> coupling, const InterruptTest& interrupted) {
    for (int i = m_last - 1; i >= m_first; --i) {
      if (asksToStop(interrupted)) return false;
      catchUp(i);
      const Reflection reflection = reflectRow(m_a, i, h, coupling);
      const std::span<double> q{m_q.row(i - m_first), size(i)};
      std::ranges::fill(q, 0.0);
      if (reflection.h != 0.0) findPartner(i, reflection.h, q);
    }
    const ConstBlock u = blockOf(m_a).part(m_first, 0, m_last - m_first, m_first);
    const ConstBlock q = blockOf(m_q).part(0, 0, m_last - m_first, m_first);
    const Block rest = blockOf(m_a).part(0, 0, m_first, m_first);
    return subtractLowerProduct(u, Taken::transposed, q, Taken::plain, rest, interrupted) &&
           subtractLowerProduct(q, Taken::transposed, u, Taken::plain, rest, interrupted);
  }

 private:
  // The first `cols` columns of what the rows of this block below row i hold.
  SubMatrix vectorsBelow(int i, int cols) const {
    return subMatrix(m_a, i + 1, 0, m_last - i - 1, cols);
  }
  SubMatrix partnersBelow(int i, int cols) const {
    return subMatrix(m_q, i + 1 - m_first, 0, m_last - i - 1, cols);
  }

  void catchUp(int i) const {
    std::array<double, kBlock> u{}, q{};
    for (int k = i + 1; k < m_last; ++k) {
      u[size(k - i - 1)] = -m_a(k, i);
      q[size(k - i - 1)] = -m_q(k - m_first, i);
    }
    addRows(m_a.row(i), u.data(), partnersBelow(i, i + 1));
    addRows(m_a.row(i), q.data(), vectorsBelow(i, i + 1));
  }

  void findPartner(int i, double h, std::span<double> q) const {
    const std::span<const double> u{m_a.row(i), size(i)};
    multiplySymmetric(subMatrix(m_a, 0, 0, i, i), u, q);
    std::array<double, kBlock> alongU{}, alongQ{};
    for (int k = i + 1; k < m_last; ++k) {
      alongU[size(k - i - 1)] = -rowProduct(m_a.row(k), u.data(), i);
      alongQ[size(k - i - 1)] = -rowProduct(m_q.row(k - m_first), u.data(), i);
    }
    addRows(q.data(), alongQ.data(), vectorsBelow(i, i));
    addRows(q.data(), alongU.data(), partnersBelow(i, i));
    makePartner(q, u, h);
  }

  MatrixView m_a, m_q;
  int m_first, m_last;
};

// I - V' T V is the product of the reflections of rows first to last - 1 of a, the last one
// leftmost; V holds their vectors row by row, T is a lower triangle.
class ReflectionBlock {
 public:
  // Takes the vectors and leaves rows and columns of the unit matrix.
  ReflectionBlock(MatrixView a, std::span<double> values, int first, int last)
      : m_count(last - first), m_order(last), m_vectors(size(m_count) * size(last)) {
    for (int k = 0; k < m_count; ++k) {
      const int i = first + k;
      std::copy_n(a.row(i), i, vectors().row(k));
      addToTriangle(k, values[size(i)]);
      values[size(i)] = a(i, i);
      for (int j = 0; j < i; ++j) a(i, j) = a(j, i) = 0.0;
      a(i, i) = 1.0;
    }
  }

  // The leading part of a, of this block's order, is multiplied from the left.
  bool multiply(MatrixView a, const InterruptTest& interrupted) {
    std::vector<double> store(m_vectors.size());
    const MatrixView products{store.data(), m_count, m_order};
    const Block leading = blockOf(a).part(0, 0, m_order, m_order);
    if (!addProductInPieces(1.0, blockOf(vectors()), Taken::plain, leading, Taken::plain,
                            blockOf(products), interrupted)) {
      return false;
    }
    for (int k = m_count - 1; k >= 0; --k) {
      for (int j = 0; j < m_order; ++j) products(k, j) *= m_triangle[size(k)][size(k)];
      addRows(products.row(k), m_triangle[size(k)].data(), subMatrix(products, 0, 0, k, m_order));
    }
    return addProductInPieces(-1.0, blockOf(vectors()), Taken::transposed, blockOf(products),
                              Taken::plain, leading, interrupted);
  }

 private:
  MatrixView vectors() { return {m_vectors.data(), m_count, m_order}; }

  void addToTriangle(int k, double h) {
    const double factor = h == 0.0 ? 0.0 : 1.0 / h;
    auto& row = m_triangle[size(k)];
    for (int l = 0; l < k; ++l) {
      const double along = -factor * rowProduct(vectors().row(l), vectors().row(k), m_order);
      for (int j = 0; j <= l; ++j) row[size(j)] += along * m_triangle[size(l)][size(j)];
    }
    row[size(k)] = factor;
  }

  int m_count, m_order;
  std::vector<double> m_vectors;
  std::array<std::array<double, kBlock>, kBlock> m_triangle{};
};

}  // namespace

bool makeTridiagonal(MatrixView a, std::span<double> h, std::span<double> coupling,
                     const InterruptTest& interrupted) {
  h[0] = coupling[0] = 0.0;
  int last = a.rows;
  if (last >= kBlockedOrder) {
    std::vector<double> partners(size(kBlock) * size(a.cols));
    for (; last >= kBlockedOrder; last -= kBlock) {
      TridiagonalBlock block(a, {partners.data(), kBlock, a.cols}, last - kBlock, last);
      if (!block.reduce(h, coupling, interrupted)) return false;
    }
  }
  std::vector<double> work(size(last));
  for (int i = last - 1; i > 0; --i) {
    if (asksToStop(interrupted)) return false;
    const Reflection reflection = reflectRow(a, i, h, coupling);
    const std::span<const double> u{a.row(i), size(i)};
    if (reflection.h != 0.0) reflectSymmetric(subMatrix(a, 0, 0, i, i), u, reflection.h, work);
  }
  return true;
}

bool accumulateReflections(MatrixView a, std::span<double> values,
                           const InterruptTest& interrupted) {
  // The rows that were reduced in blocks.
  const int blocked = a.rows < kBlockedOrder ? 0 : (a.rows - kBlockedOrder) / kBlock + 1;
  const int first = a.rows - blocked * kBlock;
  std::vector<double> work(size(first));
  for (int i = 0; i < first; ++i) {
    if (asksToStop(interrupted)) return false;
    const std::span<double> u{a.row(i), size(i)};
    if (values[size(i)] != 0.0) reflectColumns(subMatrix(a, 0, 0, i, i), u, values[size(i)], work);
    values[size(i)] = a(i, i);
    a(i, i) = 1.0;
    for (int j = 0; j < i; ++j) a(i, j) = a(j, i) = 0.0;
  }
  for (int i = first; i < a.rows; i += kBlock) {
    if (!ReflectionBlock(a, values, i, i + kBlock).multiply(a, interrupted)) return false;
  }
  return true;
}

}  // namespace vexa
