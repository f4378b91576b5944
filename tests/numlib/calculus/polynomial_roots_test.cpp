#include "numlib/calculus/polynomial_roots.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vexa {
namespace {

using Roots = std::vector<std::complex<double>>;
using Coefficients = std::vector<double>;

constexpr double kHalfEpsilon = 0x1p-53;

// How far |p(z)| is above its bound; 1 is what is promised. Outside of the unit circle the reversed
// polynomial stands in.
double residual(const Coefficients& c, std::complex<double> root) {
  const bool reversed = std::abs(root) > 1;
  std::complex<long double> z(root), value = 0;
  if (reversed) z = 1.0L / z;
  const std::size_t n = c.size() - 1;
  long double sum = 0;
  for (std::size_t k = 0; k <= n; ++k) {
    const long double coefficient = c[reversed ? k : n - k];
    value = value * z + coefficient;
    sum = sum * std::abs(z) + std::fabs(coefficient);
  }
  return static_cast<double>(std::abs(value) /
                             (8.0L * static_cast<long double>(n) * kHalfEpsilon * sum));
}

void expectRoots(const Coefficients& c, const std::string& of) {
  const Roots roots = *polynomialRoots(c);
  ASSERT_EQ(roots.size(), c.size() - 1) << of;
  std::complex<double> sum = 0;
  for (const auto z : roots) {
    EXPECT_LE(residual(c, z), 1) << of << ": " << z;
    EXPECT_NE(std::find(roots.begin(), roots.end(), std::conj(z)), roots.end()) << of << ": " << z;
    sum += z;
  }
  EXPECT_EQ(sum.imag(), 0) << of;
  EXPECT_TRUE(std::is_sorted(roots.begin(), roots.end(), [](auto p, auto q) {
    return p.real() != q.real() ? p.real() < q.real() : p.imag() < q.imag();
  })) << of;
}

Coefficients withRoots(const std::vector<double>& roots) {
  Coefficients c = {1};
  for (const double root : roots) {
    c.insert(c.begin(), 0);
    for (std::size_t k = 0; k + 1 < c.size(); ++k) c[k] -= root * c[k + 1];
  }
  return c;
}

TEST(PolynomialRootsTest, SimpleRootsAreRightToTheLastPlaces) {
  EXPECT_EQ(*polynomialRoots(Coefficients{-6, 11, -6, 1}), (Roots{1, 2, 3}));
  EXPECT_EQ(*polynomialRoots(Coefficients{5, -2, 1}), (Roots{{1, -2}, {1, 2}}));
  EXPECT_EQ(*polynomialRoots(Coefficients{0, 0, -1, 0, 1}), (Roots{-1, 0, 0, 1}));
  const Roots graded = *polynomialRoots(Coefficients{1e-30, -1e10, 1e-5, 1});
  EXPECT_NEAR(graded[1].real() / 1e-40, 1, 1e-15);
  EXPECT_NEAR(graded[2].real() / 99999.999995, 1, 1e-14);
}

TEST(PolynomialRootsTest, ResidualsAreRoundingOnHardPolynomials) {
  std::vector<double> wilkinson;
  for (int k = 1; k <= 20; ++k) wilkinson.push_back(k);
  expectRoots(withRoots(wilkinson), "Wilkinson's");
  expectRoots({-1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, "roots of unity");
  expectRoots(withRoots(std::vector<double>(12, 1)), "a twelvefold root");
  expectRoots({-1e-30, 0, -1e10, 0, 1}, "a tiny pair that starts as two real values");
  Coefficients hull(21);
  for (int k = 0; k <= 20; ++k)
    hull[static_cast<std::size_t>(k)] = std::pow(10, 600 - 60 * std::abs(k - 10) - 300);
  expectRoots(hull, "a companion matrix beyond the range");
}

TEST(PolynomialRootsTest, ResidualsAreRoundingOnRandomPolynomials) {
  std::mt19937 generator(2718);
  std::normal_distribution<double> normal;
  std::uniform_real_distribution<double> uniform(-1, 1);
  for (int trial = 0; trial < 60; ++trial) {
    Coefficients plain(2 + generator() % 30), graded(2 + generator() % 15);
    for (double& x : plain) x = normal(generator);
    for (double& x : graded) x = normal(generator) * std::pow(10, 100 * uniform(generator));
    expectRoots(plain, "plain, trial " + std::to_string(trial));
    expectRoots(graded, "graded, trial " + std::to_string(trial));
  }
  Coefficients large(polynomialDegreeLimit + 1);
  for (double& x : large) x = normal(generator);
  expectRoots(large, "the largest degree");
}

TEST(PolynomialRootsTest, AnInterruptEndsTheCorrections) {
  EXPECT_FALSE(polynomialRoots(Coefficients{-6, 11, -6, 1}, [] { return true; }).has_value());
}

}  // namespace
}  // namespace vexa
