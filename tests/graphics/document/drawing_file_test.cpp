// The bytes of drawing files, and files that lie.

#include "graphics/document/drawing_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <initializer_list>

#include "graphics/figures/boxes.h"
#include "graphics/figures/curves.h"
#include "graphics/figures/lines.h"
#include "graphics/figures/texts.h"

namespace vexa {
namespace {

using namespace std::string_literals;

std::string half(unsigned v) {
  return {static_cast<char>(v & 0xFF), static_cast<char>(v >> 8 & 0xFF)};
}

std::string words(std::initializer_list<std::int64_t> values) {
  std::string bytes;
  for (const std::int64_t v : values) {
    const auto bits = static_cast<std::uint32_t>(v);
    bytes += half(bits & 0xFFFF) + half(bits >> 16);
  }
  return bytes;
}

std::string hex(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += digits[i] == ' ' ? 1 : 2)
    if (digits[i] != ' ')
      bytes += static_cast<char>(std::stoi(std::string(digits, i, 2), nullptr, 16));
  return bytes;
}

const std::string newHeader =
    hex("65190000 32000000 32000000"
        "0000000000000000 0000000000000000 0000000000000000"
        "0000000000000000 0000000000000000 0000000000000000"
        "01000000 FF808000 0C000000 00000000 00000000 FFFFFF00 0F000000 01000000 07000000"
        "02000000 00000000 6E050000 08070000 00 04000000");

std::string classRecord(std::string_view name) {
  return half(0xFFFF) + half(3) + half(static_cast<unsigned>(name.size())) + std::string(name);
}

// The nine words of a figure with the pen of a new drawing, from (1, 2) to (30, -4).
std::string common(int type) { return words({type, 1, 2, 30, -4, 0x8080FF, 12, 1, 1}); }

const std::string lineRecord = classRecord("CLine") + common(1);

std::string fileOf(std::string_view records, unsigned count = 1) {
  return newHeader + half(count) + std::string(records);
}

constexpr Point from{1, 2};
constexpr Point to{30, -4};

template <class Figure, class... Arguments>
void put(CMiniDrawDoc& drawing, Arguments... arguments) {
  drawing.add(std::make_unique<Figure>(drawing, from, to, arguments...));
}

// One figure of every class, with fields that differ from each other.
struct ClassCase {
  std::string_view name;
  std::function<void(CMiniDrawDoc&)> make;
  std::string fields;
};

std::vector<ClassCase> everyClass() {
  const std::string fill = words({2, 0x123456});
  return {
      {"CLine", put<CLine>, common(1)},
      {"CLineArrow", put<CLineArrow>, common(2)},
      {"CLineArrows", [](auto& d) { put<CLineArrows>(d, 'B'); }, common(3) + "B"},
      {"CArrowsUDL", [](auto& d) { put<CArrowsUDL>(d, -1.5F); }, common(4) + words({0xBFC00000})},
      {"CFontItem", put<CFontItem>,
       common(5) + words({12, 16, 0, 0, 0, 400}) + hex("00000000 00000030") + "Times New Roman" +
           std::string(17, '\0')},
      {"CRectangle", put<CRectangle>, common(6)},
      {"CRectFill", put<CRectFill>, common(7) + fill},
      {"CRectRound", put<CRectRound>, common(8)},
      {"CRectRoundFill", put<CRectRoundFill>, common(9) + fill},
      {"CCircle", put<CCircle>, common(10)},
      {"CCircleFill", put<CCircleFill>, common(11) + fill},
      {"CPolygon",
       [](auto& d) {
         put<CPolygon>(d, std::size_t{2});
         static_cast<CPolygon&>(*d.figure(0)).m_Points[1] = {-5, 6};
       },
       common(12) + words({2, 2, 0x123456, 0, 0, -5, 6})},
      {"CBezier", [](auto& d) { put<CBezier>(d, std::size_t{0}); },
       common(13) + words({2, 0, 0x123456})},
      // Its corners are put in order and it has no color index.
      {"CEllipse", put<CEllipse>, words({14, 1, -4, 30, 2, 0x8080FF, 0, 1, 1}) + fill},
      {"CPie",
       [](auto& d) {
         put<CPie>(d, Point{3, 4}, Point{5, 6}, '\1', 'P');
       },
       common(15) + fill + words({3, 4, 5, 6}) + "\1P"},
      {"CText", [](auto& d) { put<CText>(d, "f(x)"s); }, common(16) + "\4f(x)"},
  };
}

CMiniDrawDoc& hatched(CMiniDrawDoc& drawing) {
  drawing.settings().fillStyle = 2;
  drawing.settings().fillColor = 0x123456;
  return drawing;
}

std::string rewritten(const std::string& bytes) {
  CMiniDrawDoc drawing;
  const DrawingLoad load = readDrawing(bytes, drawing);
  return load.complete() ? writeDrawing(drawing) : std::string(loadMessage(load));
}

TEST(DrawingFile, NewDrawingIsItsHeaderAndNoFigures) {
  EXPECT_EQ(writeDrawing(CMiniDrawDoc()), newHeader + half(0));
}

TEST(DrawingFile, EveryClassHasItsBytes) {
  for (const ClassCase& c : everyClass()) {
    CMiniDrawDoc drawing;
    c.make(hatched(drawing));
    drawing.settings() = {};
    const std::string expected = fileOf(classRecord(c.name) + c.fields);
    EXPECT_EQ(writeDrawing(drawing), expected) << c.name;
    EXPECT_EQ(rewritten(expected), expected) << c.name;
  }
}

TEST(DrawingFile, EverySettingSurvives) {
  std::string header = words({6502});
  for (int i = 2; i <= 28; ++i) header += words({i * 0x01010101});
  header += "\7a title"s + words({29});
  EXPECT_EQ(rewritten(header + half(0)), header + half(0));
}

TEST(DrawingFile, ClassesAndFiguresAreNumberedTogether) {
  CMiniDrawDoc drawing;
  put<CLine>(drawing);
  put<CText>(drawing, ""s);
  put<CLine>(drawing);
  put<CText>(drawing, ""s);
  const std::string expected =
      fileOf(lineRecord + classRecord("CText") + common(16) + "\0"s + half(0x8001) + common(1) +
                 half(0x8003) + common(16) + "\0"s,
             4);
  EXPECT_EQ(writeDrawing(drawing), expected);
  EXPECT_EQ(rewritten(expected), expected);
}

TEST(DrawingFile, LongListsUseLongCountsAndTags) {
  CMiniDrawDoc drawing;
  put<CLine>(drawing);
  for (int i = 1; i < 0x10000; ++i) drawing.figure(0)->Duplicate(drawing);
  put<CText>(drawing, ""s);
  put<CText>(drawing, ""s);
  const std::string bytes = writeDrawing(drawing);
  EXPECT_EQ(bytes.substr(newHeader.size(), 6), half(0xFFFF) + words({0x10002}));
  const std::string last = half(0x7FFF) + words({0x80010002}) + common(16) + "\0"s;
  EXPECT_EQ(bytes.substr(bytes.size() - last.size()), last);
  EXPECT_EQ(rewritten(bytes), bytes);
}

TEST(DrawingFile, TextsAreCountedInOneThreeOrSevenBytes) {
  for (const auto& [size, prefix] : std::vector<std::pair<std::size_t, std::string>>{
           {254, "\xFE"},
           {255, "\xFF" + half(255)},
           {0xFFFD, "\xFF" + half(0xFFFD)},
           {0xFFFE, "\xFF" + half(0xFFFF) + words({0xFFFE})}}) {
    CMiniDrawDoc drawing;
    put<CText>(drawing, std::string(size, 'x'));
    const std::string expected =
        fileOf(classRecord("CText") + common(16) + prefix + std::string(size, 'x'));
    EXPECT_EQ(writeDrawing(drawing), expected) << size;
    EXPECT_EQ(rewritten(expected), expected) << size;
  }
}

TEST(DrawingFile, NullEntriesAreDroppedAndRepeatedOnesBecomeCopies) {
  const std::string once = lineRecord + half(0x8001) + common(1);
  const std::string thrice =
      fileOf(lineRecord + half(0x8001) + common(1) + half(0x8001) + common(1), 3);
  EXPECT_EQ(rewritten(fileOf(once + half(0) + half(2), 4)), thrice);
  // Long forms of small numbers, as another writer might choose.
  EXPECT_EQ(rewritten(fileOf(lineRecord + half(0x7FFF) + words({0x80000001}) + common(1) +
                                 half(0x7FFF) + words({3}),
                             3)),
            thrice);
  // The second of two color indices is kept, and written twice.
  const std::string font = words({12, 16, 0, 0, 0, 400}) + std::string(40, '\1');
  std::string changed = font;
  changed[0] = 5;
  std::string expected =
      fileOf(classRecord("CFontItem") + words({5, 1, 2, 30, -4, 0x8080FF, 5, 1, 1}) + changed);
  EXPECT_EQ(rewritten(fileOf(classRecord("CFontItem") + common(5) + changed)), expected);
}

TEST(DrawingFile, FilesThatAreNoneAreRefusedWithTheirReason) {
  const std::string rest = newHeader.substr(4) + half(0);
  const std::string corrupted = "File format corrupted";
  const auto message = [](ArchiveError e) { return std::string(archiveMessage(e)); };
  const std::vector<std::pair<std::string, std::string>> cases{
      {words({6500}) + rest, corrupted},
      {words({-1}) + rest, corrupted},
      {words({0x132BB3A}) + rest, corrupted},
      {words({6502}) + rest, words({6502}) + rest},
      {"", message(ArchiveError::endOfFile)},
      {half(0xFFFF), message(ArchiveError::endOfFile)},
      {fileOf(lineRecord, 2), message(ArchiveError::endOfFile)},
      {newHeader + half(0xFFFF) + words({-1}), message(ArchiveError::endOfFile)},
      {fileOf(classRecord("CPolygon") + common(12) + words({7, -1, 0})),
       message(ArchiveError::endOfFile)},
      {fileOf(classRecord("CPolygon") + common(12) + words({7, 0x7FFFFFFF, 0, 1, 1})),
       message(ArchiveError::endOfFile)},
      {fileOf(classRecord("CText") + common(16) + "\xFF" + half(0xFFFF) + words({-1}) + "x"),
       message(ArchiveError::endOfFile)},
      {fileOf(classRecord("CText") + common(16) + "\xFF" + half(0xFFFE) + "\2xxxx"),
       message(ArchiveError::badLength)},
      {fileOf(half(0xFFFF) + half(2) + half(5) + "CLine" + common(1)),
       message(ArchiveError::badSchema)},
      {fileOf(classRecord("CFigure") + common(1)), message(ArchiveError::unknownClass)},
      {fileOf(classRecord("") + common(1)), message(ArchiveError::unknownClass)},
      {fileOf(half(0x8001) + common(1)), message(ArchiveError::badIndex)},
      // A figure where a class is due, a class where a figure is due, and numbers past the end.
      {fileOf(lineRecord + half(0x8002) + common(1), 2), message(ArchiveError::badIndex)},
      {fileOf(lineRecord + half(1), 2), message(ArchiveError::badIndex)},
      {fileOf(lineRecord + half(3), 2), message(ArchiveError::badIndex)},
      {fileOf(lineRecord + half(0x7FFF) + words({0x80000000}) + common(1), 2),
       message(ArchiveError::badIndex)},
  };
  for (const auto& [bytes, expected] : cases)
    EXPECT_EQ(rewritten(bytes), expected) << testing::PrintToString(bytes);
}

TEST(DrawingFile, WhatWasReadBeforeAFailureIsKept) {
  CMiniDrawDoc drawing;
  drawing.emptyDrawing();
  drawing.settings().title = "before";
  EXPECT_FALSE(readDrawing(words({6499, 7}), drawing).accepted);
  EXPECT_EQ(drawing.settings().formatNumber, 6501);

  // The margins are there, the rest of the header and the list are as before.
  const DrawingLoad cut = readDrawing(words({6510, 70, 80}) + "\1\2", drawing);
  EXPECT_TRUE(cut.accepted);
  EXPECT_EQ(cut.error, ArchiveError::endOfFile);
  EXPECT_EQ(drawing.settings().pictureTop, 80);
  EXPECT_EQ(drawing.settings().title, "before");
  EXPECT_EQ(drawing.figureCount(), 1u);

  // Two whole figures of nine; the third ends early.
  const std::string two = lineRecord + half(0x8001) + common(1);
  EXPECT_FALSE(readDrawing(fileOf(two + half(0x8001) + words({1, 2}), 9), drawing).complete());
  EXPECT_EQ(writeDrawing(drawing), fileOf(two, 2));
}

TEST(DrawingFile, EveryDamageEndsInAMessageOrAWholeDrawing) {
  CMiniDrawDoc drawing;
  hatched(drawing);
  for (const ClassCase& c : everyClass()) {
    CMiniDrawDoc one;
    c.make(one);
    one.figure(0)->Duplicate(drawing);
  }
  const std::string bytes = writeDrawing(drawing);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    CMiniDrawDoc cut;
    EXPECT_EQ(readDrawing(bytes.substr(0, size), cut).error, ArchiveError::endOfFile) << size;
  }
  for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
    std::string flipped = bytes;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
    const std::string result = rewritten(flipped);
    ASSERT_FALSE(result.empty()) << bit;
    if (result.starts_with("File") || result.starts_with("The file")) continue;
    EXPECT_EQ(rewritten(result), result) << bit;
  }
}

// A file as it was written when there was one format only.
TEST(DrawingFile, StoredDrawingIsStillTheSame) {
  std::ifstream file(VEXA_TEST_DATA "/drawings/every_class.drw", std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(file), {});
  CMiniDrawDoc drawing;
  ASSERT_TRUE(readDrawing(bytes, drawing).complete());
  EXPECT_EQ(drawing.figureCount(), 21u);
  EXPECT_EQ(drawing.settings().title, "Every class of figure");
  EXPECT_EQ(drawing.figure(20)->m_Visible, 0);
  EXPECT_EQ(writeDrawing(drawing), bytes);
}

TEST(DrawingFile, RepeatedEntriesCannotOutgrowTheFile) {
  const std::size_t size = std::size_t{1} << 20;
  std::string records = classRecord("CText") + common(16) + "\xFF" + half(0xFFFF) +
                        words({static_cast<std::int64_t>(size)}) + std::string(size, 'x');
  for (int i = 0; i < 60000; ++i) records += half(2);
  CMiniDrawDoc drawing;
  EXPECT_EQ(readDrawing(fileOf(records, 60001), drawing).error, ArchiveError::tooManyCopies);
  EXPECT_LT(drawing.figureCount(), 64u);
}

}  // namespace
}  // namespace vexa
