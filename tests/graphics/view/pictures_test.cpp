// What becomes of a drawing on its way into a picture.

#include <gtest/gtest.h>

#include <string>

#include "graphics/document/mini_draw_doc.h"
#include "graphics/figures/lines.h"
#include "graphics/figures/paint_state.h"
#include "graphics/figures/texts.h"
#include "graphics/view/pictures.h"

namespace vexa {
namespace {

// Types of the records of a metafile, without header and end.
std::string recordTypes(const std::string& file) {
  const auto wordAt = [&](std::size_t place) {
    std::size_t value = 0;
    for (std::size_t i = 4; i-- > 0;)
      value = value << 8 | static_cast<unsigned char>(file.at(place + i));
    return value;
  };
  std::string types;
  for (std::size_t at = 0; at < file.size(); at += wordAt(at + 4))
    types += std::to_string(wordAt(at)) + ' ';
  return types.substr(2, types.size() - 5);
}

class PicturesTest : public testing::Test {
 protected:
  PicturesTest() {
    paintState() = {};
    drawing.emptyDrawing();
    drawing.append(CLine(drawing, {100, 200}, {300, 250})).m_Visible = 0;
    drawing.append(CText(drawing, {100, 200}, {110, 216}, "x"));
  }

  CMiniDrawDoc drawing;
};

TEST_F(PicturesTest, CopyTakesHiddenFiguresAndTheFontOfTheLastPaint) {
  EXPECT_EQ(recordTypes(copyDrawing(drawing).value()), "38 37 27 54 ") << "no font, no text";
  drawingAsSvg(drawing, {});
  // Pen, line; font, transparent background, color, text. No area is filled.
  EXPECT_EQ(recordTypes(copyDrawing(drawing).value()), "38 37 27 54 82 37 18 24 84 ");
}

TEST_F(PicturesTest, CopyIsFramedByWhatWasDrawn) {
  const std::string file = copyDrawing(drawing).value();
  // Left 100 units of 26.458 hundredths of a millimetre, top 200.
  EXPECT_EQ(file.substr(24, 8), std::string("\x56\x0A\0\0\xAC\x14\0\0", 8));
}

TEST_F(PicturesTest, PictureTakesVisibleFiguresOnTheWantedBackground) {
  drawing.settings().backgroundColor = 0x402000;
  drawing.settings().width = -1;
  const std::string svg = drawingAsSvg(drawing, {true, 0});
  EXPECT_EQ(svg.find("<path"), svg.npos) << "the line is hidden";
  EXPECT_NE(svg.find(">x</text>"), svg.npos);
  EXPECT_NE(svg.find("viewBox=\"0 0 1390 1800\""), svg.npos);
  EXPECT_NE(svg.find("fill=\"#000\""), svg.npos) << "a senseless extent resets the background";

  drawing.settings().backgroundColor = 0x402000;
  EXPECT_NE(drawingAsSvg(drawing, {}).find("fill=\"#fff\""), svg.npos);
  EXPECT_NE(drawingAsSvg(drawing, {true, 0}).find("fill=\"#002040\""), svg.npos);
}

}  // namespace
}  // namespace vexa
