#include "graphics/figures/curves.h"

#include <cmath>
#include <span>

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/arrowhead.h"
#include "graphics/figures/coordinates.h"

namespace vexa {

namespace {

Point moved(Point p, std::int32_t dx, std::int32_t dy) {
  return {saturated(std::int64_t{p.x} + dx), saturated(std::int64_t{p.y} + dy)};
}

void movePoints(std::span<Point> points, std::int32_t dx, std::int32_t dy) {
  for (Point& p : points) p = moved(p, dx, dy);
}

void stretchPoints(std::span<Point> points, const Rect& box, std::int32_t dx, std::int32_t dy) {
  for (Point& p : points) p = remapped(p, box, dx, dy);
}

// The count stands between the two words of the fill.
void serializePoints(DrawingArchive& archive, std::int32_t& fillStyle, ColorRef& fillColor,
                     std::vector<Point>& points) {
  archive.word(fillStyle);
  auto count = static_cast<std::int32_t>(points.size());
  archive.word(count);
  archive.word(fillColor);
  archive.points(points, count);
}

}  // namespace

CPolygon::CPolygon(const CMiniDrawDoc& document, Point first, Point second, std::size_t pointCount)
    : CFigure(FigureType::polygon, document, first, second),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor),
      m_Points(pointCount) {}

const RuntimeClass& CPolygon::GetRuntimeClass() const { return runtimeClass(FigureType::polygon); }

void CPolygon::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  serializePoints(archive, m_FillStyle, m_FillColor, m_Points);
}

void CPolygon::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  if (m_FillStyle == fillNone)
    surface.polyline(m_Points);
  else
    surface.polygon(m_Points);
}

void CPolygon::Offset(std::int32_t dx, std::int32_t dy) {
  CFigure::Offset(dx, dy);
  movePoints(m_Points, dx, dy);
}

void CPolygon::Inflate(std::int32_t dx, std::int32_t dy) {
  stretchPoints(m_Points, box(), dx, dy);
  CFigure::Inflate(dx, dy);
}

CFigure& CPolygon::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CBezier::CBezier(const CMiniDrawDoc& document, Point first, Point second, std::size_t pointCount)
    : CFigure(FigureType::bezier, document, first, second),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor),
      m_Points(pointCount) {}

const RuntimeClass& CBezier::GetRuntimeClass() const { return runtimeClass(FigureType::bezier); }

void CBezier::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  serializePoints(archive, m_FillStyle, m_FillColor, m_Points);
}

void CBezier::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  if (m_FillStyle == fillNone)
    surface.bezier(m_Points);
  else
    surface.bezierPath(m_Points);
}

void CBezier::Offset(std::int32_t dx, std::int32_t dy) {
  CFigure::Offset(dx, dy);
  movePoints(m_Points, dx, dy);
}

void CBezier::Inflate(std::int32_t dx, std::int32_t dy) {
  stretchPoints(m_Points, box(), dx, dy);
  CFigure::Inflate(dx, dy);
}

CFigure& CBezier::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CPie::CPie(const CMiniDrawDoc& document, Point first, Point second, Point start, Point end,
           char arrow, char kind)
    : CFigure(FigureType::pie, document, first, second),
      m_XStart(start.x),
      m_YStart(start.y),
      m_XEnd(end.x),
      m_YEnd(end.y),
      m_Arrow(arrow),
      m_Kind(kind),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor) {}

const RuntimeClass& CPie::GetRuntimeClass() const { return runtimeClass(FigureType::pie); }

void CPie::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.word(m_FillStyle);
  archive.word(m_FillColor);
  archive.word(m_XStart);
  archive.word(m_YStart);
  archive.word(m_XEnd);
  archive.word(m_YEnd);
  archive.byte(m_Arrow);
  archive.byte(m_Kind);
}

void CPie::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  const Point start{m_XStart, m_YStart};
  const Point end{m_XEnd, m_YEnd};
  switch (m_Kind) {
    case 'A':
      surface.arc(box(), start, end);
      break;
    case 'P':
      surface.pie(box(), start, end);
      break;
    default:
      surface.chord(box(), start, end);
  }
  if (m_Arrow != 0) drawHead(surface);
}

// The head's point lies where the ray meets the ellipse: at the parameter angle phi of the radial
// point, with the half-axes a and b; it looks along the tangent there.
void CPie::drawHead(DrawingSurface& surface) const {
  const double centerX = (static_cast<double>(m_X1) + m_X2) / 2;
  const double centerY = (static_cast<double>(m_Y1) + m_Y2) / 2;
  const double a = std::abs(static_cast<double>(m_X2) - m_X1) / 2;
  const double b = std::abs(static_cast<double>(m_Y2) - m_Y1) / 2;
  if (a == 0 || b == 0) return;
  const bool atStart = m_Arrow == 2;
  const Direction radius = directionOf(((atStart ? m_XStart : m_XEnd) - centerX) / a,
                                       (centerY - (atStart ? m_YStart : m_YEnd)) / b);
  if (!radius.exists()) return;
  const Point tip{truncated(centerX + a * radius.x), truncated(centerY - b * radius.y)};
  const Direction counterClockwise = directionOf(-a * radius.y, -b * radius.x);
  drawArrowhead(surface, tip, atStart ? counterClockwise.reversed() : counterClockwise, m_PenWidth,
                drawingColor());
}

void CPie::Offset(std::int32_t dx, std::int32_t dy) {
  CFigure::Offset(dx, dy);
  const Point start = moved({m_XStart, m_YStart}, dx, dy);
  const Point end = moved({m_XEnd, m_YEnd}, dx, dy);
  m_XStart = start.x;
  m_YStart = start.y;
  m_XEnd = end.x;
  m_YEnd = end.y;
}

void CPie::Inflate(std::int32_t dx, std::int32_t dy) {
  const Point start = remapped({m_XStart, m_YStart}, box(), dx, dy);
  const Point end = remapped({m_XEnd, m_YEnd}, box(), dx, dy);
  m_XStart = start.x;
  m_YStart = start.y;
  m_XEnd = end.x;
  m_YEnd = end.y;
  CFigure::Inflate(dx, dy);
}

CFigure& CPie::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

}  // namespace vexa
