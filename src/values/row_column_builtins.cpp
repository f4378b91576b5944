#include "values/row_column_builtins.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "interp/interpreter_state.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"

namespace vexa {

namespace {

enum class Lines { rows, columns };

int countOf(const Matrix& m, Lines lines) { return lines == Lines::rows ? m.rows() : m.cols(); }

// Copies `count` lines of one matrix to another that has as many of the crossing lines.
void copyLines(const Matrix& from, int first, Matrix& to, int target, int count, Lines lines) {
  if (lines == Lines::rows) {
    for (int i = 0; i < count; ++i)
      std::copy_n(from.row(first + i), from.cols(), to.row(target + i));
    return;
  }
  for (int i = 1; i <= from.rows(); ++i)
    std::copy_n(from.row(i) + (first - 1), count, to.row(i) + (target - 1));
}

// A matrix with as many crossing lines as m and `lineCount` of the others; null with key 28.
std::unique_ptr<Matrix> makeLike(const Matrix& m, std::int64_t lineCount, Lines lines) {
  if (lineCount > std::numeric_limits<int>::max()) {
    raiseError(ErrorKey::allocationFailed);
    return nullptr;
  }
  const int count = static_cast<int>(lineCount);
  return lines == Lines::rows ? newMatrix(count, m.cols()) : newMatrix(m.rows(), count);
}

// A number of lines, at least 1; more than a matrix can have stay more than that.
int lineNumber(double x) {
  constexpr int most = std::numeric_limits<int>::max();
  if (x >= most) return most;
  if (x >= 1) return static_cast<int>(x);
  raiseError(ErrorKey::invalidData);
  return 1;
}

void deleteLines(Matrix& m, int first, int n, Lines lines) {
  const int count = countOf(m, lines);
  if (first < 1 || first > count || n > count - first + 1) {
    raiseError(ErrorKey::indexOutOfRange);
    return;
  }
  if (n == count) {
    raiseError(ErrorKey::zeroOrder);
    return;
  }
  const auto rest = makeLike(m, count - n, lines);
  if (!rest) return;
  copyLines(m, 1, *rest, 1, first - 1, lines);
  copyLines(m, first + n, *rest, first, count - n - first + 1, lines);
  m.swapContents(*rest);
}

// How many lines of m the matrix x makes: its own where it has as many crossing lines, one where it
// is a vector of that many elements; otherwise 0.
int linesOf(const Matrix& x, const Matrix& m, Lines lines) {
  const Lines crossing = lines == Lines::rows ? Lines::columns : Lines::rows;
  const int length = countOf(m, crossing);
  if (countOf(x, crossing) == length) return countOf(x, lines);
  return countOf(x, crossing) == 1 && countOf(x, lines) == length ? 1 : 0;
}

// Puts x, or n zero lines where there is none, before line `first`.
void insertLines(Matrix& m, int first, int n, const Matrix* x, Lines lines) {
  const int count = countOf(m, lines);
  if (x) n = linesOf(*x, m, lines);
  if (n == 0) {
    raiseError(ErrorKey::ordersIncompatible);
    return;
  }
  if (first < 1 || first > count + 1) {
    raiseError(ErrorKey::indexOutOfRange);
    return;
  }
  const auto fresh = makeLike(m, std::int64_t{count} + n, lines);
  if (!fresh) return;
  copyLines(m, 1, *fresh, 1, first - 1, lines);
  copyLines(m, first, *fresh, first + n, count - first + 1, lines);
  if (x && countOf(*x, lines) == n) {
    copyLines(*x, 1, *fresh, first, n, lines);
  } else if (x) {
    // A vector that lies the other way.
    const auto elements = x->elements();
    for (int i = 1; i <= static_cast<int>(elements.size()); ++i)
      (lines == Lines::rows ? fresh->at(first, i) : fresh->at(i, first)) =
          elements[static_cast<std::size_t>(i - 1)];
  }
  m.swapContents(*fresh);
}

// Whether the last argument is a matrix: a `!` expression or a name that stands alone. It stays
// unread.
bool matrixFollows() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  bool matrix = scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '!';
  if (!matrix && scanner.tokenType == TOKEN_NAME)
    matrix = findMatrix(scanner.tokenText) && nextCharacter() == ')';
  rescanToken();
  return matrix;
}

}  // namespace

double rowColumnBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  const bool inserts = builtin == builtinCode("insertcol") || builtin == builtinCode("insertrow");
  const bool ofRows = builtin == builtinCode("insertrow") || builtin == builtinCode("deleterow");
  const Lines lines = ofRows ? Lines::rows : Lines::columns;
  expectChar('(');
  const MatrixArgument m = readMatrix();
  if (m.temporary()) raiseError(ErrorKey::matrixNameExpected);
  expectChar(',');
  const int first = truncateIndex(evalScalarArg(), ErrorKey::indexOutOfRange);
  double count = 1;
  MatrixArgument x;
  if (moreArguments()) {
    if (inserts && matrixFollows())
      x = readMatrix();
    else
      count = evalScalarArg();
    expectChar(')');
  }
  const int n = lineNumber(count);
  if (inserts)
    insertLines(*m, first, n, x.get(), lines);
  else
    deleteLines(*m, first, n, lines);
  return noResult();
}

}  // namespace vexa
