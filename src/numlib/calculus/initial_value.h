// Systems of ordinary differential equations dy/dt = f(t, y) from an initial value.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "numlib/function_reference.h"

namespace vexa {

// Fills the derivatives of y, one for each element.
using DerivativeFunction =
    FunctionReference<void(double t, std::span<const double> y, std::span<double> derivatives)>;

enum class InitialValueOutcome {
  done,
  stopped,  // too many steps, steps that became too short, or a state that is not finite
};

enum class StepMethod {
  extrapolation,  // Bulirsch and Stoer, for systems that are not stiff
  stiff,          // Rodas, a Rosenbrock method of order 4 with an embedded one of order 3
};

struct InitialValueSettings {
  StepMethod method = StepMethod::extrapolation;
  double relativeError = 1e-10;  // aimed at in a step, of each element
  double absoluteError = 1e-10;  // beside it
  double longestStep = 0;        // positive
  std::int64_t mostSteps = 100'000;
};

struct InitialValueResult {
  double t = 0;  // reached
  InitialValueOutcome outcome = InitialValueOutcome::done;
};

// Advances y from `from` to `to`, in either direction. `visit(t, y)` is called at the ends of
// `pieces` equal pieces of the way, the last of them `to`; steps end there. Stopped, y holds the
// last state reached.
//
// The extrapolation is Boost.odeint's; Rodas is after Hairer and Wanner, Solving Ordinary
// Differential Equations II, IV.7, with differences for the derivatives of f.
using StateVisitor = FunctionReference<void(double t, std::span<const double> y)>;
InitialValueResult solveInitialValue(DerivativeFunction f, std::vector<double>& y, double from,
                                     double to, const InitialValueSettings& settings, int pieces,
                                     StateVisitor visit);

}  // namespace vexa
