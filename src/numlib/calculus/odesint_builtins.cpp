#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "numlib/calculus/calculus_builtins.h"
#include "numlib/calculus/initial_value.h"
#include "values/number_format.h"
#include "values/numeric_arguments.h"
#include "values/running_expressions.h"

namespace vexa {

namespace {

constexpr int mostEquations = 100;
constexpr int mostTableRows = 1'000'000;
constexpr int usualSteps = 20;               // at least, so that short events are met
constexpr std::int64_t stepsForEach = 1000;  // of iter#

// What the words of a call ask for; numbers as they were written.
struct Options {
  std::string table;  // empty for none
  double tableRows = 1;
  double longestStep = 0, absoluteError = 0;
  bool longestStepGiven = false, absoluteErrorGiven = false;
  StepMethod method = StepMethod::extrapolation;
};

double readWordNumber() {
  expectChar(',');
  return evalScalarArg();
}

Options readOptions() {
  Options options;
  for (WordReader words({"table=", "maxstep=", "abstol=", "stiff"}); words.next();) {
    switch (words.index()) {
      case 0:
        expectChar(',');
        options.table = readResultName();
        options.tableRows = readWordNumber();
        break;
      case 1:
        options.longestStep = readWordNumber();
        options.longestStepGiven = true;
        break;
      case 2:
        options.absoluteError = readWordNumber();
        options.absoluteErrorGiven = true;
        break;
      default:
        options.method = StepMethod::stiff;
    }
  }
  return options;
}

// Key 34 for a length or error that is not positive.
void requirePositive(bool given, double x) {
  if (given && !(x > 0)) raiseError(ErrorKey::invalidData);
}

// The problem as it was read.
struct Problem {
  double from = 0, to = 0;
  const RowFunctions& functions;
  const TrialRow& row;
  const Options& options;
};

bool checkProblem(const Problem& problem) {
  const int equations = problem.functions.count(), size = problem.row.size();
  if (equations != size) {
    raiseError(equations < size ? ErrorKey::tooFewElements : ErrorKey::tooLong);
    return false;
  }
  if (!requireDistinct({problem.options.table}, {problem.row.matrix()})) return false;
  if (size > mostEquations) raiseError(ErrorKey::invalidData);
  requireWhole(problem.options.tableRows, 1, mostTableRows);
  requirePositive(problem.options.longestStepGiven, problem.options.longestStep);
  requirePositive(problem.options.absoluteErrorGiven, problem.options.absoluteError);
  const bool finite =
      std::isfinite(problem.from) && std::isfinite(problem.to) &&
      std::ranges::all_of(problem.row.start(), [](double x) { return std::isfinite(x); });
  if (!finite) raiseError(ErrorKey::floatingPoint);
  return finite;
}

InitialValueSettings settingsOf(const Problem& problem) {
  const Options& options = problem.options;
  InitialValueSettings settings;
  settings.method = options.method;
  settings.relativeError = accuracyAimed();
  settings.absoluteError =
      options.absoluteErrorGiven ? options.absoluteError : settings.relativeError;
  settings.longestStep = options.longestStepGiven
                             ? options.longestStep
                             : std::fabs(problem.to - problem.from) / usualSteps;
  settings.mostSteps = stepsForEach * iterationBound();
  return settings;
}

// The solution at equal distances: t and y in each row.
class SolutionTable {
 public:
  SolutionTable(const Problem& problem, int pieces) {
    if (problem.options.table.empty()) return;
    m_matrix = newMatrix(pieces + 1, problem.row.size() + 1);
    add(problem.from, problem.row.start());
  }

  void add(double t, std::span<const double> y) {
    if (!m_matrix || m_rows == m_matrix->rows()) return;
    double* row = m_matrix->row(++m_rows);
    row[0] = t;
    std::ranges::copy(y, row + 1);
  }

  void store(const std::string& name) {
    if (m_matrix) resultMatrix(name).swapContents(*m_matrix);
  }

 private:
  std::unique_ptr<Matrix> m_matrix;
  int m_rows = 0;
};

void refuseAt(double t) {
  std::array<char, 32> digits;
  const std::size_t length = formatGeneral(digits, t, 6, 0);
  refuse("odesint> stopped at t = " + std::string(digits.data(), length), ErrorKey::notConvergent);
}

}  // namespace

double odesintBuiltin() {
  expectChar('(');
  RunningVariable t = RunningVariable::read();
  const double from = limitValue(readWordNumber());
  const double to = limitValue(readWordNumber());
  expectChar(',');
  TrialRow row = TrialRow::read();
  expectChar(',');
  t.bind();
  t.set(from);
  RowFunctions functions = RowFunctions::read(FunctionForm::several, row, &t);
  const Options options = readOptions();
  const Problem problem{from, to, functions, row, options};
  if (!row.requireRow() || !checkProblem(problem)) return 0.0;

  const TextReturn end;
  const int pieces = static_cast<int>(options.tableRows);
  SolutionTable table(problem, pieces);
  std::vector<double> y(row.start().begin(), row.start().end());
  const auto derivatives = [&](double at, std::span<const double> state, std::span<double> values) {
    functions.evaluate(at, state, values);
  };
  // A function is called also when there is no way to go.
  if (std::vector<double> values(y.size()); from == to) derivatives(from, y, values);
  const auto result =
      solveInitialValue(derivatives, y, from, to, settingsOf(problem), pieces,
                        [&](double at, std::span<const double> state) { table.add(at, state); });
  functions.finish();
  end.go();
  if (result.outcome == InitialValueOutcome::stopped) {
    refuseAt(result.t);
    return 0.0;
  }
  row.keep(y);
  table.store(options.table);
  return noResult();
}

}  // namespace vexa
