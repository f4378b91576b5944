#pragma once

namespace vexa {

// `cabs` `ccos` `cexp` `cln` `csin` `csqrt` `ctan` `ptor` `rtop` (z): a new pair, but for `cabs`,
// which gives a number.
double complexFunctionBuiltin();

}  // namespace vexa
