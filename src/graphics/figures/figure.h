#pragma once

// Figures: what a drawing consists of. CFigure holds what all of them have; the sixteen classes
// derive from it directly (lines.h, boxes.h, curves.h, texts.h).
//
// A figure is made with the pen, and where it has a fill with the fill, that its document has at
// that moment, and keeps them. Points are logical units; the two common points of a box-shaped
// figure are opposite corners in any order. Fields are open, since item operations, editors and
// files work on all of them.

#include <cstdint>
#include <memory>
#include <string_view>

#include "graphics/surfaces/drawing_surface.h"
#include "graphics/surfaces/drawing_types.h"

namespace vexa {

class CFigure;
class CMiniDrawDoc;
class DrawingArchive;

enum class FigureType : std::int32_t {
  line = 1,
  lineArrow,
  lineArrows,
  arrowsUdl,
  fontItem,
  rectangle,
  rectFill,
  rectRound,
  rectRoundFill,
  circle,
  circleFill,
  polygon,
  bezier,
  ellipse,
  pie,
  text
};

// Fill styles: the six hatches, in the order of BrushStyle, then these.
inline constexpr std::int32_t fillSolid = 6;
inline constexpr std::int32_t fillNone = 7;

// The brush of a fill style; hollow for fillNone and for numbers that are no style.
Brush fillBrush(std::int32_t fillStyle, ColorRef fillColor);

// What a drawing file records of a class: its name and schema.
struct RuntimeClass {
  std::string_view name;
  std::uint16_t schema;
  // A figure with all fields zero, to be read from a file.
  std::unique_ptr<CFigure> (*create)();
};

class CFigure {
 public:
  CFigure& operator=(const CFigure&) = delete;

  virtual const RuntimeClass& GetRuntimeClass() const = 0;
  virtual ~CFigure() = default;
  // Writes or reads the fields, as the archive is open for writing or reading.
  virtual void Serialize(DrawingArchive& archive);
  virtual void AssertValid() const {}
  virtual void Dump() const {}
  // Paints the figure. Visibility and the area to paint are the caller's business.
  virtual void Draw(DrawingSurface& surface) const = 0;
  // Moves the figure. Coordinates stop at the bounds of 32 bits, here and in Inflate.
  virtual void Offset(std::int32_t dx, std::int32_t dy);
  // Grows the box by dx on the left and right and by dy at top and bottom; figures with further
  // points stretch these along.
  virtual void Inflate(std::int32_t dx, std::int32_t dy);
  // Appends a copy of all fields to a document, which owns it.
  virtual CFigure& Duplicate(CMiniDrawDoc& document) const = 0;

  // The smallest box around the two points, grown by the margin on the right and at the bottom. The
  // pen's width does not count.
  Rect boundingBox(std::int32_t margin) const;

  ColorRef m_Color = 0;  // of the pen, or of the text
  std::int32_t m_X1 = 0, m_Y1 = 0;
  std::int32_t m_X2 = 0, m_Y2 = 0;
  std::int32_t m_PenWidth = 0;
  std::int32_t m_Type;            // a FigureType, unless a file said otherwise
  std::int32_t m_ColorIndex = 0;  // of m_Color in the palette; kept, not drawn with
  std::int32_t m_Visible = 1;

 protected:
  explicit CFigure(FigureType type) : m_Type(static_cast<std::int32_t>(type)) {}
  CFigure(FigureType type, const CMiniDrawDoc& document, Point first, Point second);
  CFigure(const CFigure&) = default;

  Point first() const { return {m_X1, m_Y1}; }
  Point second() const { return {m_X2, m_Y2}; }
  Rect box() const { return {m_X1, m_Y1, m_X2, m_Y2}; }
  // Black while the black-and-white flag is set.
  ColorRef drawingColor() const;
  Pen drawingPen(PenStyle style) const { return {style, m_PenWidth, drawingColor()}; }
};

// Where a point of a box goes when the box grows by dx and dy on each side: the center stays,
// corners go to corners, and what lies between is interpolated bilinearly and truncated. Along a
// side of length zero nothing moves.
Point remapped(Point point, const Rect& boxBefore, std::int32_t dx, std::int32_t dy);

// The class of a type code, and of a name; null for a name that no class has.
const RuntimeClass& runtimeClass(FigureType type);
const RuntimeClass* findRuntimeClass(std::string_view name);

}  // namespace vexa
