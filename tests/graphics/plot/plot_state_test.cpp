// World coordinates: scales and what is kept of them, the mapping, and the words of a drawing.

#include "graphics/plot/plot_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "graphics/document/drawing_file.h"
#include "graphics/figures/lines.h"
#include "graphics/plot/drawing_messages.h"
#include "graphics/plot/plot_target.h"
#include "graphics/surfaces/recording_surface.h"
#include "interp/errors.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

struct ScaleCase {
  std::string_view what;
  PlotState before;  // of the picture 1200 x 800 unless it says otherwise
  ScaleOutcome outcome;
  std::array<double, 6> after;  // x minimum, y minimum, x maximum, y maximum, x scale, y scale
};

PlotState ranged(double x1, double y1, double x2, double y2, double xScale = 0, double yScale = 0) {
  PlotState state;
  setWorldWindow(state, x1, y1, x2, y2);
  state.xScale = xScale;
  state.yScale = yScale;
  return state;
}

PlotState equal(PlotState state, std::int32_t width, std::int32_t height) {
  state.independentScales = false;
  state.pictureWidth = width;
  state.pictureHeight = height;
  return state;
}

TEST(PlotState, RecomputesTheScalesAndKeepsWhatHasNoExtent) {
  PlotState decades = ranged(1, 0, 1000, 100);
  decades.xLogarithmic = true;
  PlotState equalDecades = equal(decades, 1000, 10);
  equalDecades.yMaximum = 0.1;
  PlotState negativeDecade = decades;
  negativeDecade.xMinimum = -1;
  const std::vector<ScaleCase> cases{
      {"independent", ranged(0, 0, 100, 200), ScaleOutcome::valid, {0, 0, 100, 200, 12, 4}},
      {"no extent", ranged(3, 4, 3, 4, 5, 6), ScaleOutcome::none, {3, 4, 3, 4, 0, 6}},
      {"no width, scale kept", ranged(3, 0, 3, 8, 5, 6), ScaleOutcome::valid, {3, 0, 3, 8, 5, 100}},
      {"no width, no scale", ranged(3, 0, 3, 8, 0, 6), ScaleOutcome::invalid, {0, 0, 0, 0, 0, 100}},
      {"no height, no scale", ranged(0, 1, 8, 1), ScaleOutcome::invalid, {0, 0, 0, 0, 0, 0}},
      {"not a number", ranged(0, 0, nan, 8, 1, 1), ScaleOutcome::invalid, {0, 0, 0, 0, 0, 1}},
      {"infinite", ranged(0, 0, 8, inf, 1, 1), ScaleOutcome::invalid, {0, 0, 0, 0, 0, 1}},
      {"equal, x widened",
       equal(ranged(0, 0, 10, 10), 800, 400),
       ScaleOutcome::valid,
       {0, 0, 20, 10, 40, 40}},
      {"equal, y widened",
       equal(ranged(0, 5, 30, 15), 800, 400),
       ScaleOutcome::valid,
       {0, 5, 30, 20, 800 / 30.0, 400 / 15.0}},
      {"equal, y narrowed never",
       equal(ranged(0, 0, 30, 0), 800, 400),
       ScaleOutcome::valid,
       {0, 0, 30, 15, 800 / 30.0, 400 / 15.0}},
      {"decades", decades, ScaleOutcome::valid, {1, 0, 1000, 100, 400, 8}},
      {"equal decades", equalDecades, ScaleOutcome::valid, {1, 0, 1e10, 0.1, 100, 100}},
      {"no decade", negativeDecade, ScaleOutcome::invalid, {0, 0, 0, 0, 0, 0}},
  };
  for (const ScaleCase& c : cases) {
    PlotState s = c.before;
    EXPECT_EQ(recomputeScales(s), c.outcome) << c.what;
    const std::array<double, 6> after{s.xMinimum, s.yMinimum, s.xMaximum,
                                      s.yMaximum, s.xScale,   s.yScale};
    for (std::size_t i = 0; i < after.size(); ++i)
      EXPECT_DOUBLE_EQ(after[i], c.after[i]) << c.what << ", number " << i;
  }
}

