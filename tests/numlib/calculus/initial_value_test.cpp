#include "numlib/calculus/initial_value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace vexa {
namespace {

using State = std::vector<double>;
using Input = std::span<const double>;
using Output = std::span<double>;

struct Solved {
  State y;
  InitialValueResult result;
  int evaluations = 0;
};

template <class System>
Solved solved(System system, State y, double from, double to,
              StepMethod method = StepMethod::extrapolation, double accuracy = 1e-10) {
  Solved solution{std::move(y), {}};
  const auto f = [&](double t, Input at, Output derivatives) {
    ++solution.evaluations;
    system(t, at, derivatives);
  };
  InitialValueSettings settings;
  settings.method = method;
  settings.relativeError = settings.absoluteError = accuracy;
  settings.longestStep = std::fabs(to - from) / 20;
  solution.result = solveInitialValue(f, solution.y, from, to, settings, 1, [](double, Input) {});
  return solution;
}

void oscillator(double, Input y, Output d) {
  d[0] = y[1];
  d[1] = -y[0];
}

// A pendulum keeps its energy, an orbit its energy and its turn.
TEST(InitialValue, ConservedQuantitiesStay) {
  const auto pendulum = [](double, Input y, Output d) {
    d[0] = y[1];
    d[1] = -9.81 * std::sin(y[0]);
  };
  const auto energy = [](const State& y) { return y[1] * y[1] / 2 - 9.81 * std::cos(y[0]); };
  const State start = {3.1, 0};
  for (const auto method : {StepMethod::extrapolation, StepMethod::stiff})
    EXPECT_NEAR(energy(solved(pendulum, start, 0, 20, method).y), energy(start), 1e-7);

  const auto orbit = [](double, Input y, Output d) {
    const double r = std::hypot(y[0], y[1]);
    d[0] = y[2];
    d[1] = y[3];
    d[2] = -y[0] / (r * r * r);
    d[3] = -y[1] / (r * r * r);
  };
  const State around = solved(orbit, {0.4, 0, 0, 2}, 0, 2 * M_PI).y;
  EXPECT_NEAR(around[0], 0.4, 1e-8) << "an ellipse of period 2 pi, eccentricity 0.6";
  EXPECT_NEAR(around[1], 0, 1e-8);
}

// The library takes its works per step with the sign of the step, which confuses its choice of
// order: the way back must cost about as much as the way there.
TEST(InitialValue, WayBackIsAsGoodAsTheWayThere) {
  const Solved there = solved(oscillator, {1, 0}, 0, 1);
  const Solved back = solved(oscillator, there.y, 1, 0);
  EXPECT_NEAR(there.y[0], std::cos(1), 1e-10);
  EXPECT_NEAR(back.y[0], 1, 1e-10);
  EXPECT_NEAR(back.y[1], 0, 1e-10);
  EXPECT_LT(back.evaluations, 2 * there.evaluations);
  const auto growth = [](double t, Input y, Output d) { d[0] = 2 * t * y[0]; };
  EXPECT_NEAR(solved(growth, {std::exp(1)}, 1, -2, StepMethod::stiff).y[0], std::exp(4), 1e-6);
}

// Functions of t alone are where error estimates of some methods vanish.
TEST(InitialValue, QuickAndShortEventsAreSeen) {
  const auto wave = [](double t, Input, Output d) { d[0] = 50 * std::cos(50 * t); };
  const auto bell = [](double t, Input, Output d) { d[0] = std::exp(-400 * (t - 5) * (t - 5)); };
  EXPECT_NEAR(solved(wave, {0}, 0, 10).y[0], std::sin(500), 1e-7);
  EXPECT_NEAR(solved(bell, {0}, 0, 10).y[0], std::sqrt(M_PI) / 20, 1e-9);
}

// The order of Rodas is 4 only if each of its coefficients is right.
TEST(InitialValue, RodasIsOfOrderFour) {
  const auto system = [](double t, Input y, Output d) {
    d[0] = -y[0] * t + std::sin(3 * t) * y[1];
    d[1] = y[0] * y[1] - std::cos(t);
  };
  const State exact = solved(system, {1, 0.5}, 0, 2, StepMethod::extrapolation, 1e-13).y;
  const auto error = [&](double accuracy) {
    const Solved found = solved(system, {1, 0.5}, 0, 2, StepMethod::stiff, accuracy);
    return std::pair(std::hypot(found.y[0] - exact[0], found.y[1] - exact[1]), found.evaluations);
  };
  // Finer, the rounding of the difference quotients would be measured as well.
  const auto [coarse, few] = error(1e-6);
  const auto [fine, many] = error(1e-9);
  const double order = std::log(coarse / fine) / std::log(static_cast<double>(many) / few);
  EXPECT_GT(order, 3.3);
  EXPECT_LT(fine, 1e-9);
}

TEST(InitialValue, StiffSystemsAreCheapForRodas) {
  const auto robertson = [](double, Input y, Output d) {
    d[0] = -0.04 * y[0] + 1e4 * y[1] * y[2];
    d[2] = 3e7 * y[1] * y[1];
    d[1] = -d[0] - d[2];
  };
  const Solved found = solved(robertson, {1, 0, 0}, 0, 40, StepMethod::stiff);
  // Hairer and Wanner, test problem ROBER.
  EXPECT_NEAR(found.y[0] / 0.7158270687193, 1, 1e-7);
  EXPECT_NEAR(found.y[1] / 0.9185534764558e-5, 1, 1e-7);
  EXPECT_NEAR(found.y[2] / 0.2841637457458, 1, 1e-7);
  EXPECT_LT(found.evaluations, 10'000);
  // A mode that decays a million times as fast as the solution moves.
  const auto slaved = [](double t, Input y, Output d) { d[0] = -1e6 * (y[0] - std::cos(t)); };
  EXPECT_NEAR(solved(slaved, {1}, 0, 1, StepMethod::stiff).y[0],
              (1e12 * std::cos(1) + 1e6 * std::sin(1)) / (1e12 + 1), 1e-9);
}

TEST(InitialValue, HostileSystemsStopInBoundedTime) {
  const auto stopsAt = [](auto system, double to, StepMethod method) {
    const Solved found = solved(system, {1}, 0, to, method);
    EXPECT_EQ(found.result.outcome, InitialValueOutcome::stopped);
    EXPECT_TRUE(std::isfinite(found.y[0]));
    return found.result.t;
  };
  for (const auto method : {StepMethod::extrapolation, StepMethod::stiff}) {
    EXPECT_NEAR(stopsAt([](double, Input y, Output d) { d[0] = y[0] * y[0]; }, 2, method), 1, 1e-9)
        << "infinite at 1";
    EXPECT_NEAR(stopsAt([](double, Input y, Output d) { d[0] = -std::sqrt(y[0]); }, 4, method), 2,
                1e-4)
        << "negative from 2 on";
    EXPECT_NEAR(stopsAt([](double t, Input y, Output d) { d[0] = t > 1 ? NAN : y[0]; }, 4, method),
                1, 1e-6);
    EXPECT_EQ(stopsAt([](double, Input, Output d) { d[0] = HUGE_VAL; }, 4, method), 0);
    const auto step = [](double t, Input, Output d) { d[0] = t > 1 ? 1 : 0; };
    EXPECT_NEAR(solved(step, {1}, 0, 4, method).y[0], 4, 1e-8);
  }
}

TEST(InitialValue, PiecesEndWhereTheyShould) {
  std::vector<double> times, values;
  State y = {0};
  InitialValueSettings settings;
  settings.longestStep = 0.4;
  const auto slope = [](double t, Input, Output d) { d[0] = 2 * t; };
  const auto visit = [&](double t, Input at) {
    times.push_back(t);
    values.push_back(at[0]);
  };
  solveInitialValue(slope, y, 2, 0, settings, 4, visit);
  EXPECT_EQ(times, (State{1.5, 1, 0.5, 0}));
  for (std::size_t i = 0; i < times.size(); ++i)
    EXPECT_NEAR(values[i], times[i] * times[i] - 4, 1e-12);
}

}  // namespace
}  // namespace vexa
