#include "numlib/calculus/root.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <limits>

#include "numlib/special/boost_policy.h"

namespace vexa {

namespace {

constexpr std::uintmax_t evaluationsOfAStep = 3;

// An interval and the values at its ends.
struct Bracket {
  double a = 0, b = 0;
  double fa = 0, fb = 0;

  bool changesSign() const { return std::signbit(fa) != std::signbit(fb); }
  bool finite() const { return std::isfinite(fa) && std::isfinite(fb); }
};

// No number lies between, or the bracket is as small as numbers near 0 are.
bool isNarrow(double a, double b) {
  return std::fabs(b - a) < std::numeric_limits<double>::min() || std::nextafter(a, b) == b ||
         a == b;
}

// Whether a bracket that is still wider than that is good enough when the steps are used up.
bool isShort(double low, double high, const Bracket& start, double accuracy) {
  const double rounding = std::numeric_limits<double>::epsilon() / 2;
  return high - low <= accuracy * std::max(std::fabs(low), std::fabs(high)) ||
         high - low <= rounding * (start.b - start.a);
}

Root narrow(RealFunction f, const Bracket& bracket, double accuracy, int bound) {
  bool finite = true;
  // A zero ends the search at once.
  const auto checked = [&](double x) {
    const double value = f(x);
    finite = finite && std::isfinite(value);
    return finite ? value : 0.0;
  };
  Bracket start = bracket;
  if (start.a > start.b) start = {bracket.b, bracket.a, bracket.fb, bracket.fa};
  std::uintmax_t evaluations = evaluationsOfAStep * static_cast<std::uintmax_t>(bound);
  const auto [low, high] = boost::math::tools::toms748_solve(
      checked, start.a, start.b, start.fa, start.fb, isNarrow, evaluations, IgnoreErrors());
  if (!finite) return {low, RootOutcome::notFinite};
  if (!isNarrow(low, high) && !isShort(low, high, start, accuracy))
    return {low, RootOutcome::notReached};
  const double fLow = f(low), fHigh = f(high);
  const bool lowIsNearer = std::fabs(fLow) <= std::fabs(fHigh);
  const double least = std::min(std::fabs(fLow), std::fabs(fHigh));
  const bool pole = least > std::max(std::fabs(start.fa), std::fabs(start.fb));
  return {lowIsNearer ? low : high, pole ? RootOutcome::pole : RootOutcome::found};
}

// The first change of sign among equal pieces; `bracket` holds the ends of all.
Root scan(RealFunction f, const Bracket& bracket, double accuracy, int pieces) {
  double x = bracket.a, value = bracket.fa;
  for (int i = 1; i <= pieces; ++i) {
    const double part = static_cast<double>(i) / pieces;
    const double next = i == pieces ? bracket.b : bracket.a * (1 - part) + bracket.b * part;
    const Bracket piece{x, next, value, i == pieces ? bracket.fb : f(next)};
    if (!piece.finite()) return {next, RootOutcome::notFinite};
    if (piece.fb == 0) return {next};
    if (piece.changesSign()) return narrow(f, piece, accuracy, pieces);
    x = next;
    value = piece.fb;
  }
  return {bracket.a, RootOutcome::noSignChange};
}

}  // namespace

Root findRoot(RealFunction f, double a, double b, double accuracy, int bound) {
  Bracket bracket{a, b, f(a), 0};
  if (bracket.fa == 0) return {a};
  bracket.fb = f(b);
  if (bracket.fb == 0) return {b};
  if (!bracket.finite()) return {a, RootOutcome::notFinite};
  if (bracket.changesSign()) return narrow(f, bracket, accuracy, bound);
  return scan(f, bracket, accuracy, bound);
}

}  // namespace vexa
