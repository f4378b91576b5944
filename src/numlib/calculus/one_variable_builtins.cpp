#include <cmath>
#include <cstdint>

#include "numlib/calculus/calculus_builtins.h"
#include "numlib/calculus/derivative.h"
#include "numlib/calculus/extremum.h"
#include "numlib/calculus/integral.h"
#include "numlib/calculus/root.h"
#include "numlib/calculus/series.h"
#include "values/numeric_arguments.h"
#include "values/running_expressions.h"

namespace vexa {

namespace {

constexpr std::int64_t seriesTermsForEach = 1000;  // of iter#

// The arguments in front of an expression: the running variable, bound, and two limits, which are
// infinite from i# on.
struct Range {
  RunningVariable variable;
  double a = 0, b = 0;

  bool finite() const { return std::isfinite(a) && std::isfinite(b); }
};

double readLimit() {
  expectChar(',');
  return limitValue(evalScalarArg());
}

Range readRange() {
  expectChar('(');
  Range range{RunningVariable::read()};
  range.a = readLimit();
  range.b = readLimit();
  expectChar(',');
  range.variable.bind();
  return range;
}

// Passes over an expression that there is nothing to do with, and the closing parenthesis. It is
// evaluated all the same, so that its faults are reported.
void passExpression(RealFunction f, double at) {
  f(std::isfinite(at) ? at : 1.0);
  expectChar(')');
}

double notFinite() {
  raiseError(ErrorKey::floatingPoint);
  return 0.0;
}

double notReached() {
  raiseError(ErrorKey::notConvergent);
  return 0.0;
}

double finishIntegral(const Integral& integral) {
  if (integral.outcome == IntegralOutcome::notFinite) return notFinite();
  expectChar(')');
  return integral.outcome == IntegralOutcome::done ? integral.value : notReached();
}

double improperIntegral(RealFunction f, const Range& range) {
  if (range.a == range.b || std::isnan(range.a) || std::isnan(range.b)) {
    // Beside the end: many an integrand is not defined at the end itself.
    passExpression(f, range.a + firstStep(range.a));
    return range.a == range.b ? 0.0 : notFinite();
  }
  return finishIntegral(integrateImproper(f, range.a, range.b, accuracyAimed()));
}

double integral(RealFunction f, const Range& range) {
  if (range.a == range.b || !range.finite()) return improperIntegral(f, range);
  return finishIntegral(integrate(f, range.a, range.b, accuracyAimed(), iterationBound()));
}

double extremum(RealFunction f, const Range& range, double sign) {
  const auto oriented = [&](double x) { return sign * f(x); };
  const auto found = findMinimum(oriented, range.a, range.b, iterationBound());
  if (!found) return notFinite();
  expectChar(')');
  if (!found->reached) return notReached();
  setPreset(sign < 0 ? "max#" : "min#", sign * found->value);
  return found->x;
}

double root(RealFunction f, const Range& range) {
  const Root found = findRoot(f, range.a, range.b, accuracyAimed(), iterationBound());
  if (found.outcome == RootOutcome::notFinite) return notFinite();
  expectChar(')');
  return found.outcome == RootOutcome::found ? found.x : notReached();
}

}  // namespace

double oneVariableBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  const Range range = readRange();
  const RunningExpression f = RunningExpression::here(range.variable);
  if (builtin == builtinCode("integ")) return integral(f, range);
  if (!range.finite()) {
    passExpression(f, range.a);
    return notFinite();
  }
  if (builtin == builtinCode("root1")) return root(f, range);
  return extremum(f, range, builtin == builtinCode("maxz1") ? -1.0 : 1.0);
}

double imtegBuiltin() {
  const Range range = readRange();
  return improperIntegral(RunningExpression::here(range.variable), range);
}

double derivBuiltin() {
  expectChar('(');
  RunningVariable variable = RunningVariable::read();
  expectChar(',');
  const double at = evalScalarArg();
  expectChar(',');
  variable.bind();
  // Beside the point: many a function is not defined at the point itself.
  const RunningExpression f = RunningExpression::read(variable, at + firstStep(at));
  const double order = acceptChar(',') ? evalScalarArg() : 1;
  expectChar(')');
  const int wholeOrder = requireWhole(order, 1, highestDerivative);
  if (!std::isfinite(at)) return notFinite();
  const TextReturn end;
  const auto derivative = differentiate(f, at, wholeOrder);
  end.go();
  return derivative ? *derivative : notReached();
}

double seriesBuiltin() {
  const Range range = readRange();
  const RunningExpression f = RunningExpression::here(range.variable);
  if (range.b < range.a || !std::isfinite(range.a) || std::isnan(range.b)) {
    passExpression(f, range.a);
    return range.b < range.a ? 0.0 : notFinite();
  }
  const SeriesSum sum =
      std::isinf(range.b)
          ? sumInfiniteSeries(f, range.a, accuracyAimed(), seriesTermsForEach * iterationBound())
          : sumSeries(f, range.a, range.b);
  if (sum.outcome == SeriesOutcome::notFinite) return notFinite();
  expectChar(')');
  return sum.outcome == SeriesOutcome::done ? sum.value : notReached();
}

}  // namespace vexa
