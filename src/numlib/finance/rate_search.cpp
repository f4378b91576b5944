#include "numlib/finance/rate_search.h"

#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vexa {

namespace {

constexpr int stepsToEachSide = 500;
constexpr long double stepWidth = 0.02L;

struct Sample {
  long double u = 0, worth = 0;
};

double rateOf(long double u) { return static_cast<double>(std::expm1(u)); }

// The zero between two samples, if their signs differ.
std::optional<double> zeroBetween(const WorthAtRate& worth, const Sample& low, const Sample& high) {
  if (low.worth == 0) return rateOf(low.u);
  if (high.worth == 0) return rateOf(high.u);
  if (!((low.worth < 0 && high.worth > 0) || (low.worth > 0 && high.worth < 0)))
    return std::nullopt;
  constexpr long double epsilon = std::numeric_limits<long double>::epsilon();
  // The rate keeps its digits as u nears 0, so the width of the bracket is held against u itself.
  const auto narrow = [](long double a, long double b) {
    return std::fabs(b - a) <= 4 * epsilon * std::fmax(std::fabs(a), 1e-16L);
  };
  std::uintmax_t evaluations = 200;
  const auto bracket = boost::math::tools::toms748_solve(worth, low.u, high.u, low.worth,
                                                         high.worth, narrow, evaluations);
  return rateOf((bracket.first + bracket.second) / 2);
}

}  // namespace

std::optional<double> searchRate(const WorthAtRate& worth, double guess) {
  const long double middle = std::log1p(static_cast<long double>(guess));
  const auto sample = [&](int step) {
    const long double u = middle + step * stepWidth;
    return Sample{u, worth(u)};
  };
  Sample first = sample(0);
  if (first.worth == 0) return guess;
  Sample last = first;
  for (int k = 1; k <= stepsToEachSide; ++k) {
    const Sample earlier = sample(-k);
    if (const auto rate = zeroBetween(worth, earlier, first)) return rate;
    first = earlier;
    const Sample later = sample(k);
    if (const auto rate = zeroBetween(worth, last, later)) return rate;
    last = later;
  }
  return std::nullopt;
}

}  // namespace vexa
