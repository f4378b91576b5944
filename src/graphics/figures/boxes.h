#pragma once

// Shapes in a box: rectangles, rounded rectangles, circles and ellipses, as outlines or filled.

#include "graphics/figures/figure.h"

namespace vexa {

class CRectangle : public CFigure {
 public:
  CRectangle() : CFigure(FigureType::rectangle) {}
  CRectangle(const CMiniDrawDoc& document, Point first, Point second)
      : CFigure(FigureType::rectangle, document, first, second) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;
};

class CRectFill : public CFigure {
 public:
  CRectFill() : CFigure(FigureType::rectFill) {}
  CRectFill(const CMiniDrawDoc& document, Point first, Point second);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
};

class CRectRound : public CFigure {
 public:
  CRectRound() : CFigure(FigureType::rectRound) {}
  CRectRound(const CMiniDrawDoc& document, Point first, Point second)
      : CFigure(FigureType::rectRound, document, first, second) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;
};

class CRectRoundFill : public CFigure {
 public:
  CRectRoundFill() : CFigure(FigureType::rectRoundFill) {}
  CRectRoundFill(const CMiniDrawDoc& document, Point first, Point second);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
};

class CCircle : public CFigure {
 public:
  CCircle() : CFigure(FigureType::circle) {}
  CCircle(const CMiniDrawDoc& document, Point first, Point second)
      : CFigure(FigureType::circle, document, first, second) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;
};

class CCircleFill : public CFigure {
 public:
  CCircleFill() : CFigure(FigureType::circleFill) {}
  CCircleFill(const CMiniDrawDoc& document, Point first, Point second);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
};

class CEllipse : public CFigure {
 public:
  CEllipse() : CFigure(FigureType::ellipse) {}
  // Unlike the others it puts its corners in order, and it keeps no color index.
  CEllipse(const CMiniDrawDoc& document, Point first, Point second);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
};

}  // namespace vexa
