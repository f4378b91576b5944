// Elementary functions of two numbers. Not-a-number in gives not-a-number out.
#pragma once

namespace vexa {

// sqrt(x^2 + y^2) without overflow on the way.
double hypotenuse(double x, double y);

// x - y floor(x / y), formed without the quotient, so exact but for the last addition: a value
// between 0 and y, with y's sign. Not-a-number for y = 0.
double floorRemainder(double x, double y);

// |x| when y >= 0, a negative zero included, otherwise -|x|.
double magnitudeWithSign(double x, double y);

// -1, 0 or 1.
double signOf(double x);

// y where x >= 0, otherwise 0, whatever y is there.
double whereNotNegative(double x, double y);

// Ratios of hyperbolic functions, as series solutions of heat flow, potentials and plates have
// them: finite wherever the ratio is, although both functions overflow. Right to
// (4 + ||x| - |y||) units in the last place.
double coshOverCosh(double x, double y);
double coshOverSinh(double x, double y);  // infinite for y = 0
double sinhOverCosh(double x, double y);
double sinhOverSinh(double x, double y);  // not-a-number for x = y = 0

}  // namespace vexa
