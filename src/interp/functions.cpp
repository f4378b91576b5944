#include "interp/functions.h"

#include <algorithm>
#include <array>
#include <utility>

#include "interp/declarations.h"
#include "interp/program_text.h"
#include "interp/statements.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"
#include "values/number_format.h"

namespace vexa {

namespace {

using State = InterpreterState;

constexpr int indentLimit = 50;
constexpr int indentStep = 3;

struct Argument {
  double value;
  Matrix* matrix;  // null for a value
  bool temporary;
};

// The evaluated arguments of one call. Matrices passed by reference stay pinned while further
// arguments are evaluated and the function runs; temporaries live until the call has ended.
class ArgumentList {
 public:
  ArgumentList() = default;
  ArgumentList(const ArgumentList&) = delete;
  ArgumentList& operator=(const ArgumentList&) = delete;
  ~ArgumentList() {
    for (int i = 0; i < m_count; ++i)
      if (Matrix* matrix = m_items[index(i)].matrix) matrix->unpin();
  }

  // After a fault the frame's records are still shown, so their temporaries stay where they are.
  void freeTemporaries() {
    for (int i = 0; i < m_count; ++i) {
      Argument& argument = m_items[index(i)];
      if (!argument.temporary) continue;
      argument.matrix->unpin();
      freeTempMatrix(argument.matrix);
      argument.matrix = nullptr;
    }
  }

  int count() const { return m_count; }
  const Argument& operator[](int i) const { return m_items[index(i)]; }
  void addValue(double x) { m_items[index(m_count++)] = {x, nullptr, false}; }
  void addMatrix(Matrix* matrix, bool temporary) {
    m_items[index(m_count++)] = {0.0, matrix, temporary};
    matrix->pin();
  }

 private:
  static std::size_t index(int i) { return static_cast<std::size_t>(i); }
  int m_count = 0;
  std::array<Argument, argumentLimit> m_items;  // filled as far as m_count
};

bool endsItem(char c) { return c == ',' || c == ')'; }

// The matrix of a name that stands alone as an argument, or null. The name is the current token.
Matrix* loneMatrix(const State& state) {
  const Scanner& scanner = state.scanner;
  if (scanner.tokenType != TOKEN_NAME || !scanner.symbol) return nullptr;
  Matrix* matrix = nullptr;
  if (scanner.nameKind == NameKind::local)
    matrix = state.calls.local(scanner.nameIndex).matrix;
  else if (scanner.nameKind == NameKind::variable)
    matrix = scanner.symbol->matrix.get();
  return matrix && endsItem(*skipBlanks(scanner.progCursor)) ? matrix : nullptr;
}

// An argument after `!` or `@`, which is the current token: a matrix by reference or a temporary.
void markedArgument(State& state, ArgumentList& arguments) {
  const char mark = static_cast<char>(state.scanner.tokenChar);
  getToken();
  if (Matrix* matrix = loneMatrix(state)) {
    if (mark == '@' && matrix->size() != 2) raiseError(ErrorKey::complexPrefixRequired);
    arguments.addMatrix(matrix, false);
    getToken();
    return;
  }
  Value value;
  evalMatrixExpression(value, mark, false);
  if (!value.tempMark) {
    // A variable's matrix that an expression yields is handed over as a copy.
    Matrix* copy = newTempMatrix(value.rows(), value.cols());
    std::ranges::copy(value.matrix->elements(), copy->elements().begin());
    value.setTemporary(copy);
  }
  arguments.addMatrix(value.matrix, true);
}

// The row of the call list: f([2x3], 3.1416).
class CallLine {
 public:
  CallLine(const State& state, const Symbol& function, bool isMain)
      : m_active(state.displayValues && !isMain),
        m_line(m_active ? lineOfPosition(state.scanner.progCursor) : -1) {
    if (m_active) m_text = std::string(function.name()) + '(';
  }
  void add(const Argument& argument) {
    if (!m_active) return;
    if (argument.matrix) {
      m_text += '[' + std::to_string(argument.matrix->rows()) + 'x' +
                std::to_string(argument.matrix->cols()) + "], ";
    } else {
      std::array<char, 32> digits;
      m_text.append(digits.data(), formatGeneral(digits, argument.value, 5, 0));
      m_text += ", ";
    }
  }
  void finish() {
    if (!m_active) return;
    if (m_text.ends_with(", ")) m_text.resize(m_text.size() - 2);
    m_text += ')';
    addToErrorList(m_text, m_line, true);
  }
  std::string take() { return std::move(m_text); }

