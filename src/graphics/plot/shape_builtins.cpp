#include "graphics/plot/shape_builtins.h"

#include <cmath>
#include <vector>

#include "graphics/document/palette.h"
#include "graphics/figures/boxes.h"
#include "graphics/figures/lines.h"
#include "graphics/plot/plot_target.h"
#include "interp/errors.h"
#include "interp/interpreter_state.h"
#include "values/argument_readers.h"
#include "values/builtins.h"

namespace vexa {

namespace {

bool coincide(const std::vector<double>& v) {
  const double dx = v[2] - v[0];
  const double dy = v[3] - v[1];
  return dx * dx + dy * dy == 0;
}

void plotLine(const std::vector<double>& v) {
  const auto from = mapPoint(plotState(), v[0], v[1]);
  const auto to = mapPoint(plotState(), v[2], v[3]);
  if (coincide(v) || !from || !to) return;
  plotFigure<CLine>(*from, *to);
}

void plotRectangle(const std::vector<double>& v) {
  const auto first = mapPoint(plotState(), v[0], v[3]);
  const auto second = mapPoint(plotState(), v[2], v[1]);
  if (coincide(v) || !first || !second) return;
  if (currentDrawing().settings().fillStyle == fillNone)
    plotFigure<CRectangle>(*first, *second);
  else
    plotFigure<CRectFill>(*first, *second);
}

// Center and half-axes lose what single precision does not hold.
void plotEllipse(const std::vector<double>& v) {
  const double x = static_cast<float>(v[0]);
  const double y = static_cast<float>(v[1]);
  const double a = static_cast<float>(v[2]);
  const double b = static_cast<float>(v[3]);
  const auto first = mapPoint(plotState(), x - a, y + b);
  const auto second = mapPoint(plotState(), x + a, y - b);
  if (a == 0 || b == 0 || !first || !second) return;
  plotFigure<CEllipse>(*first, *second);
}

void setPicturePosition(const std::vector<double>& v) {
  PlotState& state = plotState();
  CMiniDrawDoc& drawing = currentDrawing();
  const bool landscape = drawing.settings().orientation == 1;
  if (!placePicture(state, landscape, v[0], v[1], v[2], v[3]))
    return raiseError(ErrorKey::invalidData);
  updateScales();
  drawing.setPictureStart(static_cast<std::int32_t>(drawing.figureCount()));
  const Point centre = pictureCentre(state);
  DrawingWindow& window = shell().windowOf(drawing);
  window.centreOn(centre.x, centre.y);
  window.changed(0);
}

void setRange(const std::vector<double>& v) {
  setWorldWindow(plotState(), v[0], v[1], v[2], v[3]);
  if (updateScales()) plotState().windowChosen = true;
}

// A component outside of 0 to 255 counts as 0.
std::uint8_t colorComponent(double v) {
  const double whole = std::trunc(v);
  return whole >= 0 && whole <= 255 ? static_cast<std::uint8_t>(whole) : std::uint8_t{0};
}

void setPenColor(std::vector<double> v) {
  v.resize(3);
  CMiniDrawDoc& drawing = currentDrawing();
  DrawingSettings& settings = drawing.settings();
  settings.penColor = colorOf(colorComponent(v[0]), colorComponent(v[1]), colorComponent(v[2]));
  settings.penColorIndex = freeColorIndex;
  drawing.setModified(true);
}

}  // namespace

double shapeBuiltin() {
  const int name = interpreter().currentBuiltin;
  expectChar('(');
  prepareDrawingTarget();
  ensureDefaultRange();
  const std::vector<double> numbers = readDataList(4, 4);
  switch (name) {
    case builtinCode("plotline"):
      plotLine(numbers);
      break;
    case builtinCode("plotrectangle"):
      plotRectangle(numbers);
      break;
    case builtinCode("plotellipse"):
      plotEllipse(numbers);
      break;
    case builtinCode("setpictposition"):
      setPicturePosition(numbers);
      break;
    default:
      break;
  }
  return figureCountResult();
}

double rangeBuiltin() {
  const int name = interpreter().currentBuiltin;
  expectChar('(');
  prepareDrawingTarget();
  switch (name) {
    case builtinCode("getrange"):
      ensureDefaultRange();
      break;
    case builtinCode("setrange"):
      setRange(readDataList(4, 4));
      break;
    case builtinCode("RGB"):
      setPenColor(readDataList(0, 3));
      break;
    default:
      break;
  }
  expectChar(')');
  leaveRangeAsResult();
  return noResult();
}

}  // namespace vexa
