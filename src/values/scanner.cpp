#include "values/scanner.h"

#include <bit>
#include <cstring>

#include "interp/interpreter_state.h"
#include "interp/message_box.h"
#include "interp/program_text.h"
#include "values/argument_readers.h"
#include "values/character_class.h"
#include "values/number_format.h"

namespace vexa {

namespace {

constexpr int pollInterval = 512;  // tokens between two questions to the shell

constexpr std::string_view operatorSpellings[] = {
    "", "<", "<=", ">", ">=", "==", "!=", "&&", "||", "&*", "&/", "&^"};

// Operator codes as token texts: the one-byte codes and the codes written twice.
constexpr char codeBytes[] = {OP_LT, OP_LT, OP_LE,      OP_LE,      OP_GT,     OP_GT,  OP_GE,
                              OP_GE, OP_EQ, OP_EQ,      OP_NE,      OP_NE,     OP_AND, OP_AND,
                              OP_OR, OP_OR, OP_AMP_MUL, OP_AMP_DIV, OP_AMP_POW};

const char* doubledCode(OperatorCode code) {
  const std::ptrdiff_t before = code - 1;
  return codeBytes + 2 * before;
}

std::string_view codeOnce(OperatorCode code) {
  return {code <= OP_OR ? doubledCode(code) : codeBytes + 16 + (code - OP_AMP_MUL), 1};
}

std::string_view codeTwice(OperatorCode code) { return {doubledCode(code), 2}; }

// The line suffix "// 00012\r" at a position inside a literal; it belongs to no literal.
bool isLineSuffix(const char* at) {
  if (at[0] != '/' || at[1] != '/' || at[2] != ' ') return false;
  for (int i = 3; i < 8; ++i)
    if (!isCharacter(at[i], charDigit)) return false;
  return at[8] == '\r';
}

// The same for the eight bytes behind the first slash, all at once: a slash, a blank, five bytes
// from '0' to '?' (more than digits, but no line end) and a carriage return. Where white space and
// comments are passed over, that is all there is to know.
bool isSuffixTail(const char* at) {
  static_assert(std::endian::native == std::endian::little);
  std::uint64_t bytes;
  std::memcpy(&bytes, at, sizeof bytes);
  return (bytes & 0xFFF0F0F0F0F0FFFF) == 0x0D3030303030202F;
}

// Past a comment that begins at `at`, or null when it is not terminated. A `*` at the end of a line
// does not meet the slash of the suffix behind it.
const char* pastComment(const char* at) {
  if (at[1] == '/') {
    at += 2;
    while (*at != '\r' && *at != '\0') ++at;
    return at;
  }
  for (at += 2;; ++at) {
    if (*at == '\0') return nullptr;
    if (*at != '*') continue;
    // A second opening inside a comment is a fault, not text; that of "/*/" ends nothing.
    if (at[-1] == '/') return nullptr;
    if (at[1] == '/' && !isLineSuffix(at + 1)) return at + 2;
  }
}

// A division at the end of a line is told from the comment that its slash and the suffix would
// make.
bool startsComment(const char* at) {
  return *at == '/' && (at[1] == '*' || (at[1] == '/' && !isLineSuffix(at + 1)));
}

void setDelimiter(Scanner& scanner, const char* at, std::size_t length, unsigned char tokenChar) {
  scanner.tokenType = TOKEN_DELIMITER;
  scanner.tokenText = {at, length};
  scanner.tokenChar = tokenChar;
  scanner.progCursor = at + length;
}

void setOperator(Scanner& scanner, OperatorCode code) {
  scanner.tokenType = TOKEN_DELIMITER;
  scanner.tokenText = codeTwice(code);
  scanner.progCursor += 2;
}

// The types of the characters that are tokens by themselves.
constexpr std::array<TokenType, 256> loneTypes = [] {
  std::array<TokenType, 256> types{};
  types.fill(TOKEN_DELIMITER);
  types['{'] = types['}'] = TOKEN_BLOCK;
  return types;
}();

// Past an indentation, in long steps first; the padding of the text ends it.
inline const char* pastIndentation(const char* at) {
  constexpr std::uint64_t blanks = 0x2020202020202020;
  for (std::uint64_t bytes;; at += sizeof bytes) {
    std::memcpy(&bytes, at, sizeof bytes);
    if (bytes != blanks) break;
  }
  while (*at == ' ') ++at;
  while (isCharacter(*at, charBlank)) ++at;
  return at;
}

// What the entry of a name means where nothing nearer hides it, by category.
constexpr NameKind entryKinds[] = {NameKind::unknown,  NameKind::unknown,      NameKind::unknown,
                                   NameKind::variable, NameKind::userFunction, NameKind::builtin};

// Sets the look-up results of a word and the token type that follows from them.
inline void classify(const CallStack& calls, Scanner& scanner, Symbol* symbol) {
  scanner.tokenType = TOKEN_NAME;
  scanner.symbol = symbol;
  if (!symbol) {
    scanner.nameKind = NameKind::unknown;
    return;
  }
  // No local or dummy carries a reserved word.
  if (symbol->localTop >= calls.localsBase()) {
    scanner.nameKind = NameKind::local;
    scanner.nameIndex = symbol->localTop;
    return;
  }
  if (symbol->dummyTop >= calls.dummyBase()) {
    scanner.nameKind = NameKind::dummy;
    scanner.nameIndex = symbol->dummyTop;
    return;
  }
  scanner.nameKind = entryKinds[static_cast<int>(symbol->category)];
  if (symbol->category == Category::reserved) {
    scanner.tokenType = TOKEN_KEYWORD;
    scanner.tokenCode = symbol->number;
  }
}

[[gnu::noinline]] void refuseLongName(Scanner& scanner) {
  scanner.tokenType = TOKEN_NAME;
  scanner.nameKind = NameKind::unknown;
  scanner.symbol = nullptr;
  scanner.tokenText = lastNameText();
  raiseError(ErrorKey::tooLong, scanner.tokenText);
}

// Names of eight letters and more, whose tail is compared as well.
[[gnu::noinline]] TokenType scanLongName(const InterpreterState& state, Scanner& scanner,
                                         const char* start, std::size_t length) {
  scanner.tokenText = {start, length};
  if (length > maxNameLength) {
    refuseLongName(scanner);
    return TOKEN_NAME;
  }
  classify(state.calls, scanner, state.names.find(start, length, nameKeyOfPadded(start, length)));
  return scanner.tokenType;
}

inline TokenType scanName(const InterpreterState& state, Scanner& scanner, const char* start) {
  const char* end = start + 1;
  while (isCharacter(*end, charNamePart)) ++end;
  const auto length = static_cast<std::size_t>(end - start);
  scanner.progCursor = end;
  scanner.nameStart = start;
  if (length >= prefixLength) return scanLongName(state, scanner, start, length);
  scanner.tokenText = {start, length};
  classify(state.calls, scanner, state.names.findShort(nameKeyOfPadded(start, length)));
  return scanner.tokenType;
}

// The one-character built-in names `!`, `%` and `@`. Nothing can hide them.
[[gnu::noinline]] TokenType scanMarkName(Scanner& scanner, const char* at) {
  scanner.tokenType = TOKEN_NAME;
  scanner.nameStart = at;
  scanner.tokenText = {at, 1};
  scanner.tokenChar = static_cast<unsigned char>(*at);
  scanner.symbol = interpreter().names.find(scanner.tokenText);
  scanner.nameKind = NameKind::builtin;
  scanner.progCursor = at + 1;
  return TOKEN_NAME;
}

constexpr double powersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// Numbers with an exponent, with more digits than a double holds exactly, and malformed ones.
[[gnu::noinline]] TokenType scanLongNumber(Scanner& scanner, const char* start) {
  const char* at = start;
  bool pointSeen = false;
  bool exponentSeen = false;
  for (;; ++at) {
    if (isCharacter(*at, charDigit)) continue;
    if (*at == '.') {
      if (pointSeen || exponentSeen) break;
      pointSeen = true;
    } else if (*at == 'e' || *at == 'E') {
      if (exponentSeen) break;
      exponentSeen = true;
      if (at[1] == '+' || at[1] == '-') ++at;
    } else {
      break;
    }
  }
  scanner.tokenType = TOKEN_NUMBER;
  scanner.tokenText = {start, static_cast<std::size_t>(at - start)};
  scanner.numberValue = parseNumber(scanner.tokenText);
  scanner.progCursor = at;
  if (*at == '.' || *at == 'e' || *at == 'E') [[unlikely]] {
    scanner.progCursor = at + 1;
    raiseError(ErrorKey::syntax);
  } else if (scanner.tokenText.size() > literalLimit) [[unlikely]] {
    scanner.tokenText = scanner.tokenText.substr(0, literalLimit);
    raiseError(ErrorKey::tooLong);
  }
  return TOKEN_NUMBER;
}

// The digits from `at` on, appended to a whole number that wraps when there are too many.
inline const char* appendDigits(const char* at, std::int64_t& digits) {
  for (unsigned digit; (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) <= 9; ++at)
    digits = static_cast<std::int64_t>(10 * static_cast<std::uint64_t>(digits) + digit);
  return at;
}

// Up to fifteen digits with at most one point among them: the digits as a whole number and the
// power of ten are exact, so one division rounds correctly.
TokenType scanNumber(Scanner& scanner, const char* start) {
  constexpr int exactDigits = 15;
  std::int64_t digits = 0;
  const char* at = appendDigits(start, digits);
  auto value = static_cast<double>(digits);
  if (isCharacter(*at, charWordPart)) {
    if (*at == '.') {
      const char* fraction = at + 1;
      at = appendDigits(fraction, digits);
      if (at - fraction > exactDigits) return scanLongNumber(scanner, start);
      value = static_cast<double>(digits) / powersOfTen[at - fraction];
    }
    if (*at == '.' || *at == 'e' || *at == 'E') return scanLongNumber(scanner, start);
  }
  if (at - start > exactDigits) return scanLongNumber(scanner, start);
  scanner.tokenType = TOKEN_NUMBER;
  scanner.tokenText = {start, static_cast<std::size_t>(at - start)};
  scanner.numberValue = value;
  scanner.progCursor = at;
  return TOKEN_NUMBER;
}

[[gnu::noinline]] TokenType scanLiteral(Scanner& scanner, const char* start) {
  const char quote = *start;
  const char* at = start + 1;
  std::size_t length = 0;
  bool closed = false;
  while (*at != '\0' && length < literalLimit) {
    if (*at == quote) {
      closed = true;
      ++at;
      break;
    }
    if (isLineSuffix(at)) {
      at += lineSuffixLength;
      continue;
    }
    if (*at != '\r' && *at != '\n' && *at != '\t') scanner.literal[length++] = *at;
    ++at;
  }
  scanner.tokenType = quote == '"' ? TOKEN_STRING : TOKEN_QUOTED;
  scanner.tokenText = {scanner.literal.data(), length};
  scanner.progCursor = at;
  if (!closed) raiseError(ErrorKey::quoteExpected);
  return scanner.tokenType;
}

// `&` begins an operator of two characters; both are consumed in every case.
[[gnu::noinline]] TokenType scanAmpersand(Scanner& scanner, const char* at) {
  switch (isLineSuffix(at + 1) ? '\r' : at[1]) {
    case '&':
      setOperator(scanner, OP_AND);
      return TOKEN_DELIMITER;
    case '*':
    case '/':
    case '^': {
      const OperatorCode code = at[1] == '*' ? OP_AMP_MUL : at[1] == '/' ? OP_AMP_DIV : OP_AMP_POW;
      scanner.tokenType = TOKEN_DELIMITER;
      scanner.tokenText = codeOnce(code);
      scanner.tokenChar = code;
      scanner.progCursor = at + 2;
      return TOKEN_DELIMITER;
    }
    default:
      scanner.tokenType = TOKEN_DELIMITER;
      scanner.tokenText = {at, 1};
      scanner.progCursor = at[1] == '\0' || isLineSuffix(at + 1) ? at + 1 : at + 2;
      raiseError(ErrorKey::syntax);
      return TOKEN_DELIMITER;
  }
}

[[gnu::noinline]] TokenType scanPunctuation(Scanner& scanner, const char* at) {
  switch (*at) {
    case '"':
    case '\'':
      return scanLiteral(scanner, at);
    case '%':
    case '@':
      return scanMarkName(scanner, at);
    case '!':
      if (at[1] != '=') return scanMarkName(scanner, at);
      setOperator(scanner, OP_NE);
      return TOKEN_DELIMITER;
    case '&':
      return scanAmpersand(scanner, at);
    case '<':
    case '>':
      if (at[1] == '=') {
        setOperator(scanner, *at == '<' ? OP_LE : OP_GE);
      } else {
        setDelimiter(scanner, at, 1, static_cast<unsigned char>(*at));
        scanner.tokenText = codeOnce(*at == '<' ? OP_LT : OP_GT);
      }
      return TOKEN_DELIMITER;
    case '=':
      if (at[1] == '=') {
        setOperator(scanner, OP_EQ);
        return TOKEN_DELIMITER;
      }
      break;
    case '|':
      if (at[1] == '|') {
        setOperator(scanner, OP_OR);
        return TOKEN_DELIMITER;
      }
      break;
    case '.':
      if (isCharacter(at[1], charDigit)) return scanNumber(scanner, at);
      break;
    default:
      break;
  }
  setDelimiter(scanner, at, 1, static_cast<unsigned char>(*at));
  return TOKEN_DELIMITER;
}

void clearToken(Scanner& scanner) {
  scanner.tokenType = TOKEN_NONE;
  scanner.tokenText = {};
}

// The end of the text, or a byte that begins no token. Such a byte is consumed, so that a loop over
// tokens always moves on.
[[gnu::noinline]] TokenType scanEndOrStray(Scanner& scanner, const char* at) {
  clearToken(scanner);
  const bool afterBlanks = at != scanner.progCursor;
  scanner.tokenStart = at;
  if (*at == '\0') {
    scanner.progCursor = at;
    scanner.tokenCode = FINISHED;
    return scanner.tokenType = TOKEN_DELIMITER;
  }
  scanner.progCursor = at + 1;
  if (afterBlanks) return TOKEN_NONE;
  raiseError(ErrorKey::syntax);
  scanner.tokenCode = FINISHED;
  return scanner.tokenType;
}

TokenType scanFromSlash(const InterpreterState& state, Scanner& scanner, const char* at);
TokenType scanFromComment(const InterpreterState& state, Scanner& scanner, const char* at);

// One token from `at` on, behind white space and comments. Everything that is not usual is a call
// in tail position, which keeps the usual way short.
[[gnu::always_inline]] inline TokenType scanFrom(const InterpreterState& state, Scanner& scanner,
                                                 const char* at) {
  for (;;) {
    const auto c = static_cast<unsigned char>(*at);
    const std::uint8_t kind = characterClasses[c];
    if (kind & charLetter) {
      scanner.tokenStart = at;
      return scanName(state, scanner, at);
    }
    if (kind & charBlank) {
      do ++at;
      while (*at == ' ');
      continue;
    }
    if (kind & charLone) {
      scanner.tokenStart = at;
      scanner.tokenText = {at, 1};
      scanner.tokenChar = c;
      scanner.progCursor = at + 1;
      return scanner.tokenType = loneTypes[c];
    }
    if (kind & charDigit) {
      scanner.tokenStart = at;
      return scanNumber(scanner, at);
    }
    if (kind & charPunctuation) {
      if (c == '/') return scanFromSlash(state, scanner, at);
      scanner.tokenStart = at;
      scanner.progCursor = at;
      return scanPunctuation(scanner, at);
    }
    return scanEndOrStray(scanner, at);
  }
}

// The same from a slash on: a line suffix, a division or any number of comments.
[[gnu::noinline]] TokenType scanFromSlash(const InterpreterState& state, Scanner& scanner,
                                          const char* at) {
  if (!isSuffixTail(at + 1)) return scanFromComment(state, scanner, at);
  // A loop, for there may be many empty lines.
  do at = pastIndentation(at + lineSuffixLength);
  while (*at == '/' && isSuffixTail(at + 1));
  return scanFrom(state, scanner, at);
}

[[gnu::noinline]] TokenType scanFromComment(const InterpreterState& state, Scanner& scanner,
                                            const char* at) {
  if (!startsComment(at)) {
    scanner.tokenStart = scanner.progCursor = at;
    return scanPunctuation(scanner, at);
  }
  while (startsComment(at)) {
    const char* past = pastComment(at);
    if (!past) {
      // The cursor goes back, so that the message names the line where the comment began.
      scanner.tokenStart = scanner.progCursor = at;
      clearToken(scanner);
      raiseError(ErrorKey::commentNotTerminated);
      // Only outside an evaluation: the rest of the text is the comment's.
      past = at + std::strlen(at);
    }
    at = past;
    while (isCharacter(*at, charBlank)) ++at;
  }
  return scanFrom(state, scanner, at);
}

[[gnu::noinline]] TokenType getTokenAfterPoll(Scanner& scanner) {
  scanner.interruptCountdown = pollInterval;
  pollInterrupt();
  return getToken();
}

}  // namespace

TokenType getToken() {
  InterpreterState& state = interpreter();
  Scanner& scanner = state.scanner;
  if (--scanner.interruptCountdown == 0) [[unlikely]]
    return getTokenAfterPoll(scanner);
  scanner.tokenChar = noTokenChar;
  scanner.tokenCode = classNone;
  return scanFrom(state, scanner, scanner.progCursor);
}

bool acceptLone(char c) {
  Scanner& scanner = interpreter().scanner;
  const char* at = peekBlanks(scanner.progCursor);
  // `=` may begin `==` and a quote a literal: those are for the scanner to tell.
  if (*at != c || !isCharacter(c, charLone)) return false;
  scanner.tokenStart = at;
  scanner.tokenCode = classNone;
  setDelimiter(scanner, at, 1, static_cast<unsigned char>(c));
  scanner.tokenType = loneTypes[static_cast<unsigned char>(c)];
  return true;
}

void putBack() {
  Scanner& scanner = interpreter().scanner;
  scanner.progCursor -= scanner.tokenText.size();
}

void rescanToken() {
  Scanner& scanner = interpreter().scanner;
  scanner.progCursor = scanner.tokenStart;
}

std::string_view lastNameText() {
  const char* start = interpreter().scanner.nameStart;
  const char* end = start;
  while (isCharacter(*end, charNamePart) && end - start < literalLimit) ++end;
  return {start, static_cast<std::size_t>(end - start)};
}

NameKind lookUpName(std::string_view word) {
  InterpreterState& state = interpreter();
  Scanner& scanner = state.scanner;
  const TokenType type = scanner.tokenType;
  const int code = scanner.tokenCode;
  scanner.nameKind = NameKind::unknown;
  classify(state.calls, scanner, state.names.find(word));
  scanner.tokenType = type;
  scanner.tokenCode = code;
  return scanner.nameKind;
}

std::string_view tokenSpelling() {
  const Scanner& scanner = interpreter().scanner;
  const unsigned char code = scanner.operatorCode();
  return code >= OP_LT && code <= OP_AMP_POW ? operatorSpellings[code] : scanner.tokenText;
}

char nextStructuralChar() {
  Scanner& scanner = interpreter().scanner;
  const char* at = scanner.progCursor;
  for (;;) {
    const std::uint8_t kind = characterClasses[static_cast<unsigned char>(*at)];
    if (kind & charStructural) {
      scanner.progCursor = at + 1;
      if (*at == '{' || *at == '}') scanner.tokenCode = TOKEN_BLOCK;
      return *at;
    }
    if (kind & (charLetter | charDigit)) {
      do ++at;
      while (isCharacter(*at, charWordPart));
    } else if (kind & charBlank) {
      do ++at;
      while (*at == ' ');
    } else if (*at == '/' && isSuffixTail(at + 1)) {
      at += lineSuffixLength;
    } else if (*at == '\0') {
      scanner.progCursor = at;
      scanner.tokenCode = FINISHED;
      return '\0';
    } else if (*at == '"' || *at == '\'') {
      scanner.tokenStart = at;
      scanLiteral(scanner, at);
      at = scanner.progCursor;
    } else if (startsComment(at)) {
      const char* past = pastComment(at);
      if (!past) {
        scanner.tokenStart = scanner.progCursor = at;
        raiseError(ErrorKey::commentNotTerminated);
        while (*at != '\0') ++at;
        past = at;
      }
      at = past;
    } else {
      ++at;
    }
  }
}

bool skipGroup(char open) {
  Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.atEnd()) return false;
  if (scanner.tokenChar != static_cast<unsigned char>(open)) {
    rescanToken();
    expectChar(open);
    return false;
  }
  const char close = open == '(' ? ')' : static_cast<char>(open + 2);
  const char* start = scanner.progCursor;
  for (int depth = 1; depth > 0;) {
    const char c = nextStructuralChar();
    if (c == open) {
      ++depth;
    } else if (c == close) {
      --depth;
    } else if (c == '\0' || (open == '[' && c == ';')) {
      scanner.progCursor = start;
      expectChar(close);
      return false;
    }
  }
  scanner.tokenCode = classSkipped;
  return true;
}

