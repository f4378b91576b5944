#pragma once

// How a drawing is divided into printed pages, at one logical unit for each printer pixel.

#include <cstdint>

#include "graphics/view/zoom_window.h"

namespace vexa {

// What is printed, whatever extent the drawing has stored.
inline constexpr int printedWidth = 1390;
inline constexpr int printedHeight = 1800;

struct PrintPages {
  int columns = 0, rows = 0;
  DeviceSize page;

  // Pages are numbered from 1, row by row.
  int count() const { return columns * rows; }
  // The part of the drawing that a page shows, in logical units. `number` is from 1 to count().
  Rect area(int number) const;
};

// No pages for a size that is not positive.
PrintPages printPagesFor(DeviceSize page);

}  // namespace vexa
