#include "values/value_builtins.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/special/fractions.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"
#include "values/number_format.h"
#include "values/text_string.h"

namespace vexa {

namespace {

constexpr double largestWholeNumber = 9007199254740992.0;  // 2^53
constexpr double usualDenominator = 1000000;

// The matrix that a name without brackets must stand for; key 59 and null when it stands for none.
Matrix* existingMatrix(const SizedName& target) {
  Matrix* matrix = findMatrix(target.name);
  if (!matrix) raiseAtName(ErrorKey::matrixNameExpected, target.position);
  return matrix;
}

// Elements set anew: neither a decomposition nor a text any more.
void markPlain(Matrix& matrix) {
  matrix.setTag(0);
  matrix.setString(false);
}

void setDiagonal(Matrix& matrix) {
  for (int i = 1; i <= std::min(matrix.rows(), matrix.cols()); ++i) matrix.at(i, i) = 1.0;
}

// Keys 68 and 25 for a list that does not have the wanted length.
bool checkCount(std::size_t count, std::uint64_t wanted) {
  if (count == wanted) return true;
  raiseError(count < wanted ? ErrorKey::tooFewElements : ErrorKey::tooLong);
  return false;
}

// ---- defmat, defsym ----

// Gives a sized name its brackets' order, and one without brackets the order that it has.
bool takeExistingOrder(SizedName& target) {
  if (target.sized) return true;
  const Matrix* matrix = existingMatrix(target);
  if (!matrix) return false;
  target.rows = matrix->rows();
  target.cols = matrix->cols();
  return true;
}

void fillMatrix(SizedName target, const std::vector<double>& values) {
  if (!takeExistingOrder(target)) return;
  const std::uint64_t wanted =
      static_cast<std::uint64_t>(target.rows) * static_cast<std::uint64_t>(target.cols);
  if (!checkCount(values.size(), wanted)) return;
  std::ranges::copy(values, makeSized(target).elements().begin());
}

bool isSymmetric(const Matrix& matrix) {
  for (int i = 2; i <= matrix.rows(); ++i)
    for (int j = 1; j < i; ++j)
      if (matrix.at(i, j) != matrix.at(j, i)) return false;
  return true;
}

// A single order stands for a square; one that is not square raises key 70.
bool takeSquareOrder(SizedName& target) {
  if (!takeExistingOrder(target)) return false;
  if (target.sized && !target.twoOrders) target.rows = target.cols;
  return target.rows == target.cols || (raiseError(ErrorKey::squareMatrixExpected), false);
}

// What `defsym` can fill: a square, symmetric already when it has no brackets.
bool takeSymmetricOrder(SizedName& target) {
  if (!takeSquareOrder(target)) return false;
  if (target.sized || isSymmetric(*findMatrix(target.name))) return true;
  raiseError(ErrorKey::notSymmetric);
  return false;
}

// The values are the lower triangle, row by row.
void fillSymmetric(SizedName target, const std::vector<double>& values) {
  if (!takeSymmetricOrder(target)) return;
  const auto order = static_cast<std::uint64_t>(target.rows);
  if (!checkCount(values.size(), order * (order + 1) / 2)) return;
  Matrix& matrix = makeSized(target);
  auto value = values.begin();
  for (int i = 1; i <= matrix.rows(); ++i)
    for (int j = 1; j <= i; ++j) matrix.at(i, j) = matrix.at(j, i) = *value++;
}

// ---- zero, unit, zeronew, resizemat ----

// Whether the built-in can act on the target, whose last token is current; orders that follow from
// the form are filled in.
bool checkOrderTarget(int builtin, SizedName& target) {
  const bool resizes = builtin == builtinCode("resizemat");
  if (!target.sized && (resizes || builtin == builtinCode("zeronew"))) {
    expectChar('[');
    return false;
  }
  if (resizes) {
    const Matrix* matrix = existingMatrix(target);
    if (!matrix) return false;
    if (matrix->isString()) {
      raiseAtName(ErrorKey::matrixNameExpected, target.position);
      return false;
    }
  }
  return builtin == builtinCode("unit") ? takeSquareOrder(target) : takeExistingOrder(target);
}

// The new contents of a target with brackets.
std::unique_ptr<Matrix> newContents(int builtin, const SizedName& target) {
  auto fresh = newMatrix(target.rows, target.cols);
  if (builtin == builtinCode("unit")) setDiagonal(*fresh);
  if (builtin != builtinCode("resizemat")) return fresh;
  // The orders of a later target may have run a function that deleted this one.
  if (const Matrix* old = existingMatrix(target)) {
    const int rows = std::min(old->rows(), fresh->rows());
    const int cols = std::min(old->cols(), fresh->cols());
    for (int i = 1; i <= rows; ++i) std::copy_n(old->row(i), cols, fresh->row(i));
  }
  return fresh;
}

void clearInPlace(int builtin, Matrix& matrix) {
  std::ranges::fill(matrix.elements(), 0.0);
  if (builtin == builtinCode("unit")) setDiagonal(matrix);
  markPlain(matrix);
}

// ---- subop ----

// A block of A, located by its first element and the order of B.
struct Block {
  int row = 0, col = 0, rows = 0, cols = 0;
};

bool checkBlock(const Matrix& a, const Block& block) {
  if (block.row >= 1 && block.col >= 1 && block.row <= a.rows() - block.rows + 1 &&
      block.col <= a.cols() - block.cols + 1)
    return true;
  raiseError(ErrorKey::indexOutOfRange);
  return false;
}

// subop(G, A, i, j, B), from B on.
void getBlock(const MatrixArgument& a, Block block) {
  SizedName target = readSizedName();
  if (!takeExistingOrder(target)) return;
  expectChar(')');
  if (findMatrix(target.name) == a.get()) {
    raiseError(ErrorKey::conflictsWithParameter, target.name);
    return;
  }
  block.rows = target.rows;
  block.cols = target.cols;
  if (!checkBlock(*a, block)) return;
  Matrix& result = makeSized(target);
  for (int i = 0; i < block.rows; ++i)
    std::copy_n(a->row(block.row + i) + (block.col - 1), block.cols, result.row(i + 1));
}

void storeBlock(Matrix& a, const Block& block, const Matrix& b, char option) {
  for (int i = 0; i < block.rows; ++i) {
    const double* source = b.row(i + 1);
    double* target = a.row(block.row + i) + (block.col - 1);
    for (int j = 0; j < block.cols; ++j) {
      if (option == 'P')
        target[j] = source[j];
      else if (option == 'A')
        target[j] += source[j];
      else
        target[j] -= source[j];
    }
  }
  a.setTag(0);
}

// subop with P, A and S, from B on.
void putBlock(const MatrixArgument& a, Block block, char option) {
  const MatrixArgument b = readMatrix();
  const std::string name(interpreter().scanner.tokenText);
  expectChar(')');
  if (b.get() == a.get()) {
    raiseError(ErrorKey::conflictsWithParameter, name);
    return;
  }
  block.rows = b->rows();
  block.cols = b->cols();
  if (checkBlock(*a, block)) storeBlock(*a, block, *b, option);
}

// ---- str2val, val2str ----

double textValue() {
  const std::string text = readText();
  expectChar(')');
  const std::optional<double> value = textToNumber(text);
  if (!value) raiseError(ErrorKey::invalidData);
  return value.value_or(0.0);
}

double storePrintedText() {
  acceptChar('%');
  const std::string name = readResultName();
  expectChar(',');
  const std::string text = readTextList();
  expectChar(')');
  assignText(name, text);
  return noResult();
}

}  // namespace

double defmatBuiltin() {
  const bool symmetric = interpreter().currentBuiltin == builtinCode("defsym");
  expectChar('(');
  const SizedName target = readSizedName();
  // What speaks against the target is said while its name is current; the list may change it, so
  // the same is asked again before the target is filled.
  SizedName checked = target;
  if (!(symmetric ? takeSymmetricOrder(checked) : takeExistingOrder(checked))) return noResult();
  expectChar(',');
  const std::vector<double> values = readDataList();
  expectChar(')');
  if (symmetric)
    fillSymmetric(target, values);
  else
    fillMatrix(target, values);
  return noResult();
}

// All targets are read, checked and prepared before the first is changed.
double orderBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  std::vector<SizedName> targets;
  do {
    targets.push_back(readSizedName());
    if (!checkOrderTarget(builtin, targets.back())) return noResult();
  } while (moreArguments());