 private:
  bool m_active;
  int m_line;
  std::string m_text;
};

void evaluateArguments(State& state, ArgumentList& arguments, CallLine& line) {
  const Scanner& scanner = state.scanner;
  expectChar('(');
  getToken();
  if (scanner.tokenChar != ')') {
    for (;;) {
      if (scanner.atEnd()) raiseError(ErrorKey::syntax);
      if (arguments.count() == argumentLimit) raiseError(ErrorKey::tooManyArguments);
      if (scanner.isMark()) {
        markedArgument(state, arguments);
      } else if (Matrix* matrix = loneMatrix(state)) {
        arguments.addMatrix(matrix, false);
        getToken();
      } else {
        arguments.addValue(evalCondition());
        if (!endsArgument(scanner.tokenChar)) raiseError(ErrorKey::invalidData);
      }
      line.add(arguments[arguments.count() - 1]);
      if (scanner.tokenChar != ',') break;
      getToken();
    }
    if (scanner.tokenChar != ')') {
      rescanToken();
      expectChar(')');
    }
  }
  line.finish();
}

void takeArguments(std::span<const CallArgument> supplied, ArgumentList& arguments,
                   CallLine& line) {
  for (const CallArgument& argument : supplied) {
    if (argument.matrix)
      arguments.addMatrix(argument.matrix, false);
    else
      arguments.addValue(argument.value);
    line.add(arguments[arguments.count() - 1]);
  }
  line.finish();
}

// One record per argument, from the last to the first, so that the first lies on top.
void makeRecords(CallStack& calls, const ArgumentList& arguments) {
  for (int i = arguments.count() - 1; i >= 0; --i) {
    LocalRecord& record = calls.local(calls.pushLocal());
    if (Matrix* matrix = arguments[i].matrix) {
      record.type = typeMatrix;
      record.matrix = matrix;
      record.reference = true;
      record.temporary = arguments[i].temporary;
      matrix->pin();
    } else {
      record.value = arguments[i].value;
    }
  }
}

// A parameter's type word and name, for the newest record not yet bound. The type word is the
// current token.
void bindParameter(State& state, const Symbol& function, int index) {
  const Scanner& scanner = state.scanner;
  const int mark = state.calls.localsBase();
  const bool fits = scanner.tokenType == TOKEN_KEYWORD && index >= mark &&
                    scanner.tokenCode == state.calls.local(index).type;
  if (!fits) raiseError(ErrorKey::argumentMismatch);
  getToken();
  if (!scanner.isWord()) raiseError(ErrorKey::dummyArgumentExpected);
  if (function.state == 0 && scanner.symbol && scanner.symbol->localTop >= mark)
    raiseError(ErrorKey::localRedeclared);
  Symbol* name = scanner.symbol ? scanner.symbol : state.names.intern(scanner.tokenText);
  state.calls.nameLocal(index, name);
}

// The parameters from the left take the locals from the top of the table downward.
void bindParameters(State& state, const Symbol& function) {
  const Scanner& scanner = state.scanner;
  int index = static_cast<int>(state.calls.localsCount()) - 1;
  expectChar('(');
  getToken();
  if (scanner.tokenChar != ')') {
    for (;;) {
      bindParameter(state, function, index--);
      getToken();
      if (scanner.tokenChar != ',') break;
      getToken();
    }
    if (scanner.tokenChar != ')') {
      rescanToken();
      expectChar(')');
    }
  }
  if (index >= state.calls.localsBase()) raiseError(ErrorKey::argumentMismatch);
}

// The body as one block in a frame of its own.
void runBody(State& state, Symbol& function, const ArgumentList& arguments, const char* callSite,
             std::string callText) {
  Scanner& scanner = state.scanner;
  CallStack& calls = state.calls;
  const std::size_t mark = calls.localsCount();
  makeRecords(calls, arguments);
  calls.pushFrame(mark, &function, callSite);
  if (!callText.empty()) calls.frame(calls.depth() - 1).arguments = std::move(callText);

  const char* returnTo = scanner.progCursor;
  const bool initialising = std::exchange(state.initialising, false);
  const bool blockInExpression = std::exchange(state.blockInExpression, false);
  scanner.progCursor = function.position;
  bindParameters(state, function);
  expectChar('{');
  state.shell->pump();
  state.returnValue = 0.0;
  state.returnMatrix = nullptr;
  executeBlockStatements();
  if (scanner.tokenCode == classBreak || scanner.tokenCode == classContinue) {
    getToken();
    raiseError(ErrorKey::strayBreak);
  }
  scanner.progCursor = returnTo;
  state.initialising = initialising;
  state.blockInExpression = blockInExpression;
  if (state.displayValues) state.shell->refresh(refreshValues);
  calls.popFrame();
  function.state = stateCalled;
}

void writeTraceLine(const State& state, std::string_view mark, std::string_view name) {
  std::string line(mark);
  line.append(static_cast<std::size_t>(state.traceIndent), ' ');
  line.append(name).append("()");
  writeOutput(line, lineWhole);
}

enum class Caller { text, builtin, start };

// Runs the function between its entry and return lines. The arguments are read from the text or
// `supplied` by a built-in; `main` has none, and no row in the list of calls.
void callTrace(State& state, Symbol& function, Caller kind,
               std::span<const CallArgument> supplied = {}) {
  Symbol* caller = state.currentFunction;
  Symbol* callersCaller = state.callerFunction;
  const char returnPending = state.returnPending;
  state.callerFunction = caller;
  state.currentFunction = &function;
  state.contextText = function.name();
  state.traceIndent = state.traceIndent < indentLimit ? state.traceIndent + indentStep : 0;
  if (state.trace) writeTraceLine(state, ">> ", function.name());
  state.returnPending = 0;
  const char* callSite = state.scanner.progCursor;
  {
    ArgumentList arguments;
    CallLine line(state, function, kind == Caller::start);
    if (kind == Caller::text)
      evaluateArguments(state, arguments, line);
    else
      takeArguments(supplied, arguments, line);
    runBody(state, function, arguments, callSite, line.take());
    arguments.freeTemporaries();
  }
  state.currentFunction = caller;
  state.callerFunction = callersCaller;
  if (!caller) {
    state.contextText = {};
    return;
  }
  caller->state = stateCalled;
  if (state.traceIndent > 0) state.traceIndent -= indentStep;
  if (state.trace) writeTraceLine(state, "<<** ", caller->name());
  state.returnPending = returnPending;
  state.contextText = caller->name();
}

}  // namespace

void callUserFunction(Symbol& function) {
  State& state = interpreter();
  if (!function.position) {
    raiseError(ErrorKey::functionNotDefined);
    return;
  }
  const NestingGuard guard;
  const PlainMode plain;
  callTrace(state, function, Caller::text);
}

double callUserFunction(Symbol& function, std::span<const CallArgument> arguments) {
  State& state = interpreter();
  if (!function.position) {
    raiseError(ErrorKey::functionNotDefined);
    return 0.0;
  }
  const NestingGuard guard;
  const PlainMode plain;
  callTrace(state, function, Caller::builtin, arguments);
  return returnedNumber();
}

double returnedNumber() {
  const State& state = interpreter();
  const Matrix* matrix = state.returnMatrix;
  if (!matrix) return state.returnValue;
  return matrix->size() == 1 && !matrix->isString() ? matrix->at(1, 1) : 0.0;
}

void callMain(Symbol& function) { callTrace(interpreter(), function, Caller::start); }

namespace {

// `return !m;` hands over a matrix that survives the call: a global, or the caller's own.
void returnNamedMatrix(State& state, char mark) {
  const Scanner& scanner = state.scanner;
  getToken();
  Symbol* symbol = nullptr;
  if (scanner.isWord() && scanner.symbol && *skipBlanks(scanner.progCursor) == ';')
    symbol = scanner.symbol;
  Value value;
  evalMatrixExpression(value, mark, false);
  Matrix* matrix = nullptr;
  if (symbol && symbol->localTop >= state.calls.localsBase()) {
    const LocalRecord& record = state.calls.local(symbol->localTop);
    if (record.owned) raiseError(ErrorKey::returningLocalMatrix);
    if (!record.temporary) matrix = record.matrix;
  } else if (symbol && symbol->isGlobal()) {
    matrix = symbol->matrix.get();
  }
  if (!matrix) raiseError(ErrorKey::returnedMatrixUnnamed);
  freeOperand(value);
  state.returnMatrix = matrix;
  state.returnValue = 0.0;
}

}  // namespace

void executeReturn() {
  State& state = interpreter();
  Scanner& scanner = state.scanner;
  if (state.blockInExpression) raiseError(ErrorKey::returnNotExecutable);
  getToken();
  double x = 0.0;
  Matrix* matrix = nullptr;
  if (scanner.tokenChar != ';') {
    if (scanner.isMark()) {
      returnNamedMatrix(state, static_cast<char>(scanner.tokenChar));
      matrix = state.returnMatrix;
    } else {
      Value value;
      evalExpressionFromToken(value);
      x = value.scalar;
    }
    if (scanner.tokenChar != ';') {
      rescanToken();
      expectChar(';');
    }
  }
  state.returnValue = x;
  state.returnMatrix = matrix;
  state.returnPending = 1;
  scanner.tokenCode = classReturn;
}

bool checkDummyName() {
  const State& state = interpreter();
  const Scanner& scanner = state.scanner;
  if (!scanner.isWord()) {
    raiseError(ErrorKey::variableNameExpected);
    return false;
  }
  const Symbol* symbol = scanner.symbol;
  if (!symbol) return true;
  if (symbol->localTop >= state.calls.localsBase()) {
    raiseError(ErrorKey::dummyDuplicatesLocal);
    return false;
  }
  if (symbol->category == Category::userFunction || symbol->category == Category::builtin) {
    reportCategory(*symbol);
    return false;
  }
  return true;
}

int declareDummy(std::string_view name) {
  State& state = interpreter();
  return state.calls.pushDummy(state.names.intern(name));
}

}  // namespace vexa
