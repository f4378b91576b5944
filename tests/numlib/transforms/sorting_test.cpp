#include "numlib/transforms/sorting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Values = std::vector<double>;

using Random = std::mt19937;

int below(Random& random, unsigned limit) { return static_cast<int>(random() % limit); }

struct Pattern {
  const char* name;
  std::function<double(int i, int n, Random& random)> at;
};

constexpr double infinity = std::numeric_limits<double>::infinity();

const std::vector<Pattern> patterns = {
    {"random", [](int, int, Random& r) { return std::ldexp(below(r, 1u << 30), -20); }},
    {"few values", [](int, int, Random& r) { return below(r, 5); }},
    {"one value", [](int, int, Random&) { return 3; }},
    {"ascending", [](int i, int, Random&) { return i; }},
    {"descending", [](int i, int n, Random&) { return n - i; }},
    {"up and down", [](int i, int n, Random&) { return std::min(i, n - i); }},
    {"saw", [](int i, int, Random&) { return i % 17; }},
    {"zeros of both signs", [](int, int, Random& r) { return below(r, 2) ? 0.0 : -0.0; }},
    {"infinities", [](int, int, Random& r) { return below(r, 2) ? infinity : -below(r, 3); }},
};

Values makeValues(const Pattern& pattern, int n, Random& random) {
  Values values;
  for (int i = 0; i < n; ++i) values.push_back(pattern.at(i, n, random));
  return values;
}

std::size_t negativeZeros(const Values& values) {
  return static_cast<std::size_t>(
      std::ranges::count_if(values, [](double x) { return x == 0 && std::signbit(x); }));
}

// Each key at its place of before, and each place once.
void expectCompanionsOf(const Values& before, const Values& keys, Values places) {
  for (std::size_t i = 0; i < keys.size(); ++i)
    ASSERT_EQ(keys[i], before[static_cast<std::size_t>(places[i])]);
  std::sort(places.begin(), places.end());
  for (std::size_t i = 0; i < places.size(); ++i) ASSERT_EQ(places[i], i);
}

using Sort = Outcome(std::span<double>, std::span<double>, const InterruptTest&);

// Ascending and the same values as before, both by the order of the standard library's sort; a
// companion that numbers the places tells where each key came from.
TEST(Sorting, EveryPatternAndLengthComesOutAscendingWithItsCompanions) {
  constexpr unsigned seed = 4711;
  SCOPED_TRACE("seed " + std::to_string(seed));
  Random random(seed);
  for (const Pattern& pattern : patterns) {
    for (const int n : {0, 1, 2, 3, 15, 16, 17, 24, 25, 100, 255, 256, 257, 5000}) {
      const Values before = makeValues(pattern, n, random);
      Values expected = before, keys = before;
      std::sort(expected.begin(), expected.end());
      sortAscending(keys);
      ASSERT_EQ(keys, expected) << pattern.name << ", " << n;
      ASSERT_EQ(negativeZeros(keys), negativeZeros(before)) << pattern.name << ", " << n;
      for (Sort* const sort : {static_cast<Sort*>(sortAscending), &heapSortAscending}) {
        keys = before;
        Values places(before.size());
        std::iota(places.begin(), places.end(), 0.0);
        ASSERT_EQ(sort(keys, places, {}), Outcome::done);
        ASSERT_EQ(keys, expected) << pattern.name << ", " << n;
        expectCompanionsOf(before, keys, places);
      }
    }
  }
}

// The question may also throw: nothing may be in hand then.
TEST(Sorting, InterruptedKeysAreAPermutationWithTheirCompanions) {
  Random random(5);
  const Values before = makeValues(patterns[0], 600000, random);
  for (const bool throws : {false, true}) {
    for (const int last : {1, 2, 3}) {
      Values keys = before, places(before.size());
      std::iota(places.begin(), places.end(), 0.0);
      int questions = 0;
      const InterruptTest stop = [&] {
        const bool stops = ++questions == last;
        if (stops && throws) throw questions;
        return stops;
      };
      try {
        EXPECT_EQ(sortAscending(keys, places, stop), Outcome::interrupted);
      } catch (int) {
      }
      EXPECT_EQ(questions, last);
      expectCompanionsOf(before, keys, places);
    }
  }
}

TEST(Sorting, NotANumberGoesToTheEndWithItsCompanion) {
  const double nan = std::nan("");
  Values keys{nan, 3, -nan, 1, nan, 2}, companions{0, 1, 2, 3, 4, 5};
  sortAscending(keys, companions);
  EXPECT_EQ(Values(keys.begin(), keys.begin() + 3), (Values{1, 2, 3}));
  EXPECT_EQ(Values(companions.begin(), companions.begin() + 3), (Values{3, 5, 1}));
  EXPECT_TRUE(std::all_of(keys.begin() + 3, keys.end(), [](double x) { return std::isnan(x); }));
  EXPECT_EQ(companions[3] + companions[4] + companions[5], 0 + 2 + 4);
}

}  // namespace
}  // namespace vexa