  std::vector<std::unique_ptr<Matrix>> contents;
  contents.reserve(targets.size());
  for (const SizedName& target : targets)
    contents.push_back(target.sized ? newContents(builtin, target) : nullptr);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    Matrix& matrix = resultMatrix(targets[i].name);
    if (contents[i])
      matrix.swapContents(*contents[i]);
    else
      clearInPlace(builtin, matrix);
  }
  return noResult();
}

double subopBuiltin() {
  expectChar('(');
  const char option = readOption("PASG");
  expectChar(',');
  const MatrixArgument a = readMatrix();
  expectChar(',');
  Block block;
  block.row = truncateIndex(evalScalarArg(), ErrorKey::indexOutOfRange);
  expectChar(',');
  block.col = truncateIndex(evalScalarArg(), ErrorKey::indexOutOfRange);
  expectChar(',');
  if (option == 'G')
    getBlock(a, block);
  else
    putBlock(a, block, option);
  return noResult();
}

double sizeBuiltin() {
  const bool rows = interpreter().currentBuiltin == builtinCode("nrow");
  expectChar('(');
  const MatrixArgument matrix = readMatrix(true);
  expectChar(')');
  return rows ? matrix->rows() : matrix->cols();
}

double mantissaBuiltin() {
  expectChar('(');
  const DecimalParts parts = decimalMantissa(evalScalarArg());
  if (moreArguments()) {
    const ScalarTarget exponent = readScalarName();
    expectChar(')');
    exponent.store(parts.exponent);
  }
  return parts.mantissa;
}

