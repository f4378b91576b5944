#include "numlib/linear/tridiagonal_system.h"

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
  Pace pace(interrupted);
  for (std::size_t j = 1; j < n; ++j) {
    if (pace.stopsAfter(1)) return Outcome::interrupted;
    gamma[j] = c[j - 1] / beta;
    beta = d[j] - a[j] * gamma[j];
    if (!(std::fabs(beta) > smallestPivot)) return Outcome::singular;
    u = (r[j] - a[j] * u) / beta;
    r[j] = u;
  }
  for (std::size_t j = n - 1; j-- > 0;) {
    if (pace.stopsAfter(1)) return Outcome::interrupted;
    u = r[j] - gamma[j + 1] * u;
    r[j] = u;
  }
  return Outcome::done;
}

}  // namespace vexa
