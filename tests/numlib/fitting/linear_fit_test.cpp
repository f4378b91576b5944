// Published data with certified results are in data/fitting and held by the accuracy table.
#include "numlib/fitting/linear_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

void expectRelative(const Numbers& found, const Numbers& expected, double allowed) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_NEAR(found[i], expected[i], allowed * std::fabs(expected[i])) << i;
}

TEST(LinearFit, AsManyPointsAsCoefficients) {
  const Numbers x{1, 2, 4, 7}, y{3, -1, 4, 1};
  const LinearFit fit = fitPolynomial(x, {y, {}}, 3);
  EXPECT_EQ(fit.deviation, 0);
  EXPECT_TRUE(fit.covariance.empty());
  for (std::size_t i = 0; i < x.size(); ++i) {
    double value = 0;
    for (std::size_t j = 4; j-- > 0;) value = value * x[i] + fit.coefficients[j];
    EXPECT_NEAR(value, y[i], 1e-13);
  }
  EXPECT_EQ(fitPolynomial(x, {y, {}}, 4).outcome, FitOutcome::tooFewPoints);
  EXPECT_EQ(fitPolynomial(x, {y, Numbers{1, 0, 1, 1}}, 3).outcome, FitOutcome::tooFewPoints);
}

TEST(LinearFit, WeightsCountPoints) {
  // A weight of 2 is the point twice; a weight of 0 is no point, whatever stands there.
  const Numbers x{1, 2, 3, 5, 8}, y{2, 3, 1, 4, 9}, w{1, 2, 1, 0, 1};
  const Numbers twice{1, 2, 2, 3, 8}, yTwice{2, 3, 3, 1, 9};
  const LinearFit weighted = fitPolynomial(x, {y, w}, 1);
  expectRelative(weighted.coefficients, fitPolynomial(twice, {yTwice, {}}, 1).coefficients, 1e-14);
  Numbers wild = y;
  wild[3] = 1e300;
  expectRelative(fitPolynomial(x, {wild, w}, 1).coefficients, weighted.coefficients, 1e-15);
  Numbers columns;
  for (const double at : x) columns.insert(columns.end(), {std::exp(-at), 1, at});
  const LinearFit free = fitColumns({columns.data(), 5, 3}, {y, Numbers{3, 3, 3, 3, 3}});
  expectRelative(free.coefficients, fitColumns({columns.data(), 5, 3}, {y, {}}).coefficients,
                 1e-13);
}

TEST(LinearFit, DependentColumnsAreRefused) {
  const Numbers y{1, 2, 4, 3};
  EXPECT_EQ(fitPolynomial(Numbers{3, 3, 3, 3}, {y, {}}, 1).outcome, FitOutcome::dependent);
  EXPECT_EQ(fitPolynomial(Numbers{1, 2, 1, 2}, {y, {}}, 2).outcome, FitOutcome::dependent);
  EXPECT_EQ(fitPolynomial(Numbers{1, 2, 1, 2}, {y, {}}, 1).outcome, FitOutcome::done);
  EXPECT_EQ(fitPolynomial(Numbers{3, 3, 3, 3}, {y, {}}, 0).coefficients, Numbers{2.5});
  const Numbers tenths{0.1, 0.3, 0.2, 0.6,
                       0.7, 2.1, 0.9, 2.7};  // the second is three times the first
  EXPECT_EQ(fitMultiple({tenths.data(), 4, 2}, {y, {}}).outcome, FitOutcome::dependent);
  const Numbers ones{1, 2, 1, 2, 1, 2, 1, 2};
  EXPECT_EQ(fitColumns({ones.data(), 4, 2}, {y, {}}).outcome, FitOutcome::dependent);
}

// The covariance is that of coefficients fitted to data with the scatter that it was told of.
TEST(LinearFit, CovarianceAgreesWithRepeatedExperiments) {
  std::mt19937 generator(1812);  // the seed of the random case
  std::normal_distribution<double> scatter(0, 0.3);
  Numbers x, y(15);
  for (int i = 0; i < 15; ++i) x.push_back(0.5 * i);
  constexpr int repeats = 4000;
  double mean = 0, square = 0, predicted = 0;
  for (int k = 0; k < repeats; ++k) {
    for (std::size_t i = 0; i < x.size(); ++i) y[i] = 2 - x[i] + scatter(generator);
    const LinearFit fit = fitPolynomial(x, {y, {}}, 1);
    mean += fit.coefficients[1] / repeats;
    square += std::pow(fit.coefficients[1] + 1, 2) / repeats;
    predicted += fit.covariance[3] / repeats;
  }
  EXPECT_NEAR(mean, -1, 4 * std::sqrt(predicted / repeats));
  EXPECT_NEAR(square, predicted, 0.1 * predicted) << "4000 repeats leave 2 to 3 percent";
}

TEST(LinearFit, StopsWhenAsked) {
  const Numbers x(100, 1.0);
  EXPECT_EQ(fitPolynomial(x, {x, {}}, 0, [] { return true; }).outcome, FitOutcome::interrupted);
}

}  // namespace
}  // namespace vexa
