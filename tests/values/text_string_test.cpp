// How texts lie in matrices. Data files hold the same bytes, so the layout is part of a format.

#include "values/text_string.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/scripted_shell.h"
#include "values/argument_readers.h"

namespace vexa {
namespace {

std::string bytesOf(const Matrix& matrix) {
  std::string bytes(matrix.size() * sizeof(double), '\0');
  std::memcpy(bytes.data(), matrix.elements().data(), bytes.size());
  return bytes;
}

TEST(TextString, PacksSevenCharactersBeforeEachMark) {
  ScriptedSession session;
  Matrix matrix;
  const auto packed = [&matrix](std::string_view text) {
    storeText(matrix, text);
    EXPECT_TRUE(matrix.isString());
    EXPECT_EQ(matrix.rows(), 1);
    return bytesOf(matrix);
  };
  EXPECT_EQ(packed(""), "       S");
  EXPECT_EQ(packed("abc"), "abc    S");
  EXPECT_EQ(packed("abcdefg"), "abcdefgS");
  EXPECT_EQ(packed("abcdefgh"), "abcdefgSh      S");
  EXPECT_EQ(packed("\xC3\xA9\x01"), "\xC3\xA9\x01    S");
  EXPECT_EQ(packed(std::string(stringLimit, 'x')).size(), 8u * 37);
}

TEST(TextString, GivesTextsBackWithoutTrailingBlanks) {
  ScriptedSession session;
  Matrix matrix;
  for (const std::string text : {"", "a", " leading", "seven  ", "two words  end", "12345678"}) {
    storeText(matrix, text);
    EXPECT_EQ(loadText(matrix), text.substr(0, text.find_last_not_of(' ') + 1));
  }
}

TEST(TextString, LeavesNoVariableBehindATextThatIsTooLong) {
  ScriptedSession session;
  assignText("long", std::string(stringLimit + 1, 'x'));
  EXPECT_EQ(findMatrix("long"), nullptr);
  assignText("long", std::string(stringLimit, 'x'));
  Matrix* matrix = findMatrix("long");
  ASSERT_NE(matrix, nullptr);
  storeText(*matrix, std::string(stringLimit + 1, 'y'));
  EXPECT_EQ(loadText(*matrix), std::string(stringLimit, 'x'));
}

}  // namespace
}  // namespace vexa
