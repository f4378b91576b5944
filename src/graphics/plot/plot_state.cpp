#include "graphics/plot/plot_state.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/coordinates.h"

namespace vexa {

namespace {

constexpr std::int32_t independentFlag = 1;
constexpr std::int32_t xLogarithmicFlag = 2;
constexpr std::int32_t yLogarithmicFlag = 4;

double axisValue(double v, bool logarithmic) { return logarithmic ? std::log10(v) : v; }

double worldValue(double v, bool logarithmic) { return logarithmic ? std::pow(10.0, v) : v; }

double xAxis(const PlotState& state, double x) { return axisValue(x, state.xLogarithmic); }

double yAxis(const PlotState& state, double y) { return axisValue(y, state.yLogarithmic); }

// A positive size that 32 bits hold; one below 1 stands for the initial size. 0 when it is none.
std::int32_t pictureSize(double size, std::int32_t initial) {
  if (!std::isfinite(size) || std::fabs(size) > largestCoordinate) return 0;
  return size < 1 ? initial : static_cast<std::int32_t>(std::round(size));
}

bool usable(double scale) { return scale > 0 && std::isfinite(scale); }

void dropRange(PlotState& state) {
  state.xMinimum = state.xMaximum = 0;
  state.yMinimum = state.yMaximum = 0;
  state.xScale = 0;
}

}  // namespace

void initializePlot(PlotState& state, const DrawingSettings& settings) {
  PlotState fresh;
  if (settings.orientation == 1) {
    fresh.pictureWidth = 1500;
    fresh.pictureHeight = 1000;
  }
  fresh.drawing = state.drawing;
  fresh.plotted = state.plotted;
  state = fresh;
}

void adoptDrawing(PlotState& state, CMiniDrawDoc& drawing) {
  const DrawingSettings& settings = drawing.settings();
  state.drawing = &drawing;
  initializePlot(state, settings);
  PlotState taken = state;
  const auto& world = settings.world;
  taken.xMinimum = world[0];
  taken.yMinimum = world[1];
  taken.xMaximum = world[2];
  taken.yMaximum = world[3];
  taken.xScale = world[4];
  taken.yScale = world[5];
  taken.independentScales = (settings.scaleFlags & independentFlag) != 0;
  taken.xLogarithmic = (settings.scaleFlags & xLogarithmicFlag) != 0;
  taken.yLogarithmic = (settings.scaleFlags & yLogarithmicFlag) != 0;
  taken.pictureLeft = settings.pictureLeft;
  taken.pictureTop = settings.pictureTop;
  taken.pictureWidth =
      pictureSize(taken.xScale * (xAxis(taken, taken.xMaximum) - xAxis(taken, taken.xMinimum)),
                  state.pictureWidth);
  taken.pictureHeight =
      pictureSize(taken.yScale * (yAxis(taken, taken.yMaximum) - yAxis(taken, taken.yMinimum)),
                  state.pictureHeight);
  if (!std::ranges::all_of(world, [](double v) { return std::isfinite(v); })) return;
  if (taken.xScale <= 0 || taken.pictureWidth == 0 || taken.pictureHeight == 0) return;
  taken.widthToHeight = static_cast<double>(taken.pictureWidth) / taken.pictureHeight;
  taken.windowChosen = true;
  state = taken;
  drawing.setPictureStart(static_cast<std::int32_t>(drawing.figureCount()));
}

void storePlotSettings(const PlotState& state, DrawingSettings& settings) {
  settings.pictureLeft = state.pictureLeft;
  settings.pictureTop = state.pictureTop;
  settings.world = {state.xMinimum, state.yMinimum, state.xMaximum,
                    state.yMaximum, state.xScale,   state.yScale};
  const std::int32_t known = independentFlag | xLogarithmicFlag | yLogarithmicFlag;
  settings.scaleFlags =
      (settings.scaleFlags & ~known) | (state.independentScales ? independentFlag : 0) |
      (state.xLogarithmic ? xLogarithmicFlag : 0) | (state.yLogarithmic ? yLogarithmicFlag : 0);
}

ScaleOutcome recomputeScales(PlotState& state) {
  const double ratio = static_cast<double>(state.pictureWidth) / state.pictureHeight;
  double dx = xAxis(state, state.xMaximum) - xAxis(state, state.xMinimum);
  double dy = yAxis(state, state.yMaximum) - yAxis(state, state.yMinimum);
  if (!std::isfinite(dx) || !std::isfinite(dy)) {
    dropRange(state);
    return ScaleOutcome::invalid;
  }
  if (dx <= 0 && dy <= 0) {
    state.xScale = 0;
    return ScaleOutcome::none;
  }
  if (!state.independentScales) {
    const double t = dy * ratio;
    if (t > dx) {
      dx = t;
      state.xMaximum = worldValue(xAxis(state, state.xMinimum) + t, state.xLogarithmic);
    } else {
      dy = dx / ratio;
      state.yMaximum = worldValue(yAxis(state, state.yMinimum) + dy, state.yLogarithmic);
    }
  }
  if (std::fabs(dx) > 0) state.xScale = state.pictureWidth / dx;
  if (std::fabs(dy) > 0) state.yScale = state.pictureHeight / dy;
  if (usable(state.xScale) && usable(state.yScale)) return ScaleOutcome::valid;
  dropRange(state);
  return ScaleOutcome::invalid;
}

void setDefaultRange(PlotState& state) {
  state.yMinimum = state.yLogarithmic ? 1 : 0;
  state.yMaximum = state.yLogarithmic ? 1000 : 100;
  state.xMinimum = state.xLogarithmic ? 1 : 0;
  state.xMaximum = state.xLogarithmic ? 1000 : 100 * state.widthToHeight;
}

std::optional<Point> mapPoint(const PlotState& state, double x, double y) {
  const double u = xAxis(state, x);
  const double v = yAxis(state, y);
  if (!std::isfinite(u) || !std::isfinite(v)) return std::nullopt;
  const double bottom = static_cast<double>(state.pictureHeight) + state.pictureTop;
  return Point{truncated((u - xAxis(state, state.xMinimum)) * state.xScale + state.pictureLeft),
               truncated(bottom - (v - yAxis(state, state.yMinimum)) * state.yScale)};
}

void setWorldWindow(PlotState& state, double x1, double y1, double x2, double y2) {
  // Swapped rather than sorted: a not-a-number must get into the range, where it is refused.
  if (x1 > x2) std::swap(x1, x2);
  if (y1 > y2) std::swap(y1, y2);
  state.xMinimum = x1;
  state.xMaximum = x2;
  state.yMinimum = y1;
  state.yMaximum = y2;
}

bool placePicture(PlotState& state, bool landscape, double x, double y, double w, double h) {
  const double across = landscape ? pageHeightInWidths : 1.0;
  const double down = landscape ? 1.0 : pageHeightInWidths;
  // Turned round so that not-a-number is refused too.
  if (!(x >= 0) || !(y >= 0)) return false;
  if (!(w > 0) || !(x + w <= across)) return false;
  if (!(h > 0) || !(y + h <= down)) return false;
  // A picture of less than a unit would make every range invalid, and so every later call.
  const std::int32_t width = truncated(w * pageWidth);
  const std::int32_t height = truncated(h * pageWidth);
  if (width == 0 || height == 0) return false;
  state.pictureLeft = truncated(x * pageWidth);
  state.pictureTop = truncated(y * pageWidth);
  state.pictureWidth = width;
  state.pictureHeight = height;
  return true;
}

Point pictureCentre(const PlotState& state) {
  const double left = xAxis(state, state.xMinimum);
  const double low = yAxis(state, state.yMinimum);
  const double u = (xAxis(state, state.xMaximum) - left) * 0.5 - left;
  const double v = (yAxis(state, state.yMaximum) - low) * 0.5 - low;
  const double bottom = static_cast<double>(state.pictureHeight) + state.pictureTop;
  return {truncated(u * state.xScale + state.pictureLeft), truncated(bottom - v * state.yScale)};
}

}  // namespace vexa
