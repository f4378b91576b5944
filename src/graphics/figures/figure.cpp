#include "graphics/figures/figure.h"

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/coordinates.h"
#include "graphics/figures/paint_state.h"

namespace vexa {

PaintState& paintState() {
  static PaintState state;
  return state;
}

Brush fillBrush(std::int32_t fillStyle, ColorRef fillColor) {
  const bool known = fillStyle >= 0 && fillStyle <= fillSolid;
  return {known ? static_cast<BrushStyle>(fillStyle) : BrushStyle::hollow, fillColor};
}

CFigure::CFigure(FigureType type, const CMiniDrawDoc& document, Point first, Point second)
    : m_Color(document.settings().penColor),
      m_X1(first.x),
      m_Y1(first.y),
      m_X2(second.x),
      m_Y2(second.y),
      m_PenWidth(document.settings().penWidth),
      m_Type(static_cast<std::int32_t>(type)),
      m_ColorIndex(document.settings().penColorIndex) {}

void CFigure::Serialize(DrawingArchive& archive) {
  archive.word(m_Type);
  archive.word(m_X1);
  archive.word(m_Y1);
  archive.word(m_X2);
  archive.word(m_Y2);
  archive.word(m_Color);
  archive.word(m_ColorIndex);
  archive.word(m_PenWidth);
  archive.word(m_Visible);
}

void CFigure::Offset(std::int32_t dx, std::int32_t dy) {
  m_X1 = saturated(std::int64_t{m_X1} + dx);
  m_Y1 = saturated(std::int64_t{m_Y1} + dy);
  m_X2 = saturated(std::int64_t{m_X2} + dx);
  m_Y2 = saturated(std::int64_t{m_Y2} + dy);
}

void CFigure::Inflate(std::int32_t dx, std::int32_t dy) {
  m_X1 = saturated(std::int64_t{m_X1} - dx);
  m_Y1 = saturated(std::int64_t{m_Y1} - dy);
  m_X2 = saturated(std::int64_t{m_X2} + dx);
  m_Y2 = saturated(std::int64_t{m_Y2} + dy);
}

Rect CFigure::boundingBox(std::int32_t margin) const {
  const Rect r = normalized(box());
  return {r.left, r.top, saturated(std::int64_t{r.right} + margin),
          saturated(std::int64_t{r.bottom} + margin)};
}

ColorRef CFigure::drawingColor() const { return paintState().blackAndWhite ? black : m_Color; }

namespace {

// One coordinate of `remapped`. The bilinear form separates when the box has upright sides: the
// displacement grows linearly from -d at one side to d at the other. Extent and offset from the
// center are both doubled, since halves of an odd extent would lose the corners.
std::int32_t stretched(std::int32_t v, std::int32_t side, std::int32_t otherSide, std::int32_t d) {
  const std::int64_t extent = std::int64_t{otherSide} - side;
  if (extent == 0) return v;
  const std::int64_t offset = 2 * std::int64_t{v} - side - otherSide;
  return truncated(v + static_cast<double>(offset) * d / static_cast<double>(extent));
}

}  // namespace

Point remapped(Point point, const Rect& boxBefore, std::int32_t dx, std::int32_t dy) {
  return {stretched(point.x, boxBefore.left, boxBefore.right, dx),
          stretched(point.y, boxBefore.top, boxBefore.bottom, dy)};
}

}  // namespace vexa
