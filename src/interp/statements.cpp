#include "interp/statements.h"

#include "interp/control_flow.h"
#include "interp/declarations.h"
#include "interp/functions.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"
#include "values/printing.h"

namespace vexa {

namespace {

using State = InterpreterState;

// What the dispatcher does after a statement.
enum class Next { sequence, leave, again };

void expectSemicolon(const Scanner& scanner) {
  if (scanner.tokenChar == ';') [[likely]]
    return;
  rescanToken();
  expectChar(';');
}

// An expression and its semicolon, the expression's first token being current.
void expressionStatement(const Scanner& scanner) {
  if (!scanner.isMark()) {
    evalPlainExpressionFromToken();
    expectSemicolon(scanner);
    return;
  }
  Value value;
  evalExpressionFromToken(value);
  expectSemicolon(scanner);
  printAutomatically(*value.matrix);
  freeOperand(value);
}

void caseLabel(const Scanner& scanner) {
  readCondition();
  if (scanner.tokenChar == ':') return;
  rescanToken();
  expectChar(':');
}

// A statement that begins with a keyword, which is the current token.
Next keywordStatement(State& state) {
  const Scanner& scanner = state.scanner;
  switch (scanner.tokenCode) {
    case classFloat:
    case classInt:
    case classMat:
    case classString:
    case classChar:
      rescanToken();
      executeLocalDeclaration();
      return Next::sequence;
    case classBreak:
    case classContinue:
      rescanToken();
      return Next::leave;
    case classCase:
      caseLabel(scanner);
      return Next::sequence;
    case classDefault:
      expectChar(':');
      return Next::sequence;
    case classDo: {
      const bool again = executeDo();
      return scanner.tokenCode == classReturn ? Next::leave : again ? Next::again : Next::sequence;
    }
    case classWhile: {
      const bool again = executeWhile();
      return scanner.tokenCode == classReturn ? Next::leave : again ? Next::again : Next::sequence;
    }
    case classFor:
      executeFor();
      return scanner.tokenCode == classReturn ? Next::leave : Next::sequence;
    case classIf:
      executeIf();
      return stopsSequence(scanner.tokenCode) ? Next::leave : Next::sequence;
    case classSwitch:
      executeSwitch();
      return stopsSequence(scanner.tokenCode) ? Next::leave : Next::sequence;
    case classElse:
      raiseError(ErrorKey::elseWithoutIf);
      return Next::sequence;
    case classEnd:
      state.endReached = true;
      raiseError(ErrorKey::programTerminated);
      return Next::leave;
    case classReturn:
      executeReturn();
      return Next::leave;
    default:
      return Next::sequence;
  }
}

// The dispatcher; `inBlock` when statements run as a sequence up to the closing brace.
void dispatch(bool inBlock) {
  State& state = interpreter();
  Scanner& scanner = state.scanner;
  const NestingGuard guard;
  for (;;) {
    getToken();
    if (scanner.tokenChar == ':') inBlock = true;
    bool again = false;
    switch (scanner.tokenType) {
      case TOKEN_NAME:
        expressionStatement(scanner);
        break;
      case TOKEN_BLOCK:
        if (scanner.tokenChar == '}') {
          state.returnValue = 0.0;
          state.returnMatrix = nullptr;
          return;
        }
        if (inBlock) raiseError(ErrorKey::unexpectedBrace);
        inBlock = true;
        break;
      case TOKEN_KEYWORD: {
        const Next next = keywordStatement(state);
        if (next == Next::leave) return;
        again = next == Next::again;
        break;
      }
      default:
        break;
    }
    // The end of the text shares its class with the keyword `end`, which never gets here.
    if (scanner.tokenCode == FINISHED) [[unlikely]] {
      if (inBlock) raiseError(ErrorKey::blockBraceExpected);
      return;
    }
    // A loop that went back to its keyword is read again by the enclosing sequence, or here.
    if (!inBlock && !again) return;
  }
}

}  // namespace

void executeStatement() { dispatch(false); }
void executeBlockStatements() { dispatch(true); }

BlockEnd executeBlockInExpression() {
  State& state = interpreter();
  Scanner& scanner = state.scanner;
  const PlainMode plain;
  const bool saved = state.blockInExpression;
  const char* start = scanner.progCursor;
  state.blockInExpression = true;
  executeStatement();
  state.blockInExpression = saved;
  const int end = scanner.tokenCode;
  if (end != classBreak && end != classContinue) return BlockEnd::completed;
  scanner.progCursor = start;
  skipGroup('{');
  return end == classBreak ? BlockEnd::broken : BlockEnd::continued;
}

}  // namespace vexa
