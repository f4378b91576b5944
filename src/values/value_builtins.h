#pragma once

// Handlers that make, change and describe variables.

namespace vexa {

// defmat, defsym
double defmatBuiltin();
// zero, unit, zeronew, resizemat
double orderBuiltin();
// subop
double subopBuiltin();
// nrow, ncol
double sizeBuiltin();
// mantissa
double mantissaBuiltin();
// tofraction
double tofractionBuiltin();
// str2val, val2str
double conversionBuiltin();
// isvar, which shares its handler with the messages: what a name stands for, as a number.
double isvarBuiltin();

}  // namespace vexa
