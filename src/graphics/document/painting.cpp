#include "graphics/document/painting.h"

#include "graphics/figures/paint_state.h"
#include "graphics/figures/texts.h"

namespace vexa {

namespace {

void takeFont(CMiniDrawDoc& document, const FontDescription& font, DrawingSurface& surface,
              const PaintOptions& options) {
  document.setFont(font);
  if (surface.canMakeFont(font)) {
    paintState().textFont = font;
    return;
  }
  if (options.fontFailed) options.fontFailed(font);
  paintState().textFont.reset();
}

}  // namespace

void paintDrawing(CMiniDrawDoc& document, DrawingSurface& surface, const PaintOptions& options) {
  PaintState& state = paintState();
  const bool printing = surface.printing();
  const Rect area = surface.paintArea();
  const ColorRef background =
      printing ? white : options.background.value_or(document.settings().backgroundColor);
  surface.setBackgroundColor(background);
  surface.fillArea(area, background);
  // Only after the fill, which is not to be blackened.
  state.blackAndWhite = printing && state.blackAndWhitePrinting;
  if (!printing) state.pixelsPerInch = surface.pixelsPerInch();

  const auto count = static_cast<std::ptrdiff_t>(document.figureCount());
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    const CFigure& figure = *document.figure(i);
    const RuntimeClass* figureClass = &figure.GetRuntimeClass();
    if (figureClass == &runtimeClass(FigureType::fontItem)) {
      takeFont(document, dynamic_cast<const CFontItem&>(figure).m_Font, surface, options);
    } else if (figure.m_Visible != 0) {
      const bool isText = figureClass == &runtimeClass(FigureType::text);
      if (isText || intersects(figure.boundingBox(1), area)) figure.Draw(surface);
    }
  }
}

}  // namespace vexa
