#pragma once

// What all plotting built-ins share: the drawing they append to, the range they draw in, and the
// result they leave.

#include <memory>
#include <string_view>
#include <utility>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/plot/plot_state.h"

namespace vexa {

// The one plot state of the process.
PlotState& plotState();

// Makes sure that there is a current drawing: the one in front, else the one plotted last, else a
// new one; it is in front then and has its font item. A drawing that was not the current one before
// brings its own range.
CMiniDrawDoc& prepareDrawingTarget();

// The current drawing for a call that has read its arguments: they may have run programs, and a
// person may have closed the drawing meanwhile, in which case a new one is prepared.
CMiniDrawDoc& currentDrawing();

// Without a valid range, sets the default range and computes the scales.
void ensureDefaultRange();

// Recomputes the scales, stores them in the current drawing and tells its view. An invalid range
// shows "Invalid plot domain" and raises key 34. False when there is no valid range now.
bool updateScales();

// Makes the range, 1 x 4 with x minimum, y minimum, x maximum, y maximum, the call's matrix result.
void leaveRangeAsResult();

// The end of a call that appends: leaves the range as result, takes ")", and gives back the number
// of figures with the no-echo mark.
double figureCountResult();

// More figures than this in one drawing are a loop that does not end.
inline constexpr std::size_t mostFigures = 2'000'000;

// Appends a figure to the current drawing and has its view repainted. A full drawing says so
// and raises key 34.
void appendFigure(std::unique_ptr<CFigure> figure);
template <class Figure, class... Arguments>
void plotFigure(Arguments&&... arguments) {
  appendFigure(std::make_unique<Figure>(currentDrawing(), std::forward<Arguments>(arguments)...));
}

// The drawing is about to be destroyed.
void forgetDrawing(const void* drawing);

}  // namespace vexa
