#include "cli/picture_file.h"

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>

#include "cli/program_file.h"
#include "cli/render_module.h"
#include "cli/whole_file.h"
#include "graphics/document/drawing_file.h"
#include "graphics/view/pictures.h"

namespace vexa {

namespace {

struct Extension {
  std::string_view text;
  PictureFormat format;
};

constexpr std::array extensions = std::to_array<Extension>({
    {".drw", PictureFormat::drw},
    {".svg", PictureFormat::svg},
    {".png", PictureFormat::png},
    {".pdf", PictureFormat::pdf},
    {".emf", PictureFormat::emf},
});

// What the painter can address, and what a machine of today has room for.
constexpr double mostPixelsOfASide = 32767;
constexpr double mostPixels = 1e8;
// Readers of PDF take pages of up to 200 inches.
constexpr double longestPdfSide = 200 * millimetresPerInch;

constexpr std::string_view memoryUsedUp = "memory is not enough for the picture";

// The bytes of a file, or what stands in their way.
struct Picture {
  std::string bytes;
  std::string problem;
};

bool isRendered(PictureFormat format) {
  return format == PictureFormat::png || format == PictureFormat::pdf;
}

std::string cannotWrite(const std::string& path, int error) {
  return "cannot write " + onOneLine(path) + ": " + std::strerror(error) + "; " +
         std::string(remedyForWriting(error));
}

std::string setPixels(RenderRequest& request, double density) {
  const double pixels = request.page.millimetresPerUnit() / millimetresPerInch * density;
  const double width = std::max(1.0, std::round(request.page.width * pixels));
  const double height = std::max(1.0, std::round(request.page.height * pixels));
  if (width > mostPixelsOfASide || height > mostPixelsOfASide || width * height > mostPixels)
    return "the picture would have more than 32767 pixels on a side or 100 million in all; "
           "give a smaller --density or --width";
  request.pixelWidth = static_cast<std::int32_t>(width);
  request.pixelHeight = static_cast<std::int32_t>(height);
  request.density = density;
  return {};
}

std::string checkPage(const PicturePage& page) {
  const double unit = page.millimetresPerUnit();
  if (page.width * unit <= longestPdfSide && page.height * unit <= longestPdfSide) return {};
  return "the page would be longer than the 5080 mm that PDF allows; give a --width";
}

Picture render(CMiniDrawDoc& document, PictureFormat format, const PictureStyle& style,
               double density) {
  Picture picture;
  RenderRequest request;
  request.format = format == PictureFormat::png ? RenderFormat::png : RenderFormat::pdf;
  request.page = pageOf(document, style);
  picture.problem =
      format == PictureFormat::png ? setPixels(request, density) : checkPage(request.page);
  if (!picture.problem.empty()) return picture;
  OpenPicture* const openPicture = findRenderModule(picture.problem);
  if (!openPicture) return picture;
  std::unique_ptr<RenderedPicture> rendered;
  openPicture(request, rendered);
  if (rendered) paintPicture(document, rendered->surface(), style);
  if (!rendered || !rendered->finish(picture.bytes)) picture.problem = memoryUsedUp;
  return picture;
}

Picture makePicture(CMiniDrawDoc& document, PictureFormat format, const PictureOptions& options) {
  const PictureStyle style{options.screen, options.width};
  switch (format) {
    case PictureFormat::drw:
      return {writeDrawing(document), {}};
    case PictureFormat::svg:
      return {drawingAsSvg(document, style), {}};
    case PictureFormat::emf:
      if (std::optional<std::string> bytes = drawingAsMetafile(document, style))
        return {std::move(*bytes), {}};
      return {{}, "the drawing is larger than the 4 GB that a metafile can hold; write .svg"};
    case PictureFormat::png:
    case PictureFormat::pdf:
      break;
  }
  return render(document, format, style, options.density);
}

}  // namespace

std::optional<PictureFormat> pictureFormatOf(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return std::nullopt;
  std::string ending(path.substr(dot));
  for (char& c : ending)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  for (const Extension& extension : extensions)
    if (ending == extension.text) return extension.format;
  return std::nullopt;
}

std::string obstacleTo(const std::string& path) {
  if (const int error = checkWritable(path); error != 0) return cannotWrite(path, error);
  std::string problem;
  if (isRendered(*pictureFormatOf(path))) findRenderModule(problem);
  return problem;
}

std::string numberedPath(const std::string& path, std::size_t number) {
  if (number == 1) return path;
  std::string result = path;
  return result.insert(result.rfind('.'), '-' + std::to_string(number));
}

std::string writePicture(CMiniDrawDoc& document, const std::string& path,
                         const PictureOptions& options) {
  try {
    const Picture picture = makePicture(document, *pictureFormatOf(path), options);
    if (!picture.problem.empty()) return onOneLine(path) + " is not written: " + picture.problem;
    const int error = writeWholeFile(path, picture.bytes);
    return error == 0 ? std::string() : cannotWrite(path, error);
  } catch (const std::bad_alloc&) {
    return onOneLine(path) + " is not written: " + std::string(memoryUsedUp);
  }
}

}  // namespace vexa
