// What figures keep, how they move and stretch, and what they draw.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/boxes.h"
#include "graphics/figures/curves.h"
#include "graphics/figures/lines.h"
#include "graphics/figures/paint_state.h"
#include "graphics/figures/texts.h"
#include "graphics/surfaces/recording_surface.h"

namespace vexa {
namespace {

using namespace std::string_literals;
using Lines = std::vector<std::string>;

class Figures : public testing::Test {
 protected:
  void SetUp() override { paintState() = {}; }
  void TearDown() override { paintState() = {}; }

  template <class Figure, class... Arguments>
  Figure& add(Point first, Point second, Arguments... arguments) {
    return drawing.append(Figure(drawing, first, second, arguments...));
  }
  // What a figure draws. It must leave the surface as it was.
  static Lines drawn(const CFigure& figure, bool printing = false) {
    RecordingSurface surface({.printing = printing});
    figure.Draw(surface);
    EXPECT_EQ(surface.pen(), Pen{});
    EXPECT_EQ(surface.brush(), Brush{});
    EXPECT_EQ(surface.font(), FontDescription{});
    EXPECT_EQ(surface.textColor(), black);
    EXPECT_EQ(surface.backgroundMode(), BackgroundMode::opaque);
    return surface.lines();
  }

  CMiniDrawDoc drawing;
};

TEST_F(Figures, TakeThePenAndFillThatTheirDrawingHas) {
  drawing.settings().penColor = 0x112233;
  drawing.settings().penColorIndex = 16;
  drawing.settings().penWidth = 5;
  drawing.settings().fillStyle = 6;
  drawing.settings().fillColor = 0x445566;
  const auto& pie = add<CPie>({9, 8}, {7, 6}, Point{}, Point{}, '\0', 'C');
  EXPECT_EQ(pie.m_Color, 0x112233u);
  EXPECT_EQ(pie.m_ColorIndex, 16);
  EXPECT_EQ(pie.m_PenWidth, 5);
  EXPECT_EQ(pie.m_FillStyle, 6);
  EXPECT_EQ(pie.m_FillColor, 0x445566u);
  EXPECT_EQ(pie.m_X1, 9) << "corners stay as given";
  const auto& ellipse = add<CEllipse>({9, 2}, {7, 6});
  EXPECT_EQ(ellipse.boundingBox(0), (Rect{7, 2, 9, 6}));
  EXPECT_EQ((Point{ellipse.m_X1, ellipse.m_Y1}), (Point{7, 2}));
  EXPECT_EQ(ellipse.m_ColorIndex, 0);
  EXPECT_EQ(ellipse.m_PenWidth, 5);
}

TEST_F(Figures, ClassesAreToldByNameAndCode) {
  for (int code = 1; code <= 16; ++code) {
    const RuntimeClass& c = runtimeClass(static_cast<FigureType>(code));
    EXPECT_EQ(findRuntimeClass(c.name), &c);
    const auto figure = c.create();
    EXPECT_EQ(figure->m_Type, code);
    EXPECT_EQ(&figure->GetRuntimeClass(), &c);
    const CFigure& copy = figure->Duplicate(drawing);
    EXPECT_EQ(&copy.GetRuntimeClass(), &c);
  }
  EXPECT_EQ(drawing.figureCount(), 16u);
  EXPECT_EQ(findRuntimeClass("CFigure"), nullptr);
}

TEST_F(Figures, LinesAndBoxesAreDrawnWithTheirPensAndBrushes) {
  EXPECT_EQ(drawn(add<CLine>({1, 2}, {3, 4})), (Lines{"line 1,2 3,4 pen solid 1 8080FF"}));
  EXPECT_EQ(drawn(add<CRectangle>({9, 8}, {1, 2})),
            (Lines{"rectangle 9,8 1,2 pen frame 1 8080FF brush hollow"}));
  EXPECT_EQ(drawn(add<CCircle>({1, 2}, {11, 12})),
            (Lines{"ellipse 1,2 11,12 pen frame 1 8080FF brush hollow"}));
  // A sixth of width plus height, truncated: 107 / 6 and -1 / 6.
  EXPECT_EQ(drawn(add<CRectRound>({0, 0}, {60, 47})),
            (Lines{"round 17x17 0,0 60,47 pen frame 1 8080FF brush hollow"}));
  EXPECT_EQ(drawn(add<CRectRoundFill>({0, 0}, {-60, 59})),
            (Lines{"round 0x0 0,0 -60,59 pen frame 1 8080FF brush hollow"}));
  const Lines styles{"horizontal FFFFFF", "vertical FFFFFF", "fdiagonal FFFFFF",
                     "bdiagonal FFFFFF",  "cross FFFFFF",    "dcross FFFFFF",
                     "solid FFFFFF",      "hollow",          "hollow"};
  for (int style = 0; style < 9; ++style) {
    drawing.settings().fillStyle = style;
    EXPECT_EQ(drawn(add<CEllipse>({1, 2}, {3, 4})),
              (Lines{"ellipse 1,2 3,4 pen frame 1 8080FF brush " +
                     styles[static_cast<std::size_t>(style)]}));
  }
}

TEST_F(Figures, PolygonsAndCurvesAreOpenWithoutAFillAndClosedWithOne) {
  auto& polygon = add<CPolygon>({0, 0}, {9, 9}, std::size_t{2});
  polygon.m_Points = {{1, 2}, {3, 4}};
  auto& curve = add<CBezier>({0, 0}, {9, 9}, std::size_t{0});
  EXPECT_EQ(drawn(polygon), (Lines{"polyline 1,2 3,4 pen frame 1 8080FF"}));
  EXPECT_EQ(drawn(curve), (Lines{"bezier pen frame 1 8080FF"}));
  polygon.m_FillStyle = curve.m_FillStyle = 6;
  EXPECT_EQ(drawn(polygon), (Lines{"polygon 1,2 3,4 pen frame 1 8080FF brush solid FFFFFF"}));
  EXPECT_EQ(drawn(curve), (Lines{"path pen frame 1 8080FF brush solid FFFFFF"}));
}

TEST_F(Figures, ArrowheadsAreTrianglesAtTheEnds) {
  // Pen width 1: half-width 2, length 10.
  const std::string line = "line 0,0 100,0 pen solid 1 8080FF";
  const std::string atEnd = "polygon 90,-2 100,0 90,2 pen solid 1 8080FF brush solid 8080FF";
  const std::string atStart = "polygon 10,2 0,0 10,-2 pen solid 1 8080FF brush solid 8080FF";
  EXPECT_EQ(drawn(add<CLineArrow>({0, 0}, {100, 0})), (Lines{line, atEnd}));
  EXPECT_EQ(drawn(add<CLineArrows>({0, 0}, {100, 0}, '\0')), (Lines{line}));
  EXPECT_EQ(drawn(add<CLineArrows>({0, 0}, {100, 0}, 'S')), (Lines{line, atStart}));
  EXPECT_EQ(drawn(add<CLineArrows>({0, 0}, {100, 0}, 'E')), (Lines{line, atEnd}));
  EXPECT_EQ(drawn(add<CLineArrows>({0, 0}, {100, 0}, 'B')), (Lines{line, atStart, atEnd}));
  // Along (0.6, 0.8): corners at 30 + 1.6 - 6 and 30 - 1.6 - 6, toward zero.
  EXPECT_EQ(drawn(add<CLineArrow>({0, 0}, {30, 40}))[1],
            "polygon 25,30 30,40 22,33 pen solid 1 8080FF brush solid 8080FF");
  EXPECT_EQ(drawn(add<CLineArrow>({5, 5}, {5, 5})).size(), 1u) << "no direction, no head";
}

TEST_F(Figures, LoadArrowsPressOnTheSegment) {
  const auto line = [](int x, int tail) {
    return "line " + std::to_string(x) + "," + std::to_string(tail) + " " + std::to_string(x) +
           ",0 pen solid 1 8080FF";
  };
  // Length 45 makes 2 intervals of 22 units; above the segment, which runs to the right.
  const Lines down = drawn(add<CArrowsUDL>({0, 0}, {45, 0}, 1.5F));
  ASSERT_EQ(down.size(), 6u);
  EXPECT_EQ((Lines{down[0], down[2], down[4]}),
            (Lines{line(0, -30), line(22, -30), line(44, -30)}));
  EXPECT_EQ(down[1], "polygon 2,-10 0,0 -2,-10 pen solid 1 8080FF brush solid 8080FF");
  // A negative load presses from below; an arrow of 4 units has a head of 4.
  const Lines up = drawn(add<CArrowsUDL>({0, 0}, {19, 0}, -0.2F));
  EXPECT_EQ(up, (Lines{line(0, 4), "polygon -2,4 0,0 2,4 pen solid 1 8080FF brush solid 8080FF"}));
  EXPECT_EQ(drawn(add<CArrowsUDL>({0, 0}, {100, 0}, 0.0F)), Lines{});
  EXPECT_EQ(drawn(add<CArrowsUDL>({0, 0}, {100, 0}, std::nanf(""))), Lines{});
  constexpr std::int32_t far = std::numeric_limits<std::int32_t>::max();
  // Arrow and head for each of the 70 places 0, 20, ... 1380 on the page; no more than 10 000
  // tried.
  EXPECT_EQ(drawn(add<CArrowsUDL>({0, 0}, {far, 0}, 1.0F)).size(), 140u);
  EXPECT_EQ(drawn(add<CArrowsUDL>({-far, 0}, {far, 0}, 1.0F)).size(), 0u);
}

TEST_F(Figures, PartsOfAnEllipseCarryAHeadAlongTheArc) {
  const std::string rays = " 0,0 200,100 200,50 100,0 pen frame 1 8080FF";
  const auto pie = [&](char arrow, char kind) {
    return drawn(add<CPie>({0, 0}, {200, 100}, Point{200, 50}, Point{100, 0}, arrow, kind));
  };
  EXPECT_EQ(pie(0, 'A'), (Lines{"arc" + rays}));
  EXPECT_EQ(pie(0, 'P'), (Lines{"pie" + rays + " brush hollow"}));
  EXPECT_EQ(pie(0, 'x'), (Lines{"chord" + rays + " brush hollow"}));
  // Counter-clockwise the arc reaches its end at the top going left, and leaves its start going up.
  const std::string brush = " pen frame 1 8080FF brush solid 8080FF";
  EXPECT_EQ(pie(1, 'A')[1], "polygon 110,2 100,0 110,-2" + brush);
  EXPECT_EQ(pie(2, 'A')[1], "polygon 202,40 200,50 198,40" + brush);
  EXPECT_EQ(drawn(add<CPie>({0, 0}, {0, 100}, Point{9, 9}, Point{8, 8}, '\1', 'A')).size(), 1u);
}

TEST_F(Figures, BlackAndWhiteBlackensPensButTextsOnPrintersOnly) {
  paintState().textFont = FontDescription{};
  const auto& text = add<CText>({3, 4}, {}, "x"s);
  const auto& arrow = add<CLineArrow>({0, 0}, {100, 0});
  const auto& box = add<CRectFill>({1, 2}, {3, 4});
  const std::string start = "text 3,4 \"x\" ";
  const std::string font = " font 16 Times New Roman";
  EXPECT_EQ(drawn(text, true), (Lines{start + "8080FF" + font}));
  paintState().blackAndWhite = true;
  EXPECT_EQ(drawn(text, false), (Lines{start + "8080FF" + font}));
  EXPECT_EQ(drawn(text, true), (Lines{start + "000000" + font}));
  EXPECT_EQ(drawn(box), (Lines{"rectangle 1,2 3,4 pen frame 1 000000 brush hollow"}));
  EXPECT_EQ(drawn(arrow),
            (Lines{"line 0,0 100,0 pen frame 1 000000",
                   "polygon 90,-2 100,0 90,2 pen frame 1 000000 brush solid 000000"}));
  paintState().textFont.reset();
  EXPECT_EQ(drawn(text), Lines{});
}

TEST_F(Figures, MovingTakesEveryPointAlong) {
  auto& polygon = add<CPolygon>({0, 0}, {10, 10}, std::size_t{2});
  polygon.m_Points[1] = {10, 10};
  CFigure& copy = polygon.Duplicate(drawing);
  polygon.Offset(3, -2);
  EXPECT_EQ(polygon.boundingBox(1), (Rect{3, -2, 14, 9}));
  EXPECT_EQ(polygon.m_Points, (std::vector<Point>{{3, -2}, {13, 8}}));
  EXPECT_EQ(static_cast<CPolygon&>(copy).m_Points[1], (Point{10, 10})) << "a copy of its own";
  auto& pie = add<CPie>({0, 0}, {1, 1}, Point{2, 3}, Point{4, 5}, '\0', 'A');
  pie.Offset(10, 20);
  EXPECT_EQ((Lines{"arc 10,20 11,21 12,23 14,25 pen frame 1 8080FF"}), drawn(pie));
  auto& line = add<CLine>({0, 0}, {2147483600, -2147483600});
  line.Offset(1000, -1000);
  EXPECT_EQ(line.boundingBox(1), (Rect{1000, -2147483647, 2147483647, -999}));
}

TEST_F(Figures, GrowingStretchesPointsWithTheBox) {
  const auto grown = [&](Rect box, Point point, std::int32_t dx, std::int32_t dy) {
    auto& curve = add<CBezier>({box.left, box.top}, {box.right, box.bottom}, std::size_t{1});
    curve.m_Points[0] = point;
    curve.Inflate(dx, dy);
    return curve.m_Points[0];
  };
  const Rect even{0, 0, 20, 40};
  const Rect odd{1, 2, 6, 11};
  for (const Rect& box : {even, odd, Rect{6, 11, 1, 2}}) {
    // Corners go to corners, nothing moves without growth.
    EXPECT_EQ(grown(box, {box.left, box.top}, 3, 7), (Point{box.left - 3, box.top - 7}));
    EXPECT_EQ(grown(box, {box.right, box.bottom}, 3, 7), (Point{box.right + 3, box.bottom + 7}));
    for (std::int32_t x = -3; x <= 13; ++x)
      EXPECT_EQ(grown(box, {x, 2 * x}, 0, 0), (Point{x, 2 * x}));
  }
  EXPECT_EQ(grown(even, {10, 20}, 5, 5), (Point{10, 20})) << "the center stays";
  EXPECT_EQ(grown(even, {15, 25}, 5, 10), (Point{17, 27})) << "2.5 and 2.5 of the way";
  EXPECT_EQ(grown({0, 5, 10, 5}, {5, 5}, 4, 4), (Point{5, 5})) << "no height to stretch";
  auto& pie = add<CPie>({0, 0}, {20, 20}, Point{20, 10}, Point{10, 0}, '\0', 'A');
  pie.Inflate(5, -5);
  EXPECT_EQ(drawn(pie), (Lines{"arc -5,5 25,15 25,10 10,5 pen frame 1 8080FF"}));
}

}  // namespace
}  // namespace vexa
