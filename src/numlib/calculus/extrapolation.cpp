#include <algorithm>
#include <boost/numeric/odeint/stepper/bulirsch_stoer.hpp>
#include <cmath>

#include "numlib/calculus/steppers.h"

namespace vexa {

namespace {

using State = std::vector<double>;
using Library = boost::numeric::odeint::bulirsch_stoer<State>;

// What a step leaves grows on the way, and the last of the digits is cheap at these orders.
constexpr double share = 0.1;     // of the error aimed at
constexpr double retreat = 0.25;  // of the step, where the library has no sensible proposal

bool allFinite(const State& y) {
  return std::ranges::all_of(y, [](double x) { return std::isfinite(x); });
}

class Extrapolation final : public Stepper {
 public:
  Extrapolation(DerivativeFunction f, std::size_t size, const InitialValueSettings& settings)
      : m_f(f),
        // Errors are measured by the state alone: long steps make its change as large.
        m_library(share * settings.absoluteError, share * settings.relativeError, 1, 0,
                  settings.longestStep),
        m_derivatives(size),
        m_next(size) {}

  bool tryStep(State& y, double t, double& h) override {
    const double length = h;
    m_f(t, y, m_derivatives);
    if (!allFinite(m_derivatives)) {
      h = 0;
      return false;
    }
    double reached = t;
    const auto system = [this](const State& at, State& derivatives, double time) {
      m_f(time, at, derivatives);
    };
    const auto outcome = m_library.try_step(system, y, m_derivatives, reached, m_next, h);
    const bool done = outcome == boost::numeric::odeint::success && allFinite(m_next);
    if (done) y.swap(m_next);
    // After values that are not finite the library proposes not-a-number, and it may propose the
    // same step again.
    const bool sensible = std::isfinite(h) && h > 0 && (done || h < length);
    if (!sensible) {
      m_library.reset();
      h = done ? length : length * retreat;
    }
    return done;
  }

 private:
  DerivativeFunction m_f;
  Library m_library;
  State m_derivatives, m_next;
};

}  // namespace

std::unique_ptr<Stepper> makeExtrapolation(DerivativeFunction f, std::size_t size,
                                           const InitialValueSettings& settings) {
  return std::make_unique<Extrapolation>(f, size, settings);
}

}  // namespace vexa
