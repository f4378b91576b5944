#include "render/painter_surface.h"

#include <QPainterPath>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <numbers>

#include "graphics/surfaces/drawn_text.h"
#include "graphics/surfaces/far_points.h"

namespace vexa {

namespace {

// Fonts are made in this size and scaled, since sizes in pixels are whole numbers.
constexpr int fontPixels = 1000;

QColor qtColor(ColorRef color) { return {redOf(color), greenOf(color), blueOf(color)}; }

double degrees(double radians) { return radians * 180 / std::numbers::pi; }

QPointF at(Point point) { return {static_cast<double>(point.x), static_cast<double>(point.y)}; }

QPainterPath polygonPath(std::span<const Point> points) {
  QPainterPath path(at(points[0]));
  for (const Point& point : points.subspan(1)) path.lineTo(at(point));
  return path;
}

QPainterPath bezierPathOf(std::span<const Point> points) {
  QPainterPath path(at(points[0]));
  for (std::size_t i = 1; i + 2 < points.size(); i += 3)
    path.cubicTo(at(points[i]), at(points[i + 1]), at(points[i + 2]));
  return path;
}

QRectF frameOf(const BoxOutline& outline) {
  return {outline.left, outline.top, outline.width, outline.height};
}

// A box without extent is a line.
bool isFlat(const BoxOutline& outline) { return outline.width == 0 || outline.height == 0; }

QPainterPath flatPath(const BoxOutline& outline) {
  QPainterPath path({outline.left, outline.top});
  path.lineTo(outline.left + outline.width, outline.top + outline.height);
  return path;
}

QPainterPath arcPath(const EllipseArc& arc) {
  const QRectF box(arc.x - arc.radiusX, arc.y - arc.radiusY, 2 * arc.radiusX, 2 * arc.radiusY);
  QPainterPath path({arc.startX(), arc.startY()});
  path.arcTo(box, degrees(arc.start), degrees(arc.sweep));
  return path;
}

// Lines of one direction through the box, at multiples of the spacing: of x, of y, or along the
// diagonals of their sum or difference.
void addHatchLines(QPainterPath& path, BrushStyle style, const QRectF& box) {
  constexpr double step = hatchSpacing;
  const auto first = [](double from) { return std::ceil(from / step) * step; };
  switch (style) {
    case BrushStyle::horizontal:
      for (double y = first(box.top() - step / 2) + step / 2; y <= box.bottom(); y += step) {
        path.moveTo(box.left(), y);
        path.lineTo(box.right(), y);
      }
      break;
    case BrushStyle::vertical:
      for (double x = first(box.left() - step / 2) + step / 2; x <= box.right(); x += step) {
        path.moveTo(x, box.top());
        path.lineTo(x, box.bottom());
      }
      break;
    case BrushStyle::forwardDiagonal:
      for (double d = first(box.left() - box.bottom()); d <= box.right() - box.top(); d += step) {
        path.moveTo(box.top() + d, box.top());
        path.lineTo(box.bottom() + d, box.bottom());
      }
      break;
    case BrushStyle::backwardDiagonal:
      for (double d = first(box.left() + box.top()); d <= box.right() + box.bottom(); d += step) {
        path.moveTo(d - box.top(), box.top());
        path.lineTo(d - box.bottom(), box.bottom());
      }
      break;
    case BrushStyle::cross:
      addHatchLines(path, BrushStyle::horizontal, box);
      addHatchLines(path, BrushStyle::vertical, box);
      break;
    case BrushStyle::diagonalCross:
      addHatchLines(path, BrushStyle::forwardDiagonal, box);
      addHatchLines(path, BrushStyle::backwardDiagonal, box);
      break;
    case BrushStyle::solid:
    case BrushStyle::hollow:
      break;
  }
}

QString qtText(std::u32string_view text) {
  return QString::fromUcs4(text.data(), static_cast<qsizetype>(text.size()));
}

QFont fontOf(const FontDescription& description) {
  static const QStringList substitutes[] = {{"Times New Roman", "Liberation Serif", "serif"},
                                            {"Arial", "Liberation Sans", "sans-serif"},
                                            {"Courier New", "Liberation Mono", "monospace"}};
  QStringList families = substitutes[static_cast<std::size_t>(familyOf(description))];
  if (const QString face = qtText(decodeDrawnText(description.face())); !face.isEmpty())
    families.prepend(face);
  QFont font;
  font.setFamilies(families);
  font.setPixelSize(fontPixels);
  font.setBold(isBold(description));
  font.setItalic(description.italic != 0);
  font.setUnderline(description.underline != 0);
  font.setStrikeOut(description.strikeOut != 0);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

}  // namespace

PainterSurface::PainterSurface(QPainter& painter, const Target& target)
    : m_painter(painter), m_target(target), m_near(nearArea(target.paintArea)) {
  m_painter.save();
  m_painter.translate(0.5, 0.5);
  m_painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
}

PainterSurface::~PainterSurface() { m_painter.restore(); }

// What goes wrong in Qt must not reach figures, which know nothing of it.
template <class Draw>
void PainterSurface::guarded(Draw draw) {
  try {
    if (!m_failed) draw();
  } catch (const std::bad_alloc&) {
    m_failed = true;
  }
}

// A pen as wide as all that is near covers the page as wider ones do, and takes bounded time.
double PainterSurface::penWidth() const {
  return std::clamp(static_cast<double>(pen().width), 0.0, static_cast<double>(m_near.width()));
}

void PainterSurface::usePen(double width) {
  // A pen of width 0 is one device pixel wide at any scale.
  m_painter.setPen(QPen(qtColor(pen().color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void PainterSurface::stroke(const QPainterPath& path) {
  usePen(penWidth());
  m_painter.strokePath(path, m_painter.pen());
}

void PainterSurface::strokePieces(std::span<const Point> points) {
  for (const std::vector<Point>& piece : nearPieces(points, m_near)) stroke(polygonPath(piece));
}

void PainterSurface::fillAndStroke(const QPainterPath& path, double strokeWidth) {
  if (isHatch(brush().style))
    fillHatch(path);
  else if (brush().style == BrushStyle::solid)
    m_painter.fillPath(path, qtColor(brush().color));
  usePen(strokeWidth);
  m_painter.strokePath(path, m_painter.pen());
}

// As lines cut by the shape: a pattern of pixels would not scale, and print engines differ on it.
void PainterSurface::fillHatch(const QPainterPath& path) {
  if (backgroundMode() == BackgroundMode::opaque)
    m_painter.fillPath(path, qtColor(backgroundColor()));
  const Rect area = m_target.paintArea;
  const QRectF page(QPointF(area.left - 1.0, area.top - 1.0),
                    QPointF(area.right + 1.0, area.bottom + 1.0));
  const QRectF box = path.boundingRect().intersected(page);
  if (box.isEmpty()) return;
  QPainterPath lines;
  addHatchLines(lines, brush().style, box);
  m_painter.save();
  m_painter.setClipPath(path, Qt::IntersectClip);
  m_painter.strokePath(lines, QPen(qtColor(brush().color), 1, Qt::SolidLine, Qt::FlatCap));
  m_painter.restore();
}

void PainterSurface::line(Point from, Point to) {
  if (from == to) return;
  guarded([&] {
    const std::array ends{from, to};
    if (isNear(ends, m_near)) {
      usePen(penWidth());
      m_painter.drawLine(QLineF(at(from), at(to)));
    } else {
      strokePieces(ends);
    }
  });
}

void PainterSurface::polyline(std::span<const Point> points) {
  if (points.size() < 2) return;
  guarded([&] {
    if (isNear(points, m_near))
      stroke(polygonPath(points));
    else
      strokePieces(points);
  });
}

void PainterSurface::polygon(std::span<const Point> points) {
  if (points.size() < 2) return;
  guarded([&] {
    if (!isNear(points, m_near)) {
      polygon(nearPolygon(points, m_near));
      return;
    }
    QPainterPath path = polygonPath(points);
    path.closeSubpath();
    fillAndStroke(path, penWidth());
  });
}

void PainterSurface::bezier(std::span<const Point> points) {
  if (points.size() < 4) return;
  guarded([&] { stroke(bezierPathOf(points)); });
}

void PainterSurface::bezierPath(std::span<const Point> points) {
  if (points.size() < 4) return;
  guarded([&] {
    QPainterPath path = bezierPathOf(points);
    path.closeSubpath();
    fillAndStroke(path, penWidth());
  });
}

void PainterSurface::rectangle(const Rect& box) {
  guarded([&] {
    const BoxOutline outline = outlineOf(nearBox(box, m_near), pen());
    QPainterPath path;
    if (isFlat(outline))
      path = flatPath(outline);
    else
      path.addRect(frameOf(outline));
    fillAndStroke(path, outline.strokeWidth);
  });
}

void PainterSurface::roundedRectangle(const Rect& box, std::int32_t cornerWidth,
                                      std::int32_t cornerHeight) {
  guarded([&] {
    const BoxOutline outline = outlineOf(nearBox(box, m_near), pen());
    QPainterPath path;
    if (isFlat(outline))
      path = flatPath(outline);
    else
      path.addRoundedRect(frameOf(outline), std::abs(cornerWidth / 2.0),
                          std::abs(cornerHeight / 2.0));
    fillAndStroke(path, outline.strokeWidth);
  });
}

void PainterSurface::ellipse(const Rect& box) {
  guarded([&] {
    const BoxOutline outline = outlineOf(box, pen());
    QPainterPath path;
    if (isFlat(outline))
      path = flatPath(outline);
    else
      path.addEllipse(frameOf(outline));
    fillAndStroke(path, outline.strokeWidth);
  });
}

void PainterSurface::arc(const Rect& box, Point start, Point end) {
  guarded([&] {
    usePen(outlineOf(box, pen()).strokeWidth);
    m_painter.strokePath(arcPath(arcOf(box, start, end, pen())), m_painter.pen());
  });
}

void PainterSurface::chord(const Rect& box, Point start, Point end) {
  guarded([&] {
    QPainterPath path = arcPath(arcOf(box, start, end, pen()));
    path.closeSubpath();
    fillAndStroke(path, outlineOf(box, pen()).strokeWidth);
  });
}

void PainterSurface::pie(const Rect& box, Point start, Point end) {
  guarded([&] {
    const EllipseArc arc = arcOf(box, start, end, pen());
    QPainterPath path = arcPath(arc);
    path.lineTo(arc.x, arc.y);
    path.closeSubpath();
    fillAndStroke(path, outlineOf(box, pen()).strokeWidth);
  });
}

void PainterSurface::fillArea(const Rect& area, ColorRef color) {
  guarded([&] {
    m_painter.fillRect(QRectF(area.left - 0.5, area.top - 0.5, static_cast<double>(area.width()),
                              static_cast<double>(area.height())),
                       qtColor(color));
  });
}

const QFont& PainterSurface::paintFont() {
  if (m_fontMade != font()) {
    m_paintFont = fontOf(font());
    m_fontMade = font();
  }
  return m_paintFont;
}

void PainterSurface::text(Point corner, std::string_view bytes) {
  const std::u32string characters = decodeDrawnText(bytes);
  if (characters.empty()) return;
  guarded([&] {
    const FontMetrics metrics = metricsOf(font());
    const double scale = metrics.emSize / fontPixels;
    m_painter.save();
    m_painter.translate(at(corner));
    m_painter.rotate(-font().escapement / 10.0);
    if (backgroundMode() == BackgroundMode::opaque) {
      const TextExtent extent = textExtent(font(), bytes);
      m_painter.fillRect(QRectF(0, 0, extent.width, extent.height), qtColor(backgroundColor()));
    }
    m_painter.scale(scale * metrics.stretch, scale);
    m_painter.setFont(paintFont());
    m_painter.setPen(qtColor(textColor()));
    m_painter.drawText(QPointF(0, metrics.ascent / scale), qtText(characters));
    m_painter.restore();
  });
}

}  // namespace vexa
