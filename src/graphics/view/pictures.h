#pragma once

// A drawing as a picture in a format of other programs.

#include <optional>
#include <string>
#include <string_view>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/surfaces/picture_page.h"

namespace vexa {

struct PictureStyle {
  bool ownBackground = false;  // the drawing's, instead of white
  double printedWidth = 0;     // mm; 0 for 96 units to an inch
};

// The page that shows the whole extent of a drawing, as its first view would take it.
PicturePage pageOf(CMiniDrawDoc& document, const PictureStyle& style);

void paintPicture(CMiniDrawDoc& document, DrawingSurface& surface, const PictureStyle& style);

std::string drawingAsSvg(CMiniDrawDoc& document, const PictureStyle& style);
// Nothing when the drawing is larger than the format's 4 GB.
std::optional<std::string> drawingAsMetafile(CMiniDrawDoc& document, const PictureStyle& style);

// The enhanced metafile that the command Copy Drawing puts on the clipboard: all figures in list
// order, hidden ones too, without a background and in the text font that the last paint left.
std::optional<std::string> copyDrawing(const CMiniDrawDoc& document);

// What Copy Drawing tells the user, on two lines.
inline constexpr std::string_view copyDrawingNote =
    " You can now paste drawing in another application\n"
    " such as MS-Word, Draw, Excel, or SmartDraw";

}  // namespace vexa
