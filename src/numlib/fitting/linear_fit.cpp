#include "numlib/fitting/linear_fit.h"

#include <algorithm>
#include <cmath>
#include <eigen3/Eigen/QR>
#include <limits>
#include <optional>

namespace vexa {

namespace {

using Real = long double;
using Reals = std::vector<Real>;

constexpr std::size_t rowsBetweenPolls = 1 << 14;

// A k x k matrix in long double; elements are counted from 0.
class Square {
 public:
  explicit Square(std::size_t order) : m_order(order), m_elements(order * order) {}
  Real& operator()(std::size_t i, std::size_t j) { return m_elements[i * m_order + j]; }
  Real operator()(std::size_t i, std::size_t j) const { return m_elements[i * m_order + j]; }
  std::size_t order() const { return m_order; }

 private:
  std::size_t m_order;
  Reals m_elements;
};

// The functions in which a fit is computed, and how the coefficients that a user wants follow from
// those of the functions.
class Basis {
 public:
  explicit Basis(std::size_t count) : m_transform(count) {}
  Basis(const Basis&) = delete;
  Basis& operator=(const Basis&) = delete;
  virtual ~Basis() = default;

  std::size_t count() const { return m_transform.order(); }
  // The values at a point.
  virtual void row(std::size_t point, std::span<Real> values) const = 0;
  // wanted = transform * coefficients of the basis.
  const Square& transform() const { return m_transform; }

 protected:
  Square& transform() { return m_transform; }

 private:
  Square m_transform;
};

// Points that count.
std::vector<std::size_t> usedPoints(const FitData& data) {
  std::vector<std::size_t> points;
  for (std::size_t i = 0; i < data.y.size(); ++i)
    if (data.weights.empty() || data.weights[i] > 0) points.push_back(i);
  return points;
}

// Chebyshev polynomials of t = slope (x - middle), which goes from -1 to 1.
class ChebyshevBasis final : public Basis {
 public:
  ChebyshevBasis(std::span<const double> x, std::span<const std::size_t> points, int degree)
      : Basis(static_cast<std::size_t>(degree) + 1), m_x(x) {
    Real low = x[points.front()], high = low;
    for (const std::size_t i : points) {
      low = std::min<Real>(low, x[i]);
      high = std::max<Real>(high, x[i]);
    }
    m_middle = (low + high) / 2;
    if (high > low) m_slope = 2 / (high - low);
    expand();
  }

  void row(std::size_t point, std::span<Real> values) const override {
    const Real t = (m_x[point] - m_middle) * m_slope;
    values[0] = 1;
    if (values.size() > 1) values[1] = t;
    for (std::size_t j = 2; j < values.size(); ++j)
      values[j] = 2 * t * values[j - 1] - values[j - 2];
  }

 private:
  // Column j holds the coefficients of polynomial j in powers of x.
  void expand() {
    Square& t = transform();
    const std::size_t k = t.order();
    const Real slope = m_slope, shift = -m_middle * m_slope;
    t(0, 0) = 1;
    if (k > 1) {
      t(0, 1) = shift;
      t(1, 1) = slope;
    }
    for (std::size_t j = 2; j < k; ++j)
      for (std::size_t i = 0; i <= j; ++i)
        t(i, j) = 2 * (shift * t(i, j - 1) + (i > 0 ? slope * t(i - 1, j - 1) : 0)) - t(i, j - 2);
  }

  std::span<const double> m_x;
  Real m_middle = 0, m_slope = 1;
};

// Columns of given numbers, each scaled to a largest element of 1. With a constant, given or put in
// front, the others are centred about their means first.
class ColumnBasis final : public Basis {
 public:
  // `leading`: how many constant columns stand in front of those of f, 0 or 1.
  ColumnBasis(ConstMatrixView f, const FitData& data, std::span<const std::size_t> points,
              std::size_t leading)
      : Basis(static_cast<std::size_t>(f.cols) + leading),
        m_f(f),
        m_leading(leading),
        m_means(count()),
        m_scales(count(), 1) {
    if (leading > 0)
      m_constant = 0;
    else
      m_constant = findConstant(points);
    if (m_constant) findMeans(data, points);
    findScales(points);
    setTransform();
  }

