#pragma once

// What the bytes of a text stand for when it is drawn, and how much room they take.
//
// Widths come from tables for faces that are metric-compatible with Times New Roman, Arial and
// Courier New, whatever fonts a machine has, so that a drawing is laid out the same everywhere. Any
// other face counts as Times.

#include <string>
#include <string_view>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

// Characters of UTF-8 when the bytes are valid UTF-8, otherwise of Windows-1252. What no font draws
// (control characters, unassigned codes) becomes a blank.
std::u32string decodeDrawnText(std::string_view bytes);
std::string toUtf8(std::u32string_view text);
std::u16string toUtf16(std::u32string_view text);

enum class FontFamily { times, arial, courier };
FontFamily familyOf(const FontDescription& font);

bool isBold(const FontDescription& font);

// Lengths in logical units.
struct FontMetrics {
  double emSize;       // the size that the fonts of pictures are given
  double ascent;       // from the upper side of a cell to the baseline
  double height;       // of a cell
  double stretch = 1;  // of the characters' widths, for a description that gives a width
};
FontMetrics metricsOf(const FontDescription& font);

// From the character's start to the next one's.
double advanceOf(const FontDescription& font, char32_t character);

// Whole units, as items are laid out by them.
struct TextExtent {
  std::int32_t width = 0, height = 0;
};
TextExtent textExtent(const FontDescription& font, std::string_view bytes);

}  // namespace vexa
