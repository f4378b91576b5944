// The data of certified results and their source are in data/fitting.
#include "numlib/fitting/linear_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Numbers = std::vector<double>;

struct Table {
  int cols = 0;  // of x
  Numbers x, y;  // x row by row

  ConstMatrixView view() const { return {x.data(), static_cast<int>(y.size()), cols}; }
};

Table tableOf(const std::string& file) {
  std::ifstream stream(VEXA_TEST_DATA "/fitting/" + file);
  std::string line, text;
  std::getline(stream, line);  // the heading
  Table table;
  while (std::getline(stream, line)) {
    Numbers row;
    std::istringstream fields(line);
    while (std::getline(fields, text, ',')) row.push_back(std::strtod(text.c_str(), nullptr));
    table.y.push_back(row.back());
    row.pop_back();
    table.cols = static_cast<int>(row.size());
    table.x.insert(table.x.end(), row.begin(), row.end());
  }
  EXPECT_GT(table.y.size(), 10U) << file;
  return table;
}

void expectRelative(const Numbers& found, const Numbers& expected, double allowed) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i)
    EXPECT_NEAR(found[i], expected[i], allowed * std::fabs(expected[i])) << i;
}

Numbers deviations(const LinearFit& fit) {
  const std::size_t k = fit.coefficients.size();
  Numbers result;
  for (std::size_t i = 0; i < k; ++i) result.push_back(std::sqrt(fit.covariance[i * k + i]));
  return result;
}

TEST(LinearFit, CertifiedPolynomials) {
  struct Case {
    const char* file;
    Numbers coefficients, deviations;
    double deviation, allowed;
  };
  const Case cases[] = {
      {"norris.csv",
       {-0.262323073774029, 1.00211681802045},
       {0.232818234301152, 0.429796848199937e-03},
       0.884796396144373,
       1e-12},
      {"pontius.csv",
       {0.673565789473684e-03, 0.732059160401003e-06, -0.316081871345029e-14},
       {0.107938612033077e-03, 0.157817399981659e-09, 0.486652849992036e-16},
       0.205177424076185e-03,
       1e-12},
      {"filip.csv",
       {-1467.48961422980, -2772.17959193342, -2316.37108160893, -1127.97394098372,
        -354.478233703349, -75.1242017393757, -10.8753180355343, -1.06221498588947,
        -0.670191154593408e-01, -0.246781078275479e-02, -0.402962525080404e-04},
       {298.084530995537, 559.779865474950, 466.477572127796, 227.204274477751, 71.6478660875927,
        15.2897178747400, 2.23691159816033, 0.221624321934227, 0.142363763154724e-01,
        0.535617408889821e-03, 0.896632837373868e-05},
       0.334801051324544e-02,
       1e-12},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const Table table = tableOf(c.file);
    const auto degree = static_cast<int>(c.coefficients.size()) - 1;
    const LinearFit fit = fitPolynomial(table.x, {table.y, {}}, degree);
    ASSERT_EQ(fit.outcome, FitOutcome::done);
    expectRelative(fit.coefficients, c.coefficients, c.allowed);
    expectRelative(deviations(fit), c.deviations, c.allowed);
    EXPECT_NEAR(fit.deviation, c.deviation, c.allowed * c.deviation);
  }
}

TEST(LinearFit, CertifiedColumns) {
  const Table table = tableOf("longley.csv");
  const LinearFit fit = fitMultiple(table.view(), {table.y, {}});
  expectRelative(fit.coefficients,
                 {-3482258.63459582, 15.0618722713733, -0.358191792925910e-01, -2.02022980381683,
                  -1.03322686717359, -0.511041056535807e-01, 1829.15146461355},
                 1e-12);
  expectRelative(deviations(fit),
                 {890420.383607373, 84.9149257747669, 0.334910077722432e-01, 0.488399681651699,
                  0.214274163161675, 0.226073200069370, 455.478499142212},
                 1e-12);
  EXPECT_NEAR(fit.deviation, 304.854073561965, 304.854073561965 * 1e-12);
}

// Wampler 1 and 2: exact polynomials of degree 5, ordinates as they are printed.
TEST(LinearFit, ExactPolynomials) {
  for (const double ratio : {1.0, 0.1}) {
    Numbers x, y, exact;
    for (int i = 0; i <= 20; ++i) {
      double value = 0;
      for (int j = 5; j >= 0; --j) value = value * (ratio * i) + 1;
      x.push_back(i);
      y.push_back(std::round(value * 1e5) / 1e5);
    }
    for (int j = 0; j <= 5; ++j) exact.push_back(std::pow(ratio, j));
    expectRelative(fitPolynomial(x, {y, {}}, 5).coefficients, exact, 1e-9);
  }
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
