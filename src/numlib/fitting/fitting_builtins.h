#pragma once

// Fits of data, and smoothing.

namespace vexa {

// movingaverage(y, n, r ["same"]) makes the row r of means and gives nothing.
double movingaverageBuiltin();

}  // namespace vexa
