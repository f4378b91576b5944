// Reference values are held by the accuracy table.
#include "numlib/calculus/integral.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vexa {
namespace {

constexpr double accuracy = 1e-10;
constexpr double infinity = std::numeric_limits<double>::infinity();

// Each evaluation reads an expression's text, so their number is what an integral costs. No node
// may fall on an end.
TEST(Integral, EvaluationsAreFewAndInside) {
  int count = 0;
  const auto counted = [&count](double x) {
    EXPECT_TRUE(x > 0 && x < 1) << x;
    ++count;
    return 1 / std::sqrt(x);
  };
  EXPECT_NEAR(integrate(counted, 0, 1, accuracy, 100).value, 2, 2e-10);
  EXPECT_LE(count, 2800);
  count = 0;
  EXPECT_EQ(integrate([&](double x) { return counted(x) * x; }, 0, 1, accuracy, 1).outcome,
            IntegralOutcome::notReached);
  EXPECT_EQ(count, 21);
}

// An interior singularity, a step, values that are no numbers: each ends, most with a word that it
// was not reached.
TEST(Integral, HostileIntegrandsEndInBoundedTime) {
  const auto outcome = [](auto f, double a, double b) {
    return integrate(f, a, b, accuracy, 1'000'000'000).outcome;
  };
  EXPECT_EQ(outcome([](double x) { return 1 / std::sqrt(std::fabs(x - 1.0 / 3)); }, 0, 1),
            IntegralOutcome::notReached);
  EXPECT_EQ(outcome([](double x) { return x < 0.37 ? 1.0 : 0.0; }, 0, 1), IntegralOutcome::done);
  EXPECT_EQ(outcome([](double x) { return std::sqrt(x - 2); }, 0, 1), IntegralOutcome::notFinite);
  EXPECT_EQ(outcome([](double) { return HUGE_VAL; }, 1, std::nextafter(1.0, 2.0)),
            IntegralOutcome::notFinite);
}

TEST(Integral, DivergentImproperIntegralsAreRefused) {
  struct Case {
    double (*f)(double);
    double a, b;
  };
  const Case cases[] = {
      {[](double x) { return 1 / x; }, 0, 1},
      {[](double x) { return 1 / (1 - x); }, 0, 1},
      {[](double x) { return std::pow(x, -0.99); }, 0, 1},
      {[](double x) { return 1 / (1 + x); }, 0, infinity},
      {[](double x) { return std::sin(x) / x; }, 0, infinity},
      {[](double x) { return std::cos(x); }, 0, infinity},
      {[](double x) { return std::exp(x * x); }, -infinity, infinity},
      {[](double) { return std::nan(""); }, 0, 1},
  };
  for (const Case& c : cases)
    EXPECT_EQ(integrateImproper(c.f, c.a, c.b, accuracy).outcome, IntegralOutcome::notReached)
        << &c - cases;
}

// Near 1 numbers are too coarse for a singularity; near 0 they are not.
TEST(Integral, SingularityAwayFromZeroIsResolvedAsFarAsNumbersGo) {
  const auto at1 = integrateImproper([](double x) { return 1 / std::sqrt(1 - x); }, 0, 1, accuracy);
  EXPECT_EQ(at1.outcome, IntegralOutcome::done);
  EXPECT_NEAR(at1.value, 2, 2e-8);
}

// Boost's tables: the weights of both rules must belong to the nodes as they are paired here.
TEST(Integral, RulesAreExactForPolynomials) {
  for (int degree = 0; degree <= 31; ++degree) {
    const auto power = [degree](double x) { return std::pow(x, degree); };
    EXPECT_NEAR(integrate(power, 0, 1, 1e-2, 1).value * (degree + 1), 1, 1e-14) << degree;
  }
}

}  // namespace
}  // namespace vexa
