#pragma once

namespace vexa {

// gausspt(n, x, w [, a, b]) and gausspt(n, x, w, "family"): creates the rows x of nodes and w of
// weights. Gives nothing.
double gaussptBuiltin();

}  // namespace vexa
