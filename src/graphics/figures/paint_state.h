#pragma once

// What paints share, in one record for the process: it outlives every drawing.

#include <cstdint>
#include <optional>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

struct PaintState {
  // While set, shapes are drawn in black. Each paint clears it; a print sets it as the user wishes.
  bool blackAndWhite = false;
  // The user's wish for prints.
  bool blackAndWhitePrinting = true;
  // The font of texts: none until some font item has been painted, then that of the font item
  // painted last, in whatever drawing. No paint resets it.
  std::optional<FontDescription> textFont;
  // Of the screen painted last, for the sizes of fonts given in points.
  std::int32_t pixelsPerInch = 96;
};

PaintState& paintState();

}  // namespace vexa
