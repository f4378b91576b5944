#include "values/numeric_arguments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "values/character_class.h"
#include "values/evaluator_parts.h"

namespace vexa {

namespace {

using Part = MatrixReference::Part;

// Functions of many elements may be slow each, so Esc is asked for often.
constexpr std::size_t elementsBetweenPolls = 64;

// Whether the next token is the mark of a matrix expression; it stays unread.
bool markFollows() {
  if (nextCharacter() != '!') return false;
  const Scanner& scanner = interpreter().scanner;
  getToken();
  const bool mark = scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '!';
  rescanToken();
  return mark;
}

// The matrix whose order all matrices among the arguments share, or null; key 64 when they differ.
const Matrix* commonOrder(std::span<const ElementwiseNumber> arguments) {
  const Matrix* first = nullptr;
  for (const ElementwiseNumber& argument : arguments) {
    const Matrix* matrix = argument.matrix();
    if (!matrix) continue;
    if (!first) first = matrix;
    if (matrix->rows() != first->rows() || matrix->cols() != first->cols()) {
      raiseError(ErrorKey::ordersIncompatible);
      return nullptr;
    }
  }
  return first;
}

// A preset global keeps its meaning whatever locals a program declares.
Symbol* presetGlobal(std::string_view name) {
  Symbol* symbol = interpreter().names.find(name);
  return symbol && symbol->isGlobal() && symbol->type == typeFloat ? symbol : nullptr;
}

}  // namespace

double refuse(std::string_view message, ErrorKey key) {
  messageBox(message);
  raiseError(key);
  return 0.0;
}

int requireWhole(double x, int low, int high) {
  const double whole = std::trunc(x);
  if (whole >= low && whole <= high) return static_cast<int>(whole);
  raiseError(ErrorKey::invalidData);
  return low;
}

int DataArgument::rows() const {
  const Matrix* matrix = m_reference.matrix.get();
  return matrix && m_reference.part != Part::row ? matrix->rows() : 1;
}

int DataArgument::cols() const {
  const Matrix* matrix = m_reference.matrix.get();
  return matrix && m_reference.part != Part::column ? matrix->cols() : 1;
}

std::size_t DataArgument::size() const {
  return static_cast<std::size_t>(rows()) * static_cast<std::size_t>(cols());
}

bool DataArgument::partExists() const {
  const Matrix* matrix = m_reference.matrix.get();
  if (!matrix) return false;
  switch (m_reference.part) {
    case Part::whole:
      return true;
    case Part::row:
      return m_reference.index <= matrix->rows();
    case Part::column:
      return m_reference.index <= matrix->cols();
  }
  return false;
}

void DataArgument::copyPart() {
  const Matrix& matrix = *m_reference.matrix;
  try {
    m_copy.resize(size());
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
    return;
  }
  if (m_reference.part == Part::column) {
    for (int i = 1; i <= matrix.rows(); ++i)
      m_copy[static_cast<std::size_t>(i - 1)] = matrix.at(i, m_reference.index);
  } else {
    const double* from = matrix.row(m_reference.part == Part::row ? m_reference.index : 1);
    std::copy_n(from, m_copy.size(), m_copy.begin());
  }
  if (m_reference.absolute)
    for (double& x : m_copy) x = std::fabs(x);
}

std::span<const double> DataArgument::elements() {
  if (!partExists()) {
    raiseError(ErrorKey::indexOutOfRange);
    return {};
  }
  if (m_reference.part == Part::column || m_reference.absolute) {
    copyPart();
    return m_copy;
  }
  const Matrix& matrix = *m_reference.matrix;
  if (m_reference.part == Part::whole) return matrix.elements();
  return {matrix.row(m_reference.index), size()};
}

ConstMatrixView DataArgument::view() { return {elements().data(), rows(), cols()}; }

DataArgument readData() {
  if (!markFollows()) return DataArgument(readMatrixReference());
  MatrixReference reference;
  reference.matrix = readMatrix();
  return DataArgument(std::move(reference));
}

bool requireVectors(std::initializer_list<const DataArgument*> vectors) {
  const std::size_t length = vectors.size() ? (*vectors.begin())->size() : 0;
  const auto fits = [length](const DataArgument* vector) {
    return vector->isVector() && vector->size() == length;
  };
  if (std::ranges::all_of(vectors, fits)) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

bool requireFinite(std::span<const double> values) {
  const bool finite = std::ranges::all_of(values, [](double x) { return std::isfinite(x); });
  if (!finite) raiseError(ErrorKey::floatingPoint);
  return finite;
}

ElementwiseNumber readElementwise() {
  if (markFollows()) return ElementwiseNumber(readMatrix());
  return ElementwiseNumber(evalScalarArg());
}

double applyElementwise(std::span<const ElementwiseNumber> arguments,
                        const ElementFunction& function) {
  std::array<double, elementwiseLimit> numbers{};
  const std::span used = std::span(numbers).first(arguments.size());
  std::ranges::transform(arguments, used.begin(), &ElementwiseNumber::number);
  const Matrix* order = commonOrder(arguments);
  if (!order) return function(used);

  Matrix* result = newTempMatrix(order->rows(), order->cols());
  if (!result) return 0.0;
  const std::span<double> values = result->elements();
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (k % elementsBetweenPolls == elementsBetweenPolls - 1) pollInterrupt();
    for (std::size_t j = 0; j < arguments.size(); ++j)
      if (const Matrix* matrix = arguments[j].matrix()) used[j] = matrix->elements()[k];
    values[k] = function(used);
  }
  setBuiltinResult(result);
  interpreter().noEcho = false;
  return values.size() == 1 ? values.front() : 0.0;
}

bool moreBeforeWords() {
  if (!acceptChar(',')) return false;
  if (nextCharacter() != '"') return true;
  rescanToken();
  return false;
}

bool WordReader::next() {
  if (!moreArguments()) return false;
  const std::string word = readLiteral();
  const auto found = std::ranges::find_if(
      m_allowed, [&word](std::string_view allowed) { return equalIgnoringCase(word, allowed); });
  if (found == m_allowed.end()) {
    raiseError(ErrorKey::invalidOption);
    return false;
  }
  m_index = static_cast<std::size_t>(found - m_allowed.begin());
  if (m_seen[m_index]) raiseError(ErrorKey::invalidData);
  m_seen[m_index] = true;
  return true;
}

bool requireDistinct(std::initializer_list<std::string_view> results,
                     std::initializer_list<const Matrix*> matrices) {
  for (auto result = results.begin(); result != results.end(); ++result) {
    if (result->empty()) continue;
    const Matrix* known = findMatrix(*result);
    const bool named = known && std::ranges::find(matrices, known) != matrices.end();
    const bool repeated = std::any_of(results.begin(), result, [&](std::string_view before) {
      return before == *result || (known && !before.empty() && findMatrix(before) == known);
    });
    if (!named && !repeated) continue;
    raiseError(ErrorKey::conflictsWithParameter, *result);
    return false;
  }
  return true;
}

void storeRow(std::string_view name, std::span<const double> values) {
  storeMatrix(name, {values.data(), 1, static_cast<int>(values.size())});
}

void storeMatrix(std::string_view name, ConstMatrixView values) {
  Matrix& matrix = resultMatrix(name);
  redefineMatrix(matrix, values.rows, values.cols);
  if (matrix.rows() != values.rows || matrix.cols() != values.cols) return;
  std::copy_n(values.data, matrix.size(), matrix.elements().begin());
}

double limitValue(double x) {
  return std::fabs(x) >= presetValue("i#") ? std::copysign(HUGE_VAL, x) : x;
}

double presetValue(std::string_view name) {
  const Symbol* symbol = presetGlobal(name);
  return symbol ? symbol->value : 0.0;
}

void setPreset(std::string_view name, double x) {
  if (Symbol* symbol = presetGlobal(name)) symbol->value = x;
}

double accuracyAimed() {
  const double aimed = presetValue("tol#") * 1e-6;
  return aimed >= 1e-14 ? std::min(aimed, 1e-2) : 1e-14;
}

int iterationBound() {
  const double bound = std::trunc(presetValue("iter#"));
  if (!(bound >= 1)) return 1;
  constexpr int largest = std::numeric_limits<int>::max() / 64;
  return bound < largest ? static_cast<int>(bound) : largest;
}

}  // namespace vexa
