#pragma once

// Cuts what reaches far beyond a page. Coordinates can be anything of 32 bits, but many readers of
// pictures keep less and show something else then; what is cut away lies where nobody sees it.

#include <span>
#include <vector>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

// The page with a wide margin on each side.
Rect nearArea(const Rect& page);

bool isNear(std::span<const Point> points, const Rect& area);

// The pieces of an open line that lie in the area. Cut ends are rounded to whole units.
std::vector<std::vector<Point>> nearPieces(std::span<const Point> points, const Rect& area);
// The part of a polygon that lies in the area; new edges run along its border.
std::vector<Point> nearPolygon(std::span<const Point> points, const Rect& area);
Rect nearBox(const Rect& box, const Rect& area);

}  // namespace vexa
