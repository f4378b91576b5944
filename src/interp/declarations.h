#pragma once

// Declaration statements; the cursor stands at the type word and after the `;` on return.

#include <string_view>

#include "interp/name_pool.h"

namespace vexa {

// Whether a token class is one of the five type words.
bool isTypeWord(int tokenClass);

// Inside a function body: one record on the locals stack for each declared name.
void executeLocalDeclaration();
// At the top level: global variables in the name table.
void executeGlobalDeclaration();

// Raises the name conflict (keys 17, 18, 19 or 21) of a name that the table knows; outside an
// evaluation the message is shown instead. True when the name is free.
bool checkNewName(std::string_view name);
// The same for names that may hide a global variable.
void checkConflicts(std::string_view name, bool globalsAllowed);
// Raises the conflict of a reserved word (key 17), user function (21) or built-in (18); a global
// variable is accepted, any other category shows " Error in Category".
void reportCategory(const Symbol& symbol);
// A global matrix by name: existing, or new, 1 x 1 and zero, after checkNewName. A global float
// raises key 51 and gives null. Locals of the name do not count.
Symbol* makeGlobalMatrix(std::string_view name);
// A float by name: existing, or new after checkNewName. A matrix raises key 69 and gives null.
Symbol* makeFloat(std::string_view name);

}  // namespace vexa
