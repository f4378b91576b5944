#pragma once

// Polynomials by their coefficients, the constant first.

namespace vexa {

// roots(c, re, im): creates the rows re and im and gives the number of real roots.
double rootsBuiltin();
// poly(c, x [, d]): the value, element-wise in x; d receives the derivative at a number x.
double polyBuiltin();
// polycoe(x, y, c): creates the coefficients of the polynomial through all points. Gives nothing.
double polycoeBuiltin();

}  // namespace vexa
