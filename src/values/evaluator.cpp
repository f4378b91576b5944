#include "values/evaluator.h"

#include <cmath>
#include <limits>

#include "interp/functions.h"
#include "values/argument_readers.h"
#include "values/builtins.h"
#include "values/character_class.h"
#include "values/evaluator_parts.h"
#include "values/text_string.h"

namespace vexa {

namespace {

using State = InterpreterState;

double conditionAssignment(State& state);

// The levels of a condition, from the highest precedence down. Each goes on from its first operand,
// so that an expression that is a lone primary is done at once; what goes on is called only when
// its operator is there.

// Level 6: the power, joined from the left; its right operand is a primary.
[[gnu::noinline]] double continuePower(State& state, double x) {
  do {
    nextOperand(state);
    x = std::pow(x, conditionPrimary(state));
    state.noEcho = false;
  } while (state.scanner.tokenChar == '^');
  return x;
}

inline double powerOperand(State& state) {
  const double x = conditionPrimary(state);
  return state.scanner.tokenChar == '^' ? continuePower(state, x) : x;
}

// Level 5: one sign, which applies to the whole power expression.
[[gnu::noinline]] double signedOperand(State& state) {
  const unsigned char sign = state.scanner.tokenChar;
  nextOperand(state);
  const double x = powerOperand(state);
  state.noEcho = false;
  return sign == '-' ? -x : x;
}

inline double unaryOperand(State& state) {
  const unsigned char sign = state.scanner.tokenChar;
  return sign == '-' || sign == '+' ? signedOperand(state) : powerOperand(state);
}

// Level 4.
[[gnu::noinline]] double continueProduct(State& state, double x) {
  for (;;) {
    const unsigned char sign = state.scanner.tokenChar;
    if (sign == '*') {
      nextOperand(state);
      x *= unaryOperand(state);
    } else if (sign == '/') {
      nextOperand(state);
      const double divisor = unaryOperand(state);
      if (divisor == 0.0) raiseError(ErrorKey::floatingPoint);
      x /= divisor;
    } else {
      return x;
    }
    state.noEcho = false;
  }
}

inline double productFrom(State& state, double x) {
  const unsigned char sign = state.scanner.tokenChar;
  return sign == '*' || sign == '/' ? continueProduct(state, x) : x;
}

inline double productOperand(State& state) { return productFrom(state, unaryOperand(state)); }

// Level 3.
[[gnu::noinline]] double continueSum(State& state, double x) {
  for (;;) {
    const unsigned char sign = state.scanner.tokenChar;
    if (sign == '+') {
      nextOperand(state);
      x += productOperand(state);
    } else if (sign == '-') {
      nextOperand(state);
      x -= productOperand(state);
    } else if (sign == '?') {
      nextOperand(state);
      const double magnitude = std::fabs(productOperand(state));
      x = x < 0.0 ? x - magnitude : x + magnitude;
    } else {
      return x;
    }
    state.noEcho = false;
  }
}

inline double sumFrom(State& state, double x) {
  const unsigned char sign = state.scanner.tokenChar;
  return sign == '+' || sign == '-' || sign == '?' ? continueSum(state, x) : x;
}

inline double sumOperand(State& state) { return sumFrom(state, productOperand(state)); }

// Level 2: at most one comparison; a second one is left to the caller.
double continueComparison(State& state, double a) {
  const unsigned char code = state.scanner.operatorCode();
  if (code < OP_LT || code > OP_NE) return a;
  nextOperand(state);
  const double b = sumOperand(state);
  state.noEcho = false;
  switch (code) {
    case OP_LT:
      return a < b;
    case OP_LE:
      return a <= b;
    case OP_GT:
      return a > b;
    case OP_GE:
      return a >= b;
    case OP_EQ:
      return a == b;
    default:
      return a != b;
  }
}

// Level 1: both operands are always evaluated.
[[gnu::noinline]] double continueLogic(State& state, double x) {
  x = continueComparison(state, x);
  for (;;) {
    const unsigned char code = state.scanner.operatorCode();
    if (code != OP_AND && code != OP_OR) return x;
    nextOperand(state);
    const double y = continueComparison(state, sumOperand(state));
    x = code == OP_AND ? (x != 0.0 && y != 0.0) : (x != 0.0 || y != 0.0);
    state.noEcho = false;
  }
}

inline double conditionLogic(State& state) {
  const Scanner& scanner = state.scanner;
  double x = unaryOperand(state);
  if (endsExpression(scanner.tokenChar)) return x;
  x = sumFrom(state, productFrom(state, x));
  return endsExpression(scanner.tokenChar) ? x : continueLogic(state, x);
}

// A string variable takes a literal or another string by its plain name, too. False when the value
// is neither; its first token is current then.
bool assignedText(State& state, std::string_view name) {
  Scanner& scanner = state.scanner;
  std::string text;
  if (scanner.tokenType == TOKEN_STRING) {
    text = scanner.tokenText;
  } else if (scanner.tokenType == TOKEN_NAME && scanner.symbol) {
    const Matrix* source = matrixOf(*scanner.symbol);
    if (!source || !source->isString() ||
        !endsExpression(static_cast<unsigned char>(nextCharacter())))
      return false;
    text = loadText(*source);
  } else {
    return false;
  }
  assignText(name, text);
  endPrimary();
  state.noEcho = true;
  return true;
}

// name = value, the name being the current token and `value` the place behind the `=`.
[[gnu::noinline]] double plainAssignment(State& state, const char* value) {
  const NestingGuard guard;
  Symbol* symbol = state.scanner.symbol;
  const std::string_view name = state.scanner.tokenText;
  state.scanner.progCursor = value;
  getToken();
  if (symbol) [[likely]] {
    const Matrix* target = matrixOf(*symbol);
    if (target && target->isString() && assignedText(state, name)) return 0.0;
  }
  const double x = conditionAssignment(state);
  state.noEcho = false;
  return assignScalar(name, symbol, x);
}

// name[i,j] = value. The indexes are evaluated before the right side, the target is looked up
// after it.
[[gnu::noinline]] double elementAssignment(State& state) {
  const NestingGuard guard;
  Symbol* symbol = state.scanner.symbol;
  getToken();
  const Indexes at = parseIndexesFromBracket();
  getToken();
  getToken();
  const double x = conditionAssignment(state);
  state.noEcho = false;
  return assignElement(symbol, at, x);
}

// Level 0: an assignment to a variable or an undefined name, or a condition.
double conditionAssignment(State& state) {
  const Scanner& scanner = state.scanner;
  if (scanner.tokenType == TOKEN_NAME && scanner.nameKind <= NameKind::variable) {
    const char* after = peekBlanks(scanner.progCursor);
    if (*after == '=') {
      if (after[1] != '=') return plainAssignment(state, after + 1);
    } else if (*after == '[') {
      if (isAssignmentSign(passGroup(after))) return elementAssignment(state);
    }
  }
  return conditionLogic(state);
}

double parenthesised(State& state) {
  const NestingGuard guard;
  getToken();
  const double x = conditionAssignment(state);
  if (state.scanner.tokenChar != ')') raiseError(ErrorKey::parenthesisExpected);
  return x;
}

// The element whose `[` is the current token.
inline double elementValue(const Symbol& symbol) {
  const Indexes at = parseIndexesFromBracket();
  const Matrix* matrix = matrixOf(symbol);
  if (!matrix) {
    raiseError(ErrorKey::matrixNameExpected);
    return 0.0;
  }
  if (matrix->isString()) raiseError(ErrorKey::invalidData);
  const Indexes place = checkIndexes(at, matrix->rows(), matrix->cols());
  return matrix->at(place.i, place.j);
}

// A matrix where a number is wanted: an element, or the number of the matrix.
double matrixOperand(State& state, Symbol& symbol) {
  const char* name = state.scanner.tokenStart;
  getToken();
  switch (state.scanner.tokenChar) {
    case '[': {
      const double x = elementValue(symbol);
      endPrimary();
      return x;
    }
    case '(':
    case '{':
      raiseAtName(ErrorKey::bracketExpected, name);
      return 0.0;
    default:
      break;
  }
  const Matrix* matrix = matrixOf(symbol);
  if (matrix->isString()) raiseAtName(ErrorKey::invalidData, name);
  if (state.scanner.tokenType == TOKEN_NAME) {
    rescanToken();
    raiseError(ErrorKey::operatorMissing);
  }
  return matrix->size() == 1 ? matrix->at(1, 1) : 0.0;
}

// Ends a float operand: a subscript is out of place.
inline double floatOperand(double x) {
  endPrimary();
  const Scanner& scanner = interpreter().scanner;
  if (scanner.tokenChar == '[') [[unlikely]]
    raiseAtName(ErrorKey::matrixNameExpected, scanner.nameStart);
  return x;
}

double callOperand(State& state, Symbol& function) {
  callUserFunction(function);
  const double x = returnedNumber();
  endPrimary();
  state.noEcho = false;
  return x;
}

double builtinOperand(State& state, Symbol& builtin) {
  switch (state.scanner.tokenChar) {
    case '!':
    case '@': {
      const bool complex = state.scanner.tokenChar == '@';
      Value value;
      evalMatrixExpression(value, static_cast<char>(state.scanner.tokenChar), true);
      const double x = complex ? 0.0 : numberOf(value);
      freeOperand(value);
      state.noEcho = false;
      return x;
    }
    case '%':
      evalStringAssignment();
      return 0.0;
    default:
      break;
  }
  const double x = callBuiltin(builtin.number);
  freeTempMatrix(state.builtinResultMatrix);
  state.builtinResultMatrix = nullptr;
  endPrimary();
  return x;
}

double nameOperand(State& state) {
  Scanner& scanner = state.scanner;
  Symbol* symbol = scanner.symbol;
  switch (scanner.nameKind) {
    case NameKind::local:  // a matrix: numbers are the quick way's
      return matrixOperand(state, *symbol);
    case NameKind::dummy:
      return floatOperand(state.calls.dummy(scanner.nameIndex).value);
    case NameKind::variable:
      if (symbol->type == typeFloat) return floatOperand(symbol->value);
      return matrixOperand(state, *symbol);
    case NameKind::userFunction:
      return callOperand(state, *symbol);
    case NameKind::builtin:
      return builtinOperand(state, *symbol);
    case NameKind::unknown:
      break;
  }
  raiseError(*skipBlanks(scanner.progCursor) == '(' ? ErrorKey::functionNotDefined
                                                    : ErrorKey::undefinedVariable);
  getToken();
  return 0.0;
}

// `?` where an operand is expected: what the calculator window accepts.
double calculatorOperand(State& state) {
  CalcRequest request;
  const double x = state.shell->calculator(request).value_or(0.0);
  endPrimary();
  return x;
}

// A primary that is neither a number nor a local number.
[[gnu::noinline]] double otherPrimary(State& state) {
  const Scanner& scanner = state.scanner;
  switch (scanner.tokenType) {
    case TOKEN_NAME:
      return nameOperand(state);
    case TOKEN_KEYWORD:
      raiseError(ErrorKey::nameIsKeyword);
      break;
    case TOKEN_QUOTED: {
      const double x =
          scanner.tokenText.empty() ? 0.0 : static_cast<signed char>(scanner.tokenText[0]);
      endPrimary();
      return x;
    }
    case TOKEN_STRING:
      raiseError(ErrorKey::invalidData);
      break;
    default:
      switch (scanner.tokenChar) {
        case '(': {
          const double x = parenthesised(state);
          endPrimary();
          return x;
        }
        case ')':
          return 0.0;
        case '?':
          return calculatorOperand(state);
        default:
          raiseError(ErrorKey::operatorRepeated);
      }
  }
  getToken();
  return 0.0;
}

}  // namespace

void NestingGuard::fail() {
  --interpreter().nesting;
  raiseError(ErrorKey::nestingTooDeep);
  ++interpreter().nesting;
}

void refuseOperand() { raiseError(ErrorKey::operatorRepeated); }

void refuseName() {
  rescanToken();
  raiseError(ErrorKey::operatorMissing);
}

double conditionPrimary(InterpreterState& state) {
  Scanner& scanner = state.scanner;
  if (scanner.tokenType == TOKEN_NUMBER) {
    double x = scanner.numberValue;
    if (*scanner.progCursor == '%') [[unlikely]] {
      ++scanner.progCursor;
      x *= 0.01;
    }
    endPrimary();
    return x;
  }
  if (scanner.tokenType == TOKEN_NAME && scanner.nameKind == NameKind::local) {
    const LocalRecord& record = state.calls.local(scanner.nameIndex);
    if (record.type == typeFloat) return floatOperand(record.value);
  }
  return otherPrimary(state);
}

Matrix* matrixOf(const Symbol& symbol) {
  CallStack& calls = interpreter().calls;
  if (symbol.localTop >= calls.localsBase()) return calls.local(symbol.localTop).matrix;
  if (symbol.dummyTop >= calls.dummyBase()) return nullptr;
  return symbol.matrix.get();
}

char nextCharacter() { return *skipBlanks(interpreter().scanner.progCursor); }

const char* passGroup(const char* at) {
  if (const char* past = pastGroup(at)) return past;
  interpreter().scanner.progCursor = at;
  skipGroup(*at);
  return interpreter().scanner.progCursor;
}

bool isAssignmentSign(const char* at) {
  at = skipBlanks(at);
  return at[0] == '=' && at[1] != '=';
}

void raiseAtName(ErrorKey key, const char* name) {
  interpreter().scanner.progCursor = name;
  getToken();
  raiseError(key);
}

double evalCondition() { return conditionAssignment(interpreter()); }

double readParenthesisedCondition() {
  State& state = interpreter();
  getToken();
  if (state.scanner.tokenChar != '(') {
    rescanToken();
    expectChar('(');
    return 0.0;
  }
  return parenthesised(state);
}

double evalPlainExpressionFromToken() {
  State& state = interpreter();
  const Scanner& scanner = state.scanner;
  if (scanner.tokenChar == ';' || scanner.atEnd()) [[unlikely]]
    raiseError(ErrorKey::noExpression);
  const double x = conditionAssignment(state);
  if (!endsExpression(scanner.tokenChar)) [[unlikely]]
    raiseError(ErrorKey::invalidData);
  return x;
}

void evalExpressionFromToken(Value& result) {
  State& state = interpreter();
  const Scanner& scanner = state.scanner;
  if (!scanner.isMark()) {
    result.setScalar(evalPlainExpressionFromToken());
    return;
  }
  evalMatrixExpression(result, static_cast<char>(scanner.tokenChar), true);
  state.noEcho = false;
  if (!endsExpression(scanner.tokenChar)) raiseError(ErrorKey::invalidData);
}

void evalExpression(Value& result) {
  getToken();
  evalExpressionFromToken(result);
  rescanToken();
}

int truncateIndex(double x, ErrorKey fault) {
  constexpr double limit = 2147483648.0;
  if (!(x > -limit - 1.0 && x < limit)) {
    raiseError(fault);
    return 0;
  }
  return static_cast<int>(x);
}

int readIndex() {
  const int index = truncateIndex(readCondition(), ErrorKey::indexOutOfRange);
  if (index < 0) raiseError(ErrorKey::indexNotPositive);
  return index;
}

Indexes parseIndexesFromBracket() {
  const Scanner& scanner = interpreter().scanner;
  const PlainMode plain;
  const NestingGuard guard;
  Indexes at;
  at.i = readIndex();
  if (scanner.tokenChar == ',') at.j = readIndex();
  expectCurrent(scanner, ']');
  return at;
}

Indexes parseIndexes() {
  getToken();
  if (interpreter().scanner.tokenChar != '[') {
    rescanToken();
    expectChar('[');
    return {};
  }
  return parseIndexesFromBracket();
}

Indexes checkIndexes(Indexes at, int rows, int cols) {
  if (rows == 1 && at.j <= 1) at = {1, at.i};
  if (at.i < 1 || at.i > rows || at.j < 1 || at.j > cols) [[unlikely]] {
    raiseError(ErrorKey::indexOutOfRange);
    return {1, 1};
  }
  return at;
}

double assignScalar(std::string_view name, Symbol* symbol, double x) {
  State& state = interpreter();
  if (!symbol) symbol = state.names.find(name);
  if (symbol) {
    if (symbol->localTop >= state.calls.localsBase()) {
      LocalRecord& record = state.calls.local(symbol->localTop);
      if (record.type == typeFloat)
        return record.value = record.flags == flagWhole ? wholeNumber(x, true) : x;
      raiseError(ErrorKey::bracketExpected);
      return x;
    }
    if (symbol->dummyTop >= state.calls.dummyBase())
      return state.calls.dummy(symbol->dummyTop).value = x;
    if (symbol->category == Category::variable) {
      if (symbol->type == typeFloat)
        return symbol->value = symbol->flags == flagWhole ? wholeNumber(x, true) : x;
      raiseError(ErrorKey::bracketExpected);
      return x;
    }
  }
  if (state.initialising) {
    raiseError(ErrorKey::undefinedVariable);
    return x;
  }
  return storeScalar(name, x);
}

double assignElement(Symbol* symbol, Indexes at, double x) {
  Matrix* matrix = symbol ? matrixOf(*symbol) : nullptr;
  if (!matrix) {
    raiseError(ErrorKey::matrixNameExpected);
    return x;
  }
  if (matrix->isString()) raiseError(ErrorKey::invalidData);
  const Indexes place = checkIndexes(at, matrix->rows(), matrix->cols());
  return matrix->at(place.i, place.j) = x;
}

}  // namespace vexa
