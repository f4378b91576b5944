#pragma once

// What figures draw on: the one interface behind pictures, screen, printer and metafile.
//
// A surface has a state (pen, brush, font, colors of text and background) that holds until it is
// set again, and primitives that draw with it. A new surface has a black solid pen of width 1, a
// hollow brush, the font of a new drawing, black text and an opaque white background. Figures put
// back what they have set (see SelectedPen and its like), so the order in which they are drawn does
// not matter to anything but what lies on top.
//
// Coordinates and sizes are logical units; how they become pixels or millimeters is the surface's
// own business. Any 32-bit coordinates may come, points may coincide, and spans may be empty: a
// surface draws nothing then. A surface that meets trouble with its target keeps it to itself until
// whoever made the surface asks.

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

enum class BackgroundMode { transparent, opaque };

class DrawingSurface {
 public:
  DrawingSurface() = default;
  DrawingSurface(const DrawingSurface&) = delete;
  DrawingSurface& operator=(const DrawingSurface&) = delete;
  virtual ~DrawingSurface() = default;

  // The state. Each call gives back what was set before.
  Pen setPen(const Pen& pen) { return std::exchange(m_pen, pen); }
  Brush setBrush(const Brush& brush) { return std::exchange(m_brush, brush); }
  FontDescription setFont(const FontDescription& font) { return std::exchange(m_font, font); }
  ColorRef setTextColor(ColorRef color) { return std::exchange(m_textColor, color); }
  ColorRef setBackgroundColor(ColorRef color) { return std::exchange(m_backgroundColor, color); }
  BackgroundMode setBackgroundMode(BackgroundMode mode) {
    return std::exchange(m_backgroundMode, mode);
  }

  const Pen& pen() const { return m_pen; }
  const Brush& brush() const { return m_brush; }
  const FontDescription& font() const { return m_font; }
  ColorRef textColor() const { return m_textColor; }
  // In opaque mode the gaps of a hatch and the cells of a text are painted with the color first.
  ColorRef backgroundColor() const { return m_backgroundColor; }
  BackgroundMode backgroundMode() const { return m_backgroundMode; }

  // Lines, drawn with the pen.
  virtual void line(Point from, Point to) = 0;
  virtual void polyline(std::span<const Point> points) = 0;
  // Piecewise cubic: a start, then two control points and an end for each piece. Points beyond the
  // last whole piece are left out.
  virtual void bezier(std::span<const Point> points) = 0;
  // The part of the ellipse in the box that runs counter-clockwise from the ray through `start` to
  // the ray through `end`, both from the box's center; the whole ellipse when the rays coincide.
  virtual void arc(const Rect& box, Point start, Point end) = 0;

  // Areas, filled with the brush (alternate rule) and then outlined with the pen.
  virtual void polygon(std::span<const Point> points) = 0;
  // A path along a Bezier curve, closed by a straight line.
  virtual void bezierPath(std::span<const Point> points) = 0;
  virtual void rectangle(const Rect& box) = 0;
  // The corners are quarters of an ellipse as wide and as high as given (magnitudes count).
  virtual void roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                                std::int32_t cornerHeight) = 0;
  virtual void ellipse(const Rect& box) = 0;
  // The arc, closed by its chord or by the lines to the center.
  virtual void chord(const Rect& box, Point start, Point end) = 0;
  virtual void pie(const Rect& box, Point start, Point end) = 0;

  // An area in one color, without an outline.
  virtual void fillArea(const Rect& area, ColorRef color) = 0;

  // Bytes (UTF-8 when they are valid UTF-8, otherwise Windows-1252) in the text font, the top left
  // corner of the first cell at `corner`, turned around it by the font's escapement.
  virtual void text(Point corner, std::string_view bytes) = 0;

  // The area to paint: what lies outside need not be drawn.
  virtual Rect paintArea() const = 0;
  // A printer's page. Pictures in files are no print: their colors stay.
  virtual bool printing() const { return false; }
  // Vertical pixels in an inch of the target, by which fonts given in points are sized.
  virtual std::int32_t pixelsPerInch() const { return 96; }
  // Whether the target can make such a font; a face that is missing is no reason to refuse.
  virtual bool canMakeFont(const FontDescription&) const { return true; }

 private:
  Pen m_pen;
  Brush m_brush;
  FontDescription m_font;
  ColorRef m_textColor = black;
  ColorRef m_backgroundColor = white;
  BackgroundMode m_backgroundMode = BackgroundMode::opaque;
};

// A pen, or a brush, that is selected while the object lives.
class SelectedPen {
 public:
  SelectedPen(DrawingSurface& surface, const Pen& pen)
      : m_surface(surface), m_previous(surface.setPen(pen)) {}
  SelectedPen(const SelectedPen&) = delete;
  SelectedPen& operator=(const SelectedPen&) = delete;
  ~SelectedPen() { m_surface.setPen(m_previous); }

 private:
  DrawingSurface& m_surface;
  Pen m_previous;
};

class SelectedBrush {
 public:
  SelectedBrush(DrawingSurface& surface, const Brush& brush)
      : m_surface(surface), m_previous(surface.setBrush(brush)) {}
  SelectedBrush(const SelectedBrush&) = delete;
  SelectedBrush& operator=(const SelectedBrush&) = delete;
  ~SelectedBrush() { m_surface.setBrush(m_previous); }

 private:
  DrawingSurface& m_surface;
  Brush m_previous;
};

}  // namespace vexa
