#pragma once

// A matrix is one zero-filled block of rows x cols doubles, row after row, with a row table of
// rows + 1 entries beside it: entry 0 locates nothing, entry i locates row i. Rows, columns and
// elements are numbered from 1. Several names may share one Matrix object: a `mat` parameter and
// the caller's variable are two names of one matrix, so its order changes for both at once. The
// object's address is stable for as long as its variable lives; copying a pointer copies no matrix.
//
// A complex value is a 1 x 2 matrix (real part, imaginary part). A string is a 1 x n matrix whose
// elements hold seven characters each; see text_string.h.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

#include "numlib/matrix_view.h"

namespace vexa {

// Marks a string's record and the eighth byte of each of its elements.
inline constexpr char stringMark = 'S';

class Matrix {
 public:
  Matrix() = default;
  ~Matrix() { release(); }
  Matrix(const Matrix&) = delete;
  Matrix& operator=(const Matrix&) = delete;

  int rows() const { return m_rows; }
  int cols() const { return m_cols; }
  std::size_t size() const {
    return static_cast<std::size_t>(m_rows) * static_cast<std::size_t>(m_cols);
  }

  double* row(int i) { return m_rowTable[i]; }
  const double* row(int i) const { return m_rowTable[i]; }
  double& at(int i, int j) { return m_rowTable[i][j - 1]; }
  double at(int i, int j) const { return m_rowTable[i][j - 1]; }
  std::span<double> elements() { return {m_block, size()}; }
  std::span<const double> elements() const { return {m_block, size()}; }
  MatrixView view() { return {m_block, m_rows, m_cols}; }
  ConstMatrixView view() const { return {m_block, m_rows, m_cols}; }

  bool isString() const { return m_isString; }
  void setString(bool yes) { m_isString = yes; }

  // The decomposition tag of the factorising built-ins; 0 for plain elements. One byte is enough
  // for all of them but gauss, which counts unknowns.
  int tag() const { return m_tag; }
  void setTag(int tag) { m_tag = tag; }

  // Gives the matrix a new zero-filled block, plain (no tag, no string). False, with the matrix
  // unchanged, when rows x cols is not positive or memory cannot be had.
  [[nodiscard]] bool reshape(int rows, int cols);
  // Exchanges contents, tag and string mark; names stay with their objects.
  void swapContents(Matrix& other) noexcept;

  // While pinned, the matrix is an operand or bound to a parameter: `delete` refuses it.
  void pin() { ++m_pins; }
  void unpin() { --m_pins; }
  bool pinned() const { return m_pins != 0; }

 private:
  void release() noexcept;

  double* m_block = nullptr;  // start of the one allocation: elements, then the row table
  double** m_rowTable = nullptr;
  int m_rows = 0, m_cols = 0;
  int m_pins = 0;
  int m_tag = 0;
  bool m_isString = false;
};

// Keeps a matrix from being deleted while an operator or a call still needs it.
class MatrixPin {
 public:
  explicit MatrixPin(Matrix* matrix) : m_matrix(matrix) {
    if (m_matrix) m_matrix->pin();
  }
  ~MatrixPin() {
    if (m_matrix) m_matrix->unpin();
  }
  MatrixPin(const MatrixPin&) = delete;
  MatrixPin& operator=(const MatrixPin&) = delete;

 private:
  Matrix* m_matrix;
};

// Bytes of matrix blocks that the process may hold at once; the machine's memory unless a front or
// a test sets a smaller bound. Requests beyond it fail before memory is touched.
void setMatrixMemoryLimit(std::uint64_t bytes);
std::uint64_t matrixMemoryInUse();
// Whether the bound leaves room for so many more doubles: for lists that a matrix is made from.
bool matrixMemoryHolds(std::uint64_t elements);

// A zero-filled matrix. Raises key 28 when rows x cols is 0 or memory cannot be had.
std::unique_ptr<Matrix> newMatrix(int rows, int cols);
// Redefines an existing matrix: new order, zeros. Raises key 28 and leaves it unchanged.
void redefineMatrix(Matrix& matrix, int rows, int cols);

// Doubles numbered from 1, zeros at first. newVector(0) raises key 39.
class WorkVector {
 public:
  // Throws std::bad_alloc. A long vector takes its memory as it is used.
  explicit WorkVector(std::size_t n);
  std::size_t size() const { return m_size; }
  double& operator[](std::size_t i) { return m_values[i]; }
  double operator[](std::size_t i) const { return m_values[i]; }

 private:
  struct Releaser {
    void operator()(double* values) const { std::free(values); }
  };
  std::unique_ptr<double[], Releaser> m_values;
  std::size_t m_size;
};
std::unique_ptr<WorkVector> newVector(std::size_t n);

}  // namespace vexa
