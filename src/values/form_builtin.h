#pragma once

namespace vexa {

// inform: a form with one field for each variable.
double informBuiltin();

}  // namespace vexa
