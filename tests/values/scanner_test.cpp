// Tokens as statements and evaluators see them: what no program can tell by its results.

#include "values/scanner.h"

#include <gtest/gtest.h>

#include "interp/program_text.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

class ScannerTest : public ::testing::Test {
 protected:
  const Scanner& scanner() { return session.scope.state().scanner; }
  // Blanks in front and NULs behind, as prepared text has them.
  void place(std::string_view text) {
    m_text.assign(lineSuffixLength, ' ');
    m_text += text;
    m_text.append(textPadding, '\0');
    session.scope.state().scanner.progCursor = m_text.data() + lineSuffixLength;
  }

  ScriptedSession session;

 private:
  std::string m_text;
};

TEST_F(ScannerTest, GivesEachTokenItsTypeTextAndCharacter) {
  constexpr int none = noTokenChar;
  struct Case {
    std::string_view source;
    TokenType type;
    std::string_view text;
    int tokenChar;
    std::ptrdiff_t length;  // of the source that the token takes
  };
  // clang-format off
  const Case cases[] = {
      {"<b", TOKEN_DELIMITER, "\x01", '<', 1},
      {"<=b", TOKEN_DELIMITER, "\x02\x02", none, 2},
      {">b", TOKEN_DELIMITER, "\x03", '>', 1},
      {">=b", TOKEN_DELIMITER, "\x04\x04", none, 2},
      {"==b", TOKEN_DELIMITER, "\x05\x05", none, 2},
      {"!=b", TOKEN_DELIMITER, "\x06\x06", none, 2},
      {"&&b", TOKEN_DELIMITER, "\x07\x07", none, 2},
      {"||b", TOKEN_DELIMITER, "\x08\x08", none, 2},
      {"&*b", TOKEN_DELIMITER, "\x09", OP_AMP_MUL, 2},
      {"&/b", TOKEN_DELIMITER, "\x0a", OP_AMP_DIV, 2},
      {"&^b", TOKEN_DELIMITER, "\x0b", OP_AMP_POW, 2},
      {"=b", TOKEN_DELIMITER, "=", '=', 1},
      {"|b", TOKEN_DELIMITER, "|", '|', 1},
      {"_x", TOKEN_DELIMITER, "_", '_', 1},
      {".x", TOKEN_DELIMITER, ".", '.', 1},
      {"/b", TOKEN_DELIMITER, "/", '/', 1},
      {"!b", TOKEN_NAME, "!", '!', 1},
      {"%b", TOKEN_NAME, "%", '%', 1},
      {"@b", TOKEN_NAME, "@", '@', 1},
      {"{b", TOKEN_BLOCK, "{", '{', 1},
      {"}b", TOKEN_BLOCK, "}", '}', 1},
      {"a_#$1+", TOKEN_NAME, "a_#$1", none, 5},
      {"while(", TOKEN_KEYWORD, "while", none, 5},
      {".5+", TOKEN_NUMBER, ".5", none, 2},
      {"2e-3x", TOKEN_NUMBER, "2e-3", none, 4},
      {"5.;", TOKEN_NUMBER, "5.", none, 2},
      {"'a\tb'x", TOKEN_QUOTED, "ab", none, 5},
      {"\"'\"x", TOKEN_STRING, "'", none, 3},
      {"", TOKEN_DELIMITER, "", none, 0},
  };
  // clang-format on
  for (const Case& c : cases) {
    place(c.source);
    const char* start = scanner().progCursor;
    EXPECT_EQ(getToken(), c.type) << c.source;
    EXPECT_EQ(scanner().tokenText, c.text) << c.source;
    EXPECT_EQ(scanner().tokenChar, c.tokenChar) << c.source;
    EXPECT_EQ(scanner().progCursor - start, c.length) << c.source;
    EXPECT_EQ(scanner().atEnd(), c.source.empty()) << c.source;
    EXPECT_EQ(scanner().tokenCode == classWhile, c.type == TOKEN_KEYWORD) << c.source;
  }
}

// putBack counts the characters of the token's text, rescanToken goes where the token began.
TEST_F(ScannerTest, PutsTokensBackByTheirTextOrTheirPlace) {
  for (const std::string_view source : {"name+", "12.5e3+", "~+", "<=+"}) {
    place(source);
    const char* start = scanner().progCursor;
    getToken();
    putBack();
    EXPECT_EQ(scanner().progCursor, start) << source;
  }
  for (const std::string_view source : {"&*b", "\"text\"b", "'\t'b"}) {
    place(source);
    const char* start = scanner().progCursor;
    getToken();
    putBack();
    EXPECT_GT(scanner().progCursor, start) << source;
    rescanToken();
    EXPECT_EQ(scanner().progCursor, start) << source;
  }
}

// Where a token began is behind white space and comments; a line suffix is a comment and no text.
TEST_F(ScannerTest, FindsTokensBehindBlanksAndComments) {
  place(" \t// 00001\r /* one\n * two */// 00002\r  3 \"a// 00003\rb\" /");
  getToken();
  EXPECT_EQ(scanner().tokenText, "3");
  EXPECT_EQ(*scanner().tokenStart, '3');
  getToken();
  EXPECT_EQ(scanner().tokenText, "ab");
  getToken();
  EXPECT_EQ(scanner().tokenText, "/");
  getToken();
  EXPECT_TRUE(scanner().atEnd());
}

}  // namespace
}  // namespace vexa
