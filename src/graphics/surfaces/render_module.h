#pragma once

// What passes between a program and the module that draws PNG and PDF, which is a library of its
// own so that only those who ask for such a picture load it.

#include <memory>
#include <string>

#include "graphics/surfaces/drawing_surface.h"
#include "graphics/surfaces/picture_page.h"

namespace vexa {

enum class RenderFormat { png, pdf };

struct RenderRequest {
  RenderFormat format = RenderFormat::png;
  PicturePage page;
  // Of PNG alone.
  std::int32_t pixelWidth = 0, pixelHeight = 0;
  double density = unitsPerInch;  // noted in the file, dots per inch
};

class RenderedPicture {
 public:
  virtual ~RenderedPicture() = default;
  virtual DrawingSurface& surface() = 0;
  // Ends the drawing and gives the whole file. False when memory was used up.
  virtual bool finish(std::string& bytes) = 0;
};

// The module's one function; it leaves `picture` null when memory is used up. Its name changes
// with anything above, so that a module of another version is not taken for this one.
inline constexpr const char* renderModuleEntry = "vexaOpenPicture1";
inline constexpr const char* renderModuleName = "vexa_render.so";
using OpenPicture = void(const RenderRequest& request,
                         std::unique_ptr<RenderedPicture>& picture) noexcept;

}  // namespace vexa
