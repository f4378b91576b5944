#pragma once

// Draws with a painter of Qt: pictures of the command line, and the screen and printer of a
// desktop.

#include <QFont>
#include <QPainter>
#include <optional>

#include "graphics/surfaces/drawing_surface.h"
#include "graphics/surfaces/shape_geometry.h"

class QPainterPath;

namespace vexa {

class PainterSurface : public DrawingSurface {
 public:
  struct Target {
    Rect paintArea;
    bool printing = false;
    std::int32_t pixelsPerInch = 96;
  };

  // The painter's coordinates are logical units; it must be active, outlives this and gets its
  // former state back.
  PainterSurface(QPainter& painter, const Target& target);
  ~PainterSurface() override;

  // Memory was used up while something was drawn.
  bool failed() const { return m_failed; }

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

 private:
  template <class Draw>
  void guarded(Draw draw);
  void stroke(const QPainterPath& path);
  void strokePieces(std::span<const Point> points);
  void fillAndStroke(const QPainterPath& path, double strokeWidth);
  void fillHatch(const QPainterPath& path);
  double penWidth() const;
  void usePen(double width);
  const QFont& paintFont();

  QPainter& m_painter;
  Target m_target;
  Rect m_near;  // see far_points.h
  bool m_failed = false;
  std::optional<FontDescription> m_fontMade;
  QFont m_paintFont;
};

}  // namespace vexa
