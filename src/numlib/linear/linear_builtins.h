// Handlers of linear systems; docs/builtins/linear.md says what a user sees of each.
#pragma once

namespace vexa {

double solveBuiltin();        // solve, symsolv
double determinantBuiltin();  // det, invert
double choleskyBuiltin();
double gaussBuiltin();
double trisolvBuiltin();
double bandfBuiltin();
double frameBuiltin();
double tmultBuiltin();
double cmultBuiltin();

}  // namespace vexa
