#include "numlib/fitting/nonlinear_fit.h"

#include <Eigen/Dense>
#include <algorithm>
#include <cmath>
#include <limits>
#include <unsupported/Eigen/NonLinearOptimization>

namespace vexa {

namespace {

using Eigen::Index;
using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double tolerance = 1e-14;  // of the library, in the sum of squares and the parameters
constexpr double refusedResidual = 1e150;  // stands for values that are not finite
constexpr int mostPolishingSteps = 30;     // more than three only where residuals are large

// How many function values a difference takes, and so how many digits it has.
enum class Differences { central, fivePoint };

std::span<const double> view(const Vector& v) {
  return {v.data(), static_cast<std::size_t>(v.size())};
}

// The residuals of a fit, times the roots of the weights, and their derivatives.
class Residuals {
 public:
  Residuals(const NonlinearFitProblem& problem, std::size_t parameters)
      : m_problem(problem),
        m_parameters(static_cast<Index>(parameters)),
        m_values(static_cast<Index>(problem.y.size())),
        m_rootWeights(Vector::Ones(m_values.size())) {
    for (std::size_t i = 0; i < problem.weights.size(); ++i)
      m_rootWeights[static_cast<Index>(i)] = std::sqrt(problem.weights[i]);
    const Eigen::Map<const Vector> y(problem.y.data(), values());
    m_dataLength = y.cwiseProduct(m_rootWeights).norm();
  }

  Index values() const { return m_values.size(); }

  // False when a value of the model is not finite.
  bool compute(const Vector& a, Vector& residuals) {
    if (!evaluate(a, residuals)) return false;
    const Eigen::Map<const Vector> y(m_problem.y.data(), values());
    residuals = m_rootWeights.cwiseProduct(residuals - y);
    return residuals.allFinite();
  }

  // Column j holds the derivatives in parameter j. One that cannot be computed counts as 0.
  void differentiate(const Vector& a, Matrix& jacobian, Differences kind) {
    Vector at = a;
    for (Index j = 0; j < m_parameters; ++j) differentiate(at, j, jacobian, kind);
  }

  // What the library calls.
  int operator()(const Vector& a, Vector& residuals) {
    if (!compute(a, residuals)) residuals.setConstant(refusedResidual);
    return 0;
  }
  int df(const Vector& a, Matrix& jacobian) {
    differentiate(a, jacobian, Differences::central);
    return 0;
  }

 private:
  bool evaluate(const Vector& a, Vector& values) {
    values.resize(m_values.size());
    return m_problem.model(view(a), {values.data(), static_cast<std::size_t>(values.size())});
  }

  // Adds `weight` times the values with parameter j moved by h.
  void addMoved(Vector& at, Index j, double from, double h, double weight, auto column) {
    at[j] = from + h;
    if (evaluate(at, m_values))
      column += weight * m_values;
    else
      column.setConstant(std::numeric_limits<double>::quiet_NaN());
  }

  // The differences of a column, over a step of about `wished`.
  void differentiate(Vector& at, Index j, Matrix& jacobian, Differences kind, double wished) {
    const double from = at[j];
    const double moved = from + wished;
    const double h = moved - from;  // exact, so that the division is by what was gone
    auto column = jacobian.col(j);
    column.setZero();
    if (kind == Differences::central) {
      addMoved(at, j, from, h, 1 / (2 * h), column);
      addMoved(at, j, from, -h, -1 / (2 * h), column);
    } else {
      addMoved(at, j, from, h, 8 / (12 * h), column);
      addMoved(at, j, from, -h, -8 / (12 * h), column);
      addMoved(at, j, from, 2 * h, -1 / (12 * h), column);
      addMoved(at, j, from, -2 * h, 1 / (12 * h), column);
    }
    at[j] = from;
    column.array() *= m_rootWeights.array();
    if (!column.allFinite()) column.setZero();
  }

  void differentiate(Vector& at, Index j, Matrix& jacobian, Differences kind) {
    const double size = at[j] == 0 ? 1 : std::fabs(at[j]);
    differentiate(at, j, jacobian, Differences::central, size * std::cbrt(epsilon));
    if (kind == Differences::central) return;
    // Nor may the model move by as much as the data: a place at 450 of a peak 4 wide is not to be
    // moved by a thousandth of 450.
    const double length = jacobian.col(j).norm();
    const double reach = length > 0 && m_dataLength > 0 ? m_dataLength / length : size;
    const double scale = at[j] == 0 ? reach : std::min(size, reach);
    differentiate(at, j, jacobian, kind, scale * 1e-3);
  }