TEST(PlotState, MapsByTruncationTowardZero) {
  PlotState state;
  setDefaultRange(state);
  ASSERT_EQ(recomputeScales(state), ScaleOutcome::valid);
  // X(x) = 8x + 50, Y(y) = 850 - 8y.
  EXPECT_EQ(mapPoint(state, 0, 0), (Point{50, 850}));
  EXPECT_EQ(mapPoint(state, 150, 100), (Point{1250, 50}));
  EXPECT_EQ(mapPoint(state, 0.24, 0.24), (Point{51, 848}));
  EXPECT_EQ(mapPoint(state, -6.49, 106.49), (Point{-1, -1})) << "-1.92 becomes -1 on both axes";
  EXPECT_EQ(mapPoint(state, 1e300, 1e300), (Point{2147483647, -2147483647}));
  EXPECT_EQ(mapPoint(state, inf, 0), std::nullopt);
  EXPECT_EQ(mapPoint(state, 0, nan), std::nullopt);
  state.yLogarithmic = true;
  setDefaultRange(state);
  ASSERT_EQ(recomputeScales(state), ScaleOutcome::valid);
  EXPECT_EQ(mapPoint(state, 0, 1000), (Point{50, 50}));
  EXPECT_EQ(mapPoint(state, 0, 0), std::nullopt);
}

TEST(PlotState, PicturesAreWhollyOnThePage) {
  PlotState state;
  EXPECT_TRUE(placePicture(state, false, 0.5, 0.1, 0.25, 0.999));
  EXPECT_EQ((Point{state.pictureLeft, state.pictureTop}), (Point{695, 139}));
  EXPECT_EQ((Point{state.pictureWidth, state.pictureHeight}), (Point{347, 1388}));
  EXPECT_TRUE(placePicture(state, false, 0, 0, 1, pageHeightInWidths));
  EXPECT_FALSE(placePicture(state, true, 0, 0, 1, pageHeightInWidths));
  EXPECT_TRUE(placePicture(state, true, 0, 0, pageHeightInWidths, 1));
  EXPECT_EQ(state.pictureWidth, 1800);
  EXPECT_FALSE(placePicture(state, false, 0, nan, 1, 1));
  EXPECT_EQ(state.pictureWidth, 1800) << "a refusal changes nothing";
}

TEST(PlotState, DrawingsBringTheirRangeOrGetTheFirstOne) {
  CMiniDrawDoc drawing;
  DrawingSettings& settings = drawing.settings();
  PlotState state = ranged(0, 5, 30, 20, 40, 50);
  state.independentScales = false;
  state.pictureTop = 99;
  settings.scaleFlags = 0x51;
  storePlotSettings(state, settings);
  EXPECT_EQ(settings.world, (std::array<double, 6>{0, 5, 30, 20, 40, 50}));
  EXPECT_EQ(settings.scaleFlags, 0x50) << "unknown bits stay";

  PlotState adopted;
  adoptDrawing(adopted, drawing);
  EXPECT_EQ((Point{adopted.pictureWidth, adopted.pictureHeight}), (Point{1200, 750}));
  EXPECT_EQ(adopted.pictureTop, 99);
  EXPECT_EQ(adopted.yMaximum, 20);
  EXPECT_FALSE(adopted.independentScales);
  EXPECT_TRUE(adopted.windowChosen);
  EXPECT_EQ(drawing.pictureStart(), 0);

  // Blocks that cannot be meant: not finite, no scale, a picture beyond 32 bits.
  for (const std::array<double, 6>& world :
       {std::array<double, 6>{0, 0, 1, nan, 1, 1}, {0, 0, 1, 1, 0, 1}, {0, 0, 1e200, 1, 1, 1}}) {
    settings.world = world;
    adoptDrawing(adopted, drawing);
    EXPECT_EQ(adopted.xScale, 0);
    EXPECT_EQ(adopted.pictureWidth, 1200);
    EXPECT_TRUE(adopted.independentScales);
    EXPECT_EQ(adopted.drawing, &drawing);
  }
  settings.orientation = 1;
  adoptDrawing(adopted, drawing);
  EXPECT_EQ(adopted.pictureHeight, 1000);
}

