// Published data with certified results are in data/fitting and held by the accuracy table.
#include "numlib/fitting/nonlinear_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace vexa {
namespace {

using Parameters = std::vector<double>;
using Model = std::function<double(double x, std::span<const double> b)>;

std::vector<double> equallySpaced(double from, double step, int count) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(from + step * i);
  return values;
}

struct Fitted {
  NonlinearFit fit;
  std::vector<double> covariance;
  double s = 0;
  int evaluations = 0;
};

Fitted fitted(const Model& model, const std::vector<double>& x, const std::vector<double>& y,
              const Parameters& start, const std::vector<double>& weights = {}) {
  Fitted result;
  const auto values = [&](std::span<const double> a, std::span<double> found) {
    ++result.evaluations;
    bool finite = true;
    for (std::size_t i = 0; i < found.size(); ++i) {
      found[i] = model(x[i], a);
      finite = finite && std::isfinite(found[i]);
    }
    return finite;
  };
  const NonlinearFitProblem problem{values, y, weights, 100 * static_cast<int>(start.size() + 1)};
  result.fit = fitNonlinear(problem, start);
  result.covariance = parameterCovariance(problem, result.fit.parameters);
  result.s = std::sqrt(result.fit.sumOfSquares / static_cast<double>(x.size() - start.size()));
  return result;
}

TEST(NonlinearFit, ExactDataAreMet) {
  const std::vector<double> x = equallySpaced(0, 0.25, 20);
  const Model decay = [](double t, auto a) { return a[0] * std::exp(-a[1] * t) + a[2]; };
  const Parameters exact = {3, 0.7, -1};
  std::vector<double> y;
  for (const double t : x) y.push_back(decay(t, std::span(exact)));
  const Fitted found = fitted(decay, x, y, {1, 0.1, 0});
  for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(found.fit.parameters[j], exact[j], 1e-10);
  const Fitted again = fitted(decay, x, y, exact);
  EXPECT_EQ(again.fit.parameters, exact) << "a start without residuals is the end";
}

// The normal equations of a straight line give the same, and a weight of 2 is a point taken twice.
TEST(NonlinearFit, LinearModelsAgreeWithTheirNormalEquations) {
  const Model line = [](double t, auto a) { return a[0] + a[1] * t; };
  const Fitted found = fitted(line, {1, 2, 3, 4, 5}, {2.1, 3.9, 6.2, 7.8, 10.1}, {0, 0});
  EXPECT_NEAR(found.fit.parameters[0], 0.05, 1e-11);
  EXPECT_NEAR(found.fit.parameters[1], 1.99, 1e-11);
  EXPECT_NEAR(found.s * std::sqrt(found.covariance[3]), 0.05972157622, 1e-11);
  const Fitted weighted = fitted(line, {1, 2, 4}, {2, 3, 7}, {1, 1}, {1, 2, 1});
  const Fitted doubled = fitted(line, {1, 2, 2, 4}, {2, 3, 3, 7}, {1, 1});
  for (std::size_t j = 0; j < 2; ++j)
    EXPECT_NEAR(weighted.fit.parameters[j], doubled.fit.parameters[j], 1e-11);
  EXPECT_NEAR(weighted.fit.sumOfSquares, doubled.fit.sumOfSquares, 1e-12);
}

TEST(NonlinearFit, HostileModelsEnd) {
  const std::vector<double> x = {1, 2, 3, 4}, y = {1, 4, 9, 16};
  const Model idle = [](double t, auto a) { return a[0] * t * t; };
  const Fitted found = fitted(idle, x, y, {3, 5});
  EXPECT_EQ(found.fit.outcome, NonlinearFitOutcome::done);
  EXPECT_NEAR(found.fit.parameters[0], 1, 1e-12);
  EXPECT_EQ(found.fit.parameters[1], 5) << "a parameter without influence stays";
  EXPECT_TRUE(found.covariance.empty()) << "and leaves no covariance";

  const Model never = [](double, auto) { return std::nan(""); };
  EXPECT_EQ(fitted(never, x, y, {1}).fit.outcome, NonlinearFitOutcome::notFinite);
  // Not finite beyond a wall that the first step would jump over.
  const Model wall = [](double t, auto a) { return std::log(a[0]) * t + t; };
  const Fitted refused = fitted(wall, x, y, {1e-3});
  EXPECT_EQ(refused.fit.outcome, NonlinearFitOutcome::done);
  EXPECT_NEAR(refused.fit.parameters[0], std::exp(70.0 / 30), 1e-9);
  // A minimum at infinity: the search ends, by itself or by its bound.
  const Model away = [](double, auto a) { return std::exp(-a[0]); };
  EXPECT_LT(fitted(away, x, {0, 0, 0, 0}, {1}).evaluations, 2000);
}

}  // namespace
}  // namespace vexa