double tofractionBuiltin() {
  expectChar('(');
  const double x = evalScalarArg();
  double largest = usualDenominator;
  if (moreArguments()) {
    largest = evalScalarArg();
    if (!(largest >= 1 && largest <= largestWholeNumber)) {
      raiseError(ErrorKey::invalidData);
      largest = usualDenominator;
    }
    expectChar(')');
  }
  const std::optional<Fraction> fraction = nearestFraction(x, largest);
  if (!fraction) {
    raiseError(ErrorKey::floatingPoint);
    return 0.0;
  }
  if (Matrix* parts = newTempMatrix(1, 2)) {
    parts->at(1, 1) = fraction->numerator;
    parts->at(1, 2) = fraction->denominator;
    setBuiltinResult(parts);
  }
  return fraction->numerator / fraction->denominator;
}

double conversionBuiltin() {
  const bool toNumber = interpreter().currentBuiltin == builtinCode("str2val");
  expectChar('(');
  return toNumber ? textValue() : storePrintedText();
}

double isvarBuiltin() {
  const Scanner& scanner = interpreter().scanner;
  expectChar('(');
  getToken();
  const bool isName =
      scanner.tokenType == TOKEN_STRING || scanner.tokenType == TOKEN_KEYWORD || scanner.isWord();
  if (!isName) raiseError(ErrorKey::variableNameExpected);
  const std::string name(scanner.tokenText);
  expectChar(')');
  if (const Matrix* matrix = findMatrix(name)) return matrix->isString() ? 4.0 : 3.0;
  switch (lookUpName(name)) {
    case NameKind::local:
    case NameKind::dummy:
    case NameKind::variable:
      return 1.0;
    default:
      return 0.0;
  }
}

}  // namespace vexa