  void row(std::size_t point, std::span<Real> values) const override {
    for (std::size_t j = 0; j < values.size(); ++j)
      values[j] = j == m_constant ? 1 : (element(point, j) - m_means[j]) / m_scales[j];
  }

 private:
  Real element(std::size_t point, std::size_t j) const {
    return j < m_leading ? 1 : m_f.row(static_cast<int>(point))[j - m_leading];
  }

  // The first column of equal numbers other than 0.
  std::optional<std::size_t> findConstant(std::span<const std::size_t> points) const {
    for (std::size_t j = 0; j < count(); ++j) {
      const Real first = element(points.front(), j);
      const auto equal = [&](std::size_t i) { return element(i, j) == first; };
      if (first != 0 && std::ranges::all_of(points, equal)) return j;
    }
    return std::nullopt;
  }

  void findMeans(const FitData& data, std::span<const std::size_t> points) {
    Real total = 0;
    for (const std::size_t i : points) {
      const Real weight = data.weights.empty() ? 1 : data.weights[i];
      total += weight;
      for (std::size_t j = 0; j < count(); ++j)
        if (j != m_constant) m_means[j] += weight * element(i, j);
    }
    for (Real& mean : m_means) mean /= total;
  }

  void findScales(std::span<const std::size_t> points) {
    for (std::size_t j = 0; j < count(); ++j) {
      Real largest = 0;
      for (const std::size_t i : points)
        largest = std::max(largest, std::fabs(element(i, j) - m_means[j]));
      if (largest > 0) m_scales[j] = largest;
    }
    if (m_constant) m_scales[*m_constant] = element(points.front(), *m_constant);
  }

  void setTransform() {
    Square& t = transform();
    for (std::size_t j = 0; j < count(); ++j) {
      t(j, j) = 1 / m_scales[j];
      if (m_constant && j != m_constant)
        t(*m_constant, j) = -m_means[j] / m_scales[j] / m_scales[*m_constant];
    }
  }

  ConstMatrixView m_f;
  std::size_t m_leading;
  std::optional<std::size_t> m_constant;
  Reals m_means, m_scales;
};

using Factors = Eigen::ColPivHouseholderQR<Eigen::Ref<Eigen::MatrixXd>>;
using Column = Eigen::VectorXd;

// The weighted system of one fit: rows of the basis and ordinates, times the root of the weight.
class WeightedSystem {
 public:
  WeightedSystem(const Basis& basis, const FitData& data, std::vector<std::size_t> points,
                 const InterruptTest& interrupted)
      : m_basis(basis),
        m_data(data),
        m_points(std::move(points)),
        m_interrupted(interrupted),
        m_row(basis.count()) {}

  std::size_t count() const { return m_basis.count(); }
  std::size_t size() const { return m_points.size(); }
  bool stopped() const { return m_stopped; }

  // Goes through the rows: visit(row number, its elements, its ordinate).
  template <class Visit>
  void eachRow(Visit visit) {
    for (std::size_t i = 0; i < size() && !m_stopped; ++i) {
      if (i % rowsBetweenPolls == 0) m_stopped = asksToStop(m_interrupted);
      const std::size_t point = m_points[i];
      const Real root = m_data.weights.empty() ? 1 : std::sqrt(Real{m_data.weights[point]});
      m_basis.row(point, m_row);
      for (Real& value : m_row) value *= root;
      visit(static_cast<Eigen::Index>(i), std::span<const Real>(m_row), root * m_data.y[point]);
    }
  }

