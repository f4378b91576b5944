#pragma once

// A drawing: its settings and its figures, in the order in which they are painted.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "graphics/figures/figure.h"

namespace vexa {

// What a drawing file holds before the figures, with the values of a new drawing. The plot state
// keeps its own words here between the calls of a program and between programs.
struct DrawingSettings {
  std::int32_t formatNumber = 6501;
  std::int32_t pictureLeft = 50;  // margins of the picture area, logical units
  std::int32_t pictureTop = 50;
  std::array<double, 6> world{};  // x minimum, y minimum, x maximum, y maximum, x scale, y scale
  std::int32_t scaleFlags = 1;    // bit 0 independent scales, 1 x logarithmic, 2 y logarithmic
  ColorRef penColor = 0x8080FF;   // each color with its index in the palette, or 16
  std::int32_t penColorIndex = 12;
  ColorRef backgroundColor = black;
  std::int32_t backgroundColorIndex = 0;
  ColorRef fillColor = white;
  std::int32_t fillColorIndex = 15;
  std::int32_t penWidth = 1;
  std::int32_t fillStyle = fillNone;
  std::int32_t axesStyle = 2;    // 0 none, 1 cross, 2 frame, 3 open
  std::int32_t orientation = 0;  // 0 portrait, 1 landscape
  std::int32_t width = 1390;     // the drawing's extent, logical units
  std::int32_t height = 1800;
  std::string title;
  std::int32_t markerSize = 4;  // half of it, logical units

  bool operator==(const DrawingSettings&) const = default;
};

class CMiniDrawDoc {
 public:
  // A new drawing has no figure at all until emptyDrawing gives it its font item.
  CMiniDrawDoc() = default;
  CMiniDrawDoc(const CMiniDrawDoc&) = delete;
  CMiniDrawDoc& operator=(const CMiniDrawDoc&) = delete;
  ~CMiniDrawDoc() { deleteFigures(); }

  DrawingSettings& settings() { return m_settings; }
  const DrawingSettings& settings() const { return m_settings; }
  // The font that the next font item carries. No part of the drawing file.
  const FontDescription& font() const { return m_font; }
  void setFont(const FontDescription& font) { m_font = font; }

  std::size_t figureCount() const { return m_figures.size(); }
  // By position from 0; null below 0 and past the end.
  CFigure* figure(std::ptrdiff_t position);
  const CFigure* figure(std::ptrdiff_t position) const;

  // Appends a figure, which marks the drawing modified, and gives back its position.
  std::size_t add(std::unique_ptr<CFigure> figure);
  // The same with a copy of the given figure, which may be of this drawing or of another.
  template <class Figure>
  Figure& append(const Figure& figure) {
    auto copy = std::make_unique<Figure>(figure);
    Figure& result = *copy;
    add(std::move(copy));
    return result;
  }
  // Removes the figures at [first, last); positions past the end count as the end.
  void removeFigures(std::size_t first, std::size_t last);

  // Deletes every figure, last to first, resets the font, and appends the font item with which
  // every fresh drawing begins.
  void emptyDrawing();
  // Appends a font item with the current font at (0, 0), and notes the length of the list.
  void addInitialFontItem();
  // Empties the drawing and marks it modified. Repainting views and resetting the plot state are
  // the caller's part.
  void clear();
  // The plot state's word: the length of the list when its picture area was last set; -1 while the
  // list has never been initialized. No part of the drawing file.
  std::int32_t pictureStart() const { return m_pictureStart; }
  void setPictureStart(std::int32_t length) { m_pictureStart = length; }

  // Before a view opens: settings without a positive extent become those of a new drawing, except
  // the format number, the picture's margins and the scale flags. Figures stay.
  void ensureExtent();

  bool modified() const { return m_modified; }
  void setModified(bool modified) { m_modified = modified; }

 private:
  void deleteFigures();

  DrawingSettings m_settings;
  FontDescription m_font;
  std::vector<std::unique_ptr<CFigure>> m_figures;
  std::int32_t m_pictureStart = -1;
  bool m_modified = false;
};

}  // namespace vexa
