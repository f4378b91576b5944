#pragma once

// Interpolation in tables of points, and look-up.

namespace vexa {

// lint, polint, ratint(x, y, xv) and hermint(x, y, d, name, xv) give the value at xv; hermint also
// stores the derivative in the float `name`. hermit(x, y, name) makes the slopes and gives nothing.
double interpolationBuiltin();

// spline(x, y, m [, words]) makes the second derivatives m and gives nothing; splint(x, y, m, xv
// [, word]) gives a quantity of the spline, element by element of xv.
double splineBuiltin();

// lookup(x, xv) and lookup(x, y, xv): the place in an ordered table, the entry that belongs to it.
double lookupBuiltin();

}  // namespace vexa
