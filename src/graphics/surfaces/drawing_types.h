#pragma once

// What figures and surfaces speak about: points, boxes, colors, pens, brushes and fonts.
//
// Coordinates are logical units of a drawing, whole numbers; x grows to the right, y grows down.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace vexa {

struct Point {
  std::int32_t x = 0;
  std::int32_t y = 0;

  bool operator==(const Point&) const = default;
};

// Sides of a box. As the box of a shape the corners may come in any order; as an area the left and
// top sides belong to it, the right and bottom sides do not.
struct Rect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  bool operator==(const Rect&) const = default;
  // Sizes are formed in 64 bits, where the difference of two coordinates always fits.
  std::int64_t width() const { return std::int64_t{right} - left; }
  std::int64_t height() const { return std::int64_t{bottom} - top; }
};

// The same box with left <= right and top <= bottom.
constexpr Rect normalized(const Rect& r) {
  return {std::min(r.left, r.right), std::min(r.top, r.bottom), std::max(r.left, r.right),
          std::max(r.top, r.bottom)};
}

// Whether two areas have a point in common; an area without width or height has none.
constexpr bool intersects(const Rect& a, const Rect& b) {
  return std::max(a.left, b.left) < std::min(a.right, b.right) &&
         std::max(a.top, b.top) < std::min(a.bottom, b.bottom);
}

// 0x00BBGGRR. Drawing files keep all 32 bits; painting looks at the low 24.
using ColorRef = std::uint32_t;

constexpr ColorRef colorOf(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return red | (ColorRef{green} << 8) | (ColorRef{blue} << 16);
}
constexpr std::uint8_t redOf(ColorRef color) { return static_cast<std::uint8_t>(color); }
constexpr std::uint8_t greenOf(ColorRef color) { return static_cast<std::uint8_t>(color >> 8); }
constexpr std::uint8_t blueOf(ColorRef color) { return static_cast<std::uint8_t>(color >> 16); }

inline constexpr ColorRef black = 0x000000;
inline constexpr ColorRef white = 0xFFFFFF;

// insideFrame keeps the outline of a box inside the box; elsewhere it is a solid pen.
enum class PenStyle { solid, insideFrame };

// A width of 0 or less is one device pixel.
struct Pen {
  PenStyle style = PenStyle::solid;
  std::int32_t width = 1;
  ColorRef color = black;

  bool operator==(const Pen&) const = default;
};

// The six hatches stand first and in the order of their fill codes. Forward diagonals fall from
// left to right, backward diagonals rise.
enum class BrushStyle {
  horizontal,
  vertical,
  forwardDiagonal,
  backwardDiagonal,
  cross,
  diagonalCross,
  solid,
  hollow
};

constexpr bool isHatch(BrushStyle style) { return style < BrushStyle::solid; }

struct Brush {
  BrushStyle style = BrushStyle::hollow;
  ColorRef color = white;

  bool operator==(const Brush&) const = default;
};

// A font as drawing files store it: 60 bytes, field by field in this order.
struct FontDescription {
  std::int32_t height = 16;      // of a cell when positive, of the em when negative; 0 the default
  std::int32_t width = 0;        // average of the characters; 0 as the height demands
  std::int32_t escapement = 0;   // of the line of text, in tenths of a degree counter-clockwise
  std::int32_t orientation = 0;  // of each character, likewise
  std::int32_t weight = 400;     // 700 is bold; 0 the default
  std::uint8_t italic = 0;
  std::uint8_t underline = 0;
  std::uint8_t strikeOut = 0;
  std::uint8_t charSet = 0;
  std::uint8_t outPrecision = 0;
  std::uint8_t clipPrecision = 0;
  std::uint8_t quality = 0;
  std::uint8_t pitchAndFamily = 0x30;
  std::array<char, 32> faceName{"Times New Roman"};

  bool operator==(const FontDescription&) const = default;
  // The name up to its first zero byte.
  std::string_view face() const {
    return {faceName.begin(), std::find(faceName.begin(), faceName.end(), '\0')};
  }
};

}  // namespace vexa
