#include "numlib/special/fractions.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

namespace vexa {

namespace {

// NOLINTNEXTLINE(modernize-use-using): that could not be marked as an extension
__extension__ typedef unsigned __int128 Wide;

constexpr double kTwoTo53 = 9007199254740992.0;

// Whether a/b < c/d, for b and d above 0, by their continued fractions: nothing is multiplied, so
// nothing can overflow.
bool isLess(Wide a, Wide b, Wide c, Wide d) {
  for (;;) {
    const Wide left = a / b;
    const Wide right = c / d;
    if (left != right) return left < right;
    a -= left * b;
    c -= right * d;
    if (c == 0) return false;
    if (a == 0) return true;
    // Both are below 1 now: a/b < c/d when d/c < b/a.
    std::swap(a, d);
    std::swap(b, c);
  }
}

Fraction withSign(std::uint64_t numerator, std::uint64_t denominator, bool negative) {
  const auto p = static_cast<double>(numerator);
  return {negative && numerator != 0 ? -p : p, static_cast<double>(denominator)};
}

}  // namespace

std::optional<Fraction> nearestFraction(double x, double maxDenominator) {
  const double a = std::fabs(x);
  if (!(a <= kTwoTo53)) return std::nullopt;
  const bool negative = std::signbit(x);
  const auto limit = static_cast<std::uint64_t>(std::clamp(maxDenominator, 1.0, kTwoTo53));

  // The only case of two equally near fractions with one denominator.
  if (limit == 1) return withSign(static_cast<std::uint64_t>(std::round(a)), 1, negative);
  // Below half of the smallest fraction zero is the nearest, whatever the limit; what is left is a
  // quotient of whole numbers n / 2^k with n <= 2^53 and k <= 107.
  if (a < 0x1p-55) return Fraction{0.0, 1.0};
  int exponent = 0;
  auto significand = static_cast<std::uint64_t>(std::ldexp(std::frexp(a, &exponent), 53));
  const int zeros = std::countr_zero(significand);
  const int k = 53 - exponent - zeros;
  if (k <= 0) return withSign(static_cast<std::uint64_t>(a), 1, negative);
  Wide n = significand >> zeros;
  Wide d = Wide{1} << k;

  // Continued fraction: p1/q1 is the latest convergent, p0/q0 the one before, and
  // a = (p1 r + p0) / (q1 r + q0) with the rest r = n/d.
  std::uint64_t p0 = 0, q0 = 1, p1 = 1, q1 = 0;
  for (;;) {
    const Wide whole = n / d;
    if (q1 != 0 && whole > (limit - q0) / q1) break;
    const auto step = static_cast<std::uint64_t>(whole);
    p0 = std::exchange(p1, p0 + step * p1);
    q0 = std::exchange(q1, q0 + step * q1);
    const Wide rest = n % d;
    if (rest == 0) return withSign(p1, q1, negative);
    n = d;
    d = rest;
  }

  // Nearest is either that convergent, whose successor is above the limit, or the fraction as far
  // on the way to the successor as the limit allows, (p0 + t p1) / (q0 + t q1) on the other side of
  // a. Their distances are as q0 + t q1 to (r - t) q1. On a tie the convergent, whose denominator
  // is the smaller one.
  const std::uint64_t t = (limit - q0) / q1;
  if (isLess(n, d, q0 + 2 * t * q1, q1)) return withSign(p0 + t * p1, q0 + t * q1, negative);
  return withSign(p1, q1, negative);
}

DecimalParts decimalMantissa(double x) {
  if (x == 0.0 || !std::isfinite(x)) return {x, 0};
  char text[32];
  const char* end = std::to_chars(text, std::end(text), x, std::chars_format::scientific).ptr;
  const char* letter = std::find(static_cast<const char*>(text), end, 'e');
  DecimalParts parts{0.0, 0};
  std::from_chars(text, letter, parts.mantissa);
  std::from_chars(letter[1] == '+' ? letter + 2 : letter + 1, end, parts.exponent);
  return parts;
}

}  // namespace vexa
