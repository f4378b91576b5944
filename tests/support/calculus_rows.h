#pragma once

// Reads the reference values of data/calculus and holds the functions that they name.

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vexa {

using NamedFunctions = std::map<std::string, std::function<double(double)>>;

inline const NamedFunctions& referenceFunctions() {
  static const NamedFunctions functions = {
      {"sin", [](double x) { return std::sin(x); }},
      {"exp", [](double x) { return std::exp(x); }},
      {"sqrt", [](double x) { return std::sqrt(x); }},
      {"ln", [](double x) { return std::log(x); }},
      {"runge", [](double x) { return 1 / (1 + 25 * x * x); }},
      {"peak", [](double x) { return 1 / (1e-6 + (x - 0.3) * (x - 0.3)); }},
      {"wave", [](double x) { return std::cos(50 * x); }},
      {"gauss", [](double x) { return std::exp(-x * x); }},
      {"rootInverse", [](double x) { return 1 / std::sqrt(x); }},
      {"expSin", [](double x) { return std::exp(x) * std::sin(x); }},
      {"tan", [](double x) { return std::tan(x); }},
      {"steep", [](double x) { return std::sin(1000 * x); }},
      {"power", [](double x) { return std::pow(x, -0.9); }},
      {"planck", [](double x) { return x * x * x / (std::exp(x) - 1); }},
      {"slowTail", [](double x) { return std::pow(x, -1.1); }},
      {"lateBell", [](double x) { return std::exp(-(x - 20) * (x - 20)); }},
      {"decayWave", [](double x) { return std::exp(-x) * std::cos(10 * x); }},
      {"cauchy", [](double x) { return 1 / (1 + x * x); }},
      {"semicircle", [](double x) { return std::sqrt(x * (1 - x)); }},
      {"inverseSquare", [](double k) { return 1 / (k * k); }},
      {"inverseCube", [](double k) { return 1 / (k * k * k); }},
      {"power1.5", [](double k) { return std::pow(k, -1.5); }},
      {"power1.2", [](double k) { return std::pow(k, -1.2); }},
      {"leibniz", [](double k) { return (std::fmod(k, 2) == 0 ? 1 : -1) / (2 * k + 1); }},
      {"alternatingRoot", [](double k) { return (std::fmod(k, 2) == 0 ? 1 : -1) / std::sqrt(k); }},
      {"geometric", [](double k) { return std::pow(0.99, k); }},
      {"evenOnly", [](double k) { return std::fmod(k, 2) == 0 ? std::pow(0.5, k) : 0; }},
      {"exponential", [](double k) { return 1 / std::tgamma(k + 1); }},
      {"logarithm", [](double k) { return std::pow(0.9, k) / k; }},
  };
  return functions;
}

struct CalculusRow {
  std::string name;
  std::vector<double> arguments;
  double value = 0;

  const std::function<double(double)>& function() const { return referenceFunctions().at(name); }
  double relativeError(double result) const { return std::fabs(result - value) / std::fabs(value); }
};

// The rows of a file below tests/data.
inline std::vector<CalculusRow> calculusRows(const std::string& file) {
  std::ifstream stream(std::string(VEXA_TEST_DATA) + "/" + file);
  std::vector<CalculusRow> rows;
  std::string line;
  std::getline(stream, line);  // the heading
  while (std::getline(stream, line)) {
    CalculusRow row;
    std::istringstream fields(line);
    std::getline(fields, row.name, ',');
    for (std::string text; std::getline(fields, text, ',');)
      row.arguments.push_back(std::strtod(text.c_str(), nullptr));
    row.value = row.arguments.back();
    row.arguments.pop_back();
    rows.push_back(row);
  }
  if (rows.size() < 10) throw std::runtime_error("too few reference values in " + file);
  return rows;
}

}  // namespace vexa
