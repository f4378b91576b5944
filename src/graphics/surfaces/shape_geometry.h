#pragma once

// Geometry that surfaces share. A logical point stands for the unit square right of and below it,
// and lines run through the middles of these squares. Surfaces with a continuous plane therefore
// move everything by half a unit; what stands here is measured in that moved frame.

#include <cstdint>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

// The middle of the stroke around a box.
struct BoxOutline {
  double left, top, width, height;
  double strokeWidth;  // 0 for one device pixel

  double centreX() const { return left + width / 2; }
  double centreY() const { return top + height / 2; }
};

// A box ends one unit before its right and lower sides. A pen inside the frame keeps within the
// box; where it is wider than the box it gets thinner, down to one unit, so that a box without
// extent is still seen as a line or a dot.
BoxOutline outlineOf(const Rect& box, const Pen& pen);

// A part of an ellipse. Angles are those of the parameter, in radians, and grow counter-clockwise
// as seen; the point at angle a is (x + radiusX cos a, y - radiusY sin a).
struct EllipseArc {
  double x, y, radiusX, radiusY;
  double start, sweep;  // sweep is above 0 and at most a whole turn

  double pointX(double angle) const;
  double pointY(double angle) const;
  double startX() const { return pointX(start); }
  double startY() const { return pointY(start); }
  double endX() const { return pointX(start + sweep); }
  double endY() const { return pointY(start + sweep); }
  bool isWhole() const;
};

// From the ray through `start` to that through `end`, both from the middle of the box.
EllipseArc arcOf(const Rect& box, Point start, Point end, const Pen& pen);

// Lines of a hatch stand so far apart.
inline constexpr int hatchSpacing = 8;

}  // namespace vexa
