// Polynomials as vectors of coefficients, the constant first: c[k] belongs to x^k, counted from 0.
// Everything is summed in long double.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "numlib/linear/interrupt_test.h"

namespace vexa {

struct PolynomialValue {
  double value = 0;
  double derivative = 0;
};

// By Horner's rule; c holds at least one coefficient. Within 2^-52 times the sum of all terms'
// magnitudes.
PolynomialValue evaluatePolynomial(std::span<const double> c, double x);

// The n coefficients of the polynomial of degree n - 1 through n points with different abscissae,
// by the algorithm of Bjoerck and Pereyra (Mathematics of Computation 24, 1970): a general solver
// would lose digits on these systems. None when interrupted.
std::optional<std::vector<double>> polynomialThrough(std::span<const double> x,
                                                     std::span<const double> y,
                                                     const InterruptTest& interrupted = {});

}  // namespace vexa
