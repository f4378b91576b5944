// Beta, gamma, elliptic and Bessel functions at the edges of their domains, where the library
// beneath is at fault, and by the identities between them. Their accuracy is in accuracy_test.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "numlib/special/bessel.h"
#include "numlib/special/beta_functions.h"
#include "numlib/special/elliptic_integrals.h"

namespace vexa {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kPi = std::numbers::pi;

// ---- Beta and gamma ----

TEST(BetaTest, OutsideOfTheDomainIsNotANumber) {
  for (const double bad : {0.0, -1.0, kNaN}) {
    EXPECT_TRUE(std::isnan(betaFunction(bad, 1)));
    EXPECT_TRUE(std::isnan(betaFunction(1, bad)));
    EXPECT_TRUE(std::isnan(regularizedGamma(bad, 1, Tail::upper)));
    for (const Tail tail : {Tail::lower, Tail::upper}) {
      EXPECT_TRUE(std::isnan(regularizedBeta(bad, 1, 0.5, tail)));
      EXPECT_TRUE(std::isnan(regularizedBeta(1, bad, 0.5, tail)));
    }
  }
  for (const double x : {-0.1, 1.1, kNaN})
    EXPECT_TRUE(std::isnan(regularizedBeta(2, 3, x, Tail::lower))) << x;
}

TEST(BetaTest, LimitsAtInfinityAndAtTheEnds) {
  EXPECT_EQ(betaFunction(kInfinity, 3), 0);
  EXPECT_EQ(betaFunction(1e-320, 1), kInfinity);
  EXPECT_EQ(regularizedBeta(2, 3, 0, Tail::lower), 0);
  EXPECT_EQ(regularizedBeta(2, 3, 1, Tail::lower), 1);
  EXPECT_EQ(regularizedBeta(2, 3, 1, Tail::upper), 0);
  EXPECT_EQ(regularizedBeta(kInfinity, 3, 0.9, Tail::lower), 0);
  EXPECT_EQ(regularizedBeta(2, kInfinity, 0.1, Tail::upper), 0);
  EXPECT_TRUE(std::isnan(regularizedBeta(kInfinity, kInfinity, 0.5, Tail::lower)));
  EXPECT_EQ(regularizedGamma(1e-300, 1e-300, Tail::lower), 1);
}

// Where the library's continued fraction would not come to an end.
TEST(BetaTest, HugeParametersAreASmoothStep) {
  for (const double a : {1e11, 1e15, 1e300})
    EXPECT_DOUBLE_EQ(regularizedBeta(a, a, 0.5, Tail::lower), 0.5);
  for (const double a : {0.5e11, 1.01e11, 1e12}) {
    const double x = 0.25 * (1 + 1 / std::sqrt(a));
    const double lower = regularizedBeta(a, 3 * a, x, Tail::lower);
    EXPECT_NEAR(lower, 0.5 * std::erfc(-std::sqrt(2.0 / 3)), 1e-5) << a;
    EXPECT_NEAR(lower + regularizedBeta(a, 3 * a, x, Tail::upper), 1, 1e-9) << a;
  }
}

TEST(BinomialTest, WholeNumbersAreExactAndOthersDefinedEverywhere) {
  EXPECT_EQ(binomialCoefficient(60, 30), 118264581564861424.0);
  EXPECT_EQ(binomialCoefficient(50, 25), 126410606437752.0);
  EXPECT_EQ(binomialCoefficient(3, 5), 0);
  EXPECT_EQ(binomialCoefficient(3, -1), 0);
  EXPECT_EQ(binomialCoefficient(3, 2.9), 3);
  EXPECT_EQ(binomialCoefficient(-2, 3), -4);
  EXPECT_EQ(binomialCoefficient(-1e18, 1), -1e18);
  EXPECT_EQ(binomialCoefficient(1e300, 0), 1);
  EXPECT_EQ(binomialCoefficient(1e300, 2), kInfinity);
  EXPECT_EQ(binomialCoefficient(-1e300, 3), -kInfinity);
  EXPECT_EQ(binomialCoefficient(-kInfinity, 3), -kInfinity);
  EXPECT_EQ(binomialCoefficient(2e6, 1e6), kInfinity);
  EXPECT_TRUE(std::isnan(binomialCoefficient(5, 1e6 + 1)));
  EXPECT_TRUE(std::isnan(binomialCoefficient(5, kNaN)));
  // The product passes far beyond the range on its way.
  EXPECT_NEAR(binomialCoefficient(1e6 + 0.5, 1e6) / (std::sqrt(1e6) * 2 / std::sqrt(kPi)), 1, 1e-6)
      << "gamma(k + 3/2) / (gamma(k + 1) gamma(3/2)) for large k";
}

// ---- Elliptic integrals ----

// The second integral of the library forgets the half turns when the modulus is 1.
TEST(EllipticTest, ModulusOneCountsHalfTurns) {
  for (const double phi : {2.0, -4.0, 20.0, 1234.5}) {
    const double turns = std::round(phi / kPi);
    EXPECT_NEAR(ellipticE(phi, 1), 2 * turns + std::sin(phi - kPi * turns),
                4 * kEpsilon * std::fabs(phi));
  }
  EXPECT_EQ(ellipticF(kPi / 2, 1), kInfinity);
  EXPECT_EQ(ellipticF(-7, -1), -kInfinity);
  EXPECT_EQ(ellipticPi(2, 0.5, 1), kInfinity);
  EXPECT_EQ(completeEllipticPi(0.5, 1), kInfinity);
}

TEST(EllipticTest, OutsideOfTheDomainIsNotANumber) {
  EXPECT_TRUE(std::isnan(ellipticF(0.6, 2)));
  EXPECT_TRUE(std::isnan(ellipticF(3.1, 2)));
  EXPECT_TRUE(std::isnan(ellipticE(0.6, 2)));
  EXPECT_TRUE(std::isnan(ellipticE(3.1, 1.0001)));
  EXPECT_TRUE(std::isnan(ellipticPi(1.2, 1.2, 0.5)));
  EXPECT_TRUE(std::isnan(ellipticPi(3.1, 1, 0.5)));
  EXPECT_TRUE(std::isnan(completeEllipticPi(1, 0.5)));
  EXPECT_TRUE(std::isnan(completeEllipticPi(0.5, 1.5)));
  for (const double bad : {kInfinity, -kInfinity, kNaN}) {
    EXPECT_TRUE(std::isnan(ellipticF(bad, 0.5))) << bad;
    EXPECT_TRUE(std::isnan(ellipticE(bad, 1))) << bad;
    EXPECT_TRUE(std::isnan(ellipticE(0.5, bad))) << bad;
    EXPECT_TRUE(std::isnan(ellipticPi(0.5, bad, 0.5))) << bad;
    EXPECT_TRUE(std::isnan(ellipticPi(0.5, 0.5, bad))) << bad;
    EXPECT_TRUE(std::isnan(completeEllipticPi(bad, 0.5))) << bad;
  }
}

TEST(EllipticTest, CompleteIntegralsObeyLegendre) {
  for (const double k : {0.1, 0.5, 0.9, 0.999}) {
    const double other = std::sqrt((1 - k) * (1 + k)), quarter = kPi / 2;
    const double f = ellipticF(quarter, k), e = ellipticE(quarter, k);
    const double g = ellipticF(quarter, other), h = ellipticE(quarter, other);
    EXPECT_NEAR(e * g + h * f - f * g, quarter, 32 * kEpsilon) << k;
  }
}

// ---- Bessel functions ----

TEST(BesselTest, ValuesAtZeroBelowItAndAtInfinity) {
  EXPECT_EQ(besselJ(0, 0), 1);
  EXPECT_EQ(besselJ(2.5, -0.0), 0);
  EXPECT_EQ(besselI(-3, 0), 0);
  EXPECT_TRUE(std::isnan(besselJ(-0.5, 0)));
  EXPECT_TRUE(std::isnan(besselI(0.5, -1)));
  EXPECT_EQ(besselJ(3, -2), -besselJ(3, 2));
  EXPECT_EQ(besselJ(-4, -2), besselJ(4, 2));
  EXPECT_EQ(besselI(3, -2), -besselI(3, 2));
  EXPECT_EQ(besselY(1, 0), -kInfinity);
  EXPECT_EQ(besselK(1, 0), kInfinity);
  EXPECT_TRUE(std::isnan(besselY(1, -1)));
  EXPECT_TRUE(std::isnan(besselK(1, -1)));
  EXPECT_EQ(besselI(0, 1000), kInfinity);
  EXPECT_EQ(besselK(0, 1000), 0);
  for (const double n : {247.0, -1e4, 35613.5}) EXPECT_EQ(besselK(n, 1e-200), kInfinity) << n;
  EXPECT_EQ(besselJ(200, 1e-5), 0);
  EXPECT_EQ(besselJ(2, kInfinity), 0);
  EXPECT_EQ(besselI(3, -kInfinity), -kInfinity);
  EXPECT_EQ(besselY(2, kInfinity), 0);
  for (const auto function : {besselJ, besselY, besselI, besselK}) {
    EXPECT_TRUE(std::isnan(function(kNaN, 1)));
    EXPECT_TRUE(std::isnan(function(1, kNaN)));
    EXPECT_TRUE(std::isnan(function(1.1e6, 1)));
  }
}

TEST(BesselTest, BeyondTheRangeOnlyTheSignIsLeft) {
  EXPECT_EQ(besselY(1e6, 3), -kInfinity);
  EXPECT_EQ(besselY(-100001, 2), kInfinity);
  // The sign of 1 / gamma(1 + n), as where the value is within the range.
  for (const double n : {-100.3, -101.3, -99.75, -98.25}) {
    for (const auto function : {besselJ, besselI}) {
      const double near = function(n, 2);
      EXPECT_EQ(function(n - 1e5, 2), std::copysign(kInfinity, near)) << n;
    }
  }
}

TEST(BesselTest, WronskianHoldsOverTheRange) {
  for (const double n : {0.0, 1.5, 20.0}) {
    for (double x = 0.3; x < 90000; x *= 1.7) {
      const double w = besselJ(n, x) * besselY(n + 1, x) - besselJ(n + 1, x) * besselY(n, x);
      EXPECT_NEAR(w * -kPi * x / 2, 1, 1e-13) << n << ", " << x;
    }
  }
}

}  // namespace
}  // namespace vexa
