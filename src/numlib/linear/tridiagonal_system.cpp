#include "numlib/linear/tridiagonal_system.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace vexa {

Outcome tridiagonalSolve(std::span<const double> a, std::span<const double> d,
                         std::span<const double> c, std::span<double> r, std::span<double> gamma,
                         const InterruptTest& interrupted) {
  constexpr double smallestPivot = 1e-30;
  const std::size_t n = d.size();
  double beta = d[0];
  if (std::fabs(beta) < smallestPivot) return Outcome::singular;
  double u = r[0] / beta;
  r[0] = u;
  for (std::size_t j = 1; j < n;) {
    for (const std::size_t end = std::min(n, j + elementsBetweenQuestions); j < end; ++j) {
      gamma[j] = c[j - 1] / beta;
      beta = d[j] - a[j] * gamma[j];
      if (!(std::fabs(beta) > smallestPivot)) return Outcome::singular;
      u = (r[j] - a[j] * u) / beta;
      r[j] = u;
    }
    if (j < n && asksToStop(interrupted)) return Outcome::interrupted;
  }
  for (std::size_t j = n - 1; j > 0;) {
    for (const std::size_t end = j - std::min(j, elementsBetweenQuestions); j > end;) {
      u = r[j - 1] - gamma[j] * u;
      r[--j] = u;
    }
    if (j > 0 && asksToStop(interrupted)) return Outcome::interrupted;
  }
  return Outcome::done;
}

}  // namespace vexa
