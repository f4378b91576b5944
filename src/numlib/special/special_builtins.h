#pragma once

// The functions of two and more numbers. Each argument is a number or a `!` expression; with any
// `!` the result is a matrix.

namespace vexa {

// `atan2` `beta` `binom` `ellipe` `ellipf` `ellipi` `gammainc` `gez` `hcoc` `hcos` `hsoc` `hsos`
// `hypot` `mod` `sign`: two arguments, but for sign(x) and ellipi(phi, n, k).
double twoArgumentBuiltin();
// betainc(a, b, x [, "upper"])
double betaincBuiltin();
// `bessi` `bessj` `bessk` `bessy` (n, x): the order n is a single number.
double besselBuiltin();

}  // namespace vexa
