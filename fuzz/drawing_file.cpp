// Reads arbitrary bytes as a drawing: whatever they hold, the figures take no more memory than is
// in proportion to the file, can be painted, and can be written as a file that reads the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "graphics/document/drawing_file.h"
#include "graphics/document/painting.h"
#include "graphics/surfaces/drawing_surface.h"

namespace {

using namespace vexa;

// Takes every stroke and keeps nothing of it.
class BlankSurface : public DrawingSurface {
 public:
  void line(Point, Point) override {}
  void polyline(std::span<const Point>) override {}
  void bezier(std::span<const Point>) override {}
  void arc(const Rect&, Point, Point) override {}
  void polygon(std::span<const Point>) override {}
  void bezierPath(std::span<const Point>) override {}
  void rectangle(const Rect&) override {}
  void roundedRectangle(const Rect&, std::int32_t, std::int32_t) override {}
  void ellipse(const Rect&) override {}
  void chord(const Rect&, Point, Point) override {}
  void pie(const Rect&, Point, Point) override {}
  void fillArea(const Rect&, ColorRef) override {}
  void text(Point, std::string_view) override {}
  Rect paintArea() const override { return {0, 0, 1390, 1800}; }
};

}  // namespace

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
