#pragma once

// Handlers of the built-ins that evaluate expressions again and again, and of linear programs.

namespace vexa {

double oneVariableBuiltin();  // integ, maxz1, minz1, root1
double imtegBuiltin();        // imteg
double derivBuiltin();        // deriv
double seriesBuiltin();       // series
double simplxBuiltin();       // simplx

}  // namespace vexa
