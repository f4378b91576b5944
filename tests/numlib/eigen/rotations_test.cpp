#include "numlib/eigen/rotations.h"

#include <gtest/gtest.h>

#include <string>

#include "numlib/eigen/dense_checks.h"

namespace vexa {
namespace {

using checks::Dense;
using Direction = ColumnRotations::Direction;

// What a rotation means, one element at a time.
void rotate(Dense& a, int x, int y, double c, double s) {
  for (int i = 0; i < a.rows; ++i) {
    const double first = a(i, x);
    const double second = a(i, y);
    a.view()(i, x) = c * first + s * second;
    a.view()(i, y) = c * second - s * first;
  }
}

TEST(ColumnRotations, NotedRotationsDoWhatTheyWouldDoAtOnce) {
  constexpr unsigned seed = 2104;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 generator(seed);
  for (const int rows : {1, 15, 16, 37, 200}) {  // the last one shared among threads
    const int cols = 11;
    Dense expected = checks::randomDense(rows, cols, generator);
    Dense actual = expected;
    const InterruptTest never;
    ColumnRotations rotations(actual.view(), never);
    // More than are kept back.
    for (int sweep = 0; sweep < 3000; ++sweep) {
      const double angle = 0.001 * sweep;
      const double c = std::cos(angle);
      const double s = std::sin(angle);
      const int first = sweep % 5;
      const int last = 5 + sweep % 6;
      if (sweep % 3 == 0) {
        rotations.beginChain(first, Direction::ascending);
        for (int j = first; j < last; ++j) rotate(expected, j, j + 1, c, s), rotations.add(c, s);
      } else if (sweep % 3 == 1) {
        rotations.beginChain(last, Direction::descending);
        for (int j = last; j > first; --j) rotate(expected, j, j - 1, c, s), rotations.add(c, s);
      } else {
        rotations.beginFan(first, first + 2);
        for (int j = first + 2; j <= last; ++j)
          rotate(expected, first, j, c, s), rotations.add(c, s);
      }
      ASSERT_TRUE(rotations.applyWhenLong());
    }
    ASSERT_TRUE(rotations.applyAll());
    EXPECT_EQ(actual.block, expected.block) << rows;
  }
}

}  // namespace
}  // namespace vexa
