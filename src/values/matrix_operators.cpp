#include "values/matrix_operators.h"

#include <algorithm>
#include <cmath>

#include "numlib/linear/dense_basics.h"
#include "numlib/linear/linear_common_builtins.h"
#include "numlib/linear/lu_factorisation.h"
#include "numlib/special/complex_arithmetic.h"

namespace vexa {

namespace {

// Replaces the left operand by the result; the operands have been used.
void finish(Value& left, Value& right, Matrix* result) {
  freeOperand(left);
  freeOperand(right);
  left.setTemporary(result);
}

bool sameOrder(const Value& a, const Value& b) {
  return a.rows() == b.rows() && a.cols() == b.cols();
}

template <class Operation>
void elementWise(Value& left, Value& right, Operation operation) {
  const Value& shape = left.isMatrix() ? left : right;
  Matrix* result = newTempMatrix(shape.rows(), shape.cols());
  const std::span<double> out = result->elements();
  if (left.isMatrix() && right.isMatrix()) {
    std::transform(left.matrix->elements().begin(), left.matrix->elements().end(),
                   right.matrix->elements().begin(), out.begin(), operation);
  } else if (left.isMatrix()) {
    const double b = right.scalar;
    std::transform(left.matrix->elements().begin(), left.matrix->elements().end(), out.begin(),
                   [b, operation](double a) { return operation(a, b); });
  } else {
    const double a = left.scalar;
    std::transform(right.matrix->elements().begin(), right.matrix->elements().end(), out.begin(),
                   [a, operation](double b) { return operation(a, b); });
  }
  finish(left, right, result);
}

bool holdsZero(const Value& value) {
  if (!value.isMatrix()) return value.scalar == 0.0;
  const auto elements = value.matrix->elements();
  return std::find(elements.begin(), elements.end(), 0.0) != elements.end();
}

double scalarResult(double a, BinaryOperator op, double b) {
  switch (op) {
    case BinaryOperator::add:
      return a + b;
    case BinaryOperator::subtract:
      return a - b;
    case BinaryOperator::multiply:
    case BinaryOperator::elementMultiply:
      return a * b;
    default:
      if (b == 0.0) raiseError(ErrorKey::floatingPoint);
      return a / b;
  }
}

void elementProduct(Value& left, BinaryOperator op, Value& right) {
  if (left.isMatrix() && right.isMatrix() && !sameOrder(left, right))
    raiseError(ErrorKey::ordersIncompatible);
  if (op == BinaryOperator::elementMultiply) {
    elementWise(left, right, [](double a, double b) { return a * b; });
  } else {
    if (holdsZero(right)) raiseError(ErrorKey::floatingPoint);
    elementWise(left, right, [](double a, double b) { return a / b; });
  }
}

// Two rows of equal length give their dot product; otherwise the columns of the left must be the
// rows of the right.
void matrixProduct(Value& left, Value& right) {
  if (left.cols() == right.rows()) {
    Matrix* result = newTempMatrix(left.rows(), right.cols());
    const ConstMatrixView a = static_cast<const Matrix*>(left.matrix)->view();
    const ConstMatrixView b = static_cast<const Matrix*>(right.matrix)->view();
    runAlgorithm([&] { return multiply(a, b, result->view(), askUser); });
    finish(left, right, result);
  } else if (left.rows() == 1 && right.rows() == 1 && left.cols() == right.cols()) {
    Matrix* result = newTempMatrix(1, 1);
    result->at(1, 1) = dot(left.matrix->elements(), right.matrix->elements());
    finish(left, right, result);
  } else {
    raiseError(ErrorKey::ordersIncompatible);
  }
}

void matrixBinary(Value& left, BinaryOperator op, Value& right) {
  const bool both = left.isMatrix() && right.isMatrix();
  switch (op) {
    case BinaryOperator::add:
    case BinaryOperator::subtract:
      if (!both || !sameOrder(left, right)) {
        raiseError(ErrorKey::ordersIncompatible);
        return;
      }
      if (op == BinaryOperator::add)
        elementWise(left, right, [](double a, double b) { return a + b; });
      else
        elementWise(left, right, [](double a, double b) { return a - b; });
      return;
    case BinaryOperator::multiply:
      if (both)
        matrixProduct(left, right);
      else
        raiseError(ErrorKey::invalidData);
      return;
    case BinaryOperator::divide:
      // A matrix over a number is the one mix that `*` and `/` take.
      if (both || !left.isMatrix()) {
        raiseError(ErrorKey::invalidData);
        return;
      }
      elementProduct(left, BinaryOperator::elementDivide, right);
      return;
    default:
      elementProduct(left, op, right);
  }
}

// A number beside a pair counts as its real part.
Complex pairOf(const Value& value) {
  if (!value.isMatrix()) return {value.scalar, 0.0};
  const auto parts = value.matrix->elements();
  return {parts[0], parts[1]};
}

void finishPair(Value& left, Value& right, Complex z) {
  Matrix* result = newTempMatrix(1, 2);
  result->at(1, 1) = z.re;
  result->at(1, 2) = z.im;
  finish(left, right, result);
}

void complexBinary(Value& left, BinaryOperator op, Value& right) {
  const Complex a = pairOf(left);
  const Complex b = pairOf(right);
  switch (op) {
    case BinaryOperator::add:
      finishPair(left, right, add(a, b));
      return;
    case BinaryOperator::subtract:
      finishPair(left, right, subtract(a, b));
      return;
    case BinaryOperator::multiply:
      finishPair(left, right, multiply(a, b));
      return;
    case BinaryOperator::divide:
      if (b.re == 0.0 && b.im == 0.0) raiseError(ErrorKey::floatingPoint);
      finishPair(left, right, divide(a, b));
      return;
    default:
      elementProduct(left, op, right);
  }
}

bool isVectorOf(const Value& value, int count) {
  return (value.rows() == 1 && value.cols() == count) ||
         (value.cols() == 1 && value.rows() == count);
}

// Vectors of two or three elements of the same order; two elements give a number as 1 x 1.
void crossProduct(Value& left, Value& right) {
  const bool three = isVectorOf(left, 3);
  if (!sameOrder(left, right) || !(three || isVectorOf(left, 2))) {
    raiseError(ErrorKey::vectorOrderMismatch);
    return;
  }
  const auto a = left.matrix->elements();
  const auto b = right.matrix->elements();
  Matrix* result = three ? newTempMatrix(left.rows(), left.cols()) : newTempMatrix(1, 1);
  const auto c = result->elements();
  if (three) {
    c[0] = a[1] * b[2] - a[2] * b[1];
    c[1] = a[2] * b[0] - a[0] * b[2];
    c[2] = a[0] * b[1] - a[1] * b[0];
  } else {
    c[0] = a[0] * b[1] - a[1] * b[0];
  }
  finish(left, right, result);
}

bool requireSquare(const Value& value) {
  if (value.rows() == value.cols()) return true;
  raiseError(ErrorKey::squareMatrixExpected);
  return false;
}

// A whole exponent of 0 or more is the repeated product, a negative one that of the inverse.
void matrixPower(Value& left, double exponent) {
  if (!requireSquare(left)) return;
  if (!(std::trunc(exponent) == exponent) || std::isinf(exponent)) {
    raiseError(ErrorKey::invalidData);
    return;
  }
  if (exponent < 0.0) applyInverse(left);
  Matrix* result = newTempMatrix(left.rows(), left.cols());
  const ConstMatrixView base = static_cast<const Matrix*>(left.matrix)->view();
  runAlgorithm([&] { return powerOf(base, std::fabs(exponent), result->view(), askUser); });
  Value none;
  finish(left, none, result);
}

}  // namespace

void freeOperand(Value& value) {
  if (value.matrix && value.tempMark == '!') {
    if (interpreter().currentMatrix == value.matrix) interpreter().currentMatrix = nullptr;
    freeTempMatrix(value.matrix);
  }
  value.matrix = nullptr;
  value.tempMark = 0;
}

double numberOf(const Value& value) {
  if (!value.isMatrix()) return value.scalar;
  return value.matrix->size() == 1 ? value.matrix->at(1, 1) : 0.0;
}

void applyBinary(Value& left, BinaryOperator op, Value& right, char mode) {
  if (!left.isMatrix() && !right.isMatrix())
    left.setScalar(scalarResult(left.scalar, op, right.scalar));
  else if (mode == '@')
    complexBinary(left, op, right);
  else
    matrixBinary(left, op, right);
}

void applySignedMagnitude(Value& left, Value& right) {
  if (left.isMatrix() || right.isMatrix()) {
    raiseError(ErrorKey::invalidData);
    return;
  }
  const double magnitude = std::fabs(right.scalar);
  left.setScalar(left.scalar < 0.0 ? left.scalar - magnitude : left.scalar + magnitude);
}

void applyNegation(Value& operand) {
  if (!operand.isMatrix()) {
    operand.setScalar(-operand.scalar);
    return;
  }
  Matrix* result = newTempMatrix(operand.rows(), operand.cols());
  std::transform(operand.matrix->elements().begin(), operand.matrix->elements().end(),
                 result->elements().begin(), [](double x) { return -x; });
  Value none;
  finish(operand, none, result);
}

void applyTilde(Value& operand, char mode) {
  if (!operand.isMatrix()) {
    raiseError(ErrorKey::invalidData);
    return;
  }
  Value none;
  if (mode == '@') {
    const Complex z = pairOf(operand);
    finishPair(operand, none, {z.re, -z.im});
    return;
  }
  Matrix* result = newTempMatrix(operand.cols(), operand.rows());
  transpose(static_cast<const Matrix*>(operand.matrix)->view(), result->view());
  finish(operand, none, result);
}

void applyPower(Value& left, Value& right, char mode) {
  if (!left.isMatrix() && !right.isMatrix()) {
    left.setScalar(std::pow(left.scalar, right.scalar));
  } else if (mode == '@') {
    const std::optional<Complex> z = complexPower(pairOf(left), pairOf(right));
    if (!z) raiseError(ErrorKey::floatingPoint);
    finishPair(left, right, z.value_or(Complex{}));
  } else if (!left.isMatrix()) {
    raiseError(ErrorKey::invalidData);
  } else if (right.isMatrix()) {
    crossProduct(left, right);
  } else {
    matrixPower(left, right.scalar);
  }
}

void applyInverse(Value& operand) {
  if (!requireSquare(operand)) return;
  // The factors take the place of a temporary operand, and that of a copy for a named one.
  Matrix* factors = operand.matrix;
  if (!operand.tempMark) {
    factors = newTempMatrix(operand.rows(), operand.cols());
    std::ranges::copy(operand.matrix->elements(), factors->elements().begin());
  }
  Matrix* result = newTempMatrix(operand.rows(), operand.cols());
  const Outcome outcome = runAlgorithm(
      [&] { return invertInto(factors->view(), result->view(), pivotTolerance(), askUser); });
  if (outcome == Outcome::singular) raiseError(ErrorKey::singularMatrix);
  if (!operand.tempMark) freeTempMatrix(factors);
  Value none;
  finish(operand, none, result);
}

void applyElementPower(Value& left, Value& right) {
  if (!left.isMatrix() || !right.isMatrix())
    raiseError(ErrorKey::invalidData);
  else if (!sameOrder(left, right))
    raiseError(ErrorKey::ordersIncompatible);
  else
    elementWise(left, right, [](double a, double b) { return std::pow(a, b); });
}

void makePair(Value& value) {
  if (!value.isMatrix() || value.matrix->size() != 2) {
    raiseError(ErrorKey::complexPrefixRequired);
    return;
  }
  if (value.rows() == 1) return;
  const Complex z = pairOf(value);
  Value none;
  finishPair(value, none, z);
}

}  // namespace vexa
