#pragma once

// Draws an SVG 1.1 picture. Its user units are the drawing's logical units, text stays text, and
// hatches are patterns. Neighbours with the same pen and fill share a group, which keeps large
// drawings small.
//
// Text has no background, as figures write it.

#include <map>
#include <string>
#include <string_view>
#include <tuple>

#include "graphics/surfaces/drawing_surface.h"
#include "graphics/surfaces/picture_page.h"
#include "graphics/surfaces/shape_geometry.h"

namespace vexa {

class SvgSurface : public DrawingSurface {
 public:
  explicit SvgSurface(const PicturePage& page);

  // The whole file.
  std::string document() const;

  void line(Point from, Point to) override;
  void polyline(std::span<const Point> points) override;
  void bezier(std::span<const Point> points) override;
  void arc(const Rect& box, Point start, Point end) override;
  void polygon(std::span<const Point> points) override;
  void bezierPath(std::span<const Point> points) override;
  void rectangle(const Rect& box) override;
  void roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                        std::int32_t cornerHeight) override;
  void ellipse(const Rect& box) override;
  void chord(const Rect& box, Point start, Point end) override;
  void pie(const Rect& box, Point start, Point end) override;
  void fillArea(const Rect& area, ColorRef color) override;
  void text(Point corner, std::string_view bytes) override;
  Rect paintArea() const override { return m_page.area(); }

 private:
  using HatchKey = std::tuple<BrushStyle, ColorRef, std::int64_t>;

  void openGroup(const std::string& attributes);
  void beginStroke();
  void beginShape();
  void element(std::string_view name, std::string_view attributes);
  void path(std::string_view data);
  void points(std::string_view name, std::span<const Point> points);
  void rectangleElement(const BoxOutline& outline, double radiusX, double radiusY);
  std::string strokeWidthOf(const BoxOutline& outline) const;
  std::string fillOf(const Brush& brush);
  std::string hatchName(const Brush& brush);

  PicturePage m_page;
  Rect m_near;  // see far_points.h
  std::string m_body;
  std::string m_group;  // attributes of the group that is open; empty for none
  std::string m_patterns;
  std::map<HatchKey, std::string> m_hatches;
};

}  // namespace vexa
