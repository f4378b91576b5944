#pragma once

// Calls of user functions: arguments, parameters, the frame, the call trace and `return`.

#include "interp/name_pool.h"

namespace vexa {

// Calls a function whose name has just been scanned; the cursor stands before its "(" and after
// its ")" on return. The value is left in returnValue and, for `return !m;`, returnMatrix.
void callUserFunction(Symbol& function);
// The call of `main` at the start of a run: no argument list is read.
void callMain(Symbol& function);

// The `return` statement after its keyword. Leaves the class classReturn.
void executeReturn();

// Binds a running variable of a built-in to the name that is the current token, and returns its
// index for CallStack::dummy. Keys 36, 56, 57; 21 or 18 for a function or built-in. The caller
// notes dummyCount() before and gives it to popDummies on every path out.
int declareDummy();

}  // namespace vexa