  const NonlinearFitProblem& m_problem;
  Index m_parameters;
  Vector m_values;
  Vector m_rootWeights;
  double m_dataLength = 0;
};

// The factors of a Jacobian whose columns were scaled to length 1.
struct ScaledFactors {
  Vector lengths;
  Eigen::ColPivHouseholderQR<Matrix> qr;

  explicit ScaledFactors(Matrix jacobian) : lengths(jacobian.colwise().norm()) {
    for (Index j = 0; j < lengths.size(); ++j) {
      if (lengths[j] == 0) lengths[j] = 1;
      jacobian.col(j) /= lengths[j];
    }
    qr.compute(jacobian);
  }
};

// Plain Gauss-Newton steps from where the library stopped, as long as each is shorter than the one
// before and does no harm.
void polish(Residuals& residuals, Vector& a, Vector& r) {
  Matrix jacobian(residuals.values(), a.size());
  Vector moved, movedResiduals;
  double shortest = HUGE_VAL;
  for (int step = 0; step < mostPolishingSteps; ++step) {
    residuals.differentiate(a, jacobian, Differences::fivePoint);
    const ScaledFactors factors(jacobian);
    const Vector scaled = factors.qr.solve(r);
    const double length = scaled.norm();
    if (!(length < shortest)) return;
    shortest = length;
    moved = a - scaled.cwiseQuotient(factors.lengths);
    if (!residuals.compute(moved, movedResiduals)) return;
    if (movedResiduals.squaredNorm() > r.squaredNorm() * (1 + 1e-9)) return;
    a = moved;
    r = movedResiduals;
  }
}

}  // namespace

NonlinearFit fitNonlinear(const NonlinearFitProblem& problem, std::span<const double> start) {
  using Eigen::LevenbergMarquardtSpace::Running;
  Residuals residuals(problem, start.size());
  Vector a = Eigen::Map<const Vector>(start.data(), static_cast<Index>(start.size()));
  Vector r;
  NonlinearFit fit{{start.begin(), start.end()}, 0, NonlinearFitOutcome::notFinite};
  if (!residuals.compute(a, r)) return fit;

  Eigen::LevenbergMarquardt<Residuals> search(residuals);
  search.parameters.ftol = search.parameters.xtol = tolerance;
  search.parameters.maxfev = std::numeric_limits<Index>::max();
  search.minimizeInit(a);
  for (int jacobians = 0;; ++jacobians) {
    if (jacobians == problem.mostJacobians) {
      fit.outcome = NonlinearFitOutcome::notReached;
      return fit;
    }
    if (search.minimizeOneStep(a) != Running) break;
  }
  residuals.compute(a, r);
  polish(residuals, a, r);
  fit.parameters.assign(a.begin(), a.end());
  fit.sumOfSquares = r.squaredNorm();
  fit.outcome = NonlinearFitOutcome::done;
  return fit;
}

std::vector<double> parameterCovariance(const NonlinearFitProblem& problem,
                                        std::span<const double> parameters) {
  const auto k = static_cast<Index>(parameters.size());
  Residuals residuals(problem, parameters.size());
  Matrix jacobian(residuals.values(), k);
  residuals.differentiate(Eigen::Map<const Vector>(parameters.data(), k), jacobian,
                          Differences::fivePoint);
  const ScaledFactors factors(jacobian);
  if (factors.qr.rank() < k) return {};
  Matrix inverse = Matrix::Identity(k, k);
  factors.qr.matrixR().topLeftCorner(k, k).triangularView<Eigen::Upper>().solveInPlace(inverse);
  inverse = factors.qr.colsPermutation() * inverse;
  const Matrix scale = factors.lengths.cwiseInverse().asDiagonal();
  const Matrix covariance = scale * (inverse * inverse.transpose()) * scale;
  // Symmetric, so rows and columns may be exchanged.
  return {covariance.data(), covariance.data() + covariance.size()};
}

}  // namespace vexa
