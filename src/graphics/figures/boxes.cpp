#include "graphics/figures/boxes.h"

#include <algorithm>

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/coordinates.h"

namespace vexa {

namespace {

// The corners' ellipse is as wide and high as a third of the box's mean side.
std::int32_t cornerSize(const Rect& box) { return saturated((box.width() + box.height()) / 6); }

}  // namespace

const RuntimeClass& CRectangle::GetRuntimeClass() const {
  return runtimeClass(FigureType::rectangle);
}

void CRectangle::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, Brush{});
  surface.rectangle(box());
}

CFigure& CRectangle::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CRectFill::CRectFill(const CMiniDrawDoc& document, Point first, Point second)
    : CFigure(FigureType::rectFill, document, first, second),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor) {}

const RuntimeClass& CRectFill::GetRuntimeClass() const {
  return runtimeClass(FigureType::rectFill);
}

void CRectFill::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.word(m_FillStyle);
  archive.word(m_FillColor);
}

void CRectFill::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  surface.rectangle(box());
}

CFigure& CRectFill::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

const RuntimeClass& CRectRound::GetRuntimeClass() const {
  return runtimeClass(FigureType::rectRound);
}

void CRectRound::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, Brush{});
  surface.roundedRectangle(box(), cornerSize(box()), cornerSize(box()));
}

CFigure& CRectRound::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CRectRoundFill::CRectRoundFill(const CMiniDrawDoc& document, Point first, Point second)
    : CFigure(FigureType::rectRoundFill, document, first, second),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor) {}

const RuntimeClass& CRectRoundFill::GetRuntimeClass() const {
  return runtimeClass(FigureType::rectRoundFill);
}

void CRectRoundFill::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.word(m_FillStyle);
  archive.word(m_FillColor);
}

void CRectRoundFill::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  surface.roundedRectangle(box(), cornerSize(box()), cornerSize(box()));
}

CFigure& CRectRoundFill::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

const RuntimeClass& CCircle::GetRuntimeClass() const { return runtimeClass(FigureType::circle); }

void CCircle::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, Brush{});
  surface.ellipse(box());
}

CFigure& CCircle::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CCircleFill::CCircleFill(const CMiniDrawDoc& document, Point first, Point second)
    : CFigure(FigureType::circleFill, document, first, second),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor) {}

const RuntimeClass& CCircleFill::GetRuntimeClass() const {
  return runtimeClass(FigureType::circleFill);
}

void CCircleFill::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.word(m_FillStyle);
  archive.word(m_FillColor);
}

void CCircleFill::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  surface.ellipse(box());
}

CFigure& CCircleFill::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CEllipse::CEllipse(const CMiniDrawDoc& document, Point first, Point second)
    : CFigure(FigureType::ellipse),
      m_FillStyle(document.settings().fillStyle),
      m_FillColor(document.settings().fillColor) {
  m_Color = document.settings().penColor;
  m_PenWidth = document.settings().penWidth;
  m_X1 = std::min(first.x, second.x);
  m_Y1 = std::min(first.y, second.y);
  m_X2 = std::max(first.x, second.x);
  m_Y2 = std::max(first.y, second.y);
}

const RuntimeClass& CEllipse::GetRuntimeClass() const { return runtimeClass(FigureType::ellipse); }

void CEllipse::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.word(m_FillStyle);
  archive.word(m_FillColor);
}

void CEllipse::Draw(DrawingSurface& surface) const {
  const SelectedPen pen(surface, drawingPen(PenStyle::insideFrame));
  const SelectedBrush brush(surface, fillBrush(m_FillStyle, m_FillColor));
  surface.ellipse(box());
}

CFigure& CEllipse::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

}  // namespace vexa
