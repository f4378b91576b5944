// The gamma function's family: its logarithm, the incomplete function, the error function and the
// factorial. All but the factorial may be called from several threads.
#pragma once

namespace vexa {

// ln |gamma(x)|, to full double precision. +infinity at the poles 0, -1, -2, ... and at both
// infinities. Below zero, where gamma changes its sign, the sign is not reported.
double logGamma(double x);

// The regularised lower incomplete gamma function P(a, x) = (integral from 0 to x of
// t^(a-1) e^-t dt) / gamma(a), for a > 0 and x >= 0; it rises from 0 to 1 with x. Outside of that
// domain, and for a infinite together with x, not-a-number. Within one unit in the last place.
double regularizedGammaP(double a, double x);

// The upper one, 1 - P(a, x), likewise; small values keep their digits for x >= a + 1 and for a
// >= 1.
double regularizedGammaQ(double a, double x);

// The error function: P(1/2, x^2) with the sign of x. Within one unit in the last place, also for
// tiny x, whose square would vanish.
double erfValue(double x);

// n! for n >= 0; not-a-number for n < 0. Up to 32 the value comes from a table in single precision,
// where each entry is its predecessor times n, rounded to single: 14! and on are not the exact
// whole numbers. Above 32 it is exp(logGamma(n + 1)), infinity from 171 on.
// The table is the process's own and grows on demand: one thread at a time.
double factorial(int n);

// For functions of large parameters, in extended precision.
//
// ln(1 + u) - u for u > -1, without cancellation where u is small; near -1 with the digits that
// 1 + u has left.
long double logarithmMinusExcess(long double u);
// ln gamma(a) - ((a - 1/2) ln a - a + ln(2 pi)/2), for a >= 20.
long double stirlingRemainder(long double a);

}  // namespace vexa
