// The SVG that each primitive becomes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "graphics/surfaces/svg_surface.h"

namespace vexa {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// What stands inside the outermost group.
std::string bodyOf(const SvgSurface& surface) {
  const std::string text = surface.document();
  const std::size_t begin = text.find("stroke-linejoin=\"round\">\n") + 25;
  return text.substr(begin, text.size() - begin - std::string_view("</g>\n</svg>\n").size());
}

class SvgTest : public testing::Test {
 protected:
  SvgSurface svg{{200, 100, 0, {}}};
};

TEST_F(SvgTest, PageHasItsSizeAndTitle) {
  EXPECT_THAT(svg.document(),
              StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"200\" height=\"100\" "
                         "viewBox=\"0 0 200 100\">\n<g "));
  const SvgSurface printed({200, 100, 160, "a < \xB5"});
  EXPECT_THAT(printed.document(),
              HasSubstr(" width=\"160mm\" height=\"80mm\" viewBox=\"0 0 200 100\">\n"
                        "<title>a &lt; \xC2\xB5</title>\n"));
}

TEST_F(SvgTest, NeighboursWithOnePenShareAGroup) {
  svg.setPen({PenStyle::solid, 1, 0x8080FF});
  svg.line({1, 2}, {3, 4});
  svg.line({5, 5}, {5, 5});
  svg.polyline(std::array{Point{1, 1}, Point{2, -3}, Point{-4, 4}});
  svg.setPen({PenStyle::solid, 0, black});
  svg.bezier(std::array{Point{0, 0}, Point{1, 0}, Point{1, 1}, Point{2, 2}, Point{3, 3}});
  EXPECT_EQ(bodyOf(svg),
            "<g stroke=\"#ff8080\">\n"
            "<path d=\"M1 2L3 4\"/>\n"
            "<polyline points=\"1 1 2 -3 -4 4\"/>\n"
            "</g>\n<g stroke=\"#000\">\n"
            "<path d=\"M0 0C1 0 1 1 2 2\" vector-effect=\"non-scaling-stroke\"/>\n"
            "</g>\n");
}

TEST_F(SvgTest, OutlinesStayInsideTheirBoxes) {
  svg.setPen({PenStyle::insideFrame, 5, black});
  svg.setBrush({BrushStyle::solid, 0x00FF00});
  svg.rectangle({90, 10, 10, 50});
  svg.roundedRectangle({10, 10, 90, 50}, 20, 30);
  svg.ellipse({10, 10, 51, 51});
  svg.rectangle({10, 10, 13, 50});
  svg.rectangle({10, 10, 10, 50});
  EXPECT_EQ(bodyOf(svg),
            "<g stroke=\"#000\" stroke-width=\"5\" fill=\"#0f0\" fill-rule=\"evenodd\">\n"
            "<rect x=\"12\" y=\"12\" width=\"75\" height=\"35\"/>\n"
            "<rect x=\"12\" y=\"12\" width=\"75\" height=\"35\" rx=\"10\" ry=\"15\"/>\n"
            "<circle cx=\"30\" cy=\"30\" r=\"18\"/>\n"
            "<path stroke-width=\"3\" d=\"M11 11l0 37\"/>\n"
            "<path stroke-width=\"1\" d=\"M10 10l0 39\"/>\n"
            "</g>\n");
}

TEST_F(SvgTest, FarPartsAreCutWhereNobodySeesThem) {
  constexpr std::int32_t most = 2147483647;
  svg.line({0, 0}, {most, most});
  svg.line({-most - 1, -most}, {-most, most});
  svg.polyline(std::array{Point{0, 0}, Point{most, 0}, Point{most, 50}, Point{0, 50}});
  svg.polygon(std::array{Point{0, 10}, Point{-most - 1, 10}, Point{-most - 1, 20}, Point{0, 20}});
  svg.rectangle({100, 50, most, most});
  EXPECT_EQ(bodyOf(svg),
            "<g stroke=\"#000\">\n"
            "<polyline points=\"0 0 32868 32868\"/>\n"
            "<polyline points=\"0 0 32968 0\"/>\n"
            "<polyline points=\"32968 50 0 50\"/>\n"
            "<polygon points=\"0 10 -32768 10 -32768 20 0 20\"/>\n"
            "<rect x=\"100\" y=\"50\" width=\"32867\" height=\"32817\"/>\n"
            "</g>\n");
}

