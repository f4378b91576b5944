// Arithmetic and elementary functions of complex numbers as pairs of doubles.
//
// Angles are in radians. Logarithm, root and power are principal values, with the argument in
// (-pi, pi]: a zero counts as positive there whatever its sign, since signs of zeros come and go
// with negations that a program does not see.
#pragma once

#include <optional>

namespace vexa {

struct Complex {
  double re = 0.0;
  double im = 0.0;
};

Complex add(Complex a, Complex b);
Complex subtract(Complex a, Complex b);
Complex multiply(Complex a, Complex b);

// a / b. No intermediate result overflows or vanishes when the quotient does not. A divisor of
// exactly zero is the caller's to refuse; it gives infinities or not-a-number here.
Complex divide(Complex a, Complex b);

double complexAbs(Complex z);
Complex complexExp(Complex z);
Complex complexLog(Complex z);  // of zero: (-infinity, 0)
Complex complexSin(Complex z);
Complex complexCos(Complex z);
Complex complexTan(Complex z);
Complex complexSqrt(Complex z);  // real part >= 0

// z to the power w, the principal value of exp(w ln z).
// A whole real exponent up to 1024 in magnitude is taken by products, so that whole parts stay
// exact while they fit a double. Any power with exponent 0 is 1, also of zero. Nothing when z is
// zero and the real part of w is negative; not-a-number when z is zero and w purely imaginary.
std::optional<Complex> complexPower(Complex z, Complex w);

}  // namespace vexa
