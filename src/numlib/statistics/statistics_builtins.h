#pragma once

namespace vexa {

// count, max, mean, min, stdv, summat: all moments of a matrix, a row or a column, left in the
// preset globals; the call's number is the one that its name asks for.
double statisticsBuiltin();

// correlation, ftest, studente, studentp, studentu(x, y [, p]): the statistic; its significance
// goes to the float p.
double significanceBuiltin();

}  // namespace vexa
