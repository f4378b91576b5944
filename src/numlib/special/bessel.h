// Bessel functions of any real order n, from Boost.Math in long double. Outside of the domain the
// result is not-a-number.
//
// All are defined for x > 0. At x = 0, J and I are for n >= 0 and whole n, Y is -infinity, K
// infinity; J and I of whole n go on to x < 0. Within 4 units in the last place for |n| up to 1e4
// and |x| up to 1e5, but near the zeros of J and Y, where 4 units of 2^-53 sqrt(2 / (pi |x|)) are
// the bound. Beyond besselOrderLimit, where the work would grow with the order, not-a-number.
#pragma once

namespace vexa {

inline constexpr double besselOrderLimit = 1e6;

double besselJ(double n, double x);
double besselY(double n, double x);
double besselI(double n, double x);  // modified, growing
double besselK(double n, double x);  // modified, falling

}  // namespace vexa
