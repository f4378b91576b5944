#pragma once

// Kinds of arguments that the numerical families share, on top of argument_readers.h: data,
// vectors, element-wise numbers and words, and the checks and stores that go with them.
//
// A handler reads all of its arguments first, then checks shapes (key 64), then variables named
// twice (76), then values, and stores last, so that a fault leaves every variable as it was. So the
// readers here only read; what they read is asked for afterwards, when no text of the user's is
// evaluated any more that could change it.

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "numlib/matrix_view.h"
#include "values/argument_readers.h"

namespace vexa {

// Shows a message and raises `key`; gives 0.
double refuse(std::string_view message, ErrorKey key = ErrorKey::invalidData);

// ---- Whole numbers ----

// Truncates toward zero; key 34, and `low`, when the result is outside of the range.
int requireWhole(double x, int low, int high);

// ---- Data ----

// Numbers that are only read: those of a matrix, of a row or of a column, in storage order.
class DataArgument {
 public:
  DataArgument() = default;
  explicit DataArgument(MatrixReference reference) : m_reference(std::move(reference)) {}

  int rows() const;
  int cols() const;
  std::size_t size() const;
  bool isVector() const { return rows() == 1 || cols() == 1; }
  // The matrix that the data are of, for "the same variable".
  const Matrix* matrix() const { return m_reference.matrix.get(); }
  // The elements, in place where they stand together. Ask when all arguments have been read: the
  // span ends with this object and with the next evaluation of user text. Key 37 when the matrix
  // has lost the row or column by then.
  std::span<const double> elements();
  // The same as rows and columns; a vector as it lies.
  ConstMatrixView view();

 private:
  bool partExists() const;
  void copyPart();

  MatrixReference m_reference;
  std::vector<double> m_copy;
};

// A matrix reference or a `!` expression, with the errors of those readers.
DataArgument readData();

// Key 64 when one of them is neither a single row nor a single column, or when they differ in
// length; false then.
bool requireVectors(std::initializer_list<const DataArgument*> vectors);

// Key 63 when a number is none or infinite; false then.
bool requireFinite(std::span<const double> values);

// ---- Element-wise numbers ----

class ElementwiseNumber {
 public:
  ElementwiseNumber() = default;
  explicit ElementwiseNumber(double number) : m_number(number) {}
  explicit ElementwiseNumber(MatrixArgument matrix) : m_matrix(std::move(matrix)) {}

  const Matrix* matrix() const { return m_matrix.get(); }
  bool isMatrix() const { return matrix() != nullptr; }
  double number() const { return m_number; }

 private:
  double m_number = 0;
  MatrixArgument m_matrix;
};

// A number or a `!` expression.
ElementwiseNumber readElementwise();

// The value of a call: the function of the numbers, or, with any matrix among the arguments, a
// matrix of the function's values, numbers standing beside every element. Matrices of different
// orders raise key 64. At most elementwiseLimit arguments; Esc is heard between elements.
inline constexpr std::size_t elementwiseLimit = 4;
using ElementFunction = std::function<double(std::span<const double>)>;
double applyElementwise(std::span<const ElementwiseNumber> arguments,
                        const ElementFunction& function);

// ---- Words ----

// Behind an argument: true, and the comma consumed, when another one follows that is no word.
bool moreBeforeWords();

// The words at the end of an argument list, any of those allowed in any order, and the closing
// parenthesis:
//
//   for (WordReader words({"weights=", "same"}); words.next();) {
//     if (words.index() == 0) { expectChar(','); weights = readData(); }
//
// An argument that is no word raises key 94, an unknown word 71, one that came before 34.
class WordReader {
 public:
  WordReader(std::initializer_list<std::string_view> allowed)
      : m_allowed(allowed), m_seen(allowed.size()) {}

  bool next();
  // Which of the allowed words was read last, from 0.
  std::size_t index() const { return m_index; }

 private:
  std::vector<std::string_view> m_allowed;
  std::vector<bool> m_seen;
  std::size_t m_index = 0;
};

// ---- Results ----

// Key 76, citing the name, when a result names one of the matrices or the same variable as a result
// before it; false then. Empty names, of results left out, are passed over.
bool requireDistinct(std::initializer_list<std::string_view> results,
                     std::initializer_list<const Matrix*> matrices = {});

// Stores values as a 1 x n row, or a whole view, under a result name.
void storeRow(std::string_view name, std::span<const double> values);
void storeMatrix(std::string_view name, ConstMatrixView values);

// ---- Settings ----

// A limit or bound as it was written: infinite when its magnitude is i# or more.
double limitValue(double x);

// The value of a preset global, whatever locals a program declares.
double presetValue(std::string_view name);
void setPreset(std::string_view name, double x);
// The relative error aimed at: tol# x 1e-6, held within 1e-14 and 1e-2.
double accuracyAimed();
// The bound of iterations, subdivisions and scans: iter# without its decimals, at least 1.
int iterationBound();

}  // namespace vexa
