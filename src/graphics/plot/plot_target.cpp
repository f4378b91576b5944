#include "graphics/plot/plot_target.h"

#include <algorithm>
#include <array>

#include "interp/errors.h"
#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "values/argument_readers.h"
#include "values/builtins.h"

namespace vexa {

PlotState& plotState() { return interpreter().plot; }

CMiniDrawDoc& prepareDrawingTarget() {
  PlotState& state = plotState();
  CMiniDrawDoc* drawing = shell().activeDrawing();
  if (!drawing) drawing = state.drawing;
  if (!drawing) drawing = &shell().newDrawing();
  if (drawing != state.drawing) adoptDrawing(state, *drawing);
  if (drawing != shell().activeDrawing()) shell().bringToFront(*drawing);
  if (drawing->pictureStart() < 0) drawing->addInitialFontItem();
  state.plotted = true;
  return *drawing;
}

CMiniDrawDoc& currentDrawing() {
  return plotState().drawing ? *plotState().drawing : prepareDrawingTarget();
}

void ensureDefaultRange() {
  PlotState& state = plotState();
  if (state.xScale > 0) return;
  setDefaultRange(state);
  updateScales();
}

bool updateScales() {
  PlotState& state = plotState();
  const ScaleOutcome outcome = recomputeScales(state);
  if (outcome == ScaleOutcome::none) return false;
  if (outcome == ScaleOutcome::invalid) {
    messageBox("Invalid plot domain");
    raiseError(ErrorKey::invalidData);
  }
  if (state.drawing) {
    storePlotSettings(state, state.drawing->settings());
    state.drawing->setModified(true);
    shell().windowOf(*state.drawing).setYMaximum(state.yMaximum);
  }
  return outcome == ScaleOutcome::valid;
}

void leaveRangeAsResult() {
  const PlotState& state = plotState();
  Matrix* range = newTempMatrix(1, 4);
  const std::array values{state.xMinimum, state.yMinimum, state.xMaximum, state.yMaximum};
  std::ranges::copy(values, range->elements().begin());
  setBuiltinResult(range);
}

double figureCountResult() {
  leaveRangeAsResult();
  expectChar(')');
  interpreter().noEcho = true;
  return static_cast<double>(currentDrawing().figureCount());
}

void appendFigure(std::unique_ptr<CFigure> figure) {
  CMiniDrawDoc& drawing = currentDrawing();
  if (drawing.figureCount() >= mostFigures) {
    messageBox("Too many figures in the drawing");
    return raiseError(ErrorKey::invalidData);
  }
  const std::size_t position = drawing.add(std::move(figure));
  shell().windowOf(drawing).changed(position);
}

void forgetDrawing(const void* drawing) {
  PlotState& state = plotState();
  if (state.drawing == drawing) state.drawing = nullptr;
}

}  // namespace vexa
