#pragma once

// Polygons, Bezier curves and the parts of an ellipse.

#include <cstddef>
#include <vector>

#include "graphics/figures/figure.h"

namespace vexa {

// An open polyline without a fill, a closed filled polygon with one.
class CPolygon : public CFigure {
 public:
  CPolygon() : CFigure(FigureType::polygon) {}
  // The points are all (0, 0), for the caller to set; the box is his too.
  CPolygon(const CMiniDrawDoc& document, Point first, Point second, std::size_t pointCount);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  void Offset(std::int32_t dx, std::int32_t dy) override;
  void Inflate(std::int32_t dx, std::int32_t dy) override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
  std::vector<Point> m_Points;
};

// A piecewise cubic curve through 1 + 3k control points.
class CBezier : public CFigure {
 public:
  CBezier() : CFigure(FigureType::bezier) {}
  CBezier(const CMiniDrawDoc& document, Point first, Point second, std::size_t pointCount);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  void Offset(std::int32_t dx, std::int32_t dy) override;
  void Inflate(std::int32_t dx, std::int32_t dy) override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;
  std::vector<Point> m_Points;
};

// An arc, a slice or a chord of the ellipse in the box, counter-clockwise between the rays from its
// center through a start and an end point.
class CPie : public CFigure {
 public:
  CPie() : CFigure(FigureType::pie) {}
  // `arrow`: 0 no head, 2 a head at the arc's start, others a head at its end. `kind`: 'A' an arc,
  // 'P' a slice, others a chord.
  CPie(const CMiniDrawDoc& document, Point first, Point second, Point start, Point end, char arrow,
       char kind);

  const RuntimeClass& GetRuntimeClass() const override;
  void Serialize(DrawingArchive& archive) override;
  void Draw(DrawingSurface& surface) const override;
  void Offset(std::int32_t dx, std::int32_t dy) override;
  void Inflate(std::int32_t dx, std::int32_t dy) override;
  CFigure& Duplicate(CMiniDrawDoc& document) const override;

  std::int32_t m_XStart = 0, m_YStart = 0;
  std::int32_t m_XEnd = 0, m_YEnd = 0;
  char m_Arrow = 0;
  char m_Kind = 'A';
  std::int32_t m_FillStyle = 0;
  ColorRef m_FillColor = 0;

 private:
  void drawHead(DrawingSurface& surface) const;
};

}  // namespace vexa
