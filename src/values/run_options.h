#pragma once

// Handlers that change how a program runs, or act on variables as such.

namespace vexa {

// useoption
double useoptionBuiltin();
// delete
double deleteBuiltin();
// exec
double execBuiltin();

}  // namespace vexa
