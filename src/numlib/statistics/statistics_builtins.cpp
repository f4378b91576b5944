#include "numlib/statistics/statistics_builtins.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

#include "numlib/linear/linear_common_builtins.h"
#include "numlib/statistics/moments.h"
#include "values/argument_readers.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

using Part = MatrixReference::Part;

// The operator and the value after a reference, up to the closing parenthesis.
void readFilter(Selection& selection) {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.tokenChar == ')') return;
  const unsigned char code = scanner.operatorCode();
  if (code < OP_LT || code > OP_NE) {
    raiseError(ErrorKey::invalidData);
    return;
  }
  selection.filtered = true;
  selection.relation = static_cast<Relation>(code);
  selection.threshold = evalScalarArg();
  expectChar(')');
}

// The elements of a reference, in storage order; those of a column are copied to a work vector.
class ReferencedElements {
 public:
  explicit ReferencedElements(const MatrixReference& reference) {
    const Matrix& matrix = *reference.matrix;
    const auto cols = static_cast<std::size_t>(matrix.cols());
    switch (reference.part) {
      case Part::whole:
        m_elements = matrix.elements();
        break;
      case Part::row:
        m_elements = {matrix.row(reference.index), cols};
        break;
      case Part::column:
        copyColumn(matrix, reference.index);
        break;
    }
  }
  ~ReferencedElements() { freeTempVector(m_column); }
  ReferencedElements(const ReferencedElements&) = delete;
  ReferencedElements& operator=(const ReferencedElements&) = delete;

  std::span<const double> elements() const { return m_elements; }

 private:
  void copyColumn(const Matrix& matrix, int j) {
    m_column = newTempVector(static_cast<std::size_t>(matrix.rows()));
    if (!m_column) return;
    for (int i = 1; i <= matrix.rows(); ++i)
      (*m_column)[static_cast<std::size_t>(i)] = matrix.at(i, j);
    m_elements = {&(*m_column)[1], m_column->size()};
  }

  WorkVector* m_column = nullptr;
  std::span<const double> m_elements;
};

std::optional<Moments> momentsOf(std::span<const double> elements, const Selection& selection,
                                 double undefined) {
  if (selection.all()) return computeMoments(elements, undefined, askUser);
  std::vector<double> values;
  try {
    values = selectValues(elements, selection, askUser);
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
  }
  return computeMoments(values, undefined, askUser);
}

// The place that row# and col# tell of, or 0.
std::size_t recordedPlace(int builtin, const Moments& moments, std::span<const double> elements,
                          const Selection& selection) {
  if (builtin == builtinCode("max")) return firstPlaceOf(moments.largest, elements, selection);
  if (builtin == builtinCode("min")) return firstPlaceOf(moments.smallest, elements, selection);
  return lastPlace(elements, selection);
}

void storePlace(std::size_t place, const MatrixReference& reference) {
  if (place == 0) return;
  const auto cols = static_cast<std::size_t>(reference.matrix->cols());
  std::size_t row = 0, col = 0;
  switch (reference.part) {
    case Part::whole:
      row = (place - 1) / cols + 1;
      col = place - (row - 1) * cols;
      break;
    case Part::row:
      row = static_cast<std::size_t>(reference.index);
      col = place;
      break;
    case Part::column:
      row = place;
      col = static_cast<std::size_t>(reference.index);
      break;
  }
  setPreset("row#", static_cast<double>(row));
  setPreset("col#", static_cast<double>(col));
}

void storeMoments(const Moments& moments) {
  setPreset("count#", moments.count);
  setPreset("max#", moments.largest);
  setPreset("min#", moments.smallest);
  setPreset("mean#", moments.mean);
  setPreset("adev#", moments.meanDeviation);
  setPreset("var#", moments.variance);
  setPreset("stdv#", moments.standardDeviation);
  setPreset("skew#", moments.skewness);
  setPreset("kurt#", moments.kurtosis);
}

double resultOf(int builtin, const Moments& moments) {
  switch (builtin) {
    case builtinCode("count"):
      return moments.count;
    case builtinCode("max"):
      return moments.largest;
    case builtinCode("mean"):
      return moments.mean;
    case builtinCode("min"):
      return moments.smallest;
    case builtinCode("stdv"):
      return moments.standardDeviation;
    default:
      return moments.sum;
  }
}

}  // namespace

double statisticsBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  const MatrixReference reference = readMatrixReference();
  Selection selection;
  selection.absolute = reference.absolute;
  readFilter(selection);
  selection.tolerance = presetValue("tol#");

  // The threshold may have called a function that gave the matrix another order.
  const Matrix& matrix = *reference.matrix;
  if ((reference.part == Part::row && reference.index > matrix.rows()) ||
      (reference.part == Part::column && reference.index > matrix.cols())) {
    raiseError(ErrorKey::indexOutOfRange);
    return 0.0;
  }
  const ReferencedElements referenced(reference);
  const std::span<const double> elements = referenced.elements();
  const std::optional<Moments> moments = momentsOf(elements, selection, presetValue("i#"));
  if (!moments) return 0.0;
  storeMoments(*moments);
  storePlace(recordedPlace(builtin, *moments, elements, selection), reference);
  return resultOf(builtin, *moments);
}

}  // namespace vexa
