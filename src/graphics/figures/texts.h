#pragma once

// Texts, and the font items that say in which font the texts after them are drawn.

#include <string>
#include <utility>

#include "graphics/figures/figure.h"

namespace vexa {

class CText : public CFigure {
 public:
  CText() : CFigure(FigureType::text) {}
  // The first point is the top left corner of the text.
  CText(const CMiniDrawDoc& document, Point first, Point second, std::string text)
      : CFigure(FigureType::text, document, first, second), m_Text(std::move(text)) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  // In the current text font; without one nothing is drawn. Black-and-white drawing blackens texts
  // on a printer only.
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::string m_Text;
};

class CFontItem : public CFigure {
 public:
  CFontItem() : CFigure(FigureType::fontItem) {}
  // Carries the document's current font.
  CFontItem(const CMiniDrawDoc& document, Point first, Point second);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface&) const override {}
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  FontDescription m_Font;
};

}  // namespace vexa
