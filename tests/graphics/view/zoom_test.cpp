// Zooming: scales, limits, steps and scroll positions, and what the tools do with the mouse.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "graphics/view/zoom_tool.h"

namespace vexa {
namespace {

// A client area of 500 by 400 pixels that notes what is asked of it.
class NotingWindow : public ZoomWindow {
 public:
  DeviceSize clientSize() const override { return {500, 400}; }
  DevicePoint scrollPosition() const override { return m_scroll; }
  void scrollTo(DevicePoint position) override { m_scroll = position; }
  void scrollRangeChanged() override { ++rangeChanges; }
  void captureMouse() override { note("capture"); }
  void releaseMouse() override { note("release"); }
  void showCursor(ZoomCursor cursor) override {
    note(cursor == ZoomCursor::arrow ? "arrow" : cursor == ZoomCursor::cross ? "cross" : "zoom");
  }
  void invertBox(const Rect& box) override {
    note("box " + std::to_string(box.left) + ',' + std::to_string(box.top) + ',' +
         std::to_string(box.right) + ',' + std::to_string(box.bottom));
  }
  void showStatus(std::string_view text) override { note('"' + std::string(text) + '"'); }
  void afterZoom() override { ++zooms; }

  std::vector<std::string> taken() { return std::exchange(m_notes, {}); }

  int rangeChanges = 0;
  int zooms = 0;

 private:
  void note(std::string text) { m_notes.push_back(std::move(text)); }

  DevicePoint m_scroll;
  std::vector<std::string> m_notes;
};

class ZoomTest : public testing::Test {
 protected:
  ZoomTest() { zoom.setSizes({1390, 1800}); }

