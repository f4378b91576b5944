#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "interp/message_box.h"
#include "numlib/calculus/calculus_builtins.h"
#include "numlib/calculus/linear_program.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

// The arguments of simplx as they are read.
struct ProgramArguments {
  DataArgument c, a, b, senses;
  std::string x;
  bool bounded = false;
  DataArgument low, high;
  std::string duals;

  void read() {
    for (DataArgument* argument : {&c, &a, &b, &senses}) {
      expectChar(',');
      *argument = readData();
    }
    expectChar(',');
    x = readResultName();
    for (WordReader words({"bounds=", "duals="}); words.next();) {
      expectChar(',');
      if (words.index() == 1) {
        duals = readResultName();
        continue;
      }
      bounded = true;
      low = readData();
      expectChar(',');
      high = readData();
    }
  }
};

bool checkShapes(const ProgramArguments& p) {
  const DataArgument& low = p.bounded ? p.low : p.c;
  const DataArgument& high = p.bounded ? p.high : p.c;
  if (!requireVectors({&p.c, &low, &high}) || !requireVectors({&p.b, &p.senses})) return false;
  const auto rows = static_cast<std::size_t>(p.a.rows()),
             cols = static_cast<std::size_t>(p.a.cols());
  if (rows == p.b.size() && cols == p.c.size()) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

// -1, 0 and 1; anything else is key 34.
std::vector<RowSense> sensesOf(std::span<const double> values) {
  std::vector<RowSense> senses;
  for (const double s : values) {
    if (s != -1 && s != 0 && s != 1) {
      raiseError(ErrorKey::invalidData);
      return {};
    }
    senses.push_back(static_cast<RowSense>(static_cast<int>(s)));
  }
  return senses;
}

struct Bounds {
  std::vector<double> low, high;
};

// From 0 on, or as given; i# and beyond is none. Key 63 for not-a-number, 34 when they exclude each
// other; false then.
bool readBounds(ProgramArguments& p, std::size_t n, Bounds& bounds) {
  constexpr double none = std::numeric_limits<double>::infinity();
  if (!p.bounded) {
    bounds = {std::vector<double>(n, 0.0), std::vector<double>(n, none)};
    return true;
  }
  const double limit = presetValue("i#");
  const std::span<const double> low = p.low.elements(), high = p.high.elements();
  for (std::size_t j = 0; j < n; ++j) {
    if (std::isnan(low[j]) || std::isnan(high[j])) {
      raiseError(ErrorKey::floatingPoint);
      return false;
    }
    if (low[j] > high[j] || low[j] >= limit || high[j] <= -limit) {
      raiseError(ErrorKey::invalidData);
      return false;
    }
    bounds.low.push_back(low[j] <= -limit ? -none : low[j]);
    bounds.high.push_back(high[j] >= limit ? none : high[j]);
  }
  return true;
}

// Where there is no optimum: the bound of an empty or an open set, and nothing is stored.
double noOptimum(std::string_view message, double sign) {
  messageBox(message);
  return sign * presetValue("i#");
}

double finish(const ProgramSolution& solution, const ProgramArguments& p, Objective objective) {
  const double worst = objective == Objective::least ? 1.0 : -1.0;
  switch (solution.outcome) {
    case ProgramOutcome::infeasible:
      return noOptimum("simplx> no feasible solution", worst);
    case ProgramOutcome::unbounded:
      return noOptimum("simplx> objective is without bound", -worst);
    case ProgramOutcome::missing:
      return refuse(
          "simplx> libClp.so.1 of the library Clp cannot be opened: install it "
          "(Debian: coinor-libclp1)");
    case ProgramOutcome::tooManyIterations:
    case ProgramOutcome::failed:
      raiseError(ErrorKey::notConvergent);
      return 0.0;
    case ProgramOutcome::interrupted:
      return 0.0;
    case ProgramOutcome::optimal:
      break;
  }
  if (!requireFinite(solution.x) || !requireFinite(solution.duals) ||
      !requireFinite({&solution.optimum, 1}))
    return 0.0;
  storeRow(p.x, solution.x);
  if (!p.duals.empty()) storeRow(p.duals, solution.duals);
  return solution.optimum;
}

// N (m + n) iterations.
int iterationsFor(const ConstMatrixView& a) {
  const double most = static_cast<double>(iterationBound()) * (double{1} * a.rows + a.cols);
  constexpr int largest = std::numeric_limits<int>::max() / 2;
  return most < largest ? static_cast<int>(most) : largest;
}

ProgramSolution solve(const LinearProgram& program) {
  try {
    return solveLinearProgram(program, iterationsFor(program.a), askUser);
  } catch (const std::bad_alloc&) {
    raiseError(ErrorKey::allocationFailed);
    ProgramSolution none;
    none.outcome = ProgramOutcome::interrupted;
    return none;
  }
}

}  // namespace

double simplxBuiltin() {
  expectChar('(');
  const Objective objective = readOption("LG") == 'L' ? Objective::least : Objective::greatest;
  ProgramArguments p;
  p.read();
  if (!checkShapes(p)) return 0.0;
  if (!requireDistinct({p.x, p.duals}, {p.c.matrix(), p.a.matrix(), p.b.matrix(), p.senses.matrix(),
                                        p.low.matrix(), p.high.matrix()}))
    return 0.0;

  LinearProgram program{.objective = objective,
                        .c = p.c.elements(),
                        .a = p.a.view(),
                        .b = p.b.elements(),
                        .senses = {},
                        .low = {},
                        .high = {}};
  if (!requireFinite(program.c) || !requireFinite(program.a.elements()) ||
      !requireFinite(program.b))
    return 0.0;
  const std::vector<RowSense> senses = sensesOf(p.senses.elements());
  Bounds bounds;
  if (senses.size() != program.b.size() || !readBounds(p, program.c.size(), bounds)) return 0.0;
  program.senses = senses;
  program.low = bounds.low;
  program.high = bounds.high;
  return finish(solve(program), p, objective);
}

}  // namespace vexa
