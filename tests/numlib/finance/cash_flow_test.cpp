#include "numlib/finance/cash_flow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// Equal payments are an annuity: 1/r (1 - (1 + r)^-n).
TEST(CashFlow, PresentValueOfEqualAmounts) {
  for (const double r : {-0.5, -1e-9, 1e-12, 0.07, 3.0, 1e6}) {
    const Numbers v(90, 12.5);
    const long double u = std::log1p(static_cast<long double>(r));
    const auto exact = static_cast<double>(12.5L * -std::expm1(-90 * u) / r);
    EXPECT_NEAR(netPresentValue(r, v), exact, 2 * epsilon * exact) << r;
  }
}

TEST(CashFlow, RatesWhoseValueIsKnown) {
  struct Case {
    Numbers v;
    double guess, rate;
  };
  const Case cases[] = {
      {{-1000, 2300, -1320}, 0.1, 0.1},  {{-1000, 2300, -1320}, 0.25, 0.2},
      {{-100, 50}, 0.1, -0.5},           {{-100, 100}, 0.1, 0},
      {{-1, 0, 0, 1e9}, 0.1, 999},       {{0, 0, -1e300, 1.1e300, 0}, 0.1, 0.1},
      {{-1e-300, 1.25e-300}, 0.1, 0.25}, {{-100, 110}, 20, 0.1},
  };
  for (const Case& c : cases) {
    Numbers days;
    for (std::size_t k = 0; k < c.v.size(); ++k) days.push_back(365.0 * static_cast<double>(k));
    const auto rate = internalRate(c.v, c.guess);
    const auto byDays = internalRateByDays(c.v, days, c.guess);
    ASSERT_TRUE(rate && byDays) << c.rate;
    EXPECT_NEAR(*rate, c.rate, 4 * epsilon * std::max(1.0, c.rate)) << c.rate;
    EXPECT_NEAR(*byDays, c.rate, 4 * epsilon * std::max(1.0, c.rate)) << c.rate << " by days";
  }
}

TEST(CashFlow, NoReturnIsFound) {
  const Numbers cases[] = {
      {1, 2, 3},  // received only

      {1000, -2000, 1000.001},  // never zero
      {-1, 1e200},              // farther out than the search goes
      Numbers(3000, 1.0),       // powers vanish, the sum does not
  };
  for (const Numbers& v : cases) {
    Numbers days(v.size());
    for (std::size_t k = 0; k < v.size(); ++k) days[k] = 365.0 * static_cast<double>(k);
    EXPECT_FALSE(internalRate(v, 0.1)) << v[0];
    EXPECT_FALSE(internalRateByDays(v, days, 0.1)) << v[0];
  }
}

TEST(CashFlow, DaysMayBeOutOfOrder) {
  const Numbers v{-10000, 2750, 4250, 3250, 2750}, days{39448, 39508, 39751, 39859, 39904};
  const Numbers mixed{-10000, 3250, 2750, 2750, 4250}, mixedDays{39448, 39859, 39904, 39508, 39751};
  const double rate = internalRateByDays(v, days, 0.1).value_or(NAN);
  EXPECT_NEAR(rate, internalRateByDays(mixed, mixedDays, 0.1).value_or(NAN), 4 * epsilon);
  EXPECT_NEAR(netPresentValueByDays(rate, v, days), 0, 1e-11) << "10000 of rounding size";
}

TEST(CashFlow, InterruptIsHeardBetweenEvaluations) {
  int asked = 0;
  internalRate(Numbers{1, 1, 1}, 0.1, [&asked] { return ++asked < 0; });
  EXPECT_GT(asked, 500);
}

}  // namespace
}  // namespace vexa
