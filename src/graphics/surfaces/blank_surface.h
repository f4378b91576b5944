#pragma once

// A surface that takes every stroke and keeps nothing of it, for trials and timings of paints.

#include "graphics/surfaces/drawing_surface.h"

namespace vexa {

class BlankSurface : public DrawingSurface {
 public:
  void line(Point, Point) override {}
  void polyline(std::span<const Point>) override {}
  void bezier(std::span<const Point>) override {}
  void arc(const Rect&, Point, Point) override {}
  void polygon(std::span<const Point>) override {}
  void bezierPath(std::span<const Point>) override {}
  void rectangle(const Rect&) override {}
  void roundedRectangle(const Rect&, std::int32_t, std::int32_t) override {}
  void ellipse(const Rect&) override {}
  void chord(const Rect&, Point, Point) override {}
  void pie(const Rect&, Point, Point) override {}
  void fillArea(const Rect&, ColorRef) override {}
  void text(Point, std::string_view) override {}
  Rect paintArea() const override { return {0, 0, 1390, 1800}; }
};

}  // namespace vexa
