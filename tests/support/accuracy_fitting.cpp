// Fits: linear ones and those of models, with published data and made ones (tests/data/fitting).
#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <map>
#include <span>
#include <sstream>
#include <string>

#include "numlib/fitting/linear_fit.h"
#include "numlib/fitting/nonlinear_fit.h"
#include "support/accuracy_families.h"

namespace vexa {

namespace {

using Numbers = std::vector<double>;
using Model = std::function<double(double x, std::span<const double> b)>;

struct Dataset {
  std::string method;
  Numbers starts[2], x, y, weights;

  FitData data() const { return {y, weights}; }
  ConstMatrixView columns() const {
    const auto rows = static_cast<int>(y.size());
    return {x.data(), rows, static_cast<int>(x.size()) / rows};
  }
};

using Datasets = std::map<std::string, Dataset>;

void readDatasets(const char* file, Datasets& sets) {
  std::ifstream stream(std::string(VEXA_TEST_DATA) + "/fitting/" + file);
  std::string line;
  std::getline(stream, line);  // the heading
  while (std::getline(stream, line)) {
    std::istringstream fields(line);
    std::string name, published;
    std::getline(fields, name, ';');
    Dataset& set = sets[name];
    std::getline(fields, set.method, ';');
    const auto read = [&fields] {
      std::string text;
      std::getline(fields, text, ';');
      return numbersOf(text);
    };
    for (Numbers& start : set.starts) start = read();
    for (int k = 0; k < 3; ++k) std::getline(fields, published, ';');  // results
    for (Numbers* numbers : {&set.x, &set.y, &set.weights}) *numbers = read();
  }
}

const Dataset& datasetOf(Arguments row) {
  static const Datasets sets = [] {
    Datasets found;
    for (const char* file : {"published.csv", "made.csv"}) readDatasets(file, found);
    return found;
  }();
  return sets.at(row.text);
}

double sumOfDecays(double x, std::span<const double> b) {
  return b[0] * std::exp(-b[1] * x) + b[2] * std::exp(-b[3] * x) + b[4] * std::exp(-b[5] * x);
}

double saturation(double x, std::span<const double> b) { return b[0] * (1 - std::exp(-b[1] * x)); }

const Model& modelOf(const std::string& name) {
  static const std::map<std::string, Model> models = {
      {"Misra1a", saturation},
      {"Misra1b", [](double x, auto b) { return b[0] * (1 - 1 / std::pow(1 + b[1] * x / 2, 2)); }},
      {"Misra1c", [](double x, auto b) { return b[0] * (1 - 1 / std::sqrt(1 + 2 * b[1] * x)); }},
      {"Misra1d", [](double x, auto b) { return b[0] * b[1] * x / (1 + b[1] * x); }},
      {"DanWood", [](double x, auto b) { return b[0] * std::pow(x, b[1]); }},
      {"Chwirut2", [](double x, auto b) { return std::exp(-b[0] * x) / (b[1] + b[2] * x); }},
      {"Lanczos2", sumOfDecays},
      {"Lanczos3", sumOfDecays},
      {"Roszman1",
       [](double x, auto b) {
         return b[0] - b[1] * x - std::atan(b[2] / (x - b[3])) / std::acos(-1.0);
       }},
      {"MGH17",
       [](double x, auto b) {
         return b[0] + b[1] * std::exp(-x * b[3]) + b[2] * std::exp(-x * b[4]);
       }},
      {"MGH09",
       [](double x, auto b) { return b[0] * (x * x + x * b[1]) / (x * x + x * b[2] + b[3]); }},
      {"MGH10", [](double x, auto b) { return b[0] * std::exp(b[1] / (x + b[2])); }},
      {"BoxBOD", saturation},
      {"BoxBOD weighted", saturation},
      {"Rat42", [](double x, auto b) { return b[0] / (1 + std::exp(b[1] - b[2] * x)); }},
      {"Rat43",
       [](double x, auto b) { return b[0] / std::pow(1 + std::exp(b[1] - b[2] * x), 1 / b[3]); }},
      {"Eckerle4",
       [](double x, auto b) {
         const double z = (x - b[2]) / b[1];
         return b[0] / b[1] * std::exp(-0.5 * z * z);
       }},
      {"Thurber",
       [](double x, auto b) {
         return (b[0] + x * (b[1] + x * (b[2] + x * b[3]))) /
                (1 + x * (b[4] + x * (b[5] + x * b[6])));
       }},
  };
  return models.at(name);
}

// Rows of fits: the data set, which start, what (0 parameters, 1 deviations of theirs, 2 the
// residual one), which one.
double partOf(Arguments row, const Numbers& parameters, const Numbers& covariance, double s) {
  const auto which = static_cast<std::size_t>(row[2]);
  if (row[1] == 0) return parameters.at(which);
  if (row[1] == 2) return s;
  return std::sqrt(covariance.at(which * (parameters.size() + 1)));
}

double linearPart(Arguments row) {
  const Dataset& set = datasetOf(row);
  const LinearFit fit = set.method == "multiple" ? fitMultiple(set.columns(), set.data())
                        : set.method == "columns"
                            ? fitColumns(set.columns(), set.data())
                            : fitPolynomial(set.x, set.data(), std::stoi(set.method));
  if (fit.outcome != FitOutcome::done) return std::nan("");
  return partOf(row, fit.coefficients, fit.covariance, fit.deviation);
}

double modelPart(Arguments row) {
  const Dataset& set = datasetOf(row);
  const Model& model = modelOf(row.text);
  const auto values = [&](std::span<const double> a, std::span<double> found) {
    for (std::size_t i = 0; i < found.size(); ++i) found[i] = model(set.x[i], a);
    return std::ranges::all_of(found, [](double v) { return std::isfinite(v); });
  };
  const Numbers& start = set.starts[static_cast<std::size_t>(row[0])];
  const NonlinearFitProblem problem{values, set.y, set.weights,
                                    100 * static_cast<int>(start.size() + 1)};
  const NonlinearFit fit = fitNonlinear(problem, start);
  if (fit.outcome != NonlinearFitOutcome::done) return std::nan("");
  const double freedom = static_cast<double>(set.y.size() - start.size());
  const double variance = fit.sumOfSquares / freedom;
  Numbers covariance = parameterCovariance(problem, fit.parameters);
  for (double& element : covariance) element *= variance;
  return partOf(row, fit.parameters, covariance, std::sqrt(variance));
}

}  // namespace

void addFits(std::vector<AccuracyEntry>& table) {
  const auto linear = [](const ReferenceRow& row) { return 1e-12 * sizeOf(row); };
  // Scatter up to 1e8 times as large as the coefficients.
  const auto scattered = [](const ReferenceRow& row) { return 1e-9 * sizeOf(row); };
  const auto model = [](const ReferenceRow& row) {
    return (row[1] == 1 ? 1e-7 : 1e-9) * sizeOf(row);
  };
  const auto add = [&table](std::string_view name, std::string_view file, std::string_view unit,
                            auto unitOf, auto function) {
    table.push_back({name, file, 1, unit, unitOf, function});
  };
  add("lfit", "fitting/lfit.csv", "1e-12 of it", linear, linearPart);
  add("lfit, multiple", "fitting/lfit_multiple.csv", "1e-12 of it", linear, linearPart);
  add("lfit, Wampler", "fitting/lfit_wampler.csv", "1e-9 of it", scattered, linearPart);
  add("lcfit", "fitting/lcfit.csv", "1e-12 of it", linear, linearPart);
  add("nfit", "fitting/nfit.csv", "1e-9, deviations 1e-7", model, modelPart);
}

}  // namespace vexa
