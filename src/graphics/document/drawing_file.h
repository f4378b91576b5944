#pragma once

// The drawing file, extension .drw: a header with the settings, then the figures. Its layout is
// described in docs/drawing-file-format.md.

#include <cstddef>
#include <string>
#include <string_view>

#include "graphics/document/archive.h"
#include "graphics/document/mini_draw_doc.h"

namespace vexa {

// What every accepted load tells the user, before anything can go wrong with the rest.
inline constexpr std::string_view drawingLoadNote =
    "Note: Only the main menu-items are available for use with this drawing";

struct DrawingLoad {
  // False: the format number is none of ours, or there is none. The drawing is as it was then, and
  // no note is due.
  bool accepted = false;
  // Why reading ended early. Of an accepted file, the settings and figures read up to there are in
  // the drawing.
  ArchiveError error = ArchiveError::none;

  bool complete() const { return accepted && error == ArchiveError::none; }
};

// One line for the user when a load is not complete.
std::string_view loadMessage(const DrawingLoad& load);

// Replaces the settings and the figures of a drawing by those of a file. A drawing that was loaded
// is not modified. Null entries are dropped; an entry that repeats an earlier one becomes a copy.
DrawingLoad readDrawing(std::string_view bytes, CMiniDrawDoc& document);

// The bytes of a drawing's file.
std::string writeDrawing(const CMiniDrawDoc& document);

}  // namespace vexa
