#pragma once

// Calls of user functions: arguments, parameters, the frame, the call trace and `return`.

#include <span>
#include <string_view>

#include "interp/name_pool.h"

namespace vexa {

// Calls a function whose name has just been scanned; the cursor stands before its "(" and after
// its ")" on return. The value is left in returnValue and, for `return !m;`, returnMatrix.
void callUserFunction(Symbol& function);
// A call whose arguments a built-in supplies instead of a list in the text: numbers, and matrices
// by reference. Returns the number that the call is worth. The cursor stands behind the function's
// name, where the list of frames shows the call, and stays there.
struct CallArgument {
  double value = 0;
  Matrix* matrix = nullptr;  // null for a value
};
double callUserFunction(Symbol& function, std::span<const CallArgument> arguments);
// The number that the call just finished is worth: what it returned, a matrix of one element as
// that element and any other as 0.
double returnedNumber();
// The call of `main` at the start of a run: no argument list is read.
void callMain(Symbol& function);

// The `return` statement after its keyword. Leaves the class classReturn.
void executeReturn();

// Raises what speaks against the current token as the name of a running variable: not a name key
// 36, a local key 56, a function or built-in key 21 or 18. True when it may be bound.
bool checkDummyName();
// Binds a running variable to a checked name and returns its index for CallStack::dummy; key 57
// when ten are active. The caller notes dummyCount() before and gives it to popDummies on every
// path out.
int declareDummy(std::string_view name);

}  // namespace vexa
