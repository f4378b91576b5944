#include "graphics/figures/arrowhead.h"

#include <array>
#include <cmath>

#include "graphics/figures/coordinates.h"

namespace vexa {

Direction directionOf(double dx, double dy) {
  const double length = std::sqrt(dx * dx + dy * dy);
  if (!(length > 0)) return {};
  return {dx / length, dy / length};
}

Direction directionBetween(Point from, Point to) {
  return directionOf(static_cast<double>(to.x) - from.x, static_cast<double>(to.y) - from.y);
}

double headHalfWidth(std::int32_t penWidth) { return static_cast<double>(penWidth) + 1; }

double headLength(std::int32_t penWidth) { return 5 * headHalfWidth(penWidth); }

void drawArrowhead(DrawingSurface& surface, Point tip, Direction direction, std::int32_t penWidth,
                   ColorRef color, double length) {
  if (!direction.exists()) return;
  const double w = headHalfWidth(penWidth);
  const double backX = length * direction.x;
  const double backY = length * direction.y;
  const std::array corners{
      Point{truncated(tip.x + w * direction.y - backX), truncated(tip.y - w * direction.x - backY)},
      tip,
      Point{truncated(tip.x - w * direction.y - backX),
            truncated(tip.y + w * direction.x - backY)}};
  const SelectedBrush brush(surface, {BrushStyle::solid, color});
  surface.polygon(corners);
}

}  // namespace vexa
