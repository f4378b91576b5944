// Lines of a text that may end in any of the usual ways.

#include <gtest/gtest.h>

#include "interp/memory_document.h"
#include "interp/program_text.h"

namespace vexa {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(std::string text) {
  const MemoryDocument document(std::move(text));
  Lines lines;
  for (int number = 1; number <= document.lineCount(); ++number)
    lines.push_back(document.line(number));
  return lines;
}

TEST(MemoryDocument, EndsLinesAtEveryKindOfLineEnd) {
  EXPECT_EQ(linesOf("a\nb\r\nc\rd"), (Lines{"a", "b", "c", "d"}));
  EXPECT_EQ(linesOf("a\n"), (Lines{"a"}));
  EXPECT_EQ(linesOf("\n\r\r\n\n"), (Lines{"", "", "", ""}));
  EXPECT_EQ(linesOf("a\n\rb"), (Lines{"a", "", "b"}));
  EXPECT_EQ(linesOf(""), (Lines{""}));
}

TEST(MemoryDocument, DropsAByteOrderMarkAtTheVeryStartOnly) {
  EXPECT_EQ(linesOf("\xEF\xBB\xBF"
                    "a"),
            (Lines{"a"}));
  EXPECT_EQ(linesOf("\xEF\xBB\xBF"), (Lines{""}));
  EXPECT_EQ(linesOf(" \xEF\xBB\xBF"
                    "a"),
            (Lines{" \xEF\xBB\xBF"
                   "a"}));
}

TEST(MemoryDocument, KeepsNulBytesAndAnswersForLinesThatAreNone) {
  const MemoryDocument document(std::string("a\0b\nc", 5));
  EXPECT_EQ(document.line(1), std::string("a\0b", 3));
  EXPECT_EQ(document.line(0), "");
  EXPECT_EQ(document.line(3), "");
  EXPECT_EQ(document.line(-1), "");
}

TEST(MemoryDocument, CountsTooManyLinesOnlyAsFarAsNeeded) {
  const std::string allowed(maxLineCount, '\n');
  EXPECT_EQ(MemoryDocument(allowed).lineCount(), maxLineCount);
  EXPECT_EQ(MemoryDocument(allowed + "x").lineCount(), maxLineCount + 1);
  EXPECT_EQ(MemoryDocument(std::string(5000000, '\n')).lineCount(), maxLineCount + 1);
}

TEST(MemoryDocument, WritesInTheThreeLineModes) {
  MemoryDocument document;
  document.write("a", 0);
  document.write("b", 0);
  document.write("title", 'B');
  document.write("whole", 'L');
  document.write("", 'L');
  document.write("open", 0);
  document.write("", 'L');
  EXPECT_EQ(document.text(), "ab\ntitle\nwhole\n\nopen\n");
  EXPECT_EQ(document.line(5), "open");
}

}  // namespace
}  // namespace vexa
