// The steppers behind solveInitialValue.
#pragma once

#include <memory>
#include <vector>

#include "numlib/calculus/initial_value.h"

namespace vexa {

class Stepper {
 public:
  virtual ~Stepper() = default;
  // The length of the first step to try, where the longest allowed one may deceive.
  virtual double firstStep(const std::vector<double>&, double, double longest) { return longest; }
  // Tries a step of length h > 0 from t. On success y has moved and true is given; either way h
  // becomes the length proposed for the next try, 0 when there is none. A state that is not finite
  // is no success.
  virtual bool tryStep(std::vector<double>& y, double t, double& h) = 0;
};

std::unique_ptr<Stepper> makeExtrapolation(DerivativeFunction f, std::size_t size,
                                           const InitialValueSettings& settings);
std::unique_ptr<Stepper> makeRodas(DerivativeFunction f, std::size_t size,
                                   const InitialValueSettings& settings);

}  // namespace vexa
