#include "graphics/surfaces/shape_geometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vexa {

namespace {

constexpr double wholeTurn = 2 * std::numbers::pi;

// Scaled to a circle, so that the ray meets the ellipse where its direction points.
double angleOfRay(const EllipseArc& arc, Point through) {
  const double dx = through.x - arc.x;
  const double dy = arc.y - through.y;
  return std::atan2(dy * std::max(arc.radiusX, 1e-9), dx * std::max(arc.radiusY, 1e-9));
}

}  // namespace

BoxOutline outlineOf(const Rect& box, const Pen& pen) {
  const Rect r = normalized(box);
  const auto width = static_cast<double>(r.width());
  const auto height = static_cast<double>(r.height());
  const double penWidth = std::max(pen.width, 1);
  double stroke = penWidth;
  double inset = 0;
  if (pen.style == PenStyle::insideFrame) {
    stroke = std::min(penWidth, std::max(1.0, std::min(width, height)));
    inset = (stroke - 1) / 2;
  }
  return {r.left + inset, r.top + inset, std::max(0.0, width - 1 - 2 * inset),
          std::max(0.0, height - 1 - 2 * inset), pen.width > 0 ? stroke : 0};
}

double EllipseArc::pointX(double angle) const { return x + radiusX * std::cos(angle); }
double EllipseArc::pointY(double angle) const { return y - radiusY * std::sin(angle); }
bool EllipseArc::isWhole() const { return sweep >= wholeTurn; }

EllipseArc arcOf(const Rect& box, Point start, Point end, const Pen& pen) {
  const BoxOutline outline = outlineOf(box, pen);
  EllipseArc arc{outline.centreX(), outline.centreY(), outline.width / 2, outline.height / 2, 0, 0};
  arc.start = angleOfRay(arc, start);
  arc.sweep = angleOfRay(arc, end) - arc.start;
  if (arc.sweep <= 0) arc.sweep += wholeTurn;
  // Rays that coincide up to rounding mean all of it.
  if (arc.sweep < 1e-9) arc.sweep = wholeTurn;
  return arc;
}

}  // namespace vexa
