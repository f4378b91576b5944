#include "numlib/calculus/polynomial_roots.h"

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>

namespace vexa {

namespace {

using Real = long double;
using ComplexReal = std::complex<long double>;
using Coefficients = std::vector<Real>;

constexpr Real kHalfEpsilon = std::numeric_limits<Real>::epsilon() / 2;

// A real root, or the upper one of a pair.
struct Head {
  ComplexReal z;
  bool isPair = false;
  bool settled = false;
};

// ---- Starting values ----

// Brings the sizes of each row and column near each other by powers of 2, after Parlett and
// Reinsch.
void balance(Eigen::MatrixXd& a) {
  for (bool again = true; again;) {
    again = false;
    for (Eigen::Index i = 0; i < a.rows(); ++i) {
      const double column = a.col(i).cwiseAbs().sum() - std::fabs(a(i, i));
      const double row = a.row(i).cwiseAbs().sum() - std::fabs(a(i, i));
      if (column == 0 || row == 0) continue;
      const int shift = std::ilogb(std::sqrt(row / column) * std::numbers::sqrt2);
      const double factor = std::scalbn(1.0, shift);
      if (column * factor + row / factor >= 0.95 * (column + row)) continue;
      a.col(i) *= factor;
      a.row(i) /= factor;
      again = true;
    }
  }
}

// None when a coefficient leaves the range of double, the iteration fails or a root is lost in the
// rounding of larger ones.
std::optional<std::vector<Head>> eigenvalueStart(const Coefficients& b) {
  const auto n = static_cast<Eigen::Index>(b.size()) - 1;
  Eigen::MatrixXd companion = Eigen::MatrixXd::Zero(n, n);
  for (Eigen::Index k = 0; k < n; ++k) {
    if (k > 0) companion(k, k - 1) = 1;
    companion(k, n - 1) =
        static_cast<double>(-b[static_cast<std::size_t>(k)] / b[static_cast<std::size_t>(n)]);
  }
  if (!companion.allFinite()) return std::nullopt;
  balance(companion);
  const Eigen::EigenSolver<Eigen::MatrixXd> solver(companion, false);
  if (solver.info() != Eigen::Success) return std::nullopt;
  std::vector<Head> heads;
  for (const std::complex<double> z : solver.eigenvalues()) {
    if (z == 0.0) return std::nullopt;
    if (z.imag() >= 0) heads.push_back({ComplexReal(z.real(), z.imag()), z.imag() > 0});
  }
  return heads;
}

// Circles whose radii are the slopes of the upper hull of ln |b[k]| over k, each with as many roots
// as its edge is long (Bini, Numerical Algorithms 13, 1996).
std::vector<Head> hullStart(const Coefficients& b) {
  const auto height = [&b](std::size_t k) { return b[k] == 0 ? -1e9L : std::log(std::fabs(b[k])); };
  std::vector<Head> heads;
  for (std::size_t from = 0; from + 1 < b.size();) {
    std::size_t to = from + 1;
    const auto slope = [&](std::size_t k) {
      return (height(k) - height(from)) / static_cast<Real>(k - from);
    };
    for (std::size_t k = to + 1; k < b.size(); ++k)
      if (slope(k) >= slope(to)) to = k;
    const Real radius = std::exp(-slope(to));
    const std::size_t count = to - from, parts = (count + 1) / 2;
    for (std::size_t j = 0; j < count / 2; ++j) {
      const Real angle =
          std::numbers::pi_v<Real> * (static_cast<Real>(j) + 0.4L) / static_cast<Real>(parts);
      heads.push_back({std::polar(radius, angle), true});
    }
    if (count % 2) heads.push_back({ComplexReal(-radius, 0), false});
    from = to;
  }
  return heads;
}

// ---- Corrections ----

struct Local {
  ComplexReal slope;    // p'(z) / p(z)
  bool atRoot = false;  // |p(z)| is nothing but rounding
};

// Outside of the unit circle the reversed polynomial in 1/z serves, so that no power overflows.
Local look(const Coefficients& b, ComplexReal z) {
  const std::size_t n = b.size() - 1;
  const bool reversed = std::norm(z) > 1;
  const ComplexReal w = reversed ? ComplexReal(1) / z : z;
  const Real size = std::abs(w);
  ComplexReal value = 0, derivative = 0;
  Real sum = 0;
  for (std::size_t k = 0; k <= n; ++k) {
    const Real coefficient = b[reversed ? k : n - k];
    derivative = derivative * w + value;
    value = value * w + coefficient;
    sum = sum * size + std::fabs(coefficient);
  }
  if (std::abs(value) <= 4 * static_cast<Real>(n) * kHalfEpsilon * sum) return {0, true};
  const ComplexReal slope = derivative / value;
  return {reversed ? (static_cast<Real>(n) - w * slope) * w : slope, false};
}

ComplexReal repulsion(const std::vector<Head>& heads, std::size_t i) {
  const ComplexReal z = heads[i].z;
  ComplexReal sum = 0;
  const auto add = [&](ComplexReal other) {
    if (z != other) sum += ComplexReal(1) / (z - other);
  };
  for (std::size_t j = 0; j < heads.size(); ++j) {
    if (j != i) add(heads[j].z);
    if (heads[j].isPair) add(std::conj(heads[j].z));
  }
  return sum;
}

// One sweep over the heads that are not settled; true when none is left.
bool sweep(const Coefficients& b, std::vector<Head>& heads) {
  bool all = true;
  for (std::size_t i = 0; i < heads.size(); ++i) {
    Head& head = heads[i];
    if (head.settled) continue;
    const Local here = look(b, head.z);
    if (here.atRoot) {
      head.settled = true;
      continue;
    }
    ComplexReal step = ComplexReal(1) / (here.slope - repulsion(heads, i));
    if (!head.isPair) step = step.real();
    // Held up between others: a step aside.
    if (!std::isfinite(step.real()) || !std::isfinite(step.imag())) step = 0.1L * std::abs(head.z);
    head.z -= step;
    if (head.z.imag() < 0) head.z = std::conj(head.z);
    if (head.isPair && head.z.imag() == 0) head.z.imag(std::abs(step));
    head.settled = std::abs(step) <= kHalfEpsilon * std::abs(head.z);
    all = all && head.settled;
  }
  return all;
}

// What does not settle started on the wrong side: two real values where the roots are a pair, or a
// pair where they are real. Each gets the other form.
void exchangeForms(std::vector<Head>& heads) {
  std::vector<Head> kept;
  std::vector<Real> lone;
  for (const Head& head : heads) {
    if (head.settled) {
      kept.push_back(head);
    } else if (head.isPair) {
      kept.push_back({head.z.real() - head.z.imag(), false});
      kept.push_back({head.z.real() + head.z.imag(), false});
    } else {
      lone.push_back(head.z.real());
    }
  }
  std::ranges::sort(lone);
  for (std::size_t i = 0; i + 1 < lone.size(); i += 2) {
    const Real middle = (lone[i] + lone[i + 1]) / 2, half = (lone[i + 1] - lone[i]) / 2;
    kept.push_back({ComplexReal(middle, half > 0 ? half : std::fabs(middle)), true});
  }
  if (lone.size() % 2) kept.push_back({lone.back(), false});
  heads = std::move(kept);
}

// Whether all roots have settled; none when interrupted.
std::optional<bool> correct(const Coefficients& b, std::vector<Head>& heads,
                            const InterruptTest& interrupted) {
  constexpr int kRounds = 4, kSweeps = 60;
  for (int round = 0; round < kRounds; ++round) {
    for (int k = 0; k < kSweeps; ++k) {
      if (asksToStop(interrupted)) return std::nullopt;
      if (sweep(b, heads)) return true;
    }
    exchangeForms(heads);
  }
  return false;
}

std::optional<std::vector<Head>> headsOf(const Coefficients& b, const InterruptTest& interrupted) {
  if (auto heads = eigenvalueStart(b)) {
    const auto settled = correct(b, *heads, interrupted);
    if (!settled) return std::nullopt;
    if (*settled) return heads;
  }
  std::vector<Head> heads = hullStart(b);
  if (!correct(b, heads, interrupted)) return std::nullopt;
  return heads;
}

}  // namespace

std::optional<std::vector<std::complex<double>>> polynomialRoots(std::span<const double> c,
                                                                 const InterruptTest& interrupted) {
  std::vector<std::complex<double>> roots;
  // Low zero coefficients are roots of 0.
  while (c.front() == 0) {
    roots.emplace_back(0.0, 0.0);
    c = c.subspan(1);
  }
  const auto n = static_cast<int>(c.size()) - 1;
  if (n > 0) {
    const Real logRatio = std::log2(std::fabs(static_cast<Real>(c.front()))) -
                          std::log2(std::fabs(static_cast<Real>(c.back())));
    const int shift = static_cast<int>(std::lround(logRatio / n));
    Coefficients b;
    for (int k = 0; k <= n; ++k)
      b.push_back(std::scalbn(static_cast<Real>(c[static_cast<std::size_t>(k)]), shift * k));
    const auto heads = headsOf(b, interrupted);
    if (!heads) return std::nullopt;
    for (const Head& head : *heads) {
      const auto re = static_cast<double>(std::scalbn(head.z.real(), shift));
      const auto im = static_cast<double>(std::scalbn(head.z.imag(), shift));
      roots.emplace_back(re, im);
      if (head.isPair) roots.emplace_back(re, -im);
    }
  }
  std::ranges::sort(roots, [](std::complex<double> p, std::complex<double> q) {
    return p.real() != q.real() ? p.real() < q.real() : p.imag() < q.imag();
  });
  return roots;
}

}  // namespace vexa
