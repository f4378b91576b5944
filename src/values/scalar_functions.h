#pragma once

namespace vexa {

// The handler of the functions of one number, each applied to a number or to every element of a
// matrix; `round` and `truncate` take a number of digits first.
double scalarFunctionBuiltin();

}  // namespace vexa
