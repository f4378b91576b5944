// Euler's beta function and its incomplete relative, the incomplete gamma function with its
// complement, and binomial coefficients. Outside of a domain the result is not-a-number. Much of
// it is Boost.Math's, in long double.
#pragma once

namespace vexa {

// Which side of an incomplete integral: from the lower end up to x, or what is left beyond it. Each
// is computed for itself, so that a small one keeps its digits.
enum class Tail { lower, upper };

// gamma(a) gamma(b) / gamma(a + b), for a > 0 and b > 0. Within 2 units in the last place.
double betaFunction(double a, double b);

// The regularised incomplete beta function I_x(a, b), for a > 0, b > 0 and 0 <= x <= 1; the upper
// tail is 1 - I_x(a, b). Within 4 units in the last place.
double regularizedBeta(double a, double b, double x, Tail tail);

// The regularised incomplete gamma function P(a, x), for a > 0 and x >= 0; the upper tail is
// 1 - P(a, x). Within 4 units in the last place.
double regularizedGamma(double a, double x, Tail tail);

// n (n - 1) ... (n - k + 1) / k! for any n, k without its decimals and at most 1e6 in magnitude;
// 0 for k < 0. Of whole n the correctly rounded value while it is below 2^63; otherwise within
// 1e-14 of it for k up to 100, within 1e-12 beyond.
double binomialCoefficient(double n, double k);

}  // namespace vexa
