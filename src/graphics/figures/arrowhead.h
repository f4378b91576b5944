#pragma once

// The filled triangle at the end of lines and arcs.

#include <cstdint>

#include "graphics/surfaces/drawing_surface.h"

namespace vexa {

// A direction, of length 1, or of length 0 where there is none.
struct Direction {
  double x = 0;
  double y = 0;

  bool exists() const { return x != 0 || y != 0; }
  Direction reversed() const { return {-x, -y}; }
};

Direction directionOf(double dx, double dy);
Direction directionBetween(Point from, Point to);

// Half the width of a head, in units: one more than the pen is wide.
double headHalfWidth(std::int32_t penWidth);
// The length of a head that its line does not cut short.
double headLength(std::int32_t penWidth);

// Fills a head with its point at `tip`, with the selected pen and a solid brush of the color.
// Without a direction nothing is drawn. Corners are truncated to whole units.
void drawArrowhead(DrawingSurface& surface, Point tip, Direction direction, std::int32_t penWidth,
                   ColorRef color, double length);
inline void drawArrowhead(DrawingSurface& surface, Point tip, Direction direction,
                          std::int32_t penWidth, ColorRef color) {
  drawArrowhead(surface, tip, direction, penWidth, color, headLength(penWidth));
}

}  // namespace vexa
