#include "graphics/figures/texts.h"

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/paint_state.h"

namespace vexa {

const RuntimeClass& CText::GetRuntimeClass() const { return runtimeClass(FigureType::text); }

void CText::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  archive.text(m_Text);
}

void CText::Draw(DrawingSurface& surface) const {
  const PaintState& state = paintState();
  if (!state.textFont) return;
  const bool blackened = state.blackAndWhite && surface.printing();
  const FontDescription font = surface.setFont(*state.textFont);
  const ColorRef color = surface.setTextColor(blackened ? black : m_Color);
  const BackgroundMode mode = surface.setBackgroundMode(BackgroundMode::transparent);
  surface.text(first(), m_Text);
  surface.setFont(font);
  surface.setTextColor(color);
  surface.setBackgroundMode(mode);
}

CFigure& CText::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

CFontItem::CFontItem(const CMiniDrawDoc& document, Point first, Point second)
    : CFigure(FigureType::fontItem, document, first, second), m_Font(document.font()) {}

const RuntimeClass& CFontItem::GetRuntimeClass() const {
  return runtimeClass(FigureType::fontItem);
}

void CFontItem::Serialize(DrawingArchive& archive) {
  CFigure::Serialize(archive);
  // The color index stands here a second time; of two that differ the later one stays.
  archive.word(m_ColorIndex);
  archive.font(m_Font);
}

CFigure& CFontItem::Duplicate(CMiniDrawDoc& document) const { return document.append(*this); }

}  // namespace vexa
