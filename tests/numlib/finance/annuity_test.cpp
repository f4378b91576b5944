// The reference rows and their source are in data/finance.
#include "numlib/finance/annuity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace vexa {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

using Numbers = std::vector<double>;

Due dueOf(double type) { return type == 0 ? Due::end : Due::beginning; }

// The functions by the names of the rows; arguments are in the order of a call of the language.
const std::map<std::string, std::function<double(const Numbers&)>> functions = {
    {"pv",
     [](const Numbers& x) {
       return presentValue(x[0], {.n = x[1], .pmt = x[2], .fv = x[3], .due = dueOf(x[4])});
     }},
    {"fv",
     [](const Numbers& x) {
       return futureValue(x[0], {.n = x[1], .pmt = x[2], .pv = x[3], .due = dueOf(x[4])});
     }},
    {"pmt",
     [](const Numbers& x) {
       return payment(x[0], {.n = x[1], .pv = x[2], .fv = x[3], .due = dueOf(x[4])});
     }},
    {"nper",
     [](const Numbers& x) {
       return periods(x[0], {.pmt = x[1], .pv = x[2], .fv = x[3], .due = dueOf(x[4])});
     }},
    {"ipmt",
     [](const Numbers& x) {
       return interestPart(x[0], x[1], {.n = x[2], .pv = x[3], .fv = x[4], .due = dueOf(x[5])});
     }},
    {"ppmt",
     [](const Numbers& x) {
       return principalPart(x[0], x[1], {.n = x[2], .pv = x[3], .fv = x[4], .due = dueOf(x[5])});
     }},
    {"cumipmt",
     [](const Numbers& x) {
       return interestSum(x[0], x[3], x[4], {.n = x[1], .pv = x[2], .due = dueOf(x[5])});
     }},
    {"cumprinc",
     [](const Numbers& x) {
       return principalSum(x[0], x[3], x[4], {.n = x[1], .pv = x[2], .due = dueOf(x[5])});
     }},
    {"intrate", [](const Numbers& x) {
       return annuityRate({.n = x[0], .pmt = x[1], .pv = x[2], .fv = x[3], .due = dueOf(x[4])},
                          x[5])
           .value_or(NAN);
     }}};

TEST(Annuity, ReferenceRows) {
  std::ifstream stream(VEXA_TEST_DATA "/finance/annuities.csv");
  std::string line;
  std::getline(stream, line);  // the heading
  int rows = 0;
  for (; std::getline(stream, line); ++rows) {
    std::istringstream fields(line);
    std::string name, text;
    std::getline(fields, name, ',');
    Numbers x;
    while (std::getline(fields, text, ',')) x.push_back(std::strtod(text.c_str(), nullptr));
    const double exact = x.back();
    x.pop_back();
    const double result = functions.at(name)(x);
    // One rounding of a long double result, and one of the reference in binary; a rate is a small
    // difference of amounts that are given.
    const double given = name == "intrate" ? 1e-18 : 0;
    EXPECT_NEAR(result, exact, 2 * epsilon * std::fabs(exact) + given) << line;
  }
  EXPECT_GT(rows, 700);
}

TEST(Annuity, HugeGrowthCancelsOut) {
  // 10^7 periods: the powers leave every range, the quotients do not.
  const Annuity loan{.n = 1e7, .pv = 1000};
  EXPECT_EQ(payment(0.5, loan), -500);
  EXPECT_EQ(interestPart(0.5, 1, loan), -500);
  EXPECT_EQ(principalPart(0.5, 1, loan), 0);
  EXPECT_NEAR(principalPart(0.5, 1e7, loan), -1000 / 3.0, 1e-12);
  EXPECT_NEAR(interestSum(0.5, 9999999, 1e7, loan), -1000 * (1 - 5 / 9.0), 1e-12);
  EXPECT_EQ(presentValue(0.5, {.n = 1e7, .pmt = -500, .fv = 7}), 1000);
  EXPECT_NEAR(payment(-0.5, loan), 0, 1e-300) << "what is owed vanishes by itself";
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