  NotingWindow window;
  ZoomState zoom{window};
  ZoomTool tool{zoom, window};
};

using Notes = std::vector<std::string>;

TEST_F(ZoomTest, StepsAreTenthsUnlessLogicalOnesAreGiven) {
  EXPECT_EQ(zoom.currentSize(), (DeviceSize{1390, 1800}));
  EXPECT_EQ(zoom.pageStep(), (DeviceSize{139, 180}));
  EXPECT_EQ(zoom.lineStep(), (DeviceSize{13, 18}));
  zoom.zoomIn({});
  EXPECT_EQ(zoom.currentSize(), (DeviceSize{1965, 2545})) << "1390 and 1800 times 1.41422";
  EXPECT_EQ(zoom.pageStep(), (DeviceSize{196, 254}));
  EXPECT_EQ(zoom.lineStep(), (DeviceSize{19, 25}));
  EXPECT_EQ(window.rangeChanges, 2);
  EXPECT_EQ(window.zooms, 2);

  zoom.setSizes({1390, 1800}, {-100, 0}, {0, 7});
  EXPECT_FLOAT_EQ(zoom.scale(), 1.41422F) << "new sizes leave the scale";
  EXPECT_EQ(zoom.pageStep(), (DeviceSize{141, 180}));
  EXPECT_EQ(zoom.lineStep(), (DeviceSize{14, 10}));
}

TEST_F(ZoomTest, LimitsAreStrict) {
  float before = 0;
  while (before != zoom.scale()) {
    before = zoom.scale();
    zoom.zoomIn({});
  }
  EXPECT_GT(zoom.scale(), 16.0F);
  EXPECT_LT(zoom.scale(), 22.7F);

  zoom.zoomNormal();
  zoom.zoomIn({}, 16.0F);
  EXPECT_EQ(zoom.scale(), 16.0F);
  zoom.zoomIn({}, 1.25F);
  EXPECT_EQ(zoom.scale(), 20.0F) << "from exactly the limit one more step is taken";
  const int zooms = window.zooms;
  zoom.zoomIn({});
  EXPECT_EQ(window.zooms, zooms) << "a refused zoom is none";

  zoom.zoomNormal();
  zoom.zoomOut({}, 20.0F);
  EXPECT_EQ(zoom.scale(), 0.05F);
  zoom.zoomOut({}, 2.0F);
  EXPECT_EQ(zoom.scale(), 0.025F);
  zoom.zoomOut({});
  EXPECT_EQ(zoom.scale(), 0.025F);
}

TEST_F(ZoomTest, PointsGoToTheMiddleAsFarAsTheRangeAllows) {
  zoom.centreOn({700, 900});
  EXPECT_EQ(window.scrollPosition(), (DevicePoint{450, 700}));
  EXPECT_EQ(zoom.toLogical({250, 200}), (Point{700, 900}));
  zoom.zoomIn({}, 2.0F);
  EXPECT_EQ(zoom.toDevice({700, 900}), (DevicePoint{250, 200})) << "the middle stays";
  EXPECT_EQ(zoom.toLogical({0, 0}), (Point{575, 800}));

  zoom.centreOn({10, 1799});
  EXPECT_EQ(window.scrollPosition(), (DevicePoint{0, 3200}));
  EXPECT_EQ(zoom.lastCentre(), (Point{10, 1799}));
  zoom.zoomNormal();
  EXPECT_EQ(zoom.scale(), 1.0F);
  EXPECT_EQ(zoom.currentSize(), zoom.baseSize());
  EXPECT_EQ(zoom.lastCentre(), (Point{10, 1799}));
  EXPECT_EQ(window.scrollPosition(), (DevicePoint{0, 1400}));
  zoom.zoomOut({}, 10.0F);
  EXPECT_EQ(window.scrollPosition(), (DevicePoint{0, 0})) << "all of it is in view";
}

TEST_F(ZoomTest, BoxReplacesTheScale) {
  zoom.zoomIn({}, 2.0F);
  zoom.zoomToBox({300, 500, 200, 450});
  EXPECT_FLOAT_EQ(zoom.scale(), 501.0F / 100.0F) << "401 / 50 is larger";
  EXPECT_EQ(zoom.currentSize(), (DeviceSize{6963, 9018}));
  EXPECT_EQ(zoom.lastCentre(), (Point{250, 475}));

  zoom.zoomNormal();
  zoom.zoomToBox({100, 200, 100, 300});
  EXPECT_FLOAT_EQ(zoom.scale(), 4.01F) << "a box without width fits by its height";

  zoom.zoomNormal();
  zoom.zoomToBox({100, 200, 109, 209});
  EXPECT_FLOAT_EQ(zoom.scale(), 1.41422F) << "under ten pixels it is a click";
  EXPECT_EQ(zoom.lastCentre(), (Point{104, 204}));
  zoom.zoomNormal();
  zoom.zoomToBox({100, 200, 110, 200});
  EXPECT_FLOAT_EQ(zoom.scale(), 50.1F) << "ten pixels are a box";
}

TEST_F(ZoomTest, HugeDrawingsStayWithin32Bits) {
  constexpr auto most = std::numeric_limits<std::int32_t>::max();
  constexpr auto least = std::numeric_limits<std::int32_t>::min();
  zoom.setSizes({most, 1});
  zoom.zoomIn(Point{most, least}, 16.0F);
  EXPECT_EQ(zoom.currentSize(), (DeviceSize{most, 16}));
  EXPECT_EQ(window.scrollPosition(), (DevicePoint{most - 500, 0}));
  EXPECT_EQ(zoom.toDevice({least, most}), (DevicePoint{least, most}));
  zoom.zoomToBox({least, least, most, most});
  EXPECT_EQ(zoom.lastCentre(), (Point{0, 0}));
  EXPECT_GT(zoom.scale(), 0.0F);
}

TEST_F(ZoomTest, CommandsTakeUpAndPutAway) {
  tool.toggleZoomIn();
  EXPECT_EQ(zoom.mode(), ZoomMode::zoomIn);
  EXPECT_EQ(window.taken(), (Notes{"zoom", "\"Click to zoom in on point or drag a zoom box.\""}));
  tool.toggleZoomOut();
  EXPECT_EQ(zoom.mode(), ZoomMode::zoomOut);
  tool.toggleZoomOut();
  EXPECT_EQ(zoom.mode(), ZoomMode::none);
  EXPECT_EQ(
      window.taken(),
      (Notes{"zoom", "\"Click to zoom out on point. Right click to terminate\"", "\"\"", "arrow"}));
}

TEST_F(ZoomTest, DragShowsABoxAndZoomsToIt) {
  tool.leftButtonDown({10, 10});
  tool.mouseMoved({20, 20});
  tool.leftButtonUp({20, 20});
  EXPECT_EQ(window.taken(), Notes{}) << "without a tool the mouse does nothing";

  tool.toggleZoomIn();
  window.taken();
  tool.mouseMoved({5, 5});
  tool.leftButtonDown({110, 60});
  EXPECT_EQ(tool.cursor(), ZoomCursor::cross);
  tool.mouseMoved({100, 70});
  tool.mouseMoved({10, 20});
  tool.leftButtonUp({10, 20});
  EXPECT_EQ(window.taken(), (Notes{"capture", "cross", "box 110,60,100,70", "box 110,60,100,70",
                                   "box 110,60,10,20", "release", "zoom", "box 110,60,10,20"}))
      << "each box is drawn twice, which erases it";
  EXPECT_FLOAT_EQ(zoom.scale(), 5.01F);
  EXPECT_EQ(tool.cursor(), ZoomCursor::zoom) << "the tool stays in use";
}

TEST_F(ZoomTest, RightButtonCancelsTheDragOrEndsTheTool) {
  tool.toggleZoomIn();
  tool.leftButtonDown({10, 10});
  tool.mouseMoved({200, 200});
  window.taken();
  tool.rightButtonDown();
  EXPECT_EQ(window.taken(), (Notes{"release", "zoom", "box 10,10,200,200"}));
  tool.leftButtonUp({200, 200});
  EXPECT_EQ(zoom.scale(), 1.0F);
  EXPECT_EQ(zoom.mode(), ZoomMode::zoomIn);
  tool.rightButtonDown();
  EXPECT_EQ(zoom.mode(), ZoomMode::none);

  tool.toggleZoomIn();
  tool.leftButtonDown({10, 10});
  tool.zoomNormal();
  EXPECT_FALSE(tool.dragging());
  EXPECT_EQ(zoom.mode(), ZoomMode::none);
}

TEST_F(ZoomTest, ZoomOutToolActsWhenTheButtonIsReleased) {
  tool.toggleZoomOut();
  tool.leftButtonDown({300, 300});
  EXPECT_FALSE(tool.dragging());
  tool.leftButtonUp({300, 300});
  EXPECT_FLOAT_EQ(zoom.scale(), 1.0F / 1.41422F);
  EXPECT_EQ(zoom.lastCentre(), (Point{300, 300}));
}

}  // namespace
}  // namespace vexa
