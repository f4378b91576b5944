#include "numlib/calculus/linear_program.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <memory>

#include "numlib/calculus/clp_library.h"

namespace vexa {

namespace {

// Iterations between two questions whether to stop.
constexpr int slice = 500;
constexpr double tolerance = 1e-10;

// What the library's status says.
enum class ClpStatus { optimal = 0, infeasible = 1, unbounded = 2, stopped = 3 };

// The exponent of the power of two just above the largest magnitude; 0 when all are 0.
int exponentOf(std::span<const double> values) {
  double largest = 0;
  for (const double x : values)
    if (std::isfinite(x)) largest = std::max(largest, std::fabs(x));
  return largest > 0 ? std::ilogb(largest) + 1 : 0;
}

// The program with costs, rows and sides brought to magnitudes around 1, as the library takes it:
// always a minimum, infinities as the largest number, the matrix by columns.
class ScaledProgram {
 public:
  explicit ScaledProgram(const LinearProgram& program) : m_program(program) {
    scaleRows();
    m_costExponent = exponentOf(program.c);
    const double sign = program.objective == Objective::least ? 1.0 : -1.0;
    for (const double c : program.c) m_costs.push_back(sign * std::ldexp(c, -m_costExponent));
    scaleSides();
    gatherColumns();
  }

  void load(const ClpLibrary& clp, ClpModel* model) const {
    clp.loadProblem(model, m_program.a.cols, m_program.a.rows, m_starts.data(), m_indices.data(),
                    m_values.data(), m_columnLow.data(), m_columnHigh.data(), m_costs.data(),
                    m_rowLow.data(), m_rowHigh.data());
  }

  double unscaledX(double x) const { return std::ldexp(x, m_sideExponent); }
  // Of row i, from 0.
  double unscaledDual(double price, std::size_t i) const {
    const double sign = m_program.objective == Objective::least ? 1.0 : -1.0;
    const double dual = sign * std::ldexp(price, m_costExponent - m_rowExponents[i]);
    return dual == 0 ? 0 : dual;
  }

 private:
  void scaleRows() {
    for (int i = 0; i < m_program.a.rows; ++i)
      m_rowExponents.push_back(
          exponentOf({m_program.a.row(i), static_cast<std::size_t>(m_program.a.cols)}));
  }

  // Sides of rows and bounds of columns have one scale, that of x.
  void scaleSides() {
    std::vector<double> sides;
    for (std::size_t i = 0; i < m_program.b.size(); ++i)
      sides.push_back(std::ldexp(m_program.b[i], -m_rowExponents[i]));
    std::vector<double> all = sides;
    all.insert(all.end(), m_program.low.begin(), m_program.low.end());
    all.insert(all.end(), m_program.high.begin(), m_program.high.end());
    m_sideExponent = exponentOf(all);
    for (std::size_t i = 0; i < sides.size(); ++i) {
      const double side = std::ldexp(sides[i], -m_sideExponent);
      m_rowLow.push_back(m_program.senses[i] == RowSense::below ? -DBL_MAX : side);
      m_rowHigh.push_back(m_program.senses[i] == RowSense::above ? DBL_MAX : side);
    }
    for (const double low : m_program.low) m_columnLow.push_back(scaledBound(low));
    for (const double high : m_program.high) m_columnHigh.push_back(scaledBound(high));
  }

  double scaledBound(double bound) const {
    return std::isfinite(bound) ? std::ldexp(bound, -m_sideExponent)
                                : std::copysign(DBL_MAX, bound);
  }

  void gatherColumns() {
    const ConstMatrixView& a = m_program.a;
    m_starts.push_back(0);
    for (int j = 0; j < a.cols; ++j) {
      for (int i = 0; i < a.rows; ++i) {
        if (a(i, j) == 0) continue;
        m_indices.push_back(i);
        m_values.push_back(std::ldexp(a(i, j), -m_rowExponents[static_cast<std::size_t>(i)]));
      }
      m_starts.push_back(static_cast<int>(m_indices.size()));
    }
  }

  const LinearProgram& m_program;
  std::vector<int> m_rowExponents;
  int m_costExponent = 0, m_sideExponent = 0;
  std::vector<double> m_costs, m_rowLow, m_rowHigh, m_columnLow, m_columnHigh;
  std::vector<int> m_starts, m_indices;
  std::vector<double> m_values;
};

struct ModelDeleter {
  const ClpLibrary* clp;
  void operator()(ClpModel* model) const { clp->deleteModel(model); }
};
using Model = std::unique_ptr<ClpModel, ModelDeleter>;

// Runs the simplex method in slices, so that the user is heard; each goes on from the basis that
// the last one left.
ProgramOutcome runSimplex(const ClpLibrary& clp, ClpModel* model, int mostIterations,
                          const InterruptTest& interrupted) {
  for (int allowed = 0;;) {
    allowed += std::min(slice, mostIterations - allowed);
    clp.setMaximumIterations(model, allowed);
    clp.primal(model, 0);
    switch (static_cast<ClpStatus>(clp.status(model))) {
      case ClpStatus::optimal:
        return ProgramOutcome::optimal;
      case ClpStatus::infeasible:
        return ProgramOutcome::infeasible;
      case ClpStatus::unbounded:
        return ProgramOutcome::unbounded;
      case ClpStatus::stopped:
        break;
      default:
        return ProgramOutcome::failed;
    }
    if (allowed >= mostIterations) return ProgramOutcome::tooManyIterations;
    if (asksToStop(interrupted)) return ProgramOutcome::interrupted;
  }
}

void takeSolution(const ClpLibrary& clp, ClpModel* model, const ScaledProgram& scaled,
                  const LinearProgram& program, ProgramSolution& solution) {
  const double* x = clp.columnSolution(model);
  const double* prices = clp.rowPrices(model);
  long double sum = 0;
  for (std::size_t j = 0; j < program.c.size(); ++j) {
    // Rounding must not put a value beyond its bounds.
    const double value = std::clamp(scaled.unscaledX(x[j]), program.low[j], program.high[j]);
    solution.x.push_back(value == 0 ? 0 : value);
    sum += static_cast<long double>(program.c[j]) * value;
  }
  for (std::size_t i = 0; i < program.b.size(); ++i)
    solution.duals.push_back(scaled.unscaledDual(prices[i], i));
  solution.optimum = static_cast<double>(sum);
}

}  // namespace

ProgramSolution solveLinearProgram(const LinearProgram& program, int mostIterations,
                                   const InterruptTest& interrupted) {
  ProgramSolution solution;
  const ClpLibrary* clp = openClp();
  if (!clp) {
    solution.outcome = ProgramOutcome::missing;
    return solution;
  }
  const ScaledProgram scaled(program);
  const Model model(clp->newModel(), ModelDeleter{clp});
  clp->setLogLevel(model.get(), 0);
  scaled.load(*clp, model.get());
  clp->setPrimalTolerance(model.get(), tolerance);
  clp->setDualTolerance(model.get(), tolerance);
  solution.outcome = runSimplex(*clp, model.get(), mostIterations, interrupted);
  if (solution.outcome == ProgramOutcome::optimal)
    takeSolution(*clp, model.get(), scaled, program, solution);
  return solution;
}

}  // namespace vexa
