#include <cmath>
#include <cstddef>
#include <span>
#include <utility>

#include "interp/interpreter_state.h"
#include "numlib/interpolation/interpolation_builtins.h"
#include "numlib/interpolation/point_tables.h"
#include "values/evaluator_parts.h"
#include "values/numeric_arguments.h"

namespace vexa {

namespace {

// The arguments behind the table: the value sought, and before it, in the longer form, the entries.
struct Request {
  DataArgument entries;
  bool givesEntry = false;
  ElementwiseNumber value;
};

// Whether a matrix name follows that stands for a matrix, a row or a column and is not the last
// argument, or the mark of absolute values; it stays unread.
bool entriesFollow() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.operatorCode() == OP_OR) {
    rescanToken();
    return true;
  }
  const bool matrix = scanner.tokenType == TOKEN_NAME && findMatrix(scanner.tokenText);
  const char next = nextCharacter();
  rescanToken();
  return matrix && (next == ',' || next == '(' || next == '{');
}

void readValueBehindEntries(Request& request) {
  request.givesEntry = true;
  request.value = readElementwise();
  expectChar(')');
}

Request readRequest() {
  Request request;
  if (entriesFollow()) {
    request.entries = readData();
    expectChar(',');
    readValueBehindEntries(request);
  } else if (nextCharacter() == '!') {
    // Only what follows tells whether the expression is a value or a table.
    MatrixReference expression;
    expression.matrix = readMatrix();
    if (moreArguments()) {
      request.entries = DataArgument(std::move(expression));
      readValueBehindEntries(request);
    } else {
      request.value = ElementwiseNumber(std::move(expression.matrix));
    }
  } else {
    request.value = readElementwise();
    expectChar(')');
  }
  return request;
}

}  // namespace

double lookupBuiltin() {
  expectChar('(');
  DataArgument table = readData();
  expectChar(',');
  Request request = readRequest();
  if (!requireVectors({&table, request.givesEntry ? &request.entries : &table})) return 0.0;
  const std::span<const double> x = table.elements();
  const auto y = request.givesEntry ? request.entries.elements() : std::span<const double>{};
  return applyElementwise({&request.value, 1}, [&](std::span<const double> arguments) {
    if (!requireFinite(arguments)) return 0.0;
    const std::size_t place = placeInTable(x, arguments[0]);
    if (!request.givesEntry) return static_cast<double>(place);
    if (place == 0) return refuse("lookup> value lies before the table");
    return requireFinite({&y[place - 1], 1}) ? y[place - 1] : 0.0;
  });
}

}  // namespace vexa
