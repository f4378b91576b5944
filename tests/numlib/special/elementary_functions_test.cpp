#include "numlib/special/elementary_functions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Function {
  const char* name;
  double (*value)(double);
  ElementaryLoop* ElementaryLoops::*loop;
  long double (*reference)(long double);
};

const Function kSine{"sine", sine, &ElementaryLoops::sine, sinl};
const Function kCosine{"cosine", cosine, &ElementaryLoops::cosine, cosl};
const Function kExponential{"exponential", exponential, &ElementaryLoops::exponential, expl};
const Function kLogarithm{"naturalLogarithm", naturalLogarithm, &ElementaryLoops::naturalLogarithm,
                          logl};
const Function kFunctions[] = {kSine, kCosine, kExponential, kLogarithm};

// In units in the last place of the result.
double errorOf(const Function& function, double x) {
  const long double exact = function.reference(x);
  int exponent;
  std::frexp(static_cast<double>(exact), &exponent);
  const double unit = std::ldexp(1.0, std::max(exponent - 53, -1074));
  return static_cast<double>(std::fabs((function.value(x) - exact) / unit));
}

std::vector<double> uniform(std::mt19937_64& random, double from, double to, int count) {
  std::uniform_real_distribution<double> draw(from, to);
  std::vector<double> x(count);
  for (double& element : x) element = draw(random);
  return x;
}

// The doubles beside multiples of pi/2, where nearly all digits of the argument cancel.
std::vector<double> besideQuarterTurns(std::mt19937_64& random, int count) {
  std::uniform_int_distribution<int> multiple(1, 650000);
  std::vector<double> x(count);
  for (double& element : x) {
    element = std::nextafter(multiple(random) * (std::numbers::pi / 2),
                             random() % 2 == 0 ? 0.0 : kInfinity);
  }
  return x;
}

TEST(ElementaryFunctions, StayWithinEightTenthsOfAUnit) {
  // Long double has eleven bits more than double, and its functions are good to one unit.
  constexpr unsigned seed = 20260;
  std::mt19937_64 random(seed);
  constexpr int count = 50000;
  struct Case {
    const Function& function;
    std::vector<double> x;
  };
  const Case cases[] = {
      {kSine, uniform(random, -10, 10, count)},
      {kSine, uniform(random, -2e6, 2e6, count)},
      {kSine, besideQuarterTurns(random, count)},
      {kSine, uniform(random, -1e-300, 1e-300, 100)},
      {kCosine, uniform(random, -10, 10, count)},
      {kCosine, uniform(random, -2e6, 2e6, count)},
      {kCosine, besideQuarterTurns(random, count)},
      {kExponential, uniform(random, -2, 2, count)},
      {kExponential, uniform(random, -745, 709, count)},
      {kLogarithm, uniform(random, 0.5, 2, count)},
      {kLogarithm, uniform(random, 1 - 1e-6, 1 + 1e-6, count)},
      {kLogarithm, uniform(random, 0, 1e300, count)},
      {kLogarithm, uniform(random, 0, 1e-307, count)},
  };
  for (const Case& c : cases) {
    double worst = 0.0, worstAt = 0.0;
    for (const double x : c.x) {
      const double error = errorOf(c.function, x);
      if (error > worst) worst = error, worstAt = x;
    }
    EXPECT_LT(worst, 0.8) << c.function.name << " of " << worstAt << ", seed " << seed;
  }
}

TEST(ElementaryFunctions, KeepExactValuesSignsAndLimits) {
  EXPECT_TRUE(std::signbit(sine(-0.0)));
  EXPECT_FALSE(std::signbit(sine(0.0)));
  EXPECT_EQ(cosine(0.0), 1.0);
  EXPECT_EQ(exponential(0.0), 1.0);
  EXPECT_EQ(exponential(1.0), std::numbers::e);
  EXPECT_EQ(exponential(-kInfinity), 0.0);
  EXPECT_EQ(exponential(710.0), kInfinity);
  EXPECT_EQ(naturalLogarithm(1.0), 0.0);
  EXPECT_EQ(naturalLogarithm(0.0), -kInfinity);
  EXPECT_EQ(naturalLogarithm(kInfinity), kInfinity);
  EXPECT_EQ(naturalLogarithm(0x1p700), 700 * std::numbers::ln2) << "a power of two, rounded once";
  for (const double x : {sine(kInfinity), cosine(-kInfinity), naturalLogarithm(-1.0), sine(kNaN),
                         exponential(kNaN), naturalLogarithm(kNaN)}) {
    EXPECT_TRUE(std::isnan(x));
  }
}

TEST(ElementaryFunctions, LoopsOfEveryWidthGiveTheBitsOfSingleValues) {
  constexpr unsigned seed = 7;
  std::mt19937_64 random(seed);
  std::vector<double> x = uniform(random, -700, 700, 1003);
  // Blocks that are near for every function come first; later ones hold a few far arguments.
  std::transform(x.begin(), x.begin() + 600, x.begin(), [](double e) { return std::fabs(e); });
  const double far[] = {kNaN, kInfinity, -kInfinity, 0.0, -0.0, 1e-310, 1e22, -5e6, 1e308};
  std::copy(std::begin(far), std::end(far), x.begin() + 700);

  for (int width = 0; width <= 2; ++width) {
    const ElementaryLoops* const loops = elementaryLoopsOfWidth(width);
    if (!loops) continue;
    for (const Function& function : kFunctions) {
      for (const double factor : {1.0, std::numbers::pi / 180}) {
        std::vector<double> y = x;
        (loops->*function.loop)(y.data(), factor, y.data(), y.size());
        for (std::size_t i = 0; i < x.size(); ++i) {
          const double single = function.value(x[i] * factor);
          EXPECT_TRUE(std::bit_cast<std::uint64_t>(y[i]) == std::bit_cast<std::uint64_t>(single) ||
                      (std::isnan(y[i]) && std::isnan(single)))
              << function.name << " of " << x[i] << " times " << factor << ", width " << width;
        }
      }
    }
  }
}

}  // namespace
}  // namespace vexa
