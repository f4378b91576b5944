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
// by the algorithm of Bjoerck and Pereyra (Mathematics of Computation 24, 1970), applied again to
// what is left of the ordinates: a general solver would lose digits on these systems. For up to 20
// points in [-1, 1], whatever their order, the ordinates come back within 4n 2^-53 times the sum of
// all terms' magnitudes. None when interrupted.
std::optional<std::vector<double>> polynomialThrough(std::span<const double> x,
                                                     std::span<const double> y,
                                                     const InterruptTest& interrupted = {});

}  // namespace vexa
