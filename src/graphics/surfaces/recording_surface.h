#pragma once

// A surface that writes down what is drawn on it, one line of text for each primitive, with the
// pen, brush or font that it is drawn with. Tests read pens, brushes and points there, in order.

#include <string>
#include <vector>

#include "graphics/surfaces/drawing_surface.h"

namespace vexa {

class RecordingSurface : public DrawingSurface {
 public:
  // What the surface answers when asked.
  struct Target {
    Rect paintArea{0, 0, 1390, 1800};
    bool printing = false;
    std::int32_t pixelsPerInch = 96;
    bool canMakeFonts = true;
  };

  RecordingSurface() = default;
  explicit RecordingSurface(const Target& target) : m_target(target) {}

  // For instance "line 0,0 10,5 pen solid 1 8080FF".
  const std::vector<std::string>& lines() const { return m_lines; }
  // All lines, each with a line end.
  std::string listing() const;

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

  Rect paintArea() const override { return m_target.paintArea; }
  bool printing() const override { return m_target.printing; }
  std::int32_t pixelsPerInch() const override { return m_target.pixelsPerInch; }
  bool canMakeFont(const FontDescription&) const override { return m_target.canMakeFonts; }

 private:
  void stroke(std::string_view name, std::span<const Point> points);
  void area(std::string_view name, std::span<const Point> points);

  Target m_target;
  std::vector<std::string> m_lines;
};

}  // namespace vexa
