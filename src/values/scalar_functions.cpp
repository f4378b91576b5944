#include "values/scalar_functions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "interp/interpreter_state.h"
#include "numlib/special/gamma.h"
#include "numlib/special/rounding.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"
#include "values/number_format.h"

namespace vexa {

namespace {

constexpr double largestDigits = 15;
constexpr std::size_t elementsBetweenPolls = 32768;

double factorialOf(double x) {
  if (std::isnan(x)) return x;
  const double n = std::trunc(x);
  if (n < 0) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  // Far above the largest factorial that a double can hold.
  constexpr double beyondRange = 1000;
  if (n > beyondRange) return std::numeric_limits<double>::infinity();
  return factorial(static_cast<int>(n));
}

// Hands the function of a built-in to `use`, so that it is chosen once for all elements. The
// argument of the angle functions and the result of their inverses are in the user's units.
template <class Use>
double withFunction(int builtin, int digits, Use use) {
  const double toRadians = interpreter().angles.userToRadians;
  const double toUser = interpreter().angles.radiansToUser;
  switch (builtin) {
    case builtinCode("abs"):
      return use([](double x) { return std::fabs(x); });
    case builtinCode("sin"):
      return use([=](double x) { return std::sin(x * toRadians); });
    case builtinCode("cos"):
      return use([=](double x) { return std::cos(x * toRadians); });
    case builtinCode("tan"):
      return use([=](double x) { return std::tan(x * toRadians); });
    case builtinCode("asin"):
      return use([=](double x) { return std::asin(x) * toUser; });
    case builtinCode("acos"):
      return use([=](double x) { return std::acos(x) * toUser; });
    case builtinCode("atan"):
      return use([=](double x) { return std::atan(x) * toUser; });
    case builtinCode("sinh"):
      return use([](double x) { return std::sinh(x); });
    case builtinCode("cosh"):
      return use([](double x) { return std::cosh(x); });
    case builtinCode("tanh"):
      return use([](double x) { return std::tanh(x); });
    case builtinCode("exp"):
      return use([](double x) { return std::exp(x); });
    case builtinCode("sqrt"):
      return use([](double x) { return std::sqrt(x); });
    case builtinCode("floor"):
      return use([](double x) { return std::floor(x); });
    case builtinCode("ceil"):
      return use([](double x) { return std::ceil(x); });
    case builtinCode("ln"):
      return use([](double x) { return std::log(x); });
    case builtinCode("log10"):
      return use([](double x) { return std::log10(x); });
    case builtinCode("erf"):
      return use(erfValue);
    case builtinCode("gammaln"):
      return use(logGamma);
    case builtinCode("factrl"):
      return use(factorialOf);
    case builtinCode("round"):
      return use([=](double x) { return roundDecimals(digits, x); });
    case builtinCode("truncate"):
      return use([=](double x) { return roundSignificant(x, digits); });
    default:
      return 0.0;
  }
}

// Replaces every element by its function value, in stretches between which an interrupt is heard.
template <class Function>
void applyToElements(std::span<double> elements, Function function) {
  while (!elements.empty()) {
    const auto stretch = elements.first(std::min(elements.size(), elementsBetweenPolls));
    for (double& x : stretch) x = function(x);
    elements = elements.subspan(stretch.size());
    if (!elements.empty()) pollInterrupt();
  }
}

// Apart from the handler, whose frame stands once for every level of nested calls.
[[gnu::noinline]] void applyToMatrix(int builtin, int digits, Matrix& matrix) {
  withFunction(builtin, digits, [&matrix](auto function) {
    applyToElements(matrix.elements(), function);
    return 0.0;
  });
}

[[gnu::noinline]] double applyToNumber(int builtin, int digits, double x) {
  return withFunction(builtin, digits, [x](auto function) { return function(x); });
}

// A `!` expression, its mark being the current token. A temporary serves as the result; a variable
// is copied first.
double functionOfMatrix(int builtin, int digits) {
  Value value;
  evalMatrixExpression(value, '!', true);
  rescanToken();
  expectChar(')');
  if (!value.matrix) return 0.0;
  Matrix* result = value.matrix;
  if (!value.tempMark) {
    const Matrix& source = *value.matrix;
    result = newTempMatrix(source.rows(), source.cols());
    if (!result) return 0.0;
    std::ranges::copy(source.elements(), result->elements().begin());
  }
  applyToMatrix(builtin, digits, *result);
  setBuiltinResult(result);
  interpreter().noEcho = false;
  return result->size() == 1 ? result->at(1, 1) : 0.0;
}

// The leading argument of `round` and `truncate`.
int readDigits() {
  const double digits = std::trunc(evalScalarArg());
  const bool usable = std::fabs(digits) <= largestDigits;
  if (!usable) raiseError(ErrorKey::invalidData);
  expectChar(',');
  return usable ? static_cast<int>(digits) : 0;
}

}  // namespace

double scalarFunctionBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  expectChar('(');
  const bool takesDigits = builtin == builtinCode("round") || builtin == builtinCode("truncate");
  const int digits = takesDigits ? readDigits() : 0;
  if (nextCharacter() == '!') {
    getToken();
    if (interpreter().scanner.tokenChar == '!') return functionOfMatrix(builtin, digits);
    rescanToken();
  }
  const double x = evalScalarArg();
  expectChar(')');
  return applyToNumber(builtin, digits, x);
}

}  // namespace vexa
