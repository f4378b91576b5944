// Extrema, roots, derivatives and sums of functions that make trouble; reference values are held by
// the accuracy table.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "numlib/calculus/derivative.h"
#include "numlib/calculus/extremum.h"
#include "numlib/calculus/root.h"
#include "numlib/calculus/series.h"

namespace vexa {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

TEST(Derivative, UncertainOnesAreRefused) {
  EXPECT_FALSE(differentiate([](double x) { return std::sqrt(x); }, 0)) << "one-sided";
  EXPECT_FALSE(differentiate([](double x) { return x < 1 ? 0.0 : 1.0; }, 1)) << "a step";
  EXPECT_FALSE(differentiate([](double) { return std::nan(""); }, 1));
  EXPECT_EQ(differentiate([](double x) { return std::fabs(x); }, 0), 0) << "symmetric";
  EXPECT_EQ(differentiate([](double) { return 5.0; }, 3, 4), 0);
}

TEST(Extremum, PlateausAndHolesDoNotMislead) {
  const auto least = [](auto f, double a, double b) { return *findMinimum(f, a, b, 100); };
  EXPECT_EQ(least([](double) { return 7.0; }, 2, -1).x, 2) << "the first of equal samples";
  EXPECT_EQ(least([](double x) { return x; }, 0.1, 0.7).x, 0.1);
  EXPECT_EQ(least([](double x) { return -x; }, 0.1, 0.7).x, 0.7);
  EXPECT_EQ(least([](double x) { return x * x; }, 2, 2).x, 2);
  // Infinite values beside the minimum would turn Brent's parabola into not-a-number.
  const auto wall = [](double x) { return x > 2.05 ? HUGE_VAL : std::cosh(x - 2); };
  EXPECT_NEAR(least(wall, 0, 10).x, 2, 1e-7);
  EXPECT_NEAR(least([](double x) { return std::log(x); }, -1, 2).x, 0, 1e-7);
  EXPECT_FALSE(findMinimum([](double) { return std::nan(""); }, 0, 1, 100));
  EXPECT_FALSE(findMinimum(wall, 0, 3, 2)->reached);
}

TEST(Extremum, EdgesAndSmallPlacesAreMetToo) {
  const auto edge = [](double x) { return std::fabs(x - 3) + 1; };
  EXPECT_NEAR(findMinimum(edge, -100, 97, 100)->value, 1, 1e-14);
  for (const double scale : {1e-9, 1e-200}) {
    const auto valley = [scale](double x) { return std::cosh(x / scale - 0.34) - 0.5; };
    const auto found = findMinimum(valley, 0, scale, 100);
    EXPECT_TRUE(found->reached);
    EXPECT_NEAR(found->value, 0.5, 1e-14) << scale;
  }
}

TEST(Root, IsWithinTwoUlp) {
  struct Case {
    double (*f)(double);
    double a, b, root;
  };
  const Case cases[] = {
      {[](double x) { return std::cos(x) - x; }, 0, 1, 0.73908513321516064},  // Dottie's number
      {[](double x) { return std::sin(x); }, 20, 1, 18.849555921538759},      // 6 pi, from 20
      {[](double x) { return std::exp(x) - 1e-300; }, -800, 0, -690.77552789821368},
      {[](double x) { return x - 1e-5; }, 0, 1, 1e-5},
      {[](double x) { return std::pow(x - 1, 5); }, 0, 3, 1},
      {[](double x) { return x * x * x; }, 2, -1, 0},
      {[](double x) { return x < 0.3 ? -1.0 : 1.0; }, 0, 1, 0.3},
  };
  for (const Case& c : cases) {
    const Root found = findRoot(c.f, c.a, c.b, 1e-10, 100);
    EXPECT_EQ(found.outcome, RootOutcome::found) << &c - cases;
    EXPECT_NEAR(found.x, c.root, std::max(2 * epsilon * std::fabs(c.root), 1e-15)) << &c - cases;
  }
}

TEST(Root, WhatIsNoneIsTold) {
  const auto outcome = [](auto f, double a, double b) {
    return findRoot(f, a, b, 1e-10, 100).outcome;
  };
  EXPECT_EQ(outcome([](double x) { return std::tan(x); }, 1, 2), RootOutcome::pole);
  EXPECT_EQ(outcome([](double x) { return 1 / x; }, -1, 2), RootOutcome::pole);
  EXPECT_EQ(outcome([](double x) { return (x - 1) * (x - 1); }, 0, 3), RootOutcome::noSignChange);
  EXPECT_EQ(outcome([](double x) { return std::sqrt(x); }, -1, 1), RootOutcome::notFinite);
  EXPECT_EQ(outcome([](double x) { return x < 0.1   ? -1
                                          : x > 1.9 ? 1
                                                    : std::nan(""); }, 0, 2),
            RootOutcome::notFinite);
}

// Transforms settle on a number for each of these, too.
TEST(Series, DivergentOnesAreRefused) {
  double (*const terms[])(double) = {
      [](double k) { return 1 / k; },
      [](double k) { return 1 / (k - 0.9); },
      [](double k) { return 1 / (k + 7); },
      [](double k) { return 1 / (k * std::log(k + 1)); },
      [](double k) { return 1 / std::sqrt(k); },
      [](double k) { return std::fmod(k, 2) == 0 ? 1.0 : -1.0; },
      [](double k) { return (std::fmod(k, 2) == 0 ? 1.0 : -1.0) * (1 + 1 / k); },
      [](double) { return 1.0; },
  };
  for (const auto& f : terms)
    EXPECT_EQ(sumInfiniteSeries(f, 1, 1e-10, 100'000).outcome, SeriesOutcome::notReached)
        << &f - terms;
}

TEST(Series, FiniteSumsKeepWhatCancels) {
  const double values[] = {1, 1e100, 1, -1e100};
  const auto at = [&values](double k) { return values[static_cast<int>(k)]; };
  EXPECT_EQ(sumSeries(at, 0, 3).value, 2);
  EXPECT_EQ(sumSeries(at, 3, 2).value, 0);
  // A last term that rounding moved beyond the end.
  EXPECT_DOUBLE_EQ(sumSeries([](double k) { return k; }, 0.1, 1.1 - 1e-10).value, 1.2);
}

}  // namespace
}  // namespace vexa
