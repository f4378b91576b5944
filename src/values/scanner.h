#pragma once

// Cuts program text into tokens, one a call, through one shared cursor. There is no token list:
// whoever needs a token calls getToken again, and whoever wants to read one again sets progCursor
// back to tokenStart. The scanner allocates nothing and copies only literals.

#include <array>
#include <cstdint>
#include <string_view>

#include "interp/name_pool.h"
#include "values/character_class.h"

namespace vexa {

enum TokenType : int {
  TOKEN_NONE = 0,
  TOKEN_KEYWORD = 1,
  TOKEN_DELIMITER = 6,  // punctuation, operators and the end of the text
  TOKEN_NAME = 7,
  TOKEN_NUMBER = 8,
  TOKEN_QUOTED = 9,
  TOKEN_STRING = 10,
  TOKEN_BLOCK = 11,
};

// Two-character operators are stored as codes, so that one byte comparison tells them. The first
// eight are recognised by the first byte of tokenText, the last three by tokenChar.
enum OperatorCode : unsigned char {
  OP_LT = 1,
  OP_LE = 2,
  OP_GT = 3,
  OP_GE = 4,
  OP_EQ = 5,
  OP_NE = 6,
  OP_AND = 7,
  OP_OR = 8,
  OP_AMP_MUL = 9,
  OP_AMP_DIV = 10,
  OP_AMP_POW = 11,
};

// Token classes: keyword codes, and what statements leave behind.
enum TokenClass : int {
  classSkipped = -1,  // a skip has just consumed a bracket group
  classNone = 0,
  classFloat = 1,
  classInt = 2,
  classMat = 3,
  classString = 4,
  classBreak = 5,
  classCase = 6,
  classChar = 7,
  classContinue = 8,
  classDefault = 9,
  classDo = 10,
  classElse = 11,
  classEnd = 12,
  FINISHED = 12,  // also the end of the text, a delimiter token with empty text
  classFor = 13,
  classIf = 14,
  classReturn = 15,
  classSwitch = 16,
  classWhile = 17,
};

inline constexpr unsigned char noTokenChar = 255;
inline constexpr int literalLimit = 255;  // a literal that reaches it raises key 26

// What a word means where it stands.
enum class NameKind : std::uint8_t {
  unknown,
  local,     // Scanner::nameIndex is the local's index
  dummy,     // Scanner::nameIndex is the dummy's index
  variable,  // a global; Scanner::symbol holds it
  userFunction,
  builtin,
};

inline bool isVariable(NameKind kind) {
  return kind == NameKind::local || kind == NameKind::dummy || kind == NameKind::variable;
}

struct Scanner {
  const char* progCursor = nullptr;
  const char* tokenStart = nullptr;
  const char* nameStart = nullptr;  // of the last name read
  // The current token: a view into the program text, or of `literal` for a quoted token, or of the
  // operator codes.
  std::string_view tokenText;
  TokenType tokenType = TOKEN_NONE;
  int tokenCode = classNone;
  unsigned char tokenChar = noTokenChar;
  // Results of the name look-up for TOKEN_NAME.
  NameKind nameKind = NameKind::unknown;
  int nameIndex = -1;
  Symbol* symbol = nullptr;
  double numberValue = 0;  // of TOKEN_NUMBER
  int interruptCountdown = 512;
  std::array<char, literalLimit + 1> literal{};

  bool atEnd() const {
    // The text first: comparing type and code at once would wait for both stores of the scanner.
    return tokenText.empty() && tokenCode == FINISHED && tokenType == TOKEN_DELIMITER;
  }
  // A name; the one-character names `!`, `%` and `@` are none.
  bool isWord() const { return tokenType == TOKEN_NAME && tokenChar == noTokenChar; }
  // The `!` or `@` of a matrix or complex expression.
  bool isMark() const { return tokenChar == '!' || tokenChar == '@'; }
  // The first byte of an operator's code, 0 for every other token.
  unsigned char operatorCode() const {
    return tokenType == TOKEN_DELIMITER && !tokenText.empty()
               ? static_cast<unsigned char>(tokenText[0])
               : static_cast<unsigned char>(0);
  }
};

// Reads the next token and returns its type.
TokenType getToken();
// Moves the cursor back by the length of tokenText: exact only for names, numbers and
// one-character delimiters.
void putBack();
// Sets the cursor back to the start of the current token: always exact.
void rescanToken();

// The text of the last name read, for messages; its first literalLimit characters when it is long.
std::string_view lastNameText();

// Classifies a word as the scanner would, setting the look-up results.
NameKind lookUpName(std::string_view word);

// The current token in the spelling of the program, for messages; empty at the end of the text.
std::string_view tokenSpelling();

// The next of "[](){},;" outside of comments, literals, words and numbers, or NUL at the end of
// the text. Sets the token class to TOKEN_BLOCK for a brace and to FINISHED at the end.
char nextStructuralChar();
// Reads the opening character and moves past its matching closing one. Raises the error of the
// missing character. False only at the end of the text.
bool skipGroup(char open);
// Moves forward past `wanted`; at `stop` or at the end of the text expects `wanted`, which raises.
void skipToChar(char wanted, char stop);

// Where white space and comments from `at` on end; raises nothing (an unterminated comment ends at
// the end of the text).
const char* skipBlanks(const char* at);
// The same with the usual single blank passed over at once.
inline const char* peekBlanks(const char* at) {
  if (*at == ' ') ++at;
  return isCharacter(*at, charBlank) || *at == '/' ? skipBlanks(at) : at;
}
// Takes a bracket or another character that is a token by itself, when it is next. False, with
// nothing read, when something else is.
bool acceptLone(char c);

// Past the bracket that matches the one at `at`, raising nothing; null when there is none (a `;`
// ends the search for a square bracket).
const char* pastGroup(const char* at);

// The Esc test, also for built-ins that run long (once an outer step): asks the shell and, when
// the user wants to stop, ends the run.
void pollInterrupt();

// Delimiters that may end an expression.
inline bool endsExpression(unsigned char c) {
  switch (c) {
    case '(':
    case ')':
    case ',':
    case ';':
    case '}':
    case ']':
    case '{':
    case ':':
      return true;
    default:
      return false;
  }
}
// The same without the opening parenthesis, for scalar arguments.
inline bool endsArgument(unsigned char c) { return c != '(' && endsExpression(c); }

}  // namespace vexa
