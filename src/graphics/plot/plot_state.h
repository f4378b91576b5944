#pragma once

// Where a program's numbers stand on a drawing.
//
// A plot state maps world coordinates, y growing upward, into the picture, an area of the page in
// logical units. It outlives runs: a program without a range of its own goes on in the last one.

#include <cstdint>
#include <optional>

#include "graphics/surfaces/drawing_types.h"

namespace vexa {

class CMiniDrawDoc;
struct DrawingSettings;

// The page in logical units; pictures are placed in fractions of its width.
inline constexpr double pageWidth = 1390;
inline constexpr double pageHeight = 1800;
inline constexpr double pageHeightInWidths = 1.2949640287769784;

struct PlotState {
  // The world range, and logical units per world unit (per decade on a logarithmic axis). An x
  // scale of 0 means that there is no range.
  double xMinimum = 0, xMaximum = 0;
  double yMinimum = 0, yMaximum = 0;
  double xScale = 0, yScale = 0;
  bool xLogarithmic = false, yLogarithmic = false;
  // False: a world unit is as long across as up, and recomputing widens the range to that end.
  bool independentScales = true;

  std::int32_t pictureLeft = 50, pictureTop = 50;
  std::int32_t pictureWidth = 1200, pictureHeight = 800;
  double widthToHeight = 1.5;  // of the default range

  // Set when the program has chosen the window; otherwise built-ins that draw data may.
  bool windowChosen = false;
  bool plotted = false;
  // The current drawing, owned by the front; null when there is none.
  CMiniDrawDoc* drawing = nullptr;
};

// The state in which a drawing without a range is met: no range, the picture of its orientation.
// The current drawing and the mark that something was plotted stay.
void initializePlot(PlotState& state, const DrawingSettings& settings);

// Takes a drawing's range, flags and picture from its settings; one without a usable range gets
// initializePlot. The picture then begins at the end of the list.
void adoptDrawing(PlotState& state, CMiniDrawDoc& drawing);

// Stores the range, the scales, their flags and the picture's margins in a drawing's settings.
void storePlotSettings(const PlotState& state, DrawingSettings& settings);

enum class ScaleOutcome {
  valid,
  none,     // no extent in either direction: the x scale is 0 now, all else as it was
  invalid,  // the range and the x scale are 0 now
};

// Computes the scales from range and picture. With equal scales the x range is widened, or the y
// range set, to fit. A direction without extent keeps its scale, if it had one. Extents that are
// not finite are invalid.
ScaleOutcome recomputeScales(PlotState& state);

// 0 to 150 across and 0 to 100 up in the standard picture, 1 to 1000 on a logarithmic axis. The
// scales are still to be computed.
void setDefaultRange(PlotState& state);

// The place of a world point, truncated toward zero. Nothing for a coordinate that is not finite,
// or not positive on a logarithmic axis.
std::optional<Point> mapPoint(const PlotState& state, double x, double y);

// The box that holds two opposite corners becomes the world range.
void setWorldWindow(PlotState& state, double x1, double y1, double x2, double y2);

// Places the picture, given in fractions of the page width. False, and nothing changed, when it is
// not wholly on the page or smaller than a unit.
bool placePicture(PlotState& state, bool landscape, double x, double y, double w, double h);

// The point on which a view is centered when the picture has been placed.
Point pictureCentre(const PlotState& state);

}  // namespace vexa
