// Reads arbitrary bytes as a drawing: whatever they hold, the figures take no more memory than is
// in proportion to the file, can be painted, and can be written as a file that reads the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "graphics/document/drawing_file.h"
#include "graphics/document/painting.h"
#include "graphics/surfaces/blank_surface.h"

using namespace vexa;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  CMiniDrawDoc drawing;
  const DrawingLoad load = readDrawing(bytes, drawing);
  if (drawing.figureCount() > size / 2) std::abort();
  BlankSurface surface;
  paintDrawing(drawing, surface);
  for (std::size_t i = 0; i < drawing.figureCount(); ++i) {
    CFigure& figure = *drawing.figure(static_cast<std::ptrdiff_t>(i));
    figure.Offset(1 << 30, -(1 << 30));
    figure.Inflate(-(1 << 30), 1 << 30);
  }
  const std::string written = writeDrawing(drawing);
  CMiniDrawDoc again;
  if (load.accepted && !readDrawing(written, again).complete()) std::abort();
  if (load.accepted && writeDrawing(again) != written) std::abort();
  return 0;
}