  // The matrix, and the right side on the way.
  Eigen::MatrixXd matrix() {
    Eigen::MatrixXd a(size(), count());
    m_right.resize(static_cast<Eigen::Index>(size()));
    eachRow([&](Eigen::Index i, std::span<const Real> row, Real y) {
      for (std::size_t j = 0; j < row.size(); ++j)
        a(i, static_cast<Eigen::Index>(j)) = static_cast<double>(row[j]);
      m_right[i] = static_cast<double>(y);
    });
    return a;
  }

  // Coefficients of the basis: solved once, refined twice.
  Reals solve(const Factors& factors) {
    constexpr int refinements = 2;
    Reals x(count());
    m_residual.assign(size(), 0);
    correct(factors, m_right, Column::Zero(static_cast<Eigen::Index>(count())), x);
    for (int pass = 0; pass < refinements && !m_stopped; ++pass) refine(factors, x);
    return x;
  }

  // Sum of the squares of the weighted residuals that solve() left.
  Real squares() const {
    Real sum = 0;
    for (const Real r : m_residual) sum += r * r;
    return sum;
  }

 private:
  static Real remainder(std::span<const Real> row, Real y, const Reals& x) {
    for (std::size_t j = 0; j < row.size(); ++j) y -= row[j] * x[j];
    return y;
  }

  // One refinement: what the equations r + A x = b and A^T r = 0 lack now, in long double, is what
  // the correction is solved for.
  void refine(const Factors& factors, Reals& x) {
    Column f(size());
    Reals lack(count());
    eachRow([&](Eigen::Index i, std::span<const Real> row, Real y) {
      const Real r = m_residual[static_cast<std::size_t>(i)];
      f[i] = static_cast<double>(remainder(row, y, x) - r);
      for (std::size_t j = 0; j < row.size(); ++j) lack[j] -= row[j] * r;
    });
    Column g(count());
    for (std::size_t j = 0; j < count(); ++j)
      g[static_cast<Eigen::Index>(j)] = static_cast<double>(lack[j]);
    correct(factors, std::move(f), g, x);
  }

  // Adds the solution of r + A x = f, A^T r = g to coefficients and residuals.
  void correct(const Factors& factors, Column f, const Column& g, Reals& x) {
    const auto k = static_cast<Eigen::Index>(count());
    const auto r = factors.matrixQR().topLeftCorner(k, k).triangularView<Eigen::Upper>();
    const Column z = r.transpose().solve(Column(factors.colsPermutation().transpose() * g));
    f.applyOnTheLeft(factors.householderQ().adjoint());
    const Column step = factors.colsPermutation() * Column(r.solve(Column(f.head(k) - z)));
    f.head(k) = z;
    f.applyOnTheLeft(factors.householderQ());
    for (std::size_t j = 0; j < count(); ++j) x[j] += step[static_cast<Eigen::Index>(j)];
    for (std::size_t i = 0; i < size(); ++i) m_residual[i] += f[static_cast<Eigen::Index>(i)];
  }

