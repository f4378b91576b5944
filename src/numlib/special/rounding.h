// Rounding to decimals.
#pragma once

namespace vexa {

// x rounded to n decimals, halves away from zero: with s = 10^n, formed by n multiplications with
// 10.0 or |n| with 0.1, the whole number nearest to |x| s divided by s, with the sign of x. Where
// |x| s overflows the result is infinite.
double roundDecimals(int n, double x);

}  // namespace vexa
