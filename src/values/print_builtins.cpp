#include "values/print_builtins.h"

#include <cmath>

#include "interp/interpreter_state.h"
#include "values/argument_readers.h"
#include "values/evaluator_parts.h"
#include "values/printing.h"

namespace vexa {

namespace {

constexpr double largestPrintLimit = 32000;

// "(" [ "~" ] items ")"
void printList(bool complexValues) {
  expectChar('(');
  PrintStyle style;
  style.complexValues = complexValues;
  if (nextCharacter() == '~') {
    getToken();
    style.alternate = true;
  }
  printItems(nullptr, style);
}

}  // namespace

double printBuiltin() {
  const InterpreterState& state = interpreter();
  if (state.currentBuiltin == builtinCode("debugprint") && !state.debug)
    skipGroup('(');
  else
    printList(false);
  return noResult();
}

double cprintBuiltin() {
  printList(true);
  return noResult();
}

double prtmatBuiltin() {
  expectChar('(');
  const double n = evalScalarArg();
  expectChar(')');
  int limit = 0;
  if (n >= largestPrintLimit)
    limit = static_cast<int>(largestPrintLimit);
  else if (n > 0)
    limit = static_cast<int>(std::ceil(n));
  interpreter().matrixPrintLimit = limit;
  return n;
}

}  // namespace vexa
