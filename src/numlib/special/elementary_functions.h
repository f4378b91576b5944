// Sine, cosine, exponential function and natural logarithm of one number and of many.
//
// A stretch of numbers is computed in whole vectors, compiled for several widths, of which the
// processor's best is chosen at the first use. Every product and every sum is rounded by itself,
// so that all widths, and the functions of one number, give the same bits. The error stays below
// 0.8 units in the last place. Arguments outside the range where the formulas hold (angles beyond
// a million, exponents near overflow or underflow, logarithms of zero, negative or subnormal
// numbers, infinities, not-a-number) are left to the C++ library, one by one.
//
// Method: an angle is reduced by the nearest multiple of pi/2, an exponent by one of ln 2, in
// several parts whose products are exact (Cody and Waite, Software Manual for the Elementary
// Functions, 1980); near-minimax polynomials do the rest.
#pragma once

#include <cstddef>

namespace vexa {

double sine(double x);
double cosine(double x);
double exponential(double x);
double naturalLogarithm(double x);

// Fills to[i] with the value at factor * from[i], that product being rounded first. `to` may be
// `from`, but may not overlap it otherwise.
using ElementaryLoop = void(const double* from, double factor, double* to, std::size_t count);

struct ElementaryLoops {
  ElementaryLoop* sine;
  ElementaryLoop* cosine;
  ElementaryLoop* exponential;
  ElementaryLoop* naturalLogarithm;
};

// The best that this processor runs.
const ElementaryLoops& elementaryLoops();
// Those of a width: 0 for plain, then wider; null beyond what this processor runs. For tests.
const ElementaryLoops* elementaryLoopsOfWidth(int width);

}  // namespace vexa
