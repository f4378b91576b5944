#include "numlib/special/elliptic_integrals.h"

#include <boost/math/special_functions/ellint_2.hpp>
#include <boost/math/special_functions/ellint_rd.hpp>
#include <boost/math/special_functions/ellint_rf.hpp>
#include <boost/math/special_functions/ellint_rj.hpp>
#include <cmath>
#include <limits>
#include <numbers>

#include "numlib/special/boost_policy.h"

namespace vexa {

namespace {

using Real = long double;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Real kPi = std::numbers::pi_v<Real>;
// A double below a quarter turn; what a program calls pi/2 counts as a quarter turn.
constexpr double kQuarterTurn = std::numbers::pi / 2;

// An angle as half turns and a rest within a quarter turn, of which the integrals need only sine
// and cosine.
struct Turned {
  Real halfTurns;
  Real sine, cosine;
};

Turned turn(double phi) {
  const Real halfTurns = std::round(static_cast<Real>(phi) / kPi);
  const Real sine = std::sin(static_cast<Real>(phi));
  const bool odd = std::fmod(halfTurns, 2.0L) != 0;
  return {halfTurns, odd ? -sine : sine, std::fabs(std::cos(static_cast<Real>(phi)))};
}

constexpr Turned kQuarter{0, 1, 0};

// What all three integrals have in common: 1 - m sin^2, as a sum in which nothing cancels for
// m <= 1. Formed with 1 - m as a product for m = k^2.
Real besideOne(const Turned& at, Real oneMinusM) {
  return at.cosine * at.cosine + oneMinusM * at.sine * at.sine;
}

Real squareComplement(Real k) { return (1 - k) * (1 + k); }

Real carlsonF(Real x, Real y) { return boost::math::ellint_rf(x, y, 1.0L, IgnoreErrors()); }

Real firstIntegral(const Turned& at, Real k) {
  return at.sine * carlsonF(at.cosine * at.cosine, besideOne(at, squareComplement(k)));
}

// oneMinusN stands for itself, since n may be near 1.
Real thirdByCarlson(const Turned& at, Real n, Real oneMinusN, Real k) {
  const Real square = at.cosine * at.cosine;
  const Real p = besideOne(at, squareComplement(k));
  const Real q = besideOne(at, oneMinusN);
  const Real cube = at.sine * at.sine * at.sine;
  return at.sine * carlsonF(square, p) +
         n / 3 * cube * boost::math::ellint_rj(square, p, 1.0L, q, IgnoreErrors());
}

// For n far below 0 the two terms of Carlson's form nearly cancel. There the integral of the
// characteristic (k^2 - n) / (1 - n), between k^2 and 1, stands in (Abramowitz and Stegun, 17.7.15
// and 16): all terms are positive.
Real thirdIntegral(const Turned& at, Real n, Real k) {
  if (n >= -1 || std::fabs(k) > 1) return thirdByCarlson(at, n, 1 - n, k);
  const Real square = k * k;
  const Real complement = squareComplement(k);
  const Real other = (square - n) / (1 - n);
  const Real weight = n / (n - 1) * (complement / (square - n));
  const Real delta = std::sqrt(besideOne(at, complement));
  const Real angle = std::atan(std::sqrt(-n * other) * at.sine * at.cosine / delta);
  return weight * thirdByCarlson(at, other, complement / (1 - n), k) +
         square / (square - n) * firstIntegral(at, k) +
         angle / std::sqrt((1 - n) * (square - n) / -n);
}

// Whether the first integral exists; infinite where it grows beyond all bounds.
enum class Existence { none, finite, infinite };

Existence firstExists(double phi, double k, const Turned& at) {
  if (std::isnan(k) || !std::isfinite(phi)) return Existence::none;
  const double modulus = std::fabs(k);
  if (modulus < 1) return Existence::finite;
  if (std::fabs(phi) >= kQuarterTurn) return modulus == 1 ? Existence::infinite : Existence::none;
  return besideOne(at, squareComplement(k)) > 0 ? Existence::finite : Existence::none;
}

}  // namespace

double ellipticF(double phi, double k) {
  const Turned at = turn(phi);
  switch (firstExists(phi, k, at)) {
    case Existence::none:
      return kNaN;
    case Existence::infinite:
      return std::copysign(kInfinity, phi);
    case Existence::finite:
      break;
  }
  return quietly([&] {
    Real value = firstIntegral(at, k);
    if (at.halfTurns != 0) value += 2 * at.halfTurns * firstIntegral(kQuarter, k);
    return static_cast<double>(value);
  });
}

double ellipticE(double phi, double k) {
  if (std::isnan(k) || !std::isfinite(phi)) return kNaN;
  const Turned at = turn(phi);
  const double modulus = std::fabs(k);
  // The library forgets the half turns here.
  if (modulus == 1) return static_cast<double>(2 * at.halfTurns + at.sine);
  if (modulus < 1) return quietly([&] { return boost::math::ellint_2(k, phi, IgnoreErrors()); });
  const Real square = at.cosine * at.cosine;
  const Real p = besideOne(at, squareComplement(k));
  if (std::fabs(phi) >= kQuarterTurn || p < 0) return kNaN;
  const Real modulusSine = k * at.sine;
  return quietly([&] {
    const Real second = boost::math::ellint_rd(square, p, 1.0L, IgnoreErrors());
    return static_cast<double>(at.sine *
                               (carlsonF(square, p) - modulusSine * modulusSine / 3 * second));
  });
}

double ellipticPi(double phi, double n, double k) {
  const Turned at = turn(phi);
  const Existence existence = firstExists(phi, k, at);
  const bool beyondQuarter = std::fabs(phi) >= kQuarterTurn;
  if (existence == Existence::none || !std::isfinite(n)) return kNaN;
  if (beyondQuarter ? n >= 1 : besideOne(at, 1 - static_cast<Real>(n)) <= 0) return kNaN;
  if (existence == Existence::infinite) return std::copysign(kInfinity, phi);
  return quietly([&] {
    Real value = thirdIntegral(at, n, k);
    if (at.halfTurns != 0) value += 2 * at.halfTurns * thirdIntegral(kQuarter, n, k);
    return static_cast<double>(value);
  });
}

// Not by way of the angle, which a double meets only nearly.
double completeEllipticPi(double n, double k) {
  if (!(std::fabs(k) <= 1) || !(n < 1) || std::isinf(n)) return kNaN;
  if (std::fabs(k) == 1) return kInfinity;
  return quietly([=] { return static_cast<double>(thirdIntegral(kQuarter, n, k)); });
}

}  // namespace vexa
