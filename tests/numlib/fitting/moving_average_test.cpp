#include "numlib/fitting/moving_average.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

TEST(MovingAverage, WindowsInsideAndCutOff) {
  const Numbers y{2, 4, 6, 8, 10, 0};
  EXPECT_EQ(movingAverage(y, 3, WindowEnds::inside), (Numbers{4, 6, 8, 6}));
  EXPECT_EQ(movingAverage(y, 6, WindowEnds::inside), (Numbers{5}));
  EXPECT_EQ(movingAverage(y, 1, WindowEnds::inside), y);
  EXPECT_EQ(movingAverage(y, 1, WindowEnds::cutOff), y);
  EXPECT_EQ(movingAverage(y, 3, WindowEnds::cutOff), (Numbers{3, 4, 6, 8, 6, 5}));
  EXPECT_EQ(movingAverage(y, 5, WindowEnds::cutOff), (Numbers{4, 5, 6, 5.6, 6, 6}));
}

TEST(MovingAverage, NothingDriftsAndNothingOverflows) {
  EXPECT_EQ(movingAverage(Numbers{1, 1e16, 2, 3, 4}, 3, WindowEnds::inside).back(), 3);
  EXPECT_EQ(movingAverage(Numbers{1, 1e16, -1e16, 2}, 4, WindowEnds::inside).front(), 0.75);
  EXPECT_EQ(movingAverage(Numbers{1.5e308, 1.5e308}, 2, WindowEnds::inside).front(), 1.5e308);

  std::mt19937 generator(77);  // the seed of the random case
  std::normal_distribution<double> normal;
  Numbers y(3000);
  for (double& x : y) x = normal(generator) * std::exp(10 * normal(generator));
  const Numbers means = movingAverage(y, 50, WindowEnds::inside);
  for (std::size_t i = 0; i < means.size(); ++i) {
    long double sum = 0, magnitude = 0;
    for (std::size_t k = i; k < i + 50; ++k) sum += y[k], magnitude += std::fabs(y[k]);
    EXPECT_NEAR(means[i], double(sum / 50), 2.3e-16 * double(magnitude / 50)) << i;
  }
}

TEST(MovingAverage, StopsWhenAsked) {
  EXPECT_LT(movingAverage(Numbers(100000, 1.0), 99, WindowEnds::cutOff, [] { return true; }).size(),
            100000U);
}

}  // namespace
}  // namespace vexa
