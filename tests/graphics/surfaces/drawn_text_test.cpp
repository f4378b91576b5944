// Characters and extents of drawn text.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "graphics/surfaces/drawn_text.h"

namespace vexa {
namespace {

FontDescription font(std::string_view face, std::int32_t height) {
  FontDescription description;
  description.height = height;
  description.faceName = {};
  std::copy(face.begin(), face.end(), description.faceName.begin());
  return description;
}

TEST(DrawnText, IsUtf8WhenValidAndOtherwiseWindows1252) {
  struct Case {
    std::string_view bytes;
    std::u32string_view text;
  };
  const Case cases[] = {
      {"50 \xC2\xB5m \xE2\x89\xA4 \xF0\x9D\x9B\xBC", U"50 \u00B5m \u2264 \U0001D6FC"},
      {"50 \xB5m", U"50 \u00B5m"},
      {"\x80 \x93x\x94", U"\u20AC \u201Cx\u201D"},
      {"\xC3", U"\u00C3"},                           // cut short
      {"\xC0\xAF", U"\u00C0\u00AF"},                 // longer than it need be
      {"\xED\xA0\x80", U"\u00ED\u00A0\u20AC"},       // half of a pair
      {"\xF4\x90\x80\x80", U"\u00F4 \u20AC\u20AC"},  // beyond the last character
      {"\xF9\x80\x80\x80", U"\u00F9\u20AC\u20AC\u20AC"},
      {"a\tb\x01\x7F\x81", U"a b   "},
      {"", U""},
  };
  for (const Case& c : cases) EXPECT_EQ(decodeDrawnText(c.bytes), c.text) << c.bytes;
}

TEST(DrawnText, EncodesEveryLength) {
  const std::u32string_view text = U"x\u00B5\u2264\U0001D6FC";
  EXPECT_EQ(toUtf8(text), "x\xC2\xB5\xE2\x89\xA4\xF0\x9D\x9B\xBC");
  EXPECT_EQ(toUtf16(text), u"x\u00B5\u2264\xD835\xDEFC");
}

TEST(DrawnText, ExtentsFollowTheTables) {
  struct Case {
    FontDescription font;
    std::string_view text;
    int width, height;
  };
  FontDescription bold = font("Arial", 200);
  bold.weight = 700;
  FontDescription wide = font("Arial", 2288);
  wide.width = 2 * 904;
  // Widths from the tables of the faces: Times 1024 a digit, 512 a full stop; Arial bold 1366 a P.
  const Case cases[] = {
      {FontDescription{}, "150", 22, 16},
      {FontDescription{}, "0.5", 18, 16},
      {FontDescription{}, "sin(x)", 34, 16},
      {font("Unheard Of", 2268), "150", 3072, 2268},
      {font("Times New Roman", -2048), "150", 3072, 2268},
      {font("Times New Roman", 0), "150", 22, 16},
      {font("COURIER NEW", 2320), "il\x80", 3 * 1229, 2320},
      {font("Times New Roman", 2268), "\xE2\x82\xAC\xE2\x89\xA4", 1024 + 1024, 2268},
      {bold, "PP", 239, 200},
      {wide, "PP", 4 * 1366, 2288},
  };
  for (const Case& c : cases) {
    const TextExtent extent = textExtent(c.font, c.text);
    EXPECT_EQ(extent.width, c.width) << c.font.face() << ' ' << c.text;
    EXPECT_EQ(extent.height, c.height) << c.font.face() << ' ' << c.text;
  }
}

}  // namespace
}  // namespace vexa
