#pragma once

// Fits of data, and smoothing.

namespace vexa {

// lfit(x, y, a [, n] [, words]) fits a polynomial or, for a matrix x, its columns; lcfit(t, x, y,
// a, f1 {, f} [, words]) expressions in t. Both make the row a and are worth the residual standard
// deviation.
double lfitBuiltin();
double lcfitBuiltin();

// movingaverage(y, n, r ["same"]) makes the row r of means and gives nothing.
double movingaverageBuiltin();

}  // namespace vexa
