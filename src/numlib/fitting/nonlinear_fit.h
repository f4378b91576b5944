// Nonlinear least squares.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "numlib/function_reference.h"

namespace vexa {

// Fills the model's values at all data points for parameters a. False when one is not finite.
using ModelFunction = FunctionReference<bool(std::span<const double> a, std::span<double> values)>;

struct NonlinearFitProblem {
  ModelFunction model;
  std::span<const double> y;        // the data, m of them
  std::span<const double> weights;  // none negative; empty for 1 everywhere
  int mostJacobians = 100;
};

enum class NonlinearFitOutcome {
  done,
  notReached,  // within the bound of Jacobians
  notFinite,   // a value of the model at the start
};

struct NonlinearFit {
  std::vector<double> parameters;
  double sumOfSquares = 0;  // weighted
  NonlinearFitOutcome outcome = NonlinearFitOutcome::done;
};

// The parameters that minimise the weighted sum of squares of y - model, from the start given:
// Levenberg-Marquardt (MINPACK's, as in Eigen) with central differences, then plain Gauss-Newton
// steps with better differences while they shrink, which bring the last digits. Values of the model
// that are not finite refuse a step.
NonlinearFit fitNonlinear(const NonlinearFitProblem& problem, std::span<const double> start);

// (J^T W J)^-1, k x k row after row, for the Jacobian of the model at the parameters; empty when J
// is singular or not finite.
std::vector<double> parameterCovariance(const NonlinearFitProblem& problem,
                                        std::span<const double> parameters);

}  // namespace vexa
