#include "numlib/finance/annuity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vexa {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

TEST(Annuity, HugeGrowthCancelsOut) {
  // 10^7 periods: the powers leave every range, the quotients do not.
  const Annuity loan{.n = 1e7, .pv = 1000};
  EXPECT_EQ(payment(0.5, loan), -500);
  EXPECT_EQ(payment(0.5, {.n = 1e30, .pv = 1000}), -500) << "one period more is no more";
  EXPECT_EQ(interestPart(0.5, 1, loan), -500);
  EXPECT_EQ(principalPart(0.5, 1, loan), 0);
  EXPECT_NEAR(principalPart(0.5, 1e7, loan), -1000 / 3.0, 1e-12);
  EXPECT_NEAR(interestSum(0.5, 9999999, 1e7, loan), -1000 * (1 - 5 / 9.0), 1e-12);
  EXPECT_EQ(presentValue(0.5, {.n = 1e7, .pmt = -500, .fv = 7}), 1000);
  EXPECT_NEAR(payment(-0.5, loan), 0, 1e-300) << "what is owed vanishes by itself";
  for (const Due due : {Due::end, Due::beginning}) {
    const Annuity vanishing{.n = 1e6, .pv = 1000, .due = due};
    EXPECT_EQ(interestSum(-0.5, 1, 1e6, vanishing), 1000) << "payments of nothing repay it";
    EXPECT_EQ(interestSum(-0.5, 1, 20, vanishing),
              1000 * (1 - std::pow(0.5, due == Due::end ? 20 : 19)));
  }
  EXPECT_TRUE(std::isinf(futureValue(0.5, loan)));
  EXPECT_EQ(futureValue(0.5, {.n = 1e7}), 0);
}

TEST(Annuity, RateIsTheOneNearestTheGuessOrNone) {
  // Paid at both ends, received between.
  const Annuity twoRates{.n = 10, .pmt = 30, .pv = -100, .fv = -180};
  const double low = *annuityRate(twoRates, 0.0), high = *annuityRate(twoRates, 0.3);
  EXPECT_LT(low, high);
  for (const double r : {low, high}) EXPECT_NEAR(futureValue(r, twoRates), twoRates.fv, 1e-10);
  EXPECT_FALSE(annuityRate({.n = 10, .pmt = 5, .pv = 100}, 0.1)) << "only received";
  EXPECT_NEAR(*annuityRate({.n = 10, .pv = -100, .fv = 200}, 0.1), std::pow(2.0, 0.1) - 1, epsilon);
  EXPECT_FALSE(annuityRate({.n = 1e5, .pv = 100, .fv = 200}, 0.1)) << "no payments, one sign";
  EXPECT_TRUE(std::isnan(*annuityRate({.n = 5}, 0.1))) << "every rate fits";
  EXPECT_NEAR(*annuityRate({.n = 4, .pmt = -25, .pv = 100}, 0.1), 0, 1e-18);
}

}  // namespace
}  // namespace vexa
