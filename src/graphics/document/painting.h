#pragma once

// Painting a drawing on a surface.

#include <functional>
#include <optional>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/surfaces/drawing_surface.h"

namespace vexa {

struct PaintOptions {
  // Instead of the drawing's own background. A print is always white.
  std::optional<ColorRef> background = {};
  // Told of a font that the surface cannot make. It may throw, which ends the paint; otherwise no
  // text is drawn until the next font item.
  std::function<void(const FontDescription&)> fontFailed = {};
};

// Fills the surface's area to paint with the background and draws the figures in list order. Hidden
// figures are left out, and so are figures outside the area, except texts. A font item becomes the
// document's font and the font of all further texts, also of later paints (see PaintState). The
// background color is left on the surface, where it shows between the lines of a hatch.
void paintDrawing(CMiniDrawDoc& document, DrawingSurface& surface,
                  const PaintOptions& options = {});

}  // namespace vexa
