#pragma once

// The page that a picture shows.

#include <cstdint>
#include <string>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

// Logical units in an inch, where a picture is not given a size of its own.
inline constexpr double unitsPerInch = 96;
inline constexpr double millimetresPerInch = 25.4;

struct PicturePage {
  // The extent of the drawing in logical units; both sides are positive.
  std::int32_t width = 1390, height = 1800;
  // How wide the page is printed; its height follows. 0 for 96 units to an inch.
  double printedWidth = 0;  // mm
  std::string title;        // bytes, read as drawn text; empty for none

  Rect area() const { return {0, 0, width, height}; }
  double millimetresPerUnit() const {
    return printedWidth > 0 ? printedWidth / width : millimetresPerInch / unitsPerInch;
  }
};

}  // namespace vexa
