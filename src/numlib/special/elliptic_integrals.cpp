#include "numlib/special/elliptic_integrals.h"

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
__extension__ using Quad = __float128;

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

// Within a quarter turn, with the digits that 1 - k sin(phi) needs where it is nearly 0.
Quad preciseSine(double phi) {
  const Quad square = static_cast<Quad>(phi) * phi;
  Quad term = phi, sum = phi;
  for (int k = 2; k < 40; k += 2) {
    term *= -square / (k * (k + 1));
    sum += term;
  }
  return sum;
}

// The modulus, of magnitude 1 or less, and 1 - k^2, which must not be formed from a k near 1.
struct Modulus {
  explicit Modulus(Real modulus) : k(modulus), complement((1 - modulus) * (1 + modulus)) {}
  Modulus(Real modulus, Real complementOfSquare) : k(modulus), complement(complementOfSquare) {}
  Real k, complement;
};

// 1 - m sin^2 as a sum in which nothing cancels for m <= 1.
Real besideOne(const Turned& at, Real oneMinusM) {
  return at.cosine * at.cosine + oneMinusM * at.sine * at.sine;
}

// The same for any m, within a quarter turn.
Real besideOne(double phi, double m) {
  if (m <= 1) return besideOne(turn(phi), 1 - static_cast<Real>(m));
  const Quad sine = preciseSine(phi);
  return static_cast<Real>(1 - m * sine * sine);
}

// An angle and a modulus beyond 1 as those of the same integral, but for a factor 1/|k|, with the
// modulus 1/|k|: the sine of the angle is |k| sin(phi) (Abramowitz and Stegun, 17.4.15).
struct Reciprocal {
  Reciprocal(double phi, double k) : factor(1 / std::fabs(static_cast<Real>(k))) {
    const Quad sine = static_cast<Quad>(std::fabs(k)) * preciseSine(phi);
    at = {0, static_cast<Real>(sine), std::sqrt(static_cast<Real>((1 - sine) * (1 + sine)))};
    const Real size = std::fabs(static_cast<Real>(k));
    modulus = Modulus(factor, (size - 1) * (size + 1) * factor * factor);
  }

  Turned at{};
  Modulus modulus{0};
  Real factor;
};

Real carlsonF(Real x, Real y) { return boost::math::ellint_rf(x, y, 1.0L, IgnoreErrors()); }

Real firstIntegral(const Turned& at, const Modulus& modulus) {
  return at.sine * carlsonF(at.cosine * at.cosine, besideOne(at, modulus.complement));
}

// delta is 1 - k^2 sin^2.
Real secondByCarlson(const Turned& at, Real k, Real delta) {
  const Real square = at.cosine * at.cosine;
  const Real modulusSine = k * at.sine;
  return at.sine * (carlsonF(square, delta) -
                    modulusSine * modulusSine / 3 *
                        boost::math::ellint_rd(square, delta, 1.0L, IgnoreErrors()));
}

Real secondIntegral(const Turned& at, const Modulus& modulus) {
  return secondByCarlson(at, modulus.k, besideOne(at, modulus.complement));
}

// The characteristic n and what it makes of the angle, 1 - n sin^2.
Real thirdByCarlson(const Turned& at, Real n, Real besideN, const Modulus& modulus) {
  const Real square = at.cosine * at.cosine;
  const Real delta = besideOne(at, modulus.complement);
  const Real cube = at.sine * at.sine * at.sine;
  return at.sine * carlsonF(square, delta) +
         n / 3 * cube * boost::math::ellint_rj(square, delta, 1.0L, besideN, IgnoreErrors());
}

// For n far below 0 the two terms of Carlson's form nearly cancel. There the integral of the
// characteristic (k^2 - n) / (1 - n), between k^2 and 1, stands in (Abramowitz and Stegun, 17.7.15
// and 16): all terms are positive.
Real thirdIntegral(const Turned& at, Real n, Real besideN, const Modulus& modulus) {
  if (n >= -1) return thirdByCarlson(at, n, besideN, modulus);
  const Real square = modulus.k * modulus.k;
  const Real other = (square - n) / (1 - n);
  const Real weight = n / (n - 1) * (modulus.complement / (square - n));
  const Real delta = std::sqrt(besideOne(at, modulus.complement));
  const Real angle = std::atan(std::sqrt(-n * other) * at.sine * at.cosine / delta);
  const Real besideOther = besideOne(at, modulus.complement / (1 - n));
  return weight * thirdByCarlson(at, other, besideOther, modulus) +
         square / (square - n) * firstIntegral(at, modulus) +
         angle / std::sqrt((1 - n) * (square - n) / -n);
}

