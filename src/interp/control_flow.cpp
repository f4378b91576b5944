#include "interp/control_flow.h"

#include "interp/statements.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"

namespace vexa {

namespace {

// A branch or body: a brace block.
void executeBlock() {
  expectChar('{');
  executeBlockStatements();
}

// A part of `for`: an expression whose number counts; its delimiter is current on return.
double readPart() {
  getToken();
  if (!interpreter().scanner.isMark()) return evalPlainExpressionFromToken();
  Value value;
  const bool complex = interpreter().scanner.tokenChar == '@';
  evalExpressionFromToken(value);
  const double x = complex ? 0.0 : numberOf(value);
  freeOperand(value);
  return x;
}

// True when `else` is the next token, which is consumed; otherwise the class is made neutral, so
// that what merely follows an `if` is not taken for what ran in it.
bool acceptElse(Scanner& scanner) {
  getToken();
  if (scanner.tokenType == TOKEN_KEYWORD && scanner.tokenCode == classElse) return true;
  rescanToken();
  scanner.tokenCode = classSkipped;
  return false;
}

}  // namespace

void executeIf() {
  Scanner& scanner = interpreter().scanner;
  if (readParenthesisedCondition() != 0.0) {
    executeBlock();
    if (stopsSequence(scanner.tokenCode)) return;
    if (acceptElse(scanner)) skipGroup('{');
  } else {
    skipGroup('{');
    if (acceptElse(scanner)) executeBlock();
  }
}

bool executeWhile() {
  Scanner& scanner = interpreter().scanner;
  const char* keyword = scanner.tokenStart;
  const bool condition = readParenthesisedCondition() != 0.0;
  const char* body = scanner.progCursor;
  if (condition) {
    executeBlock();
    if (scanner.tokenCode == classReturn) return false;
    if (scanner.tokenCode != classBreak) {
      scanner.progCursor = keyword;
      scanner.tokenCode = classSkipped;
      return true;
    }
  }
  scanner.progCursor = body;
  skipGroup('{');
  return false;
}

bool executeDo() {
  Scanner& scanner = interpreter().scanner;
  const char* keyword = scanner.tokenStart;
  const char* body = scanner.progCursor;
  executeBlock();
  if (scanner.tokenCode == classReturn) return false;
  const bool broken = scanner.tokenCode == classBreak;
  if (broken || scanner.tokenCode == classContinue) {
    scanner.progCursor = body;
    skipGroup('{');
  }
  getToken();
  if (scanner.tokenType != TOKEN_KEYWORD || scanner.tokenCode != classWhile)
    raiseError(ErrorKey::whileExpected);
  bool again = false;
  if (broken)
    skipGroup('(');
  else
    again = readParenthesisedCondition() != 0.0;
  expectChar(';');
  if (again) scanner.progCursor = keyword;
  scanner.tokenCode = classSkipped;
  return again;
}

void executeFor() {
  Scanner& scanner = interpreter().scanner;
  expectChar('(');
  readPart();
  expectCurrent(scanner, ';');
  const char* condition = scanner.progCursor;
  const char* step = nullptr;
  const char* body = nullptr;
  for (;;) {
    scanner.progCursor = condition;
    const double x = readPart();
    expectCurrent(scanner, ';');
    if (!body) {
      // The text does not change while the loop runs, so the step is passed over once.
      step = scanner.progCursor;
      for (int depth = 1; depth > 0;) {
        const char c = nextStructuralChar();
        if (c == '(') {
          ++depth;
        } else if (c == ')') {
          --depth;
        } else if (c == '\0') {
          expectChar(')');
          return;
        }
      }
      body = scanner.progCursor;
    }
    if (x == 0.0) break;
    scanner.progCursor = body;
    executeBlock();
    if (scanner.tokenCode == classReturn) return;
    if (scanner.tokenCode == classBreak) break;
    scanner.progCursor = step;
    readPart();
    expectCurrent(scanner, ')');
  }
  scanner.progCursor = body;
  skipGroup('{');
}

namespace {

// The statements from a label's colon on, through later labels, until the switch's block ends.
void executeFromLabel(Scanner& scanner, const char* block) {
  rescanToken();
  executeStatement();
  if (scanner.tokenCode != classBreak) return;
  scanner.progCursor = block;
  skipGroup('{');
}

}  // namespace

void executeSwitch() {
  Scanner& scanner = interpreter().scanner;
  const double value = readParenthesisedCondition();
  const char* block = scanner.progCursor;
  expectChar('{');
  getToken();
  if (scanner.tokenType != TOKEN_KEYWORD || scanner.tokenCode != classCase)
    raiseError(ErrorKey::caseExpected);
  rescanToken();
  for (int depth = 1; depth > 0;) {
    getToken();
    if (scanner.atEnd()) return;
    if (scanner.tokenType == TOKEN_KEYWORD && scanner.tokenCode == classCase) {
      const double label = readCondition();
      expectCurrent(scanner, ':');
      if (label == value) {
        executeFromLabel(scanner, block);
        return;
      }
    } else if (scanner.tokenType == TOKEN_KEYWORD && scanner.tokenCode == classDefault) {
      expectChar(':');
      executeFromLabel(scanner, block);
      return;
    } else if (scanner.tokenType == TOKEN_BLOCK) {
      if (scanner.tokenChar == '{') {
        rescanToken();
        skipGroup('{');
      } else {
        --depth;
      }
    }
  }
}

}  // namespace vexa
