// Painting a drawing: order, what is left out, fonts and printers. Also the list itself.

#include "graphics/document/painting.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "graphics/figures/lines.h"
#include "graphics/figures/paint_state.h"
#include "graphics/figures/texts.h"
#include "graphics/surfaces/recording_surface.h"

namespace vexa {
namespace {

using Lines = std::vector<std::string>;

class Painting : public testing::Test {
 protected:
  void SetUp() override { paintState() = {}; }
  void TearDown() override { paintState() = {}; }

  Lines painted(const RecordingSurface::Target& target = {}, const PaintOptions& options = {}) {
    RecordingSurface surface(target);
    paintDrawing(drawing, surface, options);
    return surface.lines();
  }
  CFigure& line(Point from, Point to) { return drawing.append(CLine(drawing, from, to)); }
  CFigure& text(std::string words) { return drawing.append(CText(drawing, {5, 6}, {}, words)); }
  void fontItem(std::int32_t height) {
    FontDescription font = drawing.font();
    font.height = height;
    drawing.setFont(font);
    drawing.append(CFontItem(drawing, {}, {}));
  }

  CMiniDrawDoc drawing;
};

const std::string fill = "fill 0,0 1390,1800 000000";

TEST_F(Painting, EmptiedDrawingsHoldTheirFontItem) {
  EXPECT_EQ(drawing.figureCount(), 0u);
  EXPECT_EQ(drawing.pictureStart(), -1);
  fontItem(99);
  line({1, 1}, {2, 2});
  drawing.settings().title = "stays";
  drawing.setModified(false);
  drawing.clear();
  ASSERT_EQ(drawing.figureCount(), 1u);
  const auto& item = dynamic_cast<const CFontItem&>(*drawing.figure(0));
  EXPECT_EQ(item.m_Font.face(), "Times New Roman");
  EXPECT_EQ(item.m_Font.height, 16);
  EXPECT_EQ(item.m_Font.pitchAndFamily, 0x30);
  EXPECT_EQ(drawing.pictureStart(), 1);
  EXPECT_TRUE(drawing.modified());
  EXPECT_EQ(drawing.settings().title, "stays");
  EXPECT_EQ(drawing.figure(1), nullptr);
  EXPECT_EQ(drawing.figure(-1), nullptr);
}

TEST_F(Painting, LeavesOutWhatIsHiddenOrOutside) {
  line({10, 10}, {20, 10});
  line({10, 20}, {20, 20}).m_Visible = 0;
  line({10, 99}, {20, 99});
  // The box has a margin of 1 on the right and below only, and an area ends before its last line.
  line({0, 50}, {4, 50});
  line({0, 60}, {5, 60});
  line({50, 0}, {60, 0});
  const RecordingSurface::Target target{.paintArea = {5, 5, 50, 99}};
  EXPECT_EQ(painted(target), (Lines{"fill 5,5 50,99 000000", "line 10,10 20,10 pen solid 1 8080FF",
                                    "line 0,60 5,60 pen solid 1 8080FF"}));
}

TEST_F(Painting, TextsTakeTheFontPaintedLastWhereverThatWas) {
  text("early");
  EXPECT_EQ(painted(), (Lines{fill})) << "no font item was ever painted";
  fontItem(20);
  text("late");
  const std::string early = "text 5,6 \"early\" 8080FF font 20 Times New Roman";
  const std::string late = "text 5,6 \"late\" 8080FF font 20 Times New Roman";
  EXPECT_EQ(painted(), (Lines{fill, late}));
  EXPECT_EQ(painted(), (Lines{fill, early, late}));
  drawing.figure(0)->m_Visible = 0;
  EXPECT_EQ(painted({.paintArea = {900, 900, 901, 901}}),
            (Lines{"fill 900,900 901,901 000000", late}))
      << "hidden texts are left out, distant ones are not";
}

TEST_F(Painting, FontItemsBecomeTheFontOfTheDrawing) {
  fontItem(20);
  drawing.setFont({});
  painted();
  EXPECT_EQ(drawing.font().height, 20);
  EXPECT_EQ(paintState().textFont->height, 20);
  int failures = 0;
  const PaintOptions counting{.fontFailed = [&](const FontDescription&) { ++failures; }};
  painted({.canMakeFonts = false}, counting);
  EXPECT_EQ(failures, 1);
  EXPECT_FALSE(paintState().textFont);
  const PaintOptions throwing{
      .fontFailed = [](const FontDescription&) { throw std::runtime_error("no font"); }};
  EXPECT_THROW(painted({.canMakeFonts = false}, throwing), std::runtime_error);
}

TEST_F(Painting, PrintsAreWhiteAndBlackAsTheUserWishes) {
  drawing.settings().backgroundColor = 0x123456;
  line({1, 2}, {3, 4});
  const std::string colored = "line 1,2 3,4 pen solid 1 8080FF";
  const std::string blackened = "line 1,2 3,4 pen solid 1 000000";
  const std::string page = "fill 0,0 1390,1800 ";
  EXPECT_EQ(painted({.printing = true, .pixelsPerInch = 600}), (Lines{page + "FFFFFF", blackened}));
  EXPECT_EQ(paintState().pixelsPerInch, 96) << "a print does not change it";
  EXPECT_EQ(painted({.pixelsPerInch = 120}), (Lines{page + "123456", colored}));
  EXPECT_EQ(paintState().pixelsPerInch, 120);
  EXPECT_EQ(painted({}, {.background = white}), (Lines{page + "FFFFFF", colored}));
  paintState().blackAndWhitePrinting = false;
  EXPECT_EQ(painted({.printing = true}, {.background = black}), (Lines{page + "FFFFFF", colored}));
}

TEST_F(Painting, ExtentsThatAreNoneBringTheSettingsOfANewDrawing) {
  DrawingSettings& settings = drawing.settings();
  settings.formatNumber = 6502;
  settings.pictureLeft = 7;
  settings.penWidth = 9;
  settings.title = "old";
  settings.height = 1;
  line({1, 2}, {3, 4});
  DrawingSettings expected = settings;
  drawing.ensureExtent();
  EXPECT_EQ(settings, expected);
  settings.width = 0;
  drawing.ensureExtent();
  expected = {};
  expected.formatNumber = 6502;
  expected.pictureLeft = 7;
  EXPECT_EQ(settings, expected);
  EXPECT_EQ(drawing.figureCount(), 1u);
}

}  // namespace
}  // namespace vexa