void skipToChar(char wanted, char stop) {
  for (;;) {
    const char c = nextStructuralChar();
    if (c == wanted) return;
    if (c == '\0' || c == stop) {
      expectChar(wanted);
      return;
    }
  }
}

const char* skipBlanks(const char* at) {
  for (;;) {
    if (isCharacter(*at, charBlank)) {
      ++at;
    } else if (startsComment(at)) {
      const char* past = pastComment(at);
      if (!past) {
        while (*at != '\0') ++at;
        return at;
      }
      at = past;
    } else {
      return at;
    }
  }
}

const char* pastGroup(const char* at) {
  const char open = *at;
  const char close = open == '(' ? ')' : static_cast<char>(open + 2);
  int depth = 0;
  for (;; ++at) {
    const char c = *at;
    if (c == open) {
      ++depth;
    } else if (c == close) {
      if (--depth == 0) return at + 1;
    } else if (c == '\0' || (c == ';' && open == '[')) {
      return nullptr;
    } else if (c == '"' || c == '\'') {
      const char* end = std::strchr(at + 1, c);
      if (!end) return nullptr;
      at = end;
    } else if (startsComment(at)) {
      const char* past = pastComment(at);
      if (!past) return nullptr;
      at = past - 1;
    }
  }
}

void pollInterrupt() {
  InterpreterState& state = interpreter();
  switch (state.shell->interruptRequested()) {
    case Interrupt::none:
      return;
    case Interrupt::escape: {
      constexpr int terminate = 7;
      if (messageBox(" You have pressed key Esc:", boxContinueTerminate) != terminate) return;
      state.runInterrupted = true;
      raiseError(ErrorKey::programTerminated);
      return;
    }
    case Interrupt::stop:
      state.runInterrupted = true;
      raiseError(ErrorKey::interrupted);
      return;
  }
}

}  // namespace vexa
