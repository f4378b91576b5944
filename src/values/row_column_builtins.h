#pragma once

// `deletecol`, `deleterow`, `insertcol` and `insertrow`, which share one handler.

namespace vexa {

// deletecol, deleterow(M, i [, n]) remove n columns or rows from the i-th on; insertcol,
// insertrow(M, i [, n or X]) put n zero ones, or those of X, before the i-th. M changes for all its
// names. They give nothing.
double rowColumnBuiltin();

}  // namespace vexa
