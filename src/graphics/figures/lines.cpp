#include "graphics/figures/lines.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/arrowhead.h"
#include "graphics/figures/coordinates.h"
#include "graphics/figures/paint_state.h"

namespace vexa {

const RuntimeClass& CLine::GetRuntimeClass() const { return runtimeClass(FigureType::line); }

void CLine::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::solid));
  surface.line(first(), second());
}

CFigure& CLine::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

const RuntimeClass& CLineArrow::GetRuntimeClass() const {
  return runtimeClass(FigureType::lineArrow);
}

void CLineArrow::Draw(DrawingSurface& surface) const {
  const PenStyle style = paintState().blackAndWhite ? PenStyle::insideFrame : PenStyle::solid;
  const SelectedPen pen(surface, drawingPen(style));
  surface.line(first(), second());
  drawArrowhead(surface, second(), directionBetween(first(), second()), m_PenWidth, drawingColor());
}

CFigure& CLineArrow::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

const RuntimeClass& CLineArrows::GetRuntimeClass() const {
  return runtimeClass(FigureType::lineArrows);
}

void CLineArrows::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.byte(m_ArrowEnds);
}

void CLineArrows::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::solid));
  surface.line(first(), second());
  const Direction direction = directionBetween(first(), second());
  if (m_ArrowEnds == 'S' || m_ArrowEnds == 'B')
    drawArrowhead(surface, first(), direction.reversed(), m_PenWidth, drawingColor());
  if (m_ArrowEnds == 'E' || m_ArrowEnds == 'B')
    drawArrowhead(surface, second(), direction, m_PenWidth, drawingColor());
}

CFigure& CLineArrows::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

namespace {

// Whether an arrow, head and pen included, reaches into an area. A few words of a file can ask for
// very many arrows, so those that nobody would see are not drawn.
bool touches(const Rect& area, Point tip, Point tail, std::int32_t penWidth) {
  const Rect box = normalized({tip.x, tip.y, tail.x, tail.y});
  const std::int64_t margin = std::abs(std::int64_t{penWidth}) + 2;
  return intersects({saturated(box.left - margin), saturated(box.top - margin),
                     saturated(box.right + margin), saturated(box.bottom + margin)},
                    area);
}

}  // namespace

const RuntimeClass& CArrowsUDL::GetRuntimeClass() const {
  return runtimeClass(FigureType::arrowsUdl);
}

void CArrowsUDL::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.real(m_Load);
}

void CArrowsUDL::Draw(DrawingSurface& surface) const {
  const double arrowLength = std::abs(20.0 * m_Load);
  if (!(arrowLength > 0) || !std::isfinite(arrowLength)) return;
  const double dx = static_cast<double>(m_X2) - m_X1;
  const double dy = static_cast<double>(m_Y2) - m_Y1;
  const auto length = static_cast<float>(std::sqrt(dx * dx + dy * dy));
  const Direction along = directionOf(dx, dy);
  if (!along.exists()) return;

  // A file may say anything, so a row must not be longer than somebody could have meant.
  constexpr int mostIntervals = 9999;
  const int intervals =
      static_cast<int>(std::min(std::trunc(0.05 * length), static_cast<double>(mostIntervals)));
  const double spacing = intervals > 0 ? std::trunc(length / std::trunc(0.05 * length)) : 0.0;
  const double side = m_Load > 0 ? arrowLength : -arrowLength;
  const Direction left{along.y, -along.x};
  const Direction inward = m_Load > 0 ? left.reversed() : left;
  const double head = std::min(headLength(m_PenWidth), arrowLength);

  const SelectedPen pen(surface, drawingPen(PenStyle::solid));
  for (int k = 0; k <= intervals; ++k) {
    const double x = m_X1 + k * spacing * along.x;
    const double y = m_Y1 + k * spacing * along.y;
    const Point tip{truncated(x), truncated(y)};
    const Point tail{truncated(x + side * left.x), truncated(y + side * left.y)};
    if (!touches(surface.paintArea(), tip, tail, m_PenWidth)) continue;
    surface.line(tail, tip);
    drawArrowhead(surface, tip, inward, m_PenWidth, drawingColor(), head);
  }
}

CFigure& CArrowsUDL::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

}  // namespace vexa
