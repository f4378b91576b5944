#pragma once

// Expressions, evaluated from the text by recursive descent. Outside of `!` and `@` everything is
// read by the condition evaluator, which computes numbers; the value evaluator runs inside `!`
// (matrix mode) and `@` (complex mode). Both share the primary level.
//
// Inside the evaluators the current token is the first token of what is to be read on entry, and
// the first token after it on return. The entries below that say so read their first token
// themselves and put the cursor back to the delimiter.

#include "interp/interpreter_state.h"
#include "values/matrix.h"
#include "values/temporaries.h"

namespace vexa {

// What every level of the value evaluator fills: a number when no matrix is attached.
struct Value {
  double scalar = 0;
  Matrix* matrix = nullptr;
  char tempMark = 0;     // '!' for an un-named temporary that the expression owns
  bool keepFlag = true;  // cleared when the caller must free a temporary

  bool isMatrix() const { return matrix != nullptr; }
  int rows() const { return matrix ? matrix->rows() : 0; }
  int cols() const { return matrix ? matrix->cols() : 0; }
  void setScalar(double x) { *this = Value{x, nullptr, 0, true}; }
  void setTemporary(Matrix* m) { *this = Value{0, m, '!', false}; }
  void setNamed(Matrix* m) { *this = Value{0, m, 0, true}; }
};

// Frees the matrix of a value when it is a temporary.
void freeOperand(Value& value);
// The element of a matrix of exactly one element, otherwise 0.
double numberOf(const Value& value);

// One expression, as a statement or a calculator line has it: reads the first token (key 16 when
// it is missing or `;`), evaluates, requires a delimiter of "(),;}]{:" (key 34) and sets the
// cursor back to it. Assignments, `!`, `@` and `%` forms included. A temporary matrix in `result`
// is the caller's to free.
void evalExpression(Value& result);
// The same from the current token on; leaves the delimiter current instead of putting it back.
void evalExpressionFromToken(Value& result);
// The same where the current token is no `!` or `@`: a number.
double evalPlainExpressionFromToken();

// A condition expression, from the current token on; the first token after it is current then.
double evalCondition();
// Reads the first token, then as above.
inline double readCondition() {
  getToken();
  return evalCondition();
}
// "(" condition ")", as conditions of statements have it; consumes the closing parenthesis.
double readParenthesisedCondition();

// A matrix ('!') or complex ('@') expression after its mark, which is the current token or, when
// `markRead` is false, left out: then the current token is the first of the expression. The result
// is checked: a matrix (key 59), or a pair made 1 x 2 (key 46).
void evalMatrixExpression(Value& result, char mode, bool markRead);
// A complex expression as an argument: likewise, but a number is accepted as it is.
void evalComplexArgument(Value& result, bool markRead);

// Reads `[` i [`,` j] `]` with the `[` still to be read; each truncated toward zero, j is 0 when
// left out. Negative: key 91; not finite or beyond 32 bits: key 37; missing `]`: key 32.
struct Indexes {
  int i = 0, j = 0;
};
Indexes parseIndexes();
// Turns a pair into row and column (a row vector takes a single index) or raises key 37.
Indexes checkIndexes(Indexes at, int rows, int cols);
// Truncates an index or order toward zero; key `fault` when it is not finite or beyond 32 bits.
int truncateIndex(double x, ErrorKey fault);

// Switches the mode mark off for arguments, indexes, list items and bodies.
class PlainMode {
 public:
  PlainMode() : m_saved(interpreter().mode) { interpreter().mode = 0; }
  ~PlainMode() { interpreter().mode = m_saved; }
  PlainMode(const PlainMode&) = delete;
  PlainMode& operator=(const PlainMode&) = delete;

 private:
  char m_saved;
};

// Counts one level of nesting; beyond nestingLimit key 55 is raised.
class NestingGuard {
 public:
  NestingGuard() {
    if (++interpreter().nesting > nestingLimit) fail();
  }
  ~NestingGuard() { --interpreter().nesting; }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;

 private:
  static void fail();
};

}  // namespace vexa
