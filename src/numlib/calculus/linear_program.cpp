#include "numlib/calculus/linear_program.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <memory>

#include "numlib/calculus/clp_library.h"
#include "numlib/calculus/scaled_program.h"

namespace vexa {

namespace {

// Iterations between two questions whether to stop.
constexpr int slice = 500;
constexpr double tolerance = 1e-10;
// Of prices, once the basis is nearly right.
constexpr double sharpTolerance = 1e-14;

// What the library's status says.
enum class ClpStatus { optimal = 0, infeasible = 1, unbounded = 2, stopped = 3 };

struct ModelDeleter {
  const ClpLibrary* clp;
  void operator()(ClpModel* model) const { clp->deleteModel(model); }
};
using Model = std::unique_ptr<ClpModel, ModelDeleter>;

// The simplex method on one program, within one budget of iterations.
class Simplex {
 public:
  Simplex(const ClpLibrary& clp, const ScaledProgram& scaled, int mostIterations,
          const InterruptTest& interrupted)
      : m_clp(clp),
        m_model(clp.newModel(), ModelDeleter{&clp}),
        m_columns(scaled.costs().size()),
        m_rows(scaled.sides().rowLow.size()),
        m_left(mostIterations),
        m_interrupted(interrupted) {
    clp.setLogLevel(m_model.get(), 0);
    const Numbers sides(scaled.sides());
    clp.loadProblem(m_model.get(), scaled.cols(), scaled.rows(), scaled.starts().data(),
                    scaled.indices().data(), scaled.values().data(), sides.columnLow.data(),
                    sides.columnHigh.data(), scaled.costs().data(), sides.rowLow.data(),
                    sides.rowHigh.data());
    clp.setPrimalTolerance(m_model.get(), tolerance);
    clp.setDualTolerance(m_model.get(), tolerance);
  }

  // Where the primal method gives up, as it does for rows that contradict each other by little, the
  // dual method decides.
  ProgramOutcome run() {
    const ProgramOutcome outcome = runSlices(m_clp.primal);
    return outcome == ProgramOutcome::failed ? runSlices(m_clp.dual) : outcome;
  }

  // Goes on from the basis that the last run left.
  ProgramOutcome runWith(const ScaledProgram::Sides& sides) {
    const Numbers numbers(sides);
    m_clp.setDualTolerance(m_model.get(), sharpTolerance);
    m_clp.changeRowLow(m_model.get(), numbers.rowLow.data());
    m_clp.changeRowHigh(m_model.get(), numbers.rowHigh.data());
    m_clp.changeColumnLow(m_model.get(), numbers.columnLow.data());
    m_clp.changeColumnHigh(m_model.get(), numbers.columnHigh.data());
    return run();
  }

  std::span<const double> columnSolution() const {
    return {m_clp.columnSolution(m_model.get()), m_columns};
  }
  std::span<const double> rowPrices() const { return {m_clp.rowPrices(m_model.get()), m_rows}; }

 private:
  // Sides with the library's infinity, the largest number.
  struct Numbers : ScaledProgram::Sides {
    explicit Numbers(const ScaledProgram::Sides& sides) : Sides(sides) {
      for (std::vector<double>* part : {&rowLow, &rowHigh, &columnLow, &columnHigh})
        for (double& x : *part) x = std::clamp(x, -DBL_MAX, DBL_MAX);
    }
  };

