#include "numlib/calculus/initial_value.h"

#include <algorithm>
#include <cmath>

#include "numlib/calculus/steppers.h"

namespace vexa {

namespace {

constexpr double shortestStep = 1e-14;  // of the whole way

class Journey {
 public:
  Journey(Stepper& stepper, std::vector<double>& y, double from, double to,
          const InitialValueSettings& settings)
      : m_stepper(stepper),
        m_y(y),
        m_t(from),
        m_longest(settings.longestStep),
        m_shortest(shortestStep * (to - from)),
        m_proposal(
            std::max(std::min(stepper.firstStep(y, from, m_longest), m_longest), m_shortest)),
        m_stepsLeft(settings.mostSteps) {}

  double t() const { return m_t; }
  void allowStep() { ++m_stepsLeft; }

  // Steps to the end of a piece; false when it cannot be reached.
  bool advance(double to) {
    while (m_t != to) {
      if (m_stepsLeft-- <= 0) return false;
      const double rest = to - m_t - m_tRest;
      const bool last = m_proposal >= rest;
      const double length = last ? rest : m_proposal;
      double h = length;
      const bool done = m_stepper.tryStep(m_y, m_t, h);
      const double next = std::min(h, m_longest);
      if (done && last)
        arriveAt(to);
      else if (done)
        moveOn(length);
      // What a step cut short by the end of a piece allows is no reason for shorter ones behind it.
      m_proposal = done && last ? std::max(m_proposal, next) : next;
      if (!(m_proposal >= m_shortest)) return false;
    }
    return true;
  }

 private:
  void arriveAt(double t) {
    m_t = t;
    m_tRest = 0;
  }

  // Far from t = 0 numbers lie so far apart that a sum of steps would go astray.
  void moveOn(double length) {
    length += m_tRest;
    const double sum = m_t + length;
    const double taken = sum - m_t;
    m_tRest = (m_t - (sum - taken)) + (length - taken);
    m_t = sum;
  }

  Stepper& m_stepper;
  std::vector<double>& m_y;
  double m_t;
  double m_tRest = 0;  // what m_t cannot hold of the time that has passed
  double m_longest, m_shortest;
  double m_proposal;
  std::int64_t m_stepsLeft;
};

// From a lower to a higher time.
InitialValueResult solveForward(DerivativeFunction f, std::vector<double>& y, double from,
                                double to, const InitialValueSettings& settings, int pieces,
                                StateVisitor visit) {
  const auto stepper = settings.method == StepMethod::stiff
                           ? makeRodas(f, y.size(), settings)
                           : makeExtrapolation(f, y.size(), settings);
  Journey journey(*stepper, y, from, to, settings);
  for (int i = 1; i <= pieces; ++i) {
    const double end = i == pieces ? to : from + (to - from) * i / pieces;
    journey.allowStep();
    if (!journey.advance(end)) return {journey.t(), InitialValueOutcome::stopped};
    visit(end, y);
  }
  return {to, InitialValueOutcome::done};
}

}  // namespace

InitialValueResult solveInitialValue(DerivativeFunction f, std::vector<double>& y, double from,
                                     double to, const InitialValueSettings& settings, int pieces,
                                     StateVisitor visit) {
  if (from <= to) return solveForward(f, y, from, to, settings, pieces, visit);
  // The library compares works per step, which have the sign of the step, so it gets positive ones:
  // time runs backwards for f instead.
  const auto backward = [&](double t, std::span<const double> at, std::span<double> derivatives) {
    f(-t, at, derivatives);
    for (double& derivative : derivatives) derivative = -derivative;
  };
  const auto visitBackward = [&](double t, std::span<const double> at) { visit(-t, at); };
  const auto result = solveForward(backward, y, -from, -to, settings, pieces, visitBackward);
  return {-result.t, result.outcome};
}

}  // namespace vexa
