#include "numlib/statistics/significance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

using Test = TestResult (*)(std::span<const double>, std::span<const double>);

const std::map<std::string, Test> tests = {
    {"correlation", [](auto x, auto y) { return correlation(x, y, NAN); }},
    {"ftest", varianceRatio},
    {"studente", equalVarianceTest},
    {"studentu", unequalVarianceTest},
    {"studentp", pairedTest}};

TEST(Significance, ExchangedSamples) {
  const Numbers x{1, 2, 4, 8, 9}, y{2, 3, 3, 5, 11};
  for (const auto& [name, test] : tests) {
    const Significance a = *test(x, y), b = *test(y, x);
    const double turned = name == "ftest"         ? 1 / a.statistic
                          : name == "correlation" ? a.statistic
                                                  : -a.statistic;
    EXPECT_NEAR(b.statistic, turned, 1e-15 * std::fabs(turned)) << name;
    EXPECT_NEAR(b.p, a.p, 4e-16) << name;
  }
}

TEST(Significance, NothingToDivideBy) {
  // A mean of equal values may be rounded; their variance is 0 all the same.
  const Numbers equal(7, 0.1), ramp{1, 2, 3, 4, 5, 6, 7}, above{1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5};
  EXPECT_FALSE(correlation(equal, ramp, 0));
  EXPECT_FALSE(correlation(ramp, equal, 0));
  EXPECT_FALSE(varianceRatio(ramp, equal));
  EXPECT_FALSE(equalVarianceTest(equal, equal));
  EXPECT_FALSE(unequalVarianceTest(equal, equal));
  EXPECT_FALSE(pairedTest(ramp, above));
  // One constant sample is enough of a test for the others.
  EXPECT_EQ(varianceRatio(equal, ramp)->p, 0);
  EXPECT_TRUE(unequalVarianceTest(equal, ramp));
}

TEST(Significance, ExactLine) {
  const Numbers x{1, 2, 3, 5}, up{3, 5, 7, 11}, down{-1, -2, -3, -5};
  EXPECT_EQ(correlation(x, up, 7)->statistic, 1);
  EXPECT_EQ(correlation(x, up, 7)->p, 0);
  EXPECT_EQ(correlation(x, down, 7)->statistic, -1);
  EXPECT_EQ(correlation(Numbers{1, 2}, Numbers{5, 3}, 7)->p, 7) << "two points say nothing";
}

}  // namespace
}  // namespace vexa