TEST_F(SvgTest, ArcsRunCounterClockwise) {
  // The box of 41 has its middle at 20 and a radius of 20.
  const Rect box{0, 0, 41, 41};
  svg.arc(box, {40, 20}, {20, 0});
  svg.arc(box, {20, 0}, {40, 20});
  svg.chord(box, {99, 20}, {20, -99});
  svg.pie({0, 0, 41, 21}, {40, 10}, {40, 10});
  EXPECT_EQ(bodyOf(svg),
            "<g stroke=\"#000\">\n"
            "<path d=\"M40 20A20 20 0 0 0 20 0\"/>\n"
            "<path d=\"M20 0A20 20 0 1 0 40 20\"/>\n"
            "<path d=\"M40 20A20 20 0 0 0 20 0Z\"/>\n"
            "<path d=\"M40 10A20 10 0 0 0 0 10A20 10 0 0 0 40 10L20 10Z\"/>\n"
            "</g>\n");
}

TEST_F(SvgTest, HatchesArePatternsOverTheBackground) {
  svg.setBrush({BrushStyle::vertical, 0x0000FF});
  const std::array triangle{Point{0, 0}, Point{9, 0}, Point{0, 9}};
  svg.polygon(triangle);
  svg.setBackgroundColor(0xFF0000);
  svg.polygon(triangle);
  svg.setBackgroundMode(BackgroundMode::transparent);
  svg.polygon(triangle);
  svg.setBackgroundMode(BackgroundMode::opaque);
  svg.setBackgroundColor(white);
  svg.polygon(triangle);
  const std::string text = svg.document();
  const auto count = [&](std::string_view part) {
    int found = 0;
    for (std::size_t i = text.find(part); i != text.npos; i = text.find(part, i + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count("<pattern "), 3);
  EXPECT_EQ(count("<path d=\"M4-1V9\" stroke=\"#f00\" transform"), 3);
  EXPECT_EQ(count("fill=\"#fff\"/>"), 1);
  EXPECT_EQ(count("fill=\"#00f\"/>"), 1);
  EXPECT_EQ(count("fill=\"url(#hatch1)\""), 2);
}

TEST_F(SvgTest, TextStandsOnItsBaseline) {
  FontDescription font;
  font.height = 2268;
  svg.setFont(font);
  svg.setTextColor(0x0000FF);
  svg.text({10, 20}, "a&b");
  font.escapement = 900;
  font.weight = 700;
  font.italic = 1;
  font.faceName = {"Bad'\\\"<Face"};
  svg.setFont(font);
  svg.text({10, 20}, " \xB5");
  svg.text({10, 20}, "");
  EXPECT_EQ(bodyOf(svg),
            "<g fill=\"#f00\" font-family=\"'Times New Roman','Liberation Serif',serif\" "
            "font-size=\"2048\">\n"
            "<text x=\"10\" y=\"1845\">a&amp;b</text>\n"
            "</g>\n<g fill=\"#f00\" font-family=\"'Bad&quot;&lt;Face','Times New "
            "Roman','Liberation Serif',serif\" font-size=\"2048\" font-weight=\"bold\" "
            "font-style=\"italic\">\n"
            "<text transform=\"translate(10 20)rotate(-90)\" y=\"1825\" "
            "xml:space=\"preserve\"> \xC2\xB5</text>\n"
            "</g>\n");
}

}  // namespace
}  // namespace vexa
