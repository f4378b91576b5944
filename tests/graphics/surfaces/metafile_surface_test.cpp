// The records of an enhanced metafile.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "graphics/surfaces/metafile_surface.h"

namespace vexa {
namespace {

std::int32_t wordAt(std::string_view bytes, std::size_t place) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i)
    value |= std::uint32_t{static_cast<unsigned char>(bytes.at(place + i))} << (8 * i);
  return static_cast<std::int32_t>(value);
}

// A record as its type and the words behind its size.
using Words = std::vector<std::int32_t>;

std::vector<Words> recordsOf(std::string_view file) {
  std::vector<Words> records;
  for (std::size_t at = 0; at < file.size();) {
    const auto size = static_cast<std::size_t>(wordAt(file, at + 4));
    EXPECT_TRUE(size >= 8 && size % 4 == 0 && size <= file.size() - at) << "at " << at;
    if (size < 8 || size > file.size() - at) break;
    Words words{wordAt(file, at)};
    for (std::size_t place = at + 8; place < at + size; place += 4)
      words.push_back(wordAt(file, place));
    records.push_back(std::move(words));
    at += size;
  }
  return records;
}

class MetafileTest : public testing::Test {
 protected:
  // Without header and end.
  std::vector<Words> body() const {
    std::vector<Words> records = recordsOf(metafile.document().value());
    records.erase(records.begin());
    records.pop_back();
    return records;
  }

  MetafileSurface metafile{{200, 100, 0, {}}, "CopyDrawing"};
};

TEST_F(MetafileTest, HeaderFramesThePageOrWhatWasDrawn) {
  metafile.setPen({PenStyle::solid, 4, black});
  metafile.line({50, 60}, {149, 79});
  const std::string file = metafile.document().value();
  const std::vector<Words> records = recordsOf(file);
  // Bounds, frame in 0.01 mm (25.4 mm have 96 units), signature, version, size, records, handles,
  // description, palette, device in pixels and mm, no pixel format, device in micrometres.
  const Words expected = {1,
                          48,
                          58,
                          151,
                          81,
                          0,
                          0,
                          5292,
                          2646,
                          0x464D4520,
                          0x10000,
                          static_cast<std::int32_t>(file.size()),
                          static_cast<std::int32_t>(records.size()),
                          7,
                          13,
                          108,
                          0,
                          2000,
                          1000,
                          529,
                          265,
                          0,
                          0,
                          0,
                          529167,
                          264583};
  EXPECT_EQ(Words(records[0].begin(), records[0].begin() + 26), expected);
  EXPECT_EQ(file.substr(108, 28), std::string("C\0o\0p\0y\0D\0r\0a\0w\0i\0n\0g\0\0\0\0\0\0\0", 28));
  EXPECT_EQ(records.back(), (Words{14, 0, 16, 20}));

  const std::string cropped = metafile.croppedDocument().value();
  EXPECT_EQ(wordAt(cropped, 24), 1270);
  EXPECT_EQ(wordAt(cropped, 32), 4022);
}

