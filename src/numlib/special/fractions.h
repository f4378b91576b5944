// A number as a fraction of whole numbers, and as a decimal mantissa with an exponent.
#pragma once

#include <optional>

namespace vexa {

// Whole numbers without a common divisor, denominator > 0; the sign is the numerator's.
struct Fraction {
  double numerator;
  double denominator;
};

// Of all fractions with a denominator up to maxDenominator (1 to 2^53, fractional digits are
// dropped) the one nearest to x, found without rounding; of two equally near ones the one with the
// smaller denominator, and of two whole numbers (possible for maxDenominator 1 only) the one
// farther from zero. Nothing when x is not finite or |x| is above 2^53.
std::optional<Fraction> nearestFraction(double x, double maxDenominator);

// x = mantissa * 10^exponent with 1 <= |mantissa| < 10, or mantissa = x and exponent 0 for zeros,
// infinities and not-a-number.
struct DecimalParts {
  double mantissa;
  int exponent;
};

// The parts of the shortest decimal number that reads back as x, so that 0.1 gives exactly 1 and -1
// (a division by a power of ten would not).
DecimalParts decimalMantissa(double x);

}  // namespace vexa
