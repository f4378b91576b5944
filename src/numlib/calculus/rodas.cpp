#include <Eigen/Dense>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "numlib/calculus/steppers.h"

namespace vexa {

namespace {

constexpr int stages = 6;
constexpr double gamma = 0.25;

// The coefficients of RODAS, in the form in which the stages need no product with the Jacobian:
// `place` weighs the earlier stages in the argument of f, `slope` those in the right side.
// clang-format off
constexpr double place[stages][stages - 1] = {
    {},
    {1.544},
    {0.9466785280815826, 0.2557011698983284},
    {3.314825187068521, 2.896124015972201, 0.9986419139977817},
    {1.221224509226641, 6.019134481288629, 12.53708332932087, -0.6878860361058950},
    {1.221224509226641, 6.019134481288629, 12.53708332932087, -0.6878860361058950, 1},
};
constexpr double slope[stages][stages - 1] = {
    {},
    {-5.6688},
    {-2.430093356833875, -0.2063599157091915},
    {-0.1073529058151375, -9.594562251023355, -20.47028614809616},
    {7.496443313967647, -10.24680431464352, -33.99990352819905, 11.70890893206160},
    {8.083246795921522, -7.981132988064893, -31.52159432874371, 16.31930543123136,
     -6.058818238834054},
};
constexpr double time[stages] = {0, 0.386, 0.21, 0.63, 1, 1};
constexpr double timeSlope[stages] = {0.25, -0.1043, 0.1035, -0.03620000000000023, 0, 0};
// clang-format on

constexpr double safety = 0.9, leastChange = 0.2, mostChange = 6;

class Rodas final : public Stepper {
 public:
  Rodas(DerivativeFunction f, std::size_t size, const InitialValueSettings& settings)
      : m_f(f),
        m_settings(settings),
        m_jacobian(static_cast<Eigen::Index>(size), static_cast<Eigen::Index>(size)),
        m_system(m_jacobian.rows(), m_jacobian.cols()),
        m_factors(m_jacobian.rows()),
        m_slope(size),
        m_moved(size),
        m_timeDerivative(size),
        m_argument(size) {
    for (Eigen::VectorXd& stage : m_stages) stage.resize(static_cast<Eigen::Index>(size));
  }

  // From the slope and its change along it (Hairer, Norsett and Wanner, Solving Ordinary
  // Differential Equations I, II.4): a step far beyond the initial transient has derivatives by
  // differences as long as itself, which spoil the shorter steps after it.
  double firstStep(const std::vector<double>& y, double t, double longest) override {
    m_f(t, y, m_slope);
    const double state = sizeOf(y, y), pace = sizeOf(m_slope, y);
    double h = longest * 1e-6;
    if (state > 1e-5 && pace > 1e-5) h = std::min(state / pace / 100, longest);
    m_argument = y;
    for (std::size_t k = 0; k < y.size(); ++k) m_argument[k] += h * m_slope[k];
    m_f(t + h, m_argument, m_moved);
    for (std::size_t k = 0; k < y.size(); ++k) m_moved[k] -= m_slope[k];
    const double steepest = std::max(pace, sizeOf(m_moved, y) / h);
    if (!std::isfinite(steepest)) return h * leastChange;
    return std::min(100 * h, std::pow(steepest * 100, -0.25));
  }

  bool tryStep(std::vector<double>& y, double t, double& h) override {
    differentiate(y, t, h);
    m_system = -m_jacobian;
    m_system.diagonal().array() += 1 / (h * gamma);
    m_factors.compute(m_system);
    for (int i = 0; i < stages; ++i) computeStage(i, y, t, h);
    const double error = errorOf(y);
    if (!std::isfinite(error)) {
      h *= leastChange;
      return false;
    }
    const bool done = error <= 1;
    const double wanted = error > 0 ? safety * std::pow(error, -0.25) : mostChange;
    h *= std::clamp(wanted, leastChange, m_rejected || !done ? 1.0 : mostChange);
    m_rejected = !done;
    if (!done) return false;
    m_derivativesKnown = false;
    addStage(stages - 1, m_argument);
    y = m_argument;
    return true;
  }

