// Elliptic integrals in Legendre's form. phi is in radians and any number, k is the modulus, not
// the parameter k^2; a positive n raises the third integral. Outside of the domain the result is
// not-a-number. Within 2 units in the last place.
#pragma once

namespace vexa {

// The integral of 1/sqrt(1 - k^2 sin^2 t) over t from 0 to phi, for |k| < 1, or k^2 sin^2 phi < 1
// within a quarter turn. Infinite for |k| = 1 from a quarter turn on.
double ellipticF(double phi, double k);

// The integral of sqrt(1 - k^2 sin^2 t), for |k| <= 1, or k^2 sin^2 phi <= 1 within a quarter turn.
double ellipticE(double phi, double k);

// The integral of 1/((1 - n sin^2 t) sqrt(1 - k^2 sin^2 t)): where the first one is defined and
// n sin^2 phi < 1, n < 1 from a quarter turn on.
double ellipticPi(double phi, double n, double k);

// The same up to a quarter turn.
double completeEllipticPi(double n, double k);

}  // namespace vexa
