#pragma once

// Handlers that write into the output document.

namespace vexa {

// print, debugprint
double printBuiltin();
// cprint
double cprintBuiltin();
// prtmat
double prtmatBuiltin();

}  // namespace vexa
