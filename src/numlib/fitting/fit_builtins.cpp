#include <algorithm>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "interp/interpreter_state.h"
#include "numlib/fitting/fitting_builtins.h"
#include "numlib/fitting/linear_fit.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/numeric_arguments.h"
#include "values/running_expressions.h"

namespace vexa {

namespace {

constexpr int largestDegree = 20;
constexpr std::size_t mostFunctions = 50;

// What stands behind the data of a fit: the result, and the words.
struct FitArguments {
  std::string coefficients;
  DataArgument weights;
  std::string covariance;

  // The words, and the closing parenthesis.
  void readWords() {
    for (WordReader words({"weights=", "cov="}); words.next();) {
      expectChar(',');
      if (words.index() == 0)
        weights = readData();
      else
        covariance = readResultName();
    }
  }
  bool wantsCovariance() const { return !covariance.empty(); }
  bool weighted() const { return weights.matrix() != nullptr; }
};

bool checkNames(const FitArguments& fit, const DataArgument& x, const DataArgument& y) {
  return requireDistinct({fit.coefficients, fit.covariance},
                         {x.matrix(), y.matrix(), fit.weights.matrix()});
}

// None is negative, some are not 0 (key 34).
bool checkWeights(std::span<const double> weights) {
  if (weights.empty()) return true;
  if (!requireFinite(weights)) return false;
  const bool good = std::ranges::none_of(weights, [](double w) { return w < 0; }) &&
                    std::ranges::any_of(weights, [](double w) { return w > 0; });
  if (!good) raiseError(ErrorKey::invalidData);
  return good;
}

// Runs a fit; memory that cannot be had is key 28.
template <class Fit>
LinearFit run(Fit fit) {
  try {
    return fit();
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
    LinearFit none;
    none.outcome = FitOutcome::interrupted;
    return none;
  }
}

// Stores what a fit gives, or raises what it met.
double finish(const LinearFit& fit, const FitArguments& arguments) {
  switch (fit.outcome) {
    case FitOutcome::tooFewPoints:
      return refuse("Too few data points");
    case FitOutcome::dependent:
      raiseError(ErrorKey::singularMatrix);
      return 0.0;
    case FitOutcome::interrupted:
      return 0.0;
    case FitOutcome::done:
      break;
  }
  if (!requireFinite(fit.coefficients) || !requireFinite({&fit.deviation, 1}) ||
      !requireFinite(fit.covariance))
    return 0.0;
  storeRow(arguments.coefficients, fit.coefficients);
  if (arguments.wantsCovariance()) {
    const auto k = static_cast<int>(fit.coefficients.size());
    const std::vector<double> none(fit.coefficients.size() * fit.coefficients.size(),
                                   presetValue("i#"));
    storeMatrix(arguments.covariance,
                {(fit.covariance.empty() ? none : fit.covariance).data(), k, k});
  }
  return fit.deviation;
}

// The data of lcfit and the values of its functions, copied: evaluating text may change anything.
struct FunctionTable {
  std::vector<double> y, weights, values;
  int functions = 0;

  ConstMatrixView view() const { return {values.data(), static_cast<int>(y.size()), functions}; }
};

std::vector<double> copied(std::span<const double> values) {
  return {values.begin(), values.end()};
}

// Evaluates each function at each abscissa; false when a value is not finite (key 63).
bool tabulate(FunctionTable& table, std::span<const double> x, const RunningVariable& variable,
              std::span<const ExpressionText> functions) {
  table.functions = static_cast<int>(functions.size());
  table.values.reserve(x.size() * functions.size());
  for (const double at : x) {
    pollInterrupt();
    for (const ExpressionText& function : functions) {
      variable.set(at);
      const double value = function.evaluate();
      if (!requireFinite({&value, 1})) return false;
      table.values.push_back(value);
    }
  }
  return true;
}

}  // namespace

double lfitBuiltin() {
  expectChar('(');
  DataArgument x = readData();
  expectChar(',');
  DataArgument y = readData();
  expectChar(',');
  FitArguments arguments;
  arguments.coefficients = readResultName();
  std::optional<double> degree;
  if (moreBeforeWords()) degree = evalScalarArg();
  arguments.readWords();

  const bool multiple = !x.isVector();
  const DataArgument& weights = arguments.weighted() ? arguments.weights : y;
  if (!requireVectors({&y, &weights}) || (!multiple && !requireVectors({&x, &y}))) return 0.0;
  if (multiple && static_cast<std::size_t>(x.rows()) != y.size()) {
    raiseError(ErrorKey::ordersIncompatible);
    return 0.0;
  }
  if (!checkNames(arguments, x, y)) return 0.0;
  if (multiple && degree) {
    raiseError(ErrorKey::invalidData);
    return 0.0;
  }
  const int n = requireWhole(degree.value_or(1), 0, largestDegree);
  const ConstMatrixView abscissae = x.view();
  FitData data{y.elements(), {}, arguments.wantsCovariance()};
  if (arguments.weighted()) data.weights = arguments.weights.elements();
  if (!requireFinite(abscissae.elements()) || !requireFinite(data.y) || !checkWeights(data.weights))
    return 0.0;
  return finish(run([&] {
                  return multiple ? fitMultiple(abscissae, data, askUser)
                                  : fitPolynomial(abscissae.elements(), data, n, askUser);
                }),
                arguments);
}

double lcfitBuiltin() {
  expectChar('(');
  RunningVariable variable = RunningVariable::read();
  expectChar(',');
  DataArgument x = readData();
  expectChar(',');
  DataArgument y = readData();
  expectChar(',');
  FitArguments arguments;
  arguments.coefficients = readResultName();
  expectChar(',');
  variable.bind();
  variable.set(x.elements().empty() ? 0.0 : x.elements().front());
  const std::vector<ExpressionText> functions = readExpressions();
  arguments.readWords();

  const DataArgument& weights = arguments.weighted() ? arguments.weights : y;
  if (!requireVectors({&x, &y, &weights}) || !checkNames(arguments, x, y)) return 0.0;
  if (functions.size() > mostFunctions) {
    raiseError(ErrorKey::tooLong);
    return 0.0;
  }
  const std::vector<double> abscissae = copied(x.elements());
  FunctionTable table{copied(y.elements()), {}, {}};
  if (arguments.weighted()) table.weights = copied(arguments.weights.elements());
  if (!requireFinite(abscissae) || !requireFinite(table.y) || !checkWeights(table.weights))
    return 0.0;
  const TextReturn textReturn;
  if (!tabulate(table, abscissae, variable, functions)) return 0.0;
  textReturn.go();
  return finish(run([&] {
                  return fitColumns(table.view(),
                                    {table.y, table.weights, arguments.wantsCovariance()}, askUser);
                }),
                arguments);
}

}  // namespace vexa