TEST_F(MetafileTest, ObjectsAreSelectedOnceAndDeletedWhenReplaced) {
  metafile.line({1, 2}, {3, 4});
  metafile.line({3, 4}, {5, 6});
  metafile.setPen({PenStyle::insideFrame, 3, 0x0000FF});
  metafile.setBrush({BrushStyle::cross, 0xFF0000});
  metafile.setBackgroundColor(0x00FF00);
  metafile.rectangle({30, 40, 10, 20});
  metafile.setBrush({});
  metafile.ellipse({10, 20, 10, 20});
  metafile.fillArea({0, 0, 200, 100}, white);
  metafile.roundedRectangle({10, 20, 30, 40}, 6, 7);
  EXPECT_EQ(body(), (std::vector<Words>{
                        {38, 1, 0, 1, 0, 0},  // black pen
                        {37, 1},
                        {27, 1, 2},
                        {54, 3, 4},
                        {54, 5, 6},  // goes on where the last line ended
                        {25, 0x00FF00},
                        {39, 3, 2, 0xFF0000, 4},  // hatch
                        {37, 3},
                        {38, 2, 6, 3, 0, 0x0000FF},  // red pen inside the frame
                        {37, 2},
                        {40, 1},
                        {43, 10, 20, 29, 39},
                        {37, static_cast<std::int32_t>(0x80000005)},
                        {42, 10, 20, 10, 20},
                        {39, 4, 0, 0xFFFFFF, 0},
                        {37, 4},
                        {40, 3},
                        {37, static_cast<std::int32_t>(0x80000008)},
                        {43, 0, 0, 200, 100},
                        {37, static_cast<std::int32_t>(0x80000005)},
                        {38, 1, 6, 3, 0, 0x0000FF},
                        {37, 1},
                        {40, 2},
                        {44, 10, 20, 29, 39, 6, 7},
                    }));
}

TEST_F(MetafileTest, PointsAreShortWhereTheyFit) {
  metafile.polyline(std::array{Point{1, -2}, Point{32767, 4}});
  metafile.polyline(std::array{Point{1, -2}, Point{32768, 4}});
  metafile.bezierPath(std::array{Point{0, 0}, Point{1, 1}, Point{2, 2}, Point{3, 3}, Point{9, 9}});
  metafile.pie({0, 0, 11, 21}, {1, 2}, {3, 4});
  std::vector<Words> records = body();
  records.erase(records.begin(), records.begin() + 2);  // the pen
  EXPECT_EQ(records, (std::vector<Words>{
                         {87, 1, -2, 32767, 4, 2, -0x1FFFF, 0x47FFF},
                         {4, 1, -2, 32768, 4, 2, 1, -2, 32768, 4},
                         {37, static_cast<std::int32_t>(0x80000005)},
                         {59},
                         {85, 0, 0, 3, 3, 4, 0, 0x10001, 0x20002, 0x30003},
                         {61},
                         {60},
                         {63, 0, 0, 9, 9},
                         {47, 0, 0, 10, 20, 1, 2, 3, 4},
                     }));
}

TEST_F(MetafileTest, TextHasItsFontAndTheStepsOfItsCharacters) {
  FontDescription font;
  font.height = 2268;
  font.escapement = 900;
  metafile.setFont(font);
  metafile.setTextColor(0x0000FF);
  metafile.setBackgroundMode(BackgroundMode::transparent);
  metafile.text({10, 5000}, "i\xF0\x9D\x9B\xBCw");
  const std::vector<Words> records = body();
  ASSERT_EQ(records.size(), 5U);
  EXPECT_EQ(Words(records[0].begin(), records[0].begin() + 7),
            (Words{82, 5, 2268, 0, 900, 0, 400}));
  EXPECT_EQ(records[0].size(), 82U);
  EXPECT_EQ(records[0][9], 'T' | 'i' << 16);
  EXPECT_EQ(records[2], (Words{18, 1}));
  EXPECT_EQ(records[3], (Words{24, 0x0000FF}));
  const auto unit = std::bit_cast<std::int32_t>(2540.0F / 96);  // 0.01 mm
  // Widths of Times: i 569, w 1479, and 1024 for a character of two units that no table has.
  const Words expected = {84,
                          10,
                          5000 - 3072,
                          10 + 2268,
                          5000,
                          1,
                          unit,
                          unit,
                          10,
                          5000,
                          4,
                          76,
                          256,
                          0,
                          0,
                          -1,
                          -1,
                          84,
                          'i' | static_cast<std::int32_t>(0xD8350000),
                          0xDEFC | 'w' << 16,
                          569,
                          1024,
                          0,
                          1479};
  EXPECT_EQ(records[4], expected);
}

}  // namespace
}  // namespace vexa
