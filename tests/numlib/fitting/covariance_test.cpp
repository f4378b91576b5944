// Covariances of fitted coefficients against the scatter of many fits to disturbed data, and the
// nonlinear fit against the linear one where both apply.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "numlib/fitting/linear_fit.h"
#include "numlib/fitting/nonlinear_fit.h"

namespace vexa {
namespace {

constexpr std::uint64_t seed = 20011;
constexpr std::size_t points = 12;

// Sums over many fits with the same number of coefficients.
class Scatter {
 public:
  explicit Scatter(std::size_t count) : m_count(count), m_sum(count), m_products(count * count) {}

  void add(std::span<const double> coefficients) {
    ++m_fits;
    for (std::size_t i = 0; i < m_count; ++i) {
      m_sum[i] += coefficients[i];
      for (std::size_t j = 0; j < m_count; ++j)
        m_products[i * m_count + j] += coefficients[i] * coefficients[j];
    }
  }
  double covariance(std::size_t i, std::size_t j) const {
    const double n = m_fits;
    return (m_products[i * m_count + j] - m_sum[i] * m_sum[j] / n) / (n - 1);
  }
  // Holds every element to five standard deviations of a sampled covariance.
  void expectNear(std::span<const double> expected) const {
    for (std::size_t i = 0; i < m_count; ++i) {
      for (std::size_t j = 0; j < m_count; ++j) {
        const double scale =
            std::sqrt(expected[i * m_count + i] * expected[j * m_count + j] * 2 / m_fits);
        EXPECT_NEAR(covariance(i, j), expected[i * m_count + j], 5 * scale) << i << ", " << j;
      }
    }
  }

 private:
  std::size_t m_count;
  int m_fits = 0;
  std::vector<double> m_sum, m_products;
};

// Abscissae, and for each the weight that belongs to its disturbance.
struct Setting {
  std::vector<double> x, weights, spread;

  Setting() {
    for (std::size_t i = 0; i < points; ++i) {
      x.push_back(0.5 * static_cast<double>(i));
      spread.push_back(i % 3 == 0 ? 0.02 : 0.01);
      weights.push_back(1 / (spread[i] * spread[i]));
    }
  }
};

TEST(Covariance, OfAWeightedParabolaIsItsScatter) {
  SCOPED_TRACE(seed);
  const Setting setting;
  std::mt19937_64 generator(seed);
  std::normal_distribution<double> normal;
  Scatter scatter(3);
  std::vector<double> mean(9);
  constexpr int fits = 4000;
  for (int k = 0; k < fits; ++k) {
    std::vector<double> y;
    for (std::size_t i = 0; i < points; ++i) {
      const double x = setting.x[i];
      y.push_back(2 + 0.5 * x - 0.3 * x * x + setting.spread[i] * normal(generator));
    }
    const LinearFit fit = fitPolynomial(setting.x, {y, setting.weights}, 2);
    ASSERT_EQ(fit.outcome, FitOutcome::done);
    scatter.add(fit.coefficients);
    for (std::size_t i = 0; i < mean.size(); ++i) mean[i] += fit.covariance[i] / fits;
  }
  scatter.expectNear(mean);
}

TEST(Covariance, OfASaturatingCurveIsItsScatter) {
  SCOPED_TRACE(seed);
  const Setting setting;
  std::mt19937_64 generator(seed);
  std::normal_distribution<double> normal;
  const auto model = [&setting](std::span<const double> a, std::span<double> values) {
    for (std::size_t i = 0; i < points; ++i)
      values[i] = a[0] * (1 - std::exp(-a[1] * setting.x[i]));
    return true;
  };
  const std::vector<double> truth = {2, 0.7};
  std::vector<double> exact(points);
  ASSERT_TRUE(model(truth, exact));
  Scatter scatter(2);
  for (int k = 0; k < 2000; ++k) {
    std::vector<double> y = exact;
    for (std::size_t i = 0; i < points; ++i) y[i] += setting.spread[i] * normal(generator);
    const NonlinearFit fit = fitNonlinear({model, y, setting.weights}, truth);
    ASSERT_EQ(fit.outcome, NonlinearFitOutcome::done);
    scatter.add(fit.parameters);
  }
  // With weights that are inverse variances, no estimated deviation multiplies the covariance.
  scatter.expectNear(parameterCovariance({model, exact, setting.weights}, truth));
}

TEST(NonlinearFit, AgreesWithTheLinearFitOfALinearModel) {
  const Setting setting;
  std::vector<double> columns, y;
  for (const double x : setting.x) {
    columns.insert(columns.end(), {1, x, std::sin(x)});
    y.push_back(1 + 0.25 * x + std::cos(3 * x));
  }
  const auto model = [&columns](std::span<const double> a, std::span<double> values) {
    for (std::size_t i = 0; i < points; ++i)
      values[i] = a[0] * columns[3 * i] + a[1] * columns[3 * i + 1] + a[2] * columns[3 * i + 2];
    return true;
  };
  const LinearFit linear =
      fitColumns({columns.data(), static_cast<int>(points), 3}, {y, setting.weights});
  const NonlinearFit nonlinear =
      fitNonlinear({model, y, setting.weights}, std::vector<double>{0, 0, 0});
  ASSERT_EQ(nonlinear.outcome, NonlinearFitOutcome::done);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_NEAR(nonlinear.parameters[i], linear.coefficients[i], 1e-9);
}

}  // namespace
}  // namespace vexa
