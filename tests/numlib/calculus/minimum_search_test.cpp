#include "numlib/calculus/minimum_search.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <vector>

namespace vexa {
namespace {

using Row = std::vector<double>;
using Point = std::span<const double>;

double square(double x) { return x * x; }

// The usual hard functions (More, Garbow and Hillstrom), with their least values and places.
TEST(MinimumSearch, KnownMinimaAreFound) {
  struct Case {
    const char* name;
    double (*f)(Point);
    Row start;
    double least;
    Row place;  // empty where second derivatives are singular
  };
  const Case cases[] = {
      {"Rosenbrock",
       [](Point v) { return 100 * square(v[1] - v[0] * v[0]) + square(1 - v[0]); },
       {-1.2, 1},
       0,
       {1, 1}},
      {"Powell",
       [](Point v) {
         return square(v[0] + 10 * v[1]) + 5 * square(v[2] - v[3]) +
                square(square(v[1] - 2 * v[2])) + 10 * square(square(v[0] - v[3]));
       },
       {3, -1, 0, 1},
       0,
       {}},
      {"Wood",
       [](Point v) {
         return 100 * square(v[0] * v[0] - v[1]) + square(v[0] - 1) + square(v[2] - 1) +
                90 * square(v[2] * v[2] - v[3]) + 10.1 * (square(v[1] - 1) + square(v[3] - 1)) +
                19.8 * (v[1] - 1) * (v[3] - 1);
       },
       {-3, -1, -3, -1},
       0,
       {1, 1, 1, 1}},
      {"Beale",
       [](Point v) {
         return square(1.5 - v[0] * (1 - v[1])) + square(2.25 - v[0] * (1 - v[1] * v[1])) +
                square(2.625 - v[0] * (1 - v[1] * v[1] * v[1]));
       },
       {1, 1},
       0,
       {3, 0.5}},
      {"scaled",
       [](Point v) { return square(v[0] - 1e6) + 1e6 * square(v[1] - 1e-3); },
       {1, 1},
       0,
       {1e6, 1e-3}},
      {"kinks",
       [](Point v) { return std::fabs(v[0] - 1) + std::fabs(v[1] + 2); },
       {0, 0},
       0,
       {1, -2}},
      {"one variable", [](Point v) { return std::cosh(v[0] - 2); }, {10}, 1, {2}},
      {"beside values that are none",
       [](Point v) { return v[0] < 0.5 ? NAN : square(v[0] - 0.5) + square(v[1]); },
       {3, 4},
       0,
       {0.5, 0}},
  };
  for (const Case& c : cases) {
    const SearchResult found = searchMinimum(c.f, c.start, {});
    ASSERT_EQ(found.outcome, SearchOutcome::done) << c.name;
    EXPECT_NEAR(found.value, c.least, 1e-12) << c.name;
    for (std::size_t i = 0; i < c.place.size(); ++i)
      EXPECT_NEAR(found.place[i], c.place[i], 1e-6 * std::fmax(1, std::fabs(c.place[i]))) << c.name;
  }
}

TEST(MinimumSearch, BoundsAreKept) {
  const Row lower = {-HUGE_VAL, 2}, upper = {0.5, 2};
  bool outside = false;
  const auto f = [&](Point v) {
    outside = outside || v[0] > 0.5 || v[1] != 2;
    return square(v[0] - 3) + square(v[1] + 1);
  };
  const SearchResult found = searchMinimum(f, Row{7, 7}, {lower, upper});
  EXPECT_EQ(found.place, (Row{0.5, 2}));
  EXPECT_EQ(found.value, 15.25);
  EXPECT_FALSE(outside);
  const SearchResult fixed = searchMinimum(f, Row{7, 7}, {upper, upper});
  EXPECT_EQ(fixed.place, upper);
}

// The library refuses steps that do not fit between the bounds twice; without them the way is twice
// as long.
TEST(MinimumSearch, NarrowBoundsCostNoMore) {
  int count = 0;
  const auto f = [&count](Point v) {
    ++count;
    double sum = 0;
    for (std::size_t i = 0; i < v.size(); ++i)
      sum +=
          (1 + 10.0 * static_cast<double>(i)) * square(v[i] - 0.004 + (i > 0 ? 0.3 * v[i - 1] : 0));
    return sum;
  };
  const Row lower(6, 0.0), upper(6, 0.01);
  EXPECT_LT(searchMinimum(f, Row(6, 0.009), {lower, upper}).value, 1e-20);
  EXPECT_LT(count, 1200);
}

TEST(MinimumSearch, WhatHasNoMinimumIsTold) {
  const auto outcome = [](auto f) { return searchMinimum(f, Row{1, 2}, {}).outcome; };
  EXPECT_EQ(outcome([](Point v) { return v[0] + v[1]; }), SearchOutcome::withoutMinimum);
  EXPECT_EQ(outcome([](Point) { return NAN; }), SearchOutcome::notFinite);
  const SearchResult flat = searchMinimum([](Point) { return 3.0; }, Row{1, 2}, {});
  EXPECT_EQ(flat.place, (Row{1, 2}));
  // Rough at every scale: it must end, whatever it finds.
  int count = 0;
  const auto rough = [&count](Point v) {
    ++count;
    return std::sin(1e6 * v[0]) + std::sin(1e7 * v[1]);
  };
  searchMinimum(rough, Row{1, 2}, {});
  EXPECT_LE(count, 6 * 1000 * 3 + 1);
}

// The library must not see an exception: it is kept and comes out behind it.
TEST(MinimumSearch, ExceptionsOfTheFunctionComeOut) {
  int count = 0;
  const auto failing = [&count](Point v) {
    if (++count == 7) throw std::runtime_error("seven");
    return v[0] * v[0];
  };
  EXPECT_THROW(searchMinimum(failing, Row{3, 4}, {}), std::runtime_error);
  EXPECT_EQ(count, 7) << "nothing is evaluated after it";
}

}  // namespace
}  // namespace vexa
