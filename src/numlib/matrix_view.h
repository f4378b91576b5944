// Matrices as the numerical routines see them: rows * cols doubles in one block, row after row.
// A view borrows the block; whoever made the view keeps the block alive.
#pragma once

#include <cstddef>
#include <span>

namespace vexa {

struct MatrixView {
  double* data = nullptr;
  int rows = 0;
  int cols = 0;

  // Row i counted from 0; element (i, j) counted from 0; element (i, j) counted from 1.
  double* row(int i) const {
    return data + static_cast<std::size_t>(i) * static_cast<std::size_t>(cols);
  }
  double& operator()(int i, int j) const { return row(i)[j]; }
  double& at(int i, int j) const { return row(i - 1)[j - 1]; }

  std::size_t size() const {
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
  }
  std::span<double> elements() const { return {data, size()}; }
};

// The same, for reading only. Any MatrixView is one.
struct ConstMatrixView {
  const double* data = nullptr;
  int rows = 0;
  int cols = 0;

  ConstMatrixView() = default;
  ConstMatrixView(const double* block, int rowCount, int colCount)
      : data(block), rows(rowCount), cols(colCount) {}
  ConstMatrixView(MatrixView m) : data(m.data), rows(m.rows), cols(m.cols) {}

  const double* row(int i) const {
    return data + static_cast<std::size_t>(i) * static_cast<std::size_t>(cols);
  }
  double operator()(int i, int j) const { return row(i)[j]; }
  double at(int i, int j) const { return row(i - 1)[j - 1]; }

  std::size_t size() const {
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
  }
  std::span<const double> elements() const { return {data, size()}; }
};

}  // namespace vexa
