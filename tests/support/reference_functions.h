#pragma once

// The functions that the reference values of data/calculus name.

#include <cmath>
#include <functional>
#include <map>
#include <string>

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

}  // namespace vexa
