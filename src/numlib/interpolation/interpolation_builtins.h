#pragma once

// `lint`, `polint`, `ratint`, `hermit` and `hermint`, which share one handler.

namespace vexa {

// lint, polint, ratint(x, y, xv) and hermint(x, y, d, name, xv) give the value at xv; hermint also
// stores the derivative in the float `name`. hermit(x, y, name) makes the slopes and gives nothing.
double interpolationBuiltin();

}  // namespace vexa