  // In slices, so that the user is heard; each goes on from the basis that the last one left. The
  // library counts its iterations anew in each.
  ProgramOutcome runSlices(int (*method)(ClpModel*, int)) {
    for (;;) {
      m_clp.setMaximumIterations(m_model.get(), std::clamp(m_left, 1, slice));
      method(m_model.get(), 0);
      m_left -= m_clp.numberIterations(m_model.get());
      switch (static_cast<ClpStatus>(m_clp.status(m_model.get()))) {
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
      if (m_left <= 0) return ProgramOutcome::tooManyIterations;
      if (asksToStop(m_interrupted)) return ProgramOutcome::interrupted;
    }
  }

  const ClpLibrary& m_clp;
  Model m_model;
  std::size_t m_columns, m_rows;
  int m_left;
  const InterruptTest& m_interrupted;
};

// An optimal point and the prices of the rows there, in scaled numbers.
struct Optimum {
  std::vector<long double> x;
  std::vector<double> prices;
};

// Makes an optimum exact to the last digit: the program about its point, magnified, gives the
// correction, since what lies below the library's tolerance here is far above it there (Gleixner,
// Steffy and Wolter, INFORMS Journal on Computing 28, 2016; the primal side of it). Gives how the
// last of the magnified programs ended.
ProgramOutcome refine(Simplex& simplex, const ScaledProgram& scaled, Optimum& optimum) {
  constexpr long double enough = 1e-16L;
  for (const int exponent : {30, 45, 60}) {
    const ProgramOutcome outcome = simplex.runWith(scaled.sidesAbout(optimum.x, exponent));
    if (outcome != ProgramOutcome::optimal) return outcome;
    const std::span<const double> correction = simplex.columnSolution();
    for (std::size_t j = 0; j < correction.size(); ++j)
      optimum.x[j] += std::ldexp(static_cast<long double>(correction[j]), -exponent);
    scaled.clamp(optimum.x);
    const std::span<const double> prices = simplex.rowPrices();
    optimum.prices.assign(prices.begin(), prices.end());
    if (scaled.excess(optimum.x) <= enough) break;
  }
  return ProgramOutcome::optimal;
}

Optimum optimumOf(const Simplex& simplex, const ScaledProgram& scaled) {
  const std::span<const double> x = simplex.columnSolution(), prices = simplex.rowPrices();
  Optimum optimum{{x.begin(), x.end()}, {prices.begin(), prices.end()}};
  scaled.clamp(optimum.x);
  return optimum;
}

void takeSolution(const Optimum& optimum, const ScaledProgram& scaled, const LinearProgram& program,
                  ProgramSolution& solution) {
  long double sum = 0;
  for (std::size_t j = 0; j < optimum.x.size(); ++j) {
    // Rounding must not put a value beyond its bounds.
    const double value = std::clamp(static_cast<double>(scaled.unscaledX(optimum.x[j], j)),
                                    program.low[j], program.high[j]);
    solution.x.push_back(value == 0 ? 0 : value);
    sum += static_cast<long double>(program.c[j]) * value;
  }
  for (std::size_t i = 0; i < optimum.prices.size(); ++i)
    solution.duals.push_back(scaled.unscaledDual(optimum.prices[i], i));
  solution.optimum = static_cast<double>(sum);
}

// Whether a point keeps to the sides within what is promised.
bool keepsSides(const LinearProgram& program, std::span<const double> x) {
  constexpr double allowed = 1e-9;
  for (int i = 0; i < program.a.rows; ++i) {
    const auto row = static_cast<std::size_t>(i);
    long double beyond = -program.b[row];
    for (std::size_t j = 0; j < x.size(); ++j)
      beyond += static_cast<long double>(program.a.row(i)[j]) * x[j];
    if (program.senses[row] == RowSense::equal) beyond = std::fabs(beyond);
    if (program.senses[row] == RowSense::above) beyond = -beyond;
    if (beyond > allowed * std::max(1.0, std::fabs(program.b[row]))) return false;
  }
  return true;
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
  Simplex simplex(*clp, scaled, mostIterations, interrupted);
  solution.outcome = simplex.run();
  if (solution.outcome == ProgramOutcome::optimal && scaled.hasFreeGain())
    solution.outcome = ProgramOutcome::unbounded;
  if (solution.outcome != ProgramOutcome::optimal) return solution;
  Optimum optimum = optimumOf(simplex, scaled);
  const ProgramOutcome refined = refine(simplex, scaled, optimum);
  takeSolution(optimum, scaled, program, solution);
  // Rows may contradict each other by less than the library sees.
  if (refined == ProgramOutcome::infeasible && !keepsSides(program, solution.x))
    solution = {.outcome = ProgramOutcome::infeasible, .optimum = 0, .x = {}, .duals = {}};
  return solution;
}

}  // namespace vexa
