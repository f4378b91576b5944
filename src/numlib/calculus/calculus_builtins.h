#pragma once

// Handlers of the built-ins that evaluate expressions again and again, and of linear programs.

namespace vexa {

double oneVariableBuiltin();  // integ, maxz1, minz1, root1
double imtegBuiltin();        // imteg
double derivBuiltin();        // deriv
double seriesBuiltin();       // series
double simplxBuiltin();       // simplx

double gradBuiltin();     // grad
double fieldBuiltin();    // div, curl, jacob
double minzsBuiltin();    // minzs
double odesintBuiltin();  // odesint

}  // namespace vexa
