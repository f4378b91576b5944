#include "graphics/view/pictures.h"

#include "graphics/document/painting.h"
#include "graphics/surfaces/metafile_surface.h"
#include "graphics/surfaces/svg_surface.h"

namespace vexa {

namespace {

constexpr const char* metafileDescription = "CopyDrawing";

}  // namespace

PicturePage pageOf(CMiniDrawDoc& document, const PictureStyle& style) {
  document.ensureExtent();
  const DrawingSettings& settings = document.settings();
  return {settings.width, settings.height, style.printedWidth, settings.title};
}

void paintPicture(CMiniDrawDoc& document, DrawingSurface& surface, const PictureStyle& style) {
  PaintOptions options;
  if (!style.ownBackground) options.background = white;
  paintDrawing(document, surface, options);
}

std::string drawingAsSvg(CMiniDrawDoc& document, const PictureStyle& style) {
  SvgSurface surface(pageOf(document, style));
  paintPicture(document, surface, style);
  return surface.document();
}

std::optional<std::string> drawingAsMetafile(CMiniDrawDoc& document, const PictureStyle& style) {
  MetafileSurface surface(pageOf(document, style), metafileDescription);
  paintPicture(document, surface, style);
  return surface.document();
}

std::optional<std::string> copyDrawing(const CMiniDrawDoc& document) {
  MetafileSurface surface({document.settings().width, document.settings().height, 0, {}},
                          metafileDescription);
  const auto count = static_cast<std::ptrdiff_t>(document.figureCount());
  for (std::ptrdiff_t i = 0; i < count; ++i) document.figure(i)->Draw(surface);
  return surface.croppedDocument();
}

}  // namespace vexa