// What programs leave in the drawing in front.
TEST(PlotBuiltins, PlotIntoTheDrawingInFront) {
  ScriptedSession session;
  ASSERT_TRUE(
      session.run("main() { RGB(255,128,300); setrange(0,0,300,100); plotline(0,0,9,9); }"));
  ASSERT_EQ(session.shell.drawings().size(), 1u);
  CMiniDrawDoc& first = *session.shell.drawings()[0];
  EXPECT_EQ(first.settings().penColor, 0x0080FFu);
  EXPECT_EQ(first.settings().penColorIndex, 16);
  EXPECT_EQ(first.figure(1)->m_Color, 0x0080FFu);
  EXPECT_EQ(first.settings().world, (std::array<double, 6>{0, 0, 300, 100, 4, 8}));

  // Another drawing comes to the front and has no range; the first one keeps its own.
  CMiniDrawDoc& second = session.shell.newDrawing();
  ASSERT_TRUE(session.run("main() { plotline(0,0,9,9); }"));
  EXPECT_EQ(first.figureCount(), 2u);
  EXPECT_EQ(second.figure(1)->boundingBox(0), (Rect{50, 778, 122, 850}));
  session.shell.bringToFront(first);
  ASSERT_TRUE(session.run("main() { plotrectangle(0,0,300,100); }"));
  EXPECT_EQ(first.figure(2)->boundingBox(0), (Rect{50, 50, 1250, 850}));

  // A loaded drawing that was never emptied gets its font item when a program plots into it.
  CoreCommands().documentClosed(&first);
  EXPECT_EQ(interpreter().plot.drawing, nullptr);
  CMiniDrawDoc loaded;
  session.shell.bringToFront(loaded);
  ASSERT_TRUE(session.run("main() { plotline(0,0,9,9); }"));
  EXPECT_EQ(loaded.figureCount(), 2u);
  CoreCommands().documentClosed(&loaded);
}

TEST(PlotBuiltins, ALoopWithoutAnEndFillsADrawingAndNoMore) {
  ScriptedSession session;
  CMiniDrawDoc& drawing = session.shell.newDrawing();
  while (drawing.figureCount() < mostFigures - 1) drawing.append(CLine());
  session.run("main() { while (1) { plotline(0,0,1,1); } }");
  EXPECT_EQ(drawing.figureCount(), mostFigures);
  ASSERT_EQ(session.messages().size(), 2u);
  EXPECT_EQ(session.messages()[0], "Too many figures in the drawing");
}

TEST(PlotBuiltins, LoadsAndPaintsTellTheirTrouble) {
  ScriptedSession session;
  CMiniDrawDoc drawing;
  drawing.emptyDrawing();
  const std::string bytes = writeDrawing(drawing);
  const std::string note(drawingLoadNote);
  EXPECT_TRUE(loadDrawing(bytes, drawing));
  EXPECT_FALSE(loadDrawing(bytes.substr(0, 50), drawing));
  EXPECT_FALSE(loadDrawing(std::string(8, '\0'), drawing));
  const std::vector<std::string> messages = session.messages();
  ASSERT_EQ(messages.size(), 4u);
  EXPECT_EQ(messages[0], note);
  EXPECT_EQ(messages[1], note);
  EXPECT_EQ(messages[2], archiveMessage(ArchiveError::endOfFile));
  EXPECT_THAT(messages[3], testing::HasSubstr("File format corrupted"));

  // Nothing runs: the texts that follow are not drawn. While something runs, it stops.
  RecordingSurface surface({.canMakeFonts = false});
  paintDrawing(drawing, surface, windowPaintOptions());
  EXPECT_EQ(session.messages().size(), 4u);
  interpreter().evaluating = true;
  EXPECT_THROW(paintDrawing(drawing, surface, windowPaintOptions()), RunAbandoned);
  EXPECT_THAT(session.messages().at(4), testing::HasSubstr("Unable to create font"));
}

}  // namespace
}  // namespace vexa
