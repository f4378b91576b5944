#include <limits>
#include <optional>
#include <span>

#include "interp/interpreter_state.h"
#include "numlib/statistics/significance.h"
#include "numlib/statistics/statistics_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

// Pairs must agree in number (key 64); two elements are the least (34), all finite (63).
bool checkSamples(std::span<const double> x, std::span<const double> y, bool pairs) {
  const bool paired = !pairs || x.size() == y.size();
  if (paired && x.size() >= 2 && y.size() >= 2) return requireFinite(x) && requireFinite(y);
  raiseError(paired ? ErrorKey::invalidData : ErrorKey::ordersIncompatible);
  return false;
}

TestResult resultOf(int builtin, std::span<const double> x, std::span<const double> y) {
  switch (builtin) {
    case builtinCode("correlation"):
      return correlation(x, y, presetValue("i#"));
    case builtinCode("ftest"):
      return varianceRatio(x, y);
    case builtinCode("studente"):
      return equalVarianceTest(x, y);
    case builtinCode("studentu"):
      return unequalVarianceTest(x, y);
    default:
      return pairedTest(x, y);
  }
}

}  // namespace

double significanceBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  const bool pairs = builtin == builtinCode("correlation") || builtin == builtinCode("studentp");
  expectChar('(');
  DataArgument first = readData();
  expectChar(',');
  DataArgument second = readData();
  std::optional<ScalarTarget> p;
  if (moreArguments()) {
    p = readScalarName();
    expectChar(')');
  }
  const std::span<const double> x = first.elements(), y = second.elements();
  if (!checkSamples(x, y, pairs)) return 0.0;
  const TestResult result = resultOf(builtin, x, y);
  const double statistic = result ? result->statistic : std::numeric_limits<double>::quiet_NaN();
  if (!requireFinite({&statistic, 1})) return 0.0;
  if (p) p->store(result->p);
  return statistic;
}

}  // namespace vexa
