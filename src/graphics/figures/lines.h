#pragma once

// Lines, with and without arrowheads, and rows of load arrows.

#include "graphics/figures/figure.h"

namespace vexa {

class CLine : public CFigure {
 public:
  CLine() : CFigure(FigureType::line) {}
  CLine(const CMiniDrawDoc& document, Point first, Point second)
      : CFigure(FigureType::line, document, first, second) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;
};

// With a head at the second point.
class CLineArrow : public CFigure {
 public:
  CLineArrow() : CFigure(FigureType::lineArrow) {}
  CLineArrow(const CMiniDrawDoc& document, Point first, Point second)
      : CFigure(FigureType::lineArrow, document, first, second) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;
};

class CLineArrows : public CFigure {
 public:
  CLineArrows() : CFigure(FigureType::lineArrows) {}
  // The ends that carry a head: 0 none, 'S' start, 'E' end, 'B' both.
  CLineArrows(const CMiniDrawDoc& document, Point first, Point second, char arrowEnds)
      : CFigure(FigureType::lineArrows, document, first, second), m_ArrowEnds(arrowEnds) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  char m_ArrowEnds = 0;
};

// A uniformly distributed load: arrows with their tips on the segment, on the left of a walker from
// the first to the second point when the load is positive, on the right when it is negative.
class CArrowsUDL : public CFigure {
 public:
  CArrowsUDL() : CFigure(FigureType::arrowsUdl) {}
  CArrowsUDL(const CMiniDrawDoc& document, Point first, Point second, float load)
      : CFigure(FigureType::arrowsUdl, document, first, second), m_Load(load) {}

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  // Arrows stand about 20 units apart, each 20 units long for a load of 1. Those outside of
  // the area to paint, and any beyond the first 10 000, are left out.
  void Draw(DrawingSurface& surface) const override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  float m_Load = 0;
};

}  // namespace vexa
