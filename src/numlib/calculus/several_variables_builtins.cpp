#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "numlib/calculus/calculus_builtins.h"
#include "numlib/calculus/derivative.h"
#include "numlib/calculus/minimum_search.h"
#include "values/numeric_arguments.h"
#include "values/running_expressions.h"

namespace vexa {

namespace {

constexpr int mostVariables = 100;
constexpr int evaluationsForEach = 10;  // of iter#

// The derivatives of functions of a row at its elements; each works on a copy of them.
class Derivatives {
 public:
  Derivatives(RowFunctions& functions, const TrialRow& row)
      : m_functions(functions), m_at(row.start().begin(), row.start().end()) {}

  int variables() const { return static_cast<int>(m_at.size()); }

  // Of the i-th function in the j-th variable, from 0. Not-a-number when one before could not be
  // found; failed() tells.
  double operator()(int i, int j) {
    const auto f = [&](std::span<const double> at) { return m_functions.value(i, at); };
    const auto found =
        m_failed ? std::nullopt : differentiate(f, m_at, static_cast<std::size_t>(j));
    m_failed = !found;
    return found.value_or(std::nan(""));
  }
  bool failed() const { return m_failed; }

 private:
  RowFunctions& m_functions;
  std::vector<double> m_at;
  bool m_failed = false;
};

// Keys 68 and 25 when there are fewer or more functions than wanted.
bool requireCount(const RowFunctions& functions, int wanted) {
  if (functions.count() == wanted) return true;
  raiseError(functions.count() < wanted ? ErrorKey::tooFewElements : ErrorKey::tooLong);
  return false;
}

std::vector<double> divergence(Derivatives& d) {
  double sum = 0;
  for (int i = 0; i < d.variables(); ++i) sum += d(i, i);
  return {sum};
}

// In the plane the curl points out of it.
std::vector<double> curl(Derivatives& d) {
  if (d.variables() == 2) return {0, 0, d(1, 0) - d(0, 1)};
  return {d(2, 1) - d(1, 2), d(0, 2) - d(2, 0), d(1, 0) - d(0, 1)};
}

// Row after row.
std::vector<double> jacobian(Derivatives& d, int functions) {
  std::vector<double> matrix;
  for (int i = 0; i < functions; ++i)
    for (int j = 0; j < d.variables(); ++j) matrix.push_back(d(i, j));
  return matrix;
}

// Ends the work on a row's functions: the cursor is behind the call again. False, and key 85, when
// a derivative was not found.
bool finish(RowFunctions& functions, const TextReturn& end, const Derivatives& derivatives) {
  functions.finish();
  end.go();
  if (derivatives.failed()) raiseError(ErrorKey::notConvergent);
  return !derivatives.failed();
}

// Shapes and counts of div, curl and jacob.
bool checkField(int builtin, const TrialRow& row, const RowFunctions& functions) {
  if (builtin == builtinCode("jacob")) return true;
  if (builtin == builtinCode("curl") && row.size() != 2 && row.size() != 3) {
    raiseError(ErrorKey::ordersIncompatible);
    return false;
  }
  return requireCount(functions, row.size());
}

std::vector<double> fieldValues(int builtin, Derivatives& derivatives, int functions) {
  if (builtin == builtinCode("div")) return divergence(derivatives);
  if (builtin == builtinCode("curl")) return curl(derivatives);
  return jacobian(derivatives, functions);
}

// Bounds as they were written; i# means none.
std::vector<double> boundsOf(DataArgument& argument) {
  const auto elements = argument.elements();
  std::vector<double> bounds(elements.begin(), elements.end());
  std::ranges::transform(bounds, bounds.begin(), limitValue);
  return bounds;
}

double finishSearch(const SearchResult& found, TrialRow& row, const TextReturn& end) {
  // The line of this fault is that of the expression.
  if (found.outcome == SearchOutcome::notFinite) raiseError(ErrorKey::floatingPoint);
  end.go();
  switch (found.outcome) {
    case SearchOutcome::libraryMissing:
      return refuse(
          "minzs> libnlopt.so.0 of the library NLopt cannot be opened: install it "
          "(Debian: libnlopt0)");
    case SearchOutcome::notReached:
    case SearchOutcome::withoutMinimum:
      raiseError(ErrorKey::notConvergent);
      return 0.0;
    default:
      row.keep(found.place);
      return found.value;
  }
}

}  // namespace

double gradBuiltin() {
  expectChar('(');
  TrialRow row = TrialRow::read();
  expectChar(',');
  const std::string name = readResultName();
  expectChar(',');
  RowFunctions f = RowFunctions::read(FunctionForm::single, row);
  expectChar(')');
  if (!row.requireRow() || !requireDistinct({name}, {row.matrix()})) return 0.0;
  if (!requireFinite(row.start())) return 0.0;

  const TextReturn end;
  Derivatives derivatives(f, row);
  const std::vector<double> gradient = jacobian(derivatives, 1);
  if (finish(f, end, derivatives)) storeRow(name, gradient);
  return noResult();
}

double fieldBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  const bool number = builtin == builtinCode("div");
  expectChar('(');
  TrialRow row = TrialRow::read();
  expectChar(',');
  std::string name;
  if (!number) {
    name = readResultName();
    expectChar(',');
  }
  RowFunctions functions = RowFunctions::read(FunctionForm::several, row);
  expectChar(')');
  if (!row.requireRow() || !checkField(builtin, row, functions)) return 0.0;
  if (!requireDistinct({name}, {row.matrix()}) || !requireFinite(row.start())) return 0.0;

  const TextReturn end;
  Derivatives derivatives(functions, row);
  const std::vector<double> values = fieldValues(builtin, derivatives, functions.count());
  if (!finish(functions, end, derivatives)) return 0.0;
  if (number) return values.front();
  if (builtin == builtinCode("jacob"))
    storeMatrix(name, {values.data(), functions.count(), row.size()});
  else
    storeRow(name, values);
  return noResult();
}

double minzsBuiltin() {
  expectChar('(');
  TrialRow row = TrialRow::read();
  expectChar(',');
  RowFunctions f = RowFunctions::read(FunctionForm::single, row);
  DataArgument lower, upper;
  for (WordReader words({"bounds="}); words.next();) {
    expectChar(',');
    lower = readData();
    expectChar(',');
    upper = readData();
  }
  if (!row.requireRow()) return 0.0;
  std::vector<double> low, high;
  if (lower.matrix()) {
    if (!requireVectors({&lower, &upper})) return 0.0;
    low = boundsOf(lower);
    high = boundsOf(upper);
    if (low.size() != row.start().size()) raiseError(ErrorKey::ordersIncompatible);
  }
  if (row.size() > mostVariables) raiseError(ErrorKey::invalidData);
  for (std::size_t i = 0; i < low.size(); ++i)
    if (!(low[i] <= high[i])) raiseError(ErrorKey::invalidData);
  requireFinite(row.start());

  const TextReturn end;
  const SearchLimits limits{low, high, accuracyAimed(), evaluationsForEach * iterationBound(),
                            presetValue("i#")};
  const auto value = [&f](std::span<const double> at) { return f.value(0, at); };
  return finishSearch(searchMinimum(value, row.start(), limits), row, end);
}

}  // namespace vexa
