#pragma once

// What the two evaluators share with each other and with the readers of arguments.

#include <string_view>
#include <vector>

#include "values/evaluator.h"

namespace vexa {

void refuseOperand();
void refuseName();
// Reads the token after a binary or unary operator; a closing parenthesis there raises key 60.
inline void nextOperand(const InterpreterState& state) {
  getToken();
  if (state.scanner.tokenChar == ')') [[unlikely]]
    refuseOperand();
}
// Takes the token after a primary; a name there is put back and raises key 62.
inline void endPrimary() {
  if (getToken() == TOKEN_NAME) [[unlikely]]
    refuseName();
}
// A condition's primary: number, name, element, call, parenthesised condition.
double conditionPrimary(InterpreterState& state);

// The matrix that the name of a symbol stands for here, or null.
Matrix* matrixOf(const Symbol& symbol);
// The first character of the next token, without reading it.
char nextCharacter();
// Past the matching bracket of the one at `at`; raises the error of the missing one.
const char* passGroup(const char* at);
// What follows a name, white space and comments passed over: whether it is a single `=`.
bool isAssignmentSign(const char* at);

// One index after the opening bracket or a comma; the token after it is current then. Negative ones
// raise key 91, others that are no whole number of 32 bits key 37.
int readIndex();
// Indexes with the `[` as the current token; the cursor is after the `]` on return.
Indexes parseIndexesFromBracket();
// Raises with the name that began at `name` as the cited token.
void raiseAtName(ErrorKey key, const char* name);

// Stores a number under a plain name (`symbol` may be null for an unknown one) and returns it as
// stored; key 32 for a matrix, 58 where no global may be made.
double assignScalar(std::string_view name, Symbol* symbol, double x);
// Stores a number as an element; the target is looked up and its range checked now.
double assignElement(Symbol* symbol, Indexes at, double x);

// One item of a data list from the current token on, appended; the token after it is current then.
void appendListItem(std::vector<double>& values);

}  // namespace vexa
