#pragma once

// Single shapes and the range in which programs draw.

namespace vexa {

// plotline, plotrectangle, plotellipse, setpictposition.
double shapeBuiltin();
// getrange, setrange, RGB.
double rangeBuiltin();

}  // namespace vexa
