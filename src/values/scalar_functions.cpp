#include "values/scalar_functions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "interp/interpreter_state.h"
#include "numlib/special/elementary_functions.h"
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

// A function that has a loop over whole vectors, which gives the same bits.
struct VectorFunction {
  double (*value)(double);
  ElementaryLoop* ElementaryLoops::*loop;
  double factor;

  double operator()(double x) const { return value(x * factor); }
};

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
      return use(VectorFunction{sine, &ElementaryLoops::sine, toRadians});
    case builtinCode("cos"):
      return use(VectorFunction{cosine, &ElementaryLoops::cosine, toRadians});
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
      return use(VectorFunction{exponential, &ElementaryLoops::exponential, 1.0});
    case builtinCode("sqrt"):
      return use([](double x) { return std::sqrt(x); });
    case builtinCode("floor"):
      return use([](double x) { return std::floor(x); });
    case builtinCode("ceil"):
      return use([](double x) { return std::ceil(x); });
    case builtinCode("ln"):
      return use(VectorFunction{naturalLogarithm, &ElementaryLoops::naturalLogarithm, 1.0});
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

template <class Function>
void fill(std::span<const double> from, double* to, Function function) {
  std::ranges::transform(from, to, function);
}

void fill(std::span<const double> from, double* to, const VectorFunction& function) {
  (elementaryLoops().*function.loop)(from.data(), function.factor, to, from.size());
}

// `to` may be `from`. An interrupt is heard between stretches. Apart from the handler, whose frame
// stands once for every level of nested calls.
[[gnu::noinline]] void applyToElements(int builtin, int digits, std::span<const double> from,
                                       std::span<double> to) {
  withFunction(builtin, digits, [from, to](auto function) {
    for (std::size_t start = 0; start < from.size(); start += elementsBetweenPolls) {
      if (start > 0) pollInterrupt();
      const std::size_t length = std::min(from.size() - start, elementsBetweenPolls);
      fill(from.subspan(start, length), to.data() + start, function);
    }
    return 0.0;
  });
}

[[gnu::noinline]] double applyToNumber(int builtin, int digits, double x) {
  return withFunction(builtin, digits, [x](auto function) { return function(x); });
}

// A `!` expression, its mark being the current token. A temporary serves as its own result.
double functionOfMatrix(int builtin, int digits) {
  Value value;
  evalMatrixExpression(value, '!', true);
  rescanToken();
  expectChar(')');
  if (!value.matrix) return 0.0;
  const Matrix& source = *value.matrix;
  Matrix* result = value.tempMark ? value.matrix : newTempMatrix(source.rows(), source.cols());
  if (!result) return 0.0;
  applyToElements(builtin, digits, source.elements(), result->elements());
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
