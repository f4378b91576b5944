#include "numlib/interpolation/polynomial_builtins.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/calculus/polynomial_roots.h"
#include "numlib/interpolation/polynomial.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/argument_readers.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

bool requireUnique(std::span<const double> values) {
  std::vector<double> sorted(values.begin(), values.end());
  std::ranges::sort(sorted);
  if (std::ranges::adjacent_find(sorted) == sorted.end()) return true;
  refuse("x-values must be unique");
  return false;
}

// The coefficients without zero ones on top; empty, after the message, when nothing but a constant
// is left.
std::span<const double> withDegree(std::span<const double> c) {
  while (!c.empty() && c.back() == 0) c = c.first(c.size() - 1);
  if (c.size() >= 2) return c;
  refuse("roots> polynomial of degree 0");
  return {};
}

}  // namespace

double rootsBuiltin() {
  expectChar('(');
  DataArgument c = readData();
  expectChar(',');
  const std::string reName = readResultName();
  expectChar(',');
  const std::string imName = readResultName();
  expectChar(')');
  if (!requireVectors({&c}) || !requireDistinct({reName, imName}, {c.matrix()})) return 0.0;
  const auto all = c.elements();
  if (!requireFinite(all)) return 0.0;
  const auto coefficients = withDegree(all);
  if (coefficients.empty()) return 0.0;
  if (coefficients.size() > polynomialDegreeLimit + 1) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  const auto roots = polynomialRoots(coefficients, askUser);
  if (!roots) return 0.0;
  std::vector<double> re, im;
  for (const auto z : *roots) {
    re.push_back(z.real());
    im.push_back(z.imag());
  }
  storeRow(reName, re);
  storeRow(imName, im);
  return static_cast<double>(std::ranges::count(im, 0.0));
}

double polyBuiltin() {
  expectChar('(');
  DataArgument c = readData();
  expectChar(',');
  const ElementwiseNumber x = readElementwise();
  std::optional<ScalarTarget> derivative;
  if (moreArguments()) {
    derivative = readScalarName();
    expectChar(')');
  }
  if (!requireVectors({&c})) return 0.0;
  if (derivative && x.isMatrix()) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  const auto coefficients = c.elements();
  const double number = x.number();
  if (!requireFinite(coefficients)) return 0.0;
  if (!requireFinite(x.isMatrix() ? x.matrix()->elements() : std::span(&number, 1))) return 0.0;
  if (!derivative)
    return applyElementwise({&x, 1}, [coefficients](std::span<const double> at) {
      return evaluatePolynomial(coefficients, at[0]).value;
    });
  const PolynomialValue result = evaluatePolynomial(coefficients, number);
  derivative->store(result.derivative);
  return result.value;
}

double polycoeBuiltin() {
  expectChar('(');
  DataArgument x = readData();
  expectChar(',');
  DataArgument y = readData();
  expectChar(',');
  const std::string name = readResultName();
  expectChar(')');
  if (!requireVectors({&x, &y}) || !requireDistinct({name}, {x.matrix(), y.matrix()})) return 0.0;
  if (x.size() < 2) return refuse("Too few data points for interpolation");
  const auto abscissae = x.elements(), ordinates = y.elements();
  if (!requireFinite(abscissae) || !requireFinite(ordinates) || !requireUnique(abscissae))
    return 0.0;
  const auto coefficients = polynomialThrough(abscissae, ordinates, askUser);
  if (!coefficients || !requireFinite(*coefficients)) return 0.0;
  storeRow(name, *coefficients);
  return noResult();
}

}  // namespace vexa
