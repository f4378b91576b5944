#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "numlib/calculus/integral.h"

namespace vexa {

namespace {

constexpr double halfPi = std::numbers::pi / 2;
constexpr double negligible = 1e-18;
constexpr double coarseAccuracy = 1e-7;
constexpr int mostHalvings = 10;
constexpr double farApart = 1, probeDistance = 0.25;

// A point of the substitution and its weight dx/dt; `last` when no further number follows.
struct Node {
  double x = 0, weight = 0;
  bool last = false;
};

// Both limits finite. The distance from the nearer end is computed for itself, so that a singular
// end at 0 is approached down to the smallest numbers.
struct FiniteInterval {
  double a, b;

  Node operator()(double t) const {
    const double u = 2 * halfPi * std::sinh(std::fabs(t));
    const double q = std::exp(-u);
    const double distance = (b - a) * (q / (1 + q));
    const double end = t < 0 ? a : b;
    const double x = t < 0 ? a + distance : b - distance;
    const double weight = (b - a) * 2 * halfPi * std::cosh(t) * q / ((1 + q) * (1 + q));
    return {x, weight, x == end || distance == 0};
  }
};

// From a to infinity, or mirrored from minus infinity to a.
struct HalfLine {
  double a;
  double direction;  // 1 or -1

  Node operator()(double t) const {
    const double distance = std::exp(halfPi * std::sinh(t));
    const double x = a + direction * distance;
    const double weight = halfPi * std::cosh(t) * distance;
    return {x, weight, x == a || !std::isfinite(weight)};
  }
};

struct WholeLine {
  Node operator()(double t) const {
    const double u = halfPi * std::sinh(t);
    const double weight = halfPi * std::cosh(t) * std::cosh(u);
    return {std::sinh(u), weight, !std::isfinite(weight)};
  }
};

// What one side of the sum, t > 0 or t < 0, has met on all levels.
struct Side {
  double sign = 1;
  double largest = 0;       // term
  double largestAt = 0;     // its |t|
  bool unresolved = false;  // terms still counted at the last number
};

class Sum {
 public:
  Sum(RealFunction f, FunctionReference<Node(double)> substitution, double accuracy)
      : m_f(f), m_node(substitution), m_accuracy(accuracy) {}

  Integral run() {
    if (!addTerm(m_sides[0], 0)) return failure();
    double previous = 0, step = 1;
    for (int level = 0; level <= mostHalvings; ++level, step /= 2) {
      for (Side& side : m_sides)
        if (!sample(side, step, level == 0 ? step : 2 * step)) return failure();
      const double value = step * m_sum;
      if (!std::isfinite(m_magnitude)) return failure();
      if (level >= 3 && agrees(value, previous, step) && (value != 0 || level >= 6))
        return {value, IntegralOutcome::done};
      previous = value;
    }
    return {previous, IntegralOutcome::notReached};
  }

 private:
  static Integral failure() { return {0, IntegralOutcome::notReached}; }

  // False when the term is not finite.
  bool addTerm(Side& side, double t) {
    const Node node = m_node(side.sign * t);
    const double term = m_f(node.x) * node.weight;
    m_last = std::fabs(term);
    if (!std::isfinite(term)) return false;
    m_sum += term;
    m_magnitude += m_last;
    if (m_last > side.largest) {
      side.largest = m_last;
      side.largestAt = t;
    }
    return true;
  }

  bool isNegligible(double term) const { return term < negligible * m_magnitude; }

  // Whether f is negligible a little farther out than t, too. Where samples are far apart the next
  // one may lie where f cannot be computed any more, such as 1/(e^x - 1) at 1e-17.
  bool negligibleBehind(const Side& side, double t) const {
    const Node node = m_node(side.sign * (t + probeDistance));
    return node.last || isNegligible(std::fabs(m_f(node.x) * node.weight));
  }

  // The new points of a level on one side, outward.
  bool sample(Side& side, double from, double step) {
    bool before = false;  // whether the term before was negligible
    side.unresolved = false;
    for (double t = from;; t += step) {
      if (m_node(side.sign * t).last) {
        side.unresolved = m_last > m_accuracy * 1e-2 * m_magnitude;
        return true;
      }
      if (!addTerm(side, t)) return before;
      const bool now = isNegligible(m_last) && t > side.largestAt;
      if (now && (before || (step >= farApart && negligibleBehind(side, t)))) return true;
      before = now;
    }
  }

  bool agrees(double value, double previous, double step) const {
    const bool coarse = m_sides[0].unresolved || m_sides[1].unresolved;
    const double accuracy = coarse ? std::max(m_accuracy, coarseAccuracy) : m_accuracy;
    return std::fabs(value - previous) <= accuracy * step * m_magnitude;
  }

  RealFunction m_f;
  FunctionReference<Node(double)> m_node;
  double m_accuracy;
  double m_sum = 0, m_magnitude = 0;
  double m_last = 0;  // magnitude of the newest term
  std::array<Side, 2> m_sides = {Side{1}, Side{-1}};
};

Integral integrateOriented(RealFunction f, double a, double b, double accuracy) {
  if (std::isinf(a) && std::isinf(b)) return Sum(f, WholeLine{}, accuracy).run();
  if (std::isinf(b)) return Sum(f, HalfLine{a, 1}, accuracy).run();
  if (std::isinf(a)) return Sum(f, HalfLine{b, -1}, accuracy).run();
  return Sum(f, FiniteInterval{a, b}, accuracy).run();
}

}  // namespace

Integral integrateImproper(RealFunction f, double a, double b, double accuracy) {
  if (a == b) return {};
  if (a < b) return integrateOriented(f, a, b, accuracy);
  Integral integral = integrateOriented(f, b, a, accuracy);
  integral.value = -integral.value;
  return integral;
}

}  // namespace vexa
