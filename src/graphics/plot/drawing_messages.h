#pragma once

// Loading and painting with the messages that a user gets.

#include <string_view>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/document/painting.h"

namespace vexa {

// Loads a drawing file. A file of another kind shows "File format corrupted" and changes nothing;
// every other one shows the note of a load, and then, if it is damaged, why. True when the drawing
// is complete.
bool loadDrawing(std::string_view bytes, CMiniDrawDoc& document);

// Options for painting in a window: a font that cannot be made stops the program that is running,
// if there is one.
PaintOptions windowPaintOptions();

}  // namespace vexa