  const Basis& m_basis;
  const FitData& m_data;
  std::vector<std::size_t> m_points;
  const InterruptTest& m_interrupted;
  Reals m_row;
  Column m_right;
  Reals m_residual;
  bool m_stopped = false;
};

std::vector<double> wantedCoefficients(const Square& transform, const Reals& x) {
  std::vector<double> wanted(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    Real sum = 0;
    for (std::size_t j = 0; j < x.size(); ++j) sum += transform(i, j) * x[j];
    wanted[i] = static_cast<double>(sum);
  }
  return wanted;
}

// variance (A^T A)^-1 of the wanted coefficients: M M^T with M = transform P R^-1.
std::vector<double> covarianceOf(const Square& transform, const Factors& factors, Real variance,
                                 const InterruptTest& interrupted) {
  const std::size_t k = transform.order();
  const auto order = static_cast<Eigen::Index>(k);
  const auto r = factors.matrixQR().topLeftCorner(order, order).triangularView<Eigen::Upper>();
  const Eigen::MatrixXd inverse =
      factors.colsPermutation() * Eigen::MatrixXd(r.solve(Eigen::MatrixXd::Identity(order, order)));
  Square m(k);
  Pace pace(interrupted);
  for (std::size_t i = 0; i < k && !pace.stopsAfter(k * k); ++i)
    for (std::size_t l = 0; l < k; ++l) {
      const Real factor = transform(i, l);
      if (factor == 0) continue;  // nearly all, but for polynomials
      for (std::size_t j = 0; j < k; ++j)
        m(i, j) += factor * inverse(static_cast<Eigen::Index>(l), static_cast<Eigen::Index>(j));
    }
  std::vector<double> covariance(k * k);
  for (std::size_t i = 0; i < k && !pace.stopsAfter(k * k); ++i)
    for (std::size_t j = 0; j <= i; ++j) {
      Real sum = 0;
      for (std::size_t l = 0; l < k; ++l) sum += m(i, l) * m(j, l);
      covariance[i * k + j] = covariance[j * k + i] = static_cast<double>(variance * sum);
    }
  return covariance;
}

LinearFit ended(FitOutcome outcome) {
  LinearFit fit;
  fit.outcome = outcome;
  return fit;
}

LinearFit fitBasis(const Basis& basis, const FitData& data, std::vector<std::size_t> points,
                   const InterruptTest& interrupted) {
  LinearFit fit;
  WeightedSystem system(basis, data, std::move(points), interrupted);
  Eigen::MatrixXd a = system.matrix();
  if (system.stopped()) return ended(FitOutcome::interrupted);
  Factors factors(a);
  // Columns that depend on each other leave a pivot of rounding size only.
  constexpr double roundings = 64;
  factors.setThreshold(roundings * static_cast<double>(basis.count()) *
                       std::numeric_limits<double>::epsilon());
  if (static_cast<std::size_t>(factors.rank()) < basis.count()) return ended(FitOutcome::dependent);

  const Reals x = system.solve(factors);
  const std::size_t freedom = system.size() - system.count();
  const Real variance = freedom > 0 ? system.squares() / static_cast<Real>(freedom) : 0;
  if (system.stopped()) return ended(FitOutcome::interrupted);
  fit.coefficients = wantedCoefficients(basis.transform(), x);
  fit.deviation = static_cast<double>(std::sqrt(variance));
  if (freedom > 0 && data.wantsCovariance)
    fit.covariance = covarianceOf(basis.transform(), factors, variance, interrupted);
  return fit;
}

}  // namespace

LinearFit fitPolynomial(std::span<const double> x, const FitData& data, int degree,
                        const InterruptTest& interrupted) {
  std::vector<std::size_t> points = usedPoints(data);
  if (points.size() < static_cast<std::size_t>(degree) + 1) return ended(FitOutcome::tooFewPoints);
  const ChebyshevBasis basis(x, points, degree);
  return fitBasis(basis, data, std::move(points), interrupted);
}

LinearFit fitMultiple(ConstMatrixView x, const FitData& data, const InterruptTest& interrupted) {
  std::vector<std::size_t> points = usedPoints(data);
  if (points.size() < static_cast<std::size_t>(x.cols) + 1) return ended(FitOutcome::tooFewPoints);
  const ColumnBasis basis(x, data, points, 1);
  return fitBasis(basis, data, std::move(points), interrupted);
}

LinearFit fitColumns(ConstMatrixView f, const FitData& data, const InterruptTest& interrupted) {
  std::vector<std::size_t> points = usedPoints(data);
  if (points.size() < static_cast<std::size_t>(f.cols)) return ended(FitOutcome::tooFewPoints);
  const ColumnBasis basis(f, data, points, 0);
  return fitBasis(basis, data, std::move(points), interrupted);
}

}  // namespace vexa
