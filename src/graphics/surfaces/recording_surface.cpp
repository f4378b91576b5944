#include "graphics/surfaces/recording_surface.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace vexa {

namespace {

std::string colorText(ColorRef color) {
  std::array<char, 12> digits{};
  std::snprintf(digits.data(), digits.size(), " %06X", static_cast<unsigned>(color));
  return digits.data();
}

std::string pointsText(std::span<const Point> points) {
  std::string text;
  for (const Point& p : points) text += " " + std::to_string(p.x) + "," + std::to_string(p.y);
  return text;
}

std::string penText(const Pen& pen) {
  return std::string(" pen ") + (pen.style == PenStyle::solid ? "solid " : "frame ") +
         std::to_string(pen.width) + colorText(pen.color);
}

std::string brushText(const Brush& brush) {
  static constexpr std::array<std::string_view, 8> names{
      "horizontal", "vertical", "fdiagonal", "bdiagonal", "cross", "dcross", "solid", "hollow"};
  std::string text = " brush " + std::string(names[static_cast<std::size_t>(brush.style)]);
  return brush.style == BrushStyle::hollow ? text : text + colorText(brush.color);
}

std::array<Point, 2> cornersOf(const Rect& box) {
  return {Point{box.left, box.top}, Point{box.right, box.bottom}};
}

std::array<Point, 4> arcPoints(const Rect& box, Point start, Point end) {
  return {Point{box.left, box.top}, Point{box.right, box.bottom}, start, end};
}

}  // namespace

std::string RecordingSurface::listing() const {
  std::string text;
  for (const std::string& line : m_lines) text += line + "\n";
  return text;
}

void RecordingSurface::stroke(std::string_view name, std::span<const Point> points) {
  m_lines.push_back(std::string(name) + pointsText(points) + penText(pen()));
}

void RecordingSurface::area(std::string_view name, std::span<const Point> points) {
  m_lines.push_back(std::string(name) + pointsText(points) + penText(pen()) + brushText(brush()));
}

void RecordingSurface::line(Point from, Point to) { stroke("line", std::array{from, to}); }

void RecordingSurface::polyline(std::span<const Point> points) { stroke("polyline", points); }

void RecordingSurface::bezier(std::span<const Point> points) { stroke("bezier", points); }

void RecordingSurface::arc(const Rect& box, Point start, Point end) {
  stroke("arc", arcPoints(box, start, end));
}

void RecordingSurface::polygon(std::span<const Point> points) { area("polygon", points); }

void RecordingSurface::bezierPath(std::span<const Point> points) { area("path", points); }

void RecordingSurface::rectangle(const Rect& box) { area("rectangle", cornersOf(box)); }

void RecordingSurface::roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                                        std::int32_t cornerHeight) {
  area("round " + std::to_string(cornerWidth) + "x" + std::to_string(cornerHeight), cornersOf(box));
}

void RecordingSurface::ellipse(const Rect& box) { area("ellipse", cornersOf(box)); }

void RecordingSurface::chord(const Rect& box, Point start, Point end) {
  area("chord", arcPoints(box, start, end));
}

void RecordingSurface::pie(const Rect& box, Point start, Point end) {
  area("pie", arcPoints(box, start, end));
}

void RecordingSurface::fillArea(const Rect& area, ColorRef color) {
  m_lines.push_back("fill" + pointsText(cornersOf(area)) + colorText(color));
}

void RecordingSurface::text(Point corner, std::string_view bytes) {
  m_lines.push_back("text" + pointsText(std::array{corner}) + " \"" + std::string(bytes) + "\"" +
                    colorText(textColor()) + " font " + std::to_string(font().height) + " " +
                    std::string(font().face()) +
                    (backgroundMode() == BackgroundMode::opaque ? " opaque" : ""));
}

}  // namespace vexa