 private:
  // The derivatives of f at (t, y), by differences of half the digits. After a rejected step they
  // are known already.
  void differentiate(const std::vector<double>& y, double t, double h) {
    if (m_derivativesKnown) return;
    const double rootEpsilon = std::sqrt(std::numeric_limits<double>::epsilon());
    m_f(t, y, m_slope);
    m_argument = y;
    for (std::size_t j = 0; j < y.size(); ++j) {
      const double scale =
          std::max({std::fabs(y[j]), std::fabs(h * m_slope[j]), m_settings.absoluteError});
      m_argument[j] = y[j] + rootEpsilon * scale;
      const double moved = m_argument[j] - y[j];
      m_f(t, m_argument, m_moved);
      for (std::size_t i = 0; i < y.size(); ++i)
        m_jacobian(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(j)) =
            (m_moved[i] - m_slope[i]) / moved;
      m_argument[j] = y[j];
    }
    const double later = t + rootEpsilon * std::max(std::fabs(t), h);
    m_f(later, y, m_moved);
    for (std::size_t i = 0; i < y.size(); ++i)
      m_timeDerivative[i] = (m_moved[i] - m_slope[i]) / (later - t);
    m_derivativesKnown = true;
  }

  void addStage(int j, std::vector<double>& sum, double weight = 1) const {
    const Eigen::VectorXd& stage = m_stages[static_cast<std::size_t>(j)];
    for (std::size_t k = 0; k < sum.size(); ++k)
      sum[k] += weight * stage[static_cast<Eigen::Index>(k)];
  }

  void computeStage(int i, const std::vector<double>& y, double t, double h) {
    m_argument = y;
    for (int j = 0; j < i; ++j) addStage(j, m_argument, place[i][j]);
    if (i > 0)
      m_f(t + time[i] * h, m_argument, m_moved);
    else
      m_moved = m_slope;
    for (int j = 0; j < i; ++j) addStage(j, m_moved, slope[i][j] / h);
    for (std::size_t k = 0; k < y.size(); ++k) m_moved[k] += timeSlope[i] * h * m_timeDerivative[k];
    const Eigen::Map<const Eigen::VectorXd> right(m_moved.data(),
                                                  static_cast<Eigen::Index>(m_moved.size()));
    m_stages[static_cast<std::size_t>(i)].noalias() = m_factors.solve(right);
  }

  // The largest element in units of the error aimed at for a state.
  double sizeOf(std::span<const double> elements, std::span<const double> y) const {
    double largest = 0;
    for (std::size_t k = 0; k < y.size(); ++k) {
      const double scale = m_settings.absoluteError + m_settings.relativeError * std::fabs(y[k]);
      const double size = std::fabs(elements[k]) / scale;
      if (!std::isfinite(size)) return size;
      largest = std::max(largest, size);
    }
    return largest;
  }

  // The last stage is the difference of the two methods; m_argument is the new state without it.
  double errorOf(const std::vector<double>& y) {
    const Eigen::VectorXd& difference = m_stages.back();
    for (std::size_t k = 0; k < y.size(); ++k)
      m_moved[k] = std::max(std::fabs(y[k]), std::fabs(m_argument[k]));
    return sizeOf({difference.data(), y.size()}, m_moved);
  }

  DerivativeFunction m_f;
  InitialValueSettings m_settings;
  Eigen::MatrixXd m_jacobian, m_system;
  Eigen::PartialPivLU<Eigen::MatrixXd> m_factors;
  std::array<Eigen::VectorXd, stages> m_stages;
  std::vector<double> m_slope, m_moved, m_timeDerivative, m_argument;
  bool m_derivativesKnown = false;
  bool m_rejected = false;
};

}  // namespace

std::unique_ptr<Stepper> makeRodas(DerivativeFunction f, std::size_t size,
                                   const InitialValueSettings& settings) {
  return std::make_unique<Rodas>(f, size, settings);
}

}  // namespace vexa
