#include "numlib/interpolation/interpolation_builtins.h"

#include <optional>
#include <string>

#include "interp/errors.h"
#include "interp/interpreter_state.h"
#include "numlib/interpolation/hermite.h"
#include "numlib/interpolation/point_tables.h"
#include "numlib/linear/linear_common_builtins.h"
#include "values/argument_readers.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

constexpr std::string_view notAscending = "x-values must be unique and in ascending order";

struct TableArguments {
  MatrixArgument x, y;

  PointTable points() const { return {x->elements(), y->elements()}; }
};

bool checkTable(const TableArguments& table) {
  const Matrix& x = *table.x;
  const Matrix& y = *table.y;
  if (x.rows() != 1 || y.rows() != 1 || x.cols() != y.cols()) {
    raiseError(ErrorKey::ordersIncompatible);
    return false;
  }
  if (x.cols() >= 2) return true;
  refuse("Too few data points for interpolation");
  return false;
}

bool checkSlopes(const TableArguments& table, const MatrixArgument& d) {
  if (d->rows() == 1 && d->cols() == table.x->cols()) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

// xv and the closing parenthesis. The expression may have called a function that gave x or y a new
// order, so the table is checked once more.
std::optional<double> readPosition(const TableArguments& table) {
  expectChar(',');
  const double at = evalScalarArg();
  expectChar(')');
  if (!checkTable(table)) return std::nullopt;
  return at;
}

double hermit(const TableArguments& table) {
  expectChar(',');
  const std::string name = readResultName();
  const Matrix* const known = findMatrix(name);
  if (known && (known == table.x.get() || known == table.y.get())) {
    raiseError(ErrorKey::conflictsWithParameter, name);
    return 0.0;
  }
  expectChar(')');
  const PointTable points = table.points();
  if (!strictlyIncreasing(points.x)) return refuse("x-data must be in increasing values");
  Matrix& d = resultMatrix(name);
  redefineMatrix(d, 1, table.x->cols());
  monotoneSlopes(points, d.elements());
  return noResult();
}

double hermint(const TableArguments& table) {
  expectChar(',');
  const MatrixArgument d = readMatrix();
  if (d.get() == table.x.get() || d.get() == table.y.get()) {
    raiseError(ErrorKey::conflictsWithParameter, std::string(interpreter().scanner.tokenText));
    return 0.0;
  }
  if (!checkSlopes(table, d)) return 0.0;
  expectChar(',');
  const ScalarTarget derivative = readScalarName();
  const auto at = readPosition(table);
  if (!at || !checkSlopes(table, d)) return 0.0;
  const auto result = interpolateHermite(table.points(), d->elements(), *at);
  if (!result) return refuse(notAscending);
  derivative.store(result->derivative);
  return result->value;
}

}  // namespace

double interpolationBuiltin() {
  const int builtin = interpreter().currentBuiltin;
  TableArguments table;
  expectChar('(');
  table.x = readMatrix();
  expectChar(',');
  table.y = readMatrix();
  if (!checkTable(table)) return 0.0;
  if (builtin == builtinCode("hermit")) return hermit(table);
  if (builtin == builtinCode("hermint")) return hermint(table);

  const auto at = readPosition(table);
  if (!at) return 0.0;
  if (builtin == builtinCode("ratint")) return interpolateRational(table.points(), *at, askUser);
  const bool linear = builtin == builtinCode("lint");
  const auto value = linear ? interpolateLinear(table.points(), *at)
                            : interpolatePolynomial(table.points(), *at, askUser);
  return value ? *value : refuse(linear ? notAscending : "x-values must be unique");
}

}  // namespace vexa
