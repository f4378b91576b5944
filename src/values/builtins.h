#pragma once

// The built-in table and the call. A handler takes no parameters, reads its own arguments from the
// text with the readers of argument_readers.h, and returns the call's number. Names that share a
// handler are told apart by currentBuiltin, which a handler copies before it reads arguments,
// because arguments call built-ins too.

#include <span>
#include <string_view>

#include "values/builtin_names.h"
#include "values/evaluator.h"

namespace vexa {

using Handler = double (*)();

struct BuiltinEntry {
  std::string_view name;
  Handler handler;
};

// The 240 rows in their order.
std::span<const BuiltinEntry> builtinTable();
// How many different handlers the table's groups call for, later families included.
int builtinGroupCount();
// Names whose family is still to come; each is served by a handler that says so.
bool builtinAvailable(int row);

// Calls the built-in of a row, its name being the current token: clears the result slot, sets
// currentBuiltin and runs the handler. Returns the number; a matrix result stands in
// builtinResultMatrix. The cursor is after the closing parenthesis then.
double callBuiltin(int row);

// Hands a matrix back as the value of the call: a temporary from newTempMatrix, or a variable's.
inline void setBuiltinResult(Matrix* matrix) { interpreter().builtinResultMatrix = matrix; }

// For a handler with nothing to return: `return noResult();` gives 0 and sets the no-echo mark, so
// that the call used as a calculator line shows nothing. Call it after the arguments are read.
inline double noResult() {
  interpreter().noEcho = true;
  return 0.0;
}

}  // namespace vexa
