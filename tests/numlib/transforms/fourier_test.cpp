#include "numlib/transforms/fourier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace vexa {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
using Values = std::vector<double>;
using enum FourierDirection;

Values randomValues(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::normal_distribution<double> normal;
  Values values(count);
  for (double& x : values) x = normal(random);
  return values;
}

double norm(const Values& values) {
  double sum = 0;
  for (const double x : values) sum += x * x;
  return std::sqrt(sum);
}

// The loops as they are usually written: reordering by pairs, then one stage after the other.
Values transformPlainly(Values v, double sign) {
  const std::size_t n = v.size() / 2;
  for (std::size_t i = 0, j = 0; i < n; ++i) {
    if (i < j) {
      std::swap(v[2 * i], v[2 * j]);
      std::swap(v[2 * i + 1], v[2 * j + 1]);
    }
    std::size_t bit = n / 2;
    for (; bit >= 1 && (j & bit); bit /= 2) j -= bit;
    j += bit;
  }
  for (std::size_t length = 2; length <= n; length *= 2) {
    const double angle = 6.28318530717959 / (static_cast<double>(length) * sign);
    const double half = std::sin(0.5 * angle);
    const double stepRe = -2.0 * half * half, stepIm = std::sin(angle);
    double wr = 1.0, wi = 0.0;
    for (std::size_t m = 0; m < length / 2; ++m) {
      for (std::size_t i = m; i < n; i += length) {
        double* a = &v[2 * i];
        double* b = &v[2 * i + length];
        const double re = wr * b[0] - wi * b[1], im = wr * b[1] + wi * b[0];
        b[0] = a[0] - re;
        b[1] = a[1] - im;
        a[0] += re;
        a[1] += im;
      }
      const double last = wr;
      wr = wr * stepRe - wi * stepIm + wr;
      wi = wi * stepRe + last * stepIm + wi;
    }
  }
  if (sign < 0)
    for (double& x : v) x /= static_cast<double>(n);
  return v;
}

TEST(Fourier, EveryButterflyIsComputedAsDescribed) {
  for (std::size_t n = 4; n <= 1u << 18; n *= n < 1u << 14 ? 2 : 16) {
    const Values v = randomValues(2 * n, 99);
    for (const auto direction : {forward, inverse}) {
      Values result = v;
      fourierTransform(result, direction);
      const Values expected = transformPlainly(v, direction == forward ? 1 : -1);
      ASSERT_EQ(std::memcmp(result.data(), expected.data(), n * 2 * sizeof(double)), 0)
          << n << " points";
    }
  }
}

// Against the sum itself in long double. Errors of the factors grow with the length of the
// recurrence, those of the stages with their number.
TEST(Fourier, AgreesWithTheSum) {
  for (const std::size_t n : {4u, 8u, 64u, 256u}) {
    const Values v = randomValues(2 * n, 7);
    for (const auto direction : {forward, inverse}) {
      Values result = v;
      fourierTransform(result, direction);
      const double scale = direction == forward ? 1 : static_cast<double>(n);
      for (std::size_t j = 0; j < n; ++j) {
        long double re = 0, im = 0;
        for (std::size_t k = 0; k < n; ++k) {
          const long double turn = static_cast<long double>(j * k % n) / n;
          const long double angle =
              2 * std::numbers::pi_v<long double> * turn * (direction == forward ? 1 : -1);
          re += v[2 * k] * std::cos(angle) - v[2 * k + 1] * std::sin(angle);
          im += v[2 * k] * std::sin(angle) + v[2 * k + 1] * std::cos(angle);
        }
        const double allowed = 4 * std::sqrt(n) * epsilon * norm(v) / scale;
        ASSERT_NEAR(result[2 * j], static_cast<double>(re) / scale, allowed) << n << ", " << j;
        ASSERT_NEAR(result[2 * j + 1], static_cast<double>(im) / scale, allowed) << n << ", " << j;
      }
    }
  }
}

TEST(Fourier, StopsAtEveryQuestion) {
  int questions = 0, last = 0;
  Values v(std::size_t{1} << 20);
  const InterruptTest stop = [&] { return ++questions == last; };
  EXPECT_EQ(fourierTransform(v, forward, stop), Outcome::done);
  const int all = questions;
  EXPECT_GT(all, 4);
  for (last = 1; last <= all; ++last) {
    questions = 0;
    EXPECT_EQ(fourierTransform(v, forward, stop), Outcome::interrupted);
    EXPECT_EQ(questions, last);
  }
}

}  // namespace
}  // namespace vexa
