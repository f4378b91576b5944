#include "graphics/plot/drawing_messages.h"

#include "graphics/document/drawing_file.h"
#include "interp/errors.h"
#include "interp/message_box.h"

namespace vexa {

bool loadDrawing(std::string_view bytes, CMiniDrawDoc& document) {
  const DrawingLoad load = readDrawing(bytes, document);
  if (load.accepted) messageBox(drawingLoadNote);
  if (load.error != ArchiveError::none)
    messageBox(archiveMessage(load.error));
  else if (!load.accepted)
    formatAndShowError(ErrorKey::fileCorrupted, {});
  return load.complete();
}

PaintOptions windowPaintOptions() {
  PaintOptions options;
  options.fontFailed = [](const FontDescription& font) {
    raiseError(ErrorKey::fontFailed, font.face());
  };
  return options;
}

}  // namespace vexa
