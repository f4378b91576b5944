// Nonlinear least squares against the certified values of NIST's Statistical Reference Datasets,
// from the far start of each as well as the near one.
#include "numlib/fitting/nonlinear_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace vexa {
namespace {

using Parameters = std::vector<double>;
using Model = std::function<double(double x, std::span<const double> b)>;

struct Dataset {
  std::string name;
  Model model;
  std::vector<Parameters> starts;
  Parameters certified, deviations;
  double sumOfSquares;
  std::vector<double> x, y;
};

std::vector<double> equallySpaced(double from, double step, int count) {
  std::vector<double> values;
  for (int i = 0; i < count; ++i) values.push_back(from + step * i);
  return values;
}

// clang-format off
const std::vector<Dataset>& datasets() {
  static const std::vector<Dataset> sets = {
    {"Misra1a", [](double x, auto b) { return b[0] * (1 - std::exp(-b[1] * x)); },
     {{500, 1e-4}, {250, 5e-4}},
     {2.3894212918e+02, 5.5015643181e-04}, {2.7070075241e+00, 7.2668688436e-06}, 1.2455138894e-01,
     {77.6, 114.9, 141.1, 190.8, 239.9, 289.0, 332.8, 378.4, 434.8, 477.3, 536.8, 593.1, 689.1,
      760.0},
     {10.07, 14.73, 17.94, 23.93, 29.61, 35.18, 40.02, 44.82, 50.76, 55.05, 61.01, 66.40, 75.47,
      81.78}},
    {"DanWood", [](double x, auto b) { return b[0] * std::pow(x, b[1]); },
     {{1, 5}, {0.7, 4}},
     {7.6886226176e-01, 3.8604055871e+00}, {1.8281973860e-02, 5.1726610913e-02}, 4.3173084083e-03,
     {1.309, 1.471, 1.490, 1.565, 1.611, 1.680}, {2.138, 3.421, 3.597, 4.340, 4.882, 5.660}},
    {"MGH09",
     [](double x, auto b) { return b[0] * (x * x + x * b[1]) / (x * x + x * b[2] + b[3]); },
     {{25, 39, 41.5, 39}, {0.25, 0.39, 0.415, 0.39}},
     {1.9280693458e-01, 1.9128232873e-01, 1.2305650693e-01, 1.3606233068e-01},
     {1.1435312227e-02, 1.9633220911e-01, 8.0842031232e-02, 9.0025542308e-02}, 3.0750560385e-04,
     {4, 2, 1, 0.5, 0.25, 0.167, 0.125, 0.1, 0.0833, 0.0714, 0.0625},
     {0.1957, 0.1947, 0.1735, 0.16, 0.0844, 0.0627, 0.0456, 0.0342, 0.0323, 0.0235, 0.0246}},
    {"BoxBOD", [](double x, auto b) { return b[0] * (1 - std::exp(-b[1] * x)); },
     {{100, 0.75}},  // from {1, 1} the curve becomes a step that no small change bends back
     {2.1380940889e+02, 5.4723748542e-01}, {1.2354515176e+01, 1.0455993237e-01}, 1.1680088766e+03,
     {1, 2, 3, 5, 7, 10}, {109, 149, 149, 191, 213, 224}},
    {"MGH10", [](double x, auto b) { return b[0] * std::exp(b[1] / (x + b[2])); },
     {{2, 400000, 25000}, {0.02, 4000, 250}},
     {5.6096364710e-03, 6.1813463463e+03, 3.4522363462e+02},
     {1.5687892471e-04, 2.3309021107e+01, 7.8486103508e-01}, 8.7945855171e+01,
     equallySpaced(50, 5, 16),
     {34780, 28610, 23650, 19630, 16370, 13720, 11540, 9744, 8261, 7030, 6005, 5147, 4427, 3820,
      3307, 2872}},
    {"Rat42", [](double x, auto b) { return b[0] / (1 + std::exp(b[1] - b[2] * x)); },
     {{100, 1, 0.1}, {75, 2.5, 0.07}},
     {7.2462237576e+01, 2.6180768402e+00, 6.7359200066e-02},
     {1.7340283401e+00, 8.8295217536e-02, 3.4465663377e-03}, 8.0565229338e+00,
     {9, 14, 21, 28, 42, 57, 63, 70, 79},
     {8.93, 10.80, 18.59, 22.33, 39.35, 56.11, 61.73, 64.62, 67.08}},
    {"Rat43",
     [](double x, auto b) { return b[0] / std::pow(1 + std::exp(b[1] - b[2] * x), 1 / b[3]); },
     {{100, 10, 1, 1}, {700, 5, 0.75, 1.3}},
     {6.9964151270e+02, 5.2771253025e+00, 7.5962938329e-01, 1.2792483859e+00},
     {1.6302297817e+01, 2.0828735829e+00, 1.9566123451e-01, 6.8761936385e-01}, 8.7864049080e+03,
     equallySpaced(1, 1, 15),
     {16.08, 33.83, 65.80, 97.20, 191.55, 326.20, 386.87, 520.53, 590.03, 651.92, 724.93, 699.56,
      689.96, 637.56, 717.41}},
    {"Eckerle4",
     [](double x, auto b) {
       const double z = (x - b[2]) / b[1];
       return b[0] / b[1] * std::exp(-0.5 * z * z);
     },
     {{1, 10, 500}, {1.5, 5, 450}},
     {1.5543827178e+00, 4.0888321754e+00, 4.5154121844e+02},
     {1.5408051163e-02, 4.6803020753e-02, 4.6800518816e-02}, 1.4635887487e-03,
     {400, 405, 410, 415, 420, 425, 430, 435, 436.5, 438, 439.5, 441, 442.5, 444, 445.5, 447, 448.5,
      450, 451.5, 453, 454.5, 456, 457.5, 459, 460.5, 462, 463.5, 465, 470, 475, 480, 485, 490, 495,
      500},
     {0.0001575, 0.0001699, 0.0002350, 0.0003102, 0.0004917, 0.0008710, 0.0017418, 0.0046400,
      0.0065895, 0.0097302, 0.0149002, 0.0237310, 0.0401683, 0.0712559, 0.1264458, 0.2073413,
      0.2902366, 0.3445623, 0.3698049, 0.3668534, 0.3106727, 0.2078154, 0.1164354, 0.0616764,
      0.0337200, 0.0194023, 0.0117831, 0.0074357, 0.0022732, 0.0008800, 0.0004579, 0.0002345,
      0.0001586, 0.0001143, 0.0000710}},
    {"Thurber",
     [](double x, auto b) {
       return (b[0] + x * (b[1] + x * (b[2] + x * b[3]))) /
              (1 + x * (b[4] + x * (b[5] + x * b[6])));
     },
     {{1000, 1000, 400, 40, 0.7, 0.3, 0.03}, {1300, 1500, 500, 75, 1, 0.4, 0.05}},
     {1.2881396800e+03, 1.4910792535e+03, 5.8323836877e+02, 7.5416644291e+01, 9.6629502864e-01,
      3.9797285797e-01, 4.9727297349e-02},
     {4.6647963344e+00, 3.9571156086e+01, 2.8698696102e+01, 5.5675370270e+00, 3.1333340687e-02,
      1.4984928198e-02, 6.5842344623e-03}, 5.6427082397e+03,
     {-3.067, -2.981, -2.921, -2.912, -2.840, -2.797, -2.702, -2.699, -2.633, -2.481, -2.363,
      -2.322, -1.501, -1.460, -1.274, -1.212, -1.100, -1.046, -0.915, -0.714, -0.566, -0.545,
      -0.400, -0.309, -0.109, -0.103, 0.010, 0.119, 0.377, 0.790, 0.963, 1.006, 1.115, 1.572,
      1.841, 2.047, 2.200},
     {80.574, 84.248, 87.264, 87.195, 89.076, 89.608, 89.868, 90.101, 92.405, 95.854, 100.696,
      101.060, 401.672, 390.724, 567.534, 635.316, 733.054, 759.087, 894.206, 990.785, 1090.109,
      1080.914, 1122.643, 1178.351, 1260.531, 1273.514, 1288.339, 1327.543, 1353.863, 1414.509,
      1425.208, 1421.384, 1442.962, 1464.350, 1468.705, 1447.894, 1457.628}},
    {"MGH17",
     [](double x, auto b) {
       return b[0] + b[1] * std::exp(-x * b[3]) + b[2] * std::exp(-x * b[4]);
     },
     {{50, 150, -100, 1, 2}, {0.5, 1.5, -1, 0.01, 0.02}},
     {3.7541005211e-01, 1.9358469127e+00, -1.4646871366e+00, 1.2867534640e-02, 2.2122699662e-02},
     {2.0723153551e-03, 2.2031669222e-01, 2.2175707739e-01, 4.4861358114e-04, 8.9471996575e-04},
     5.4648946975e-05, equallySpaced(0, 10, 33),
     {0.844, 0.908, 0.932, 0.936, 0.925, 0.908, 0.881, 0.850, 0.818, 0.784, 0.751, 0.718, 0.685,
      0.658, 0.628, 0.603, 0.580, 0.558, 0.538, 0.522, 0.506, 0.490, 0.478, 0.467, 0.457, 0.448,
      0.438, 0.431, 0.424, 0.420, 0.414, 0.411, 0.406}},
  };
  return sets;
}
// clang-format on

struct Fitted {
  NonlinearFit fit;
  std::vector<double> covariance;
  double s = 0;
  int evaluations = 0;
};

Fitted fitted(const Model& model, const std::vector<double>& x, const std::vector<double>& y,
              const Parameters& start, const std::vector<double>& weights = {}) {
  Fitted result;
  const auto values = [&](std::span<const double> a, std::span<double> found) {
    ++result.evaluations;
    bool finite = true;
    for (std::size_t i = 0; i < found.size(); ++i) {
      found[i] = model(x[i], a);
      finite = finite && std::isfinite(found[i]);
    }
    return finite;
  };
  const NonlinearFitProblem problem{values, y, weights, 100 * static_cast<int>(start.size() + 1)};
  result.fit = fitNonlinear(problem, start);
  result.covariance = parameterCovariance(problem, result.fit.parameters);
  result.s = std::sqrt(result.fit.sumOfSquares / static_cast<double>(x.size() - start.size()));
  return result;
}

double relativeError(double found, double expected) {
  return std::fabs(found - expected) / std::fabs(expected);
}

TEST(NonlinearFit, CertifiedValuesAreReachedToNineDigits) {
  for (const Dataset& set : datasets()) {
    for (const Parameters& start : set.starts) {
      const Fitted found = fitted(set.model, set.x, set.y, start);
      const std::string what = set.name + " from " + std::to_string(start[0]);
      ASSERT_EQ(found.fit.outcome, NonlinearFitOutcome::done) << what;
      EXPECT_LT(relativeError(found.fit.sumOfSquares, set.sumOfSquares), 1e-9) << what;
      const std::size_t k = start.size();
      ASSERT_EQ(found.covariance.size(), k * k) << what;
      for (std::size_t j = 0; j < k; ++j) {
        EXPECT_LT(relativeError(found.fit.parameters[j], set.certified[j]), 1e-9)
            << what << " " << j;
        const double deviation = found.s * std::sqrt(found.covariance[j * k + j]);
        EXPECT_LT(relativeError(deviation, set.deviations[j]), 1e-7) << what << " " << j;
      }
    }
  }
}

TEST(NonlinearFit, ExactDataAreMet) {
  const std::vector<double> x = equallySpaced(0, 0.25, 20);
  const Model decay = [](double t, auto a) { return a[0] * std::exp(-a[1] * t) + a[2]; };
  const Parameters exact = {3, 0.7, -1};
  std::vector<double> y;
  for (const double t : x) y.push_back(decay(t, std::span(exact)));
  const Fitted found = fitted(decay, x, y, {1, 0.1, 0});
  for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(found.fit.parameters[j], exact[j], 1e-10);
  const Fitted again = fitted(decay, x, y, exact);
  EXPECT_EQ(again.fit.parameters, exact) << "a start without residuals is the end";
}

// The normal equations of a straight line give the same, and a weight of 2 is a point taken twice.
TEST(NonlinearFit, LinearModelsAgreeWithTheirNormalEquations) {
  const Model line = [](double t, auto a) { return a[0] + a[1] * t; };
  const Fitted found = fitted(line, {1, 2, 3, 4, 5}, {2.1, 3.9, 6.2, 7.8, 10.1}, {0, 0});
  EXPECT_NEAR(found.fit.parameters[0], 0.05, 1e-11);
  EXPECT_NEAR(found.fit.parameters[1], 1.99, 1e-11);
  EXPECT_NEAR(found.s * std::sqrt(found.covariance[3]), 0.05972157622, 1e-11);
  const Fitted weighted = fitted(line, {1, 2, 4}, {2, 3, 7}, {1, 1}, {1, 2, 1});
  const Fitted doubled = fitted(line, {1, 2, 2, 4}, {2, 3, 3, 7}, {1, 1});
  for (std::size_t j = 0; j < 2; ++j)
    EXPECT_NEAR(weighted.fit.parameters[j], doubled.fit.parameters[j], 1e-11);
  EXPECT_NEAR(weighted.fit.sumOfSquares, doubled.fit.sumOfSquares, 1e-12);
}

TEST(NonlinearFit, HostileModelsEnd) {
  const std::vector<double> x = {1, 2, 3, 4}, y = {1, 4, 9, 16};
  const Model idle = [](double t, auto a) { return a[0] * t * t; };
  const Fitted found = fitted(idle, x, y, {3, 5});
  EXPECT_EQ(found.fit.outcome, NonlinearFitOutcome::done);
  EXPECT_NEAR(found.fit.parameters[0], 1, 1e-12);
  EXPECT_EQ(found.fit.parameters[1], 5) << "a parameter without influence stays";
  EXPECT_TRUE(found.covariance.empty()) << "and leaves no covariance";

  const Model never = [](double, auto) { return std::nan(""); };
  EXPECT_EQ(fitted(never, x, y, {1}).fit.outcome, NonlinearFitOutcome::notFinite);
  // Not finite beyond a wall that the first step would jump over.
  const Model wall = [](double t, auto a) { return std::log(a[0]) * t + t; };
  const Fitted refused = fitted(wall, x, y, {1e-3});
  EXPECT_EQ(refused.fit.outcome, NonlinearFitOutcome::done);
  EXPECT_NEAR(refused.fit.parameters[0], std::exp(70.0 / 30), 1e-9);
  // A minimum at infinity: the search ends, by itself or by its bound.
  const Model away = [](double, auto a) { return std::exp(-a[0]); };
  EXPECT_LT(fitted(away, x, {0, 0, 0, 0}, {1}).evaluations, 2000);
}

}  // namespace
}  // namespace vexa
