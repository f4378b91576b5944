#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "numlib/fitting/nfit_builtins.h"
#include "numlib/fitting/nonlinear_fit.h"
#include "values/numeric_arguments.h"
#include "values/running_expressions.h"

namespace vexa {

namespace {

constexpr int mostParameters = 50;

// The data of a fit, copied: the model is user text, which may change the variables they come from.
struct FitData {
  std::vector<double> x, y, weights;
};

std::vector<double> copied(DataArgument& argument) {
  const auto elements = argument.elements();
  return {elements.begin(), elements.end()};
}

// Leaves out the points of weight 0.
void dropUnweighted(FitData& data) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < data.weights.size(); ++i) {
    if (data.weights[i] == 0) continue;
    data.x[kept] = data.x[i];
    data.y[kept] = data.y[i];
    data.weights[kept++] = data.weights[i];
  }
  if (data.weights.empty()) return;
  for (std::vector<double>* part : {&data.x, &data.y, &data.weights}) part->resize(kept);
}

// Neither negative nor all 0, otherwise key 34.
void requireWeights(std::span<const double> weights) {
  const bool usable =
      std::ranges::all_of(weights, [](double w) { return std::isfinite(w) && w >= 0; });
  const bool any = std::ranges::any_of(weights, [](double w) { return w > 0; });
  if (!weights.empty() && !(usable && any)) raiseError(ErrorKey::invalidData);
}

void requireFinite(std::span<const double> values) {
  const bool finite = std::ranges::all_of(values, [](double x) { return std::isfinite(x); });
  if (!finite) raiseError(ErrorKey::floatingPoint);
}

// The residual standard deviation; 0 when there are no more data than parameters.
double deviation(const NonlinearFit& fit, std::size_t data) {
  const std::size_t parameters = fit.parameters.size();
  if (data == parameters) return 0.0;
  return std::sqrt(fit.sumOfSquares / static_cast<double>(data - parameters));
}

// s^2 (J^T W J)^-1, all i# where there is no s; key 13 for a singular Jacobian.
std::vector<double> covariance(const NonlinearFitProblem& problem, const NonlinearFit& fit) {
  const std::size_t k = fit.parameters.size();
  if (problem.y.size() == k) return std::vector<double>(k * k, presetValue("i#"));
  std::vector<double> matrix = parameterCovariance(problem, fit.parameters);
  const double s = deviation(fit, problem.y.size());
  for (double& element : matrix) element *= s * s;
  return matrix;
}

// What the model's expressions and data are, as they were read.
struct NfitArguments {
  DataArgument x, y, weights;
  TrialRow& row;
  std::string covariance;
};

bool checkShapes(const NfitArguments& arguments) {
  if (!requireVectors({&arguments.x, &arguments.y})) return false;
  if (arguments.weights.matrix() && !requireVectors({&arguments.x, &arguments.weights}))
    return false;
  return arguments.row.requireRow() &&
         requireDistinct({arguments.row.name(), arguments.covariance},
                         {arguments.x.matrix(), arguments.y.matrix(), arguments.weights.matrix()});
}

FitData checkValues(NfitArguments& arguments) {
  FitData data{copied(arguments.x), copied(arguments.y), {}};
  if (arguments.weights.matrix()) data.weights = copied(arguments.weights);
  if (arguments.row.size() > mostParameters) raiseError(ErrorKey::invalidData);
  requireWeights(data.weights);
  requireFinite(data.x);
  requireFinite(data.y);
  dropUnweighted(data);
  if (data.x.size() < arguments.row.start().size()) refuse("Too few data points");
  requireFinite(arguments.row.start());
  return data;
}

}  // namespace

double nfitBuiltin() {
  expectChar('(');
  RunningVariable t = RunningVariable::read();
  expectChar(',');
  DataArgument x = readData();
  expectChar(',');
  DataArgument y = readData();
  expectChar(',');
  TrialRow row = TrialRow::read();
  expectChar(',');
  NfitArguments arguments{std::move(x), std::move(y), {}, row, {}};
  t.bind();
  // The first of the data, where there is one, so that the model is evaluated where it will be.
  if (arguments.x.size() > 0) t.set(arguments.x.elements().front());
  RowFunctions model = RowFunctions::read(FunctionForm::single, row, &t);
  for (WordReader words({"weights=", "cov="}); words.next();) {
    expectChar(',');
    if (words.index() == 0)
      arguments.weights = readData();
    else
      arguments.covariance = readResultName();
  }
  if (!checkShapes(arguments)) return 0.0;
  const FitData data = checkValues(arguments);

  const TextReturn end;
  const auto values = [&](std::span<const double> a, std::span<double> results) {
    for (std::size_t i = 0; i < results.size(); ++i) {
      results[i] = model.value(0, data.x[i], a);
      if (!std::isfinite(results[i])) return false;
    }
    return true;
  };
  const int mostJacobians = iterationBound() * (row.size() + 1);
  const NonlinearFitProblem problem{values, data.y, data.weights, mostJacobians};
  const NonlinearFit fit = fitNonlinear(problem, row.start());
  if (fit.outcome == NonlinearFitOutcome::notFinite) raiseError(ErrorKey::floatingPoint);
  const bool done = fit.outcome == NonlinearFitOutcome::done;
  std::vector<double> matrix;
  if (done && !arguments.covariance.empty()) matrix = covariance(problem, fit);
  end.go();
  if (!done) raiseError(ErrorKey::notConvergent);
  if (!arguments.covariance.empty()) {
    if (matrix.empty()) raiseError(ErrorKey::singularMatrix);
    storeMatrix(arguments.covariance, {matrix.data(), row.size(), row.size()});
  }
  row.keep(fit.parameters);
  return deviation(fit, data.y.size());
}

}  // namespace vexa