Real completeThird(Real n, const Modulus& modulus) {
  return thirdIntegral(kQuarter, n, 1 - n, modulus);
}

// Whether the first integral exists; infinite where it grows beyond all bounds.
enum class Existence { none, finite, infinite };

Existence firstExists(double phi, double k) {
  if (std::isnan(k) || !std::isfinite(phi)) return Existence::none;
  const double modulus = std::fabs(k);
  if (modulus < 1) return Existence::finite;
  if (std::fabs(phi) >= kQuarterTurn) return modulus == 1 ? Existence::infinite : Existence::none;
  return modulus == 1 || Reciprocal(phi, k).at.cosine > 0 ? Existence::finite : Existence::none;
}

}  // namespace

double ellipticF(double phi, double k) {
  switch (firstExists(phi, k)) {
    case Existence::none:
      return kNaN;
    case Existence::infinite:
      return std::copysign(kInfinity, phi);
    case Existence::finite:
      break;
  }
  return quietly([=] {
    if (std::fabs(k) > 1) {
      const Reciprocal r(phi, k);
      return static_cast<double>(r.factor * firstIntegral(r.at, r.modulus));
    }
    const Turned at = turn(phi);
    const Modulus modulus(k);
    Real value = firstIntegral(at, modulus);
    if (at.halfTurns != 0) value += 2 * at.halfTurns * firstIntegral(kQuarter, modulus);
    return static_cast<double>(value);
  });
}

double ellipticE(double phi, double k) {
  if (std::isnan(k) || !std::isfinite(phi)) return kNaN;
  const Turned at = turn(phi);
  if (std::fabs(k) == 1) return static_cast<double>(2 * at.halfTurns + at.sine);
  return quietly([=] {
    if (std::fabs(k) > 1) {
      if (std::fabs(phi) >= kQuarterTurn) return kNaN;
      // The library would go round with not-a-number until it tires.
      const Real cosine = Reciprocal(phi, k).at.cosine;
      if (std::isnan(cosine)) return kNaN;
      return static_cast<double>(secondByCarlson(at, k, cosine * cosine));
    }
    const Modulus modulus(k);
    Real value = secondIntegral(at, modulus);
    if (at.halfTurns != 0) value += 2 * at.halfTurns * secondIntegral(kQuarter, modulus);
    return static_cast<double>(value);
  });
}

double ellipticPi(double phi, double n, double k) {
  const Existence existence = firstExists(phi, k);
  const bool beyondQuarter = std::fabs(phi) >= kQuarterTurn;
  if (existence == Existence::none || !std::isfinite(n)) return kNaN;
  if (beyondQuarter && n >= 1) return kNaN;
  const Real besideN =
      beyondQuarter ? besideOne(turn(phi), 1 - static_cast<Real>(n)) : besideOne(phi, n);
  if (!(besideN > 0)) return kNaN;
  if (existence == Existence::infinite) return std::copysign(kInfinity, phi);
  return quietly([=] {
    if (std::fabs(k) > 1) {
      const Reciprocal r(phi, k);
      return static_cast<double>(r.factor *
                                 thirdIntegral(r.at, n * r.factor * r.factor, besideN, r.modulus));
    }
    const Turned at = turn(phi);
    const Modulus modulus(k);
    Real value = thirdIntegral(at, n, besideN, modulus);
    if (at.halfTurns != 0) value += 2 * at.halfTurns * completeThird(n, modulus);
    return static_cast<double>(value);
  });
}

// Not by way of the angle, which a double meets only nearly.
double completeEllipticPi(double n, double k) {
  if (!(std::fabs(k) <= 1) || !(n < 1) || std::isinf(n)) return kNaN;
  if (std::fabs(k) == 1) return kInfinity;
  return quietly([=] { return static_cast<double>(completeThird(n, Modulus(k))); });
}

}  // namespace vexa
