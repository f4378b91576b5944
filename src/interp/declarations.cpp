#include "interp/declarations.h"

#include <string>
#include <utility>

#include "interp/message_box.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"
#include "values/text_string.h"

namespace vexa {

namespace {

using State = InterpreterState;

bool isMatrixWord(int tokenClass) { return tokenClass == classMat || tokenClass == classString; }
bool isWholeWord(int tokenClass) { return tokenClass == classInt || tokenClass == classChar; }

// The name after a type word or a comma, or an empty text after key 36.
std::string_view readDeclaredName(const Scanner& scanner) {
  getToken();
  if (scanner.isWord()) return scanner.tokenText;
  raiseError(ErrorKey::variableNameExpected);
  return {};
}

// [r] or [r,c]; fewer than two columns make a row vector.
struct Order {
  int rows = 0, cols = 0;
};

Order readOrder(const Scanner& scanner) {
  expectChar('[');
  const double r = evalScalarArg();
  double c = 0.0;
  getToken();
  if (scanner.tokenChar == ',') {
    c = evalScalarArg();
    getToken();
  }
  if (scanner.tokenChar != ']') {
    rescanToken();
    expectChar(']');
  }
  const int rows = truncateIndex(r, ErrorKey::allocationFailed);
  const int cols = truncateIndex(c, ErrorKey::allocationFailed);
  if (rows < 0 || cols < 0) raiseError(ErrorKey::indexNotPositive);
  return cols < 2 ? Order{1, rows} : Order{rows, cols};
}

// `=` and a value after a float's name, when there is one. While a local's initial value is read,
// `initialising` forbids new globals.
bool readInitialValue(State& state, bool isLocal, double& x) {
  getToken();
  if (state.scanner.tokenChar != '=') {
    rescanToken();
    return false;
  }
  const bool saved = state.initialising;
  state.initialising = isLocal;
  x = evalScalarArg();
  state.initialising = saved;
  return true;
}

// `=` and a text after a string's name, when there is one.
std::string readInitialText(const Scanner& scanner, std::string_view name) {
  getToken();
  if (scanner.tokenChar != '=') {
    rescanToken();
    return {};
  }
  std::string text = readAssignedText(std::string(name));
  rescanToken();
  return text;
}

// After an item: true for another one, false when the `;` has been read.
bool moreItems(const Scanner& scanner) {
  getToken();
  if (scanner.tokenChar == ',') return true;
  if (scanner.tokenChar != ';') {
    rescanToken();
    expectChar(';');
  }
  return false;
}

void adoptMatrix(LocalRecord& record, std::unique_ptr<Matrix> matrix) {
  record.owned = std::move(matrix);
  record.matrix = record.owned.get();
  record.type = typeMatrix;
  record.state = stateOwnsMatrix;
}

void declareLocal(State& state, int typeWord) {
  const Scanner& scanner = state.scanner;
  CallStack& calls = state.calls;
  const std::string_view name = readDeclaredName(scanner);
  if (name.empty()) return;
  checkConflicts(name, true);
  Symbol* symbol = state.names.intern(name);
  const bool firstCall = state.currentFunction && state.currentFunction->state == 0;
  if (firstCall && calls.visible(symbol->localTop)) raiseError(ErrorKey::localRedeclared);
  // The record counts as a float until its matrix stands. Its index stays valid while values are
  // evaluated, its address does not.
  const int index = calls.pushLocal();
  calls.nameLocal(index, symbol);
  if (!isMatrixWord(typeWord)) {
    const bool whole = isWholeWord(typeWord);
    if (whole) calls.local(index).flags = flagWhole;
    double x = 0.0;
    if (readInitialValue(state, true, x)) calls.local(index).value = wholeNumber(x, whole);
    return;
  }
  if (typeWord == classMat) {
    const Order order = readOrder(scanner);
    adoptMatrix(calls.local(index), newMatrix(order.rows, order.cols));
  } else {
    // The string is in scope from its own initial text on, still empty.
    auto text = std::make_unique<Matrix>();
    storeText(*text, {});
    adoptMatrix(calls.local(index), std::move(text));
    const std::string initial = readInitialText(scanner, name);
    storeText(*calls.local(index).matrix, initial);
  }
}

void declareGlobal(State& state, int typeWord) {
  const Scanner& scanner = state.scanner;
  const std::string_view name = readDeclaredName(scanner);
  if (name.empty()) return;
  if (!isMatrixWord(typeWord)) {
    Symbol* symbol = makeFloat(name);
    if (!symbol) return;
    symbol->flags = isWholeWord(typeWord) ? flagWhole : static_cast<char>(0);
    double x = 0.0;
    if (readInitialValue(state, false, x)) symbol->value = wholeNumber(x, isWholeWord(typeWord));
    return;
  }
  // Conflicts come before the order is read; a matrix is made after it.
  const Symbol* known = state.names.find(name);
  const bool isNew = !known || !known->isGlobal();
  if (!isNew && known->type == typeFloat) {
    raiseError(ErrorKey::nameIsFloat, name);
    return;
  }
  checkConflicts(name, true);
  if (typeWord == classMat) {
    const Order order = readOrder(scanner);
    auto matrix = newMatrix(order.rows, order.cols);
    if (Symbol* symbol = makeGlobalMatrix(name)) symbol->matrix->swapContents(*matrix);
  } else if (Symbol* symbol = makeGlobalMatrix(name)) {
    if (isNew) storeText(*symbol->matrix, {});
    const std::string text = readInitialText(scanner, name);
    storeText(*symbol->matrix, text);
  }
}

// The conflict with a name of a category; that of a global variable for all that are no functions.
ErrorKey conflictOf(Category category) {
  switch (category) {
    case Category::reserved:
      return ErrorKey::conflictsWithReserved;
    case Category::userFunction:
      return ErrorKey::conflictsWithFunction;
    case Category::builtin:
      return ErrorKey::conflictsWithBuiltin;
    default:
      return ErrorKey::conflictsWithGlobal;
  }
}

void reportConflict(ErrorKey key, std::string_view name) {
  const State& state = interpreter();
  if (state.running || state.evaluating)
    raiseError(key, name);
  else
    formatAndShowError(key, name);
}

}  // namespace

bool isTypeWord(int tokenClass) {
  return (tokenClass >= classFloat && tokenClass <= classString) || tokenClass == classChar;
}

void executeLocalDeclaration() {
  State& state = interpreter();
  getToken();
  const int typeWord = state.scanner.tokenCode;
  do declareLocal(state, typeWord);
  while (moreItems(state.scanner));
}

void executeGlobalDeclaration() {
  State& state = interpreter();
  getToken();
  const int typeWord = state.scanner.tokenCode;
  do declareGlobal(state, typeWord);
  while (moreItems(state.scanner));
}

void checkConflicts(std::string_view name, bool globalsAllowed) {
  const Symbol* symbol = interpreter().names.find(name);
  if (!symbol || symbol->category == Category::none) return;
  if (symbol->category == Category::variable) {
    if (!globalsAllowed) reportConflict(ErrorKey::conflictsWithGlobal, name);
    return;
  }
  reportConflict(conflictOf(symbol->category), name);
}

void reportCategory(const Symbol& symbol) {
  if (symbol.category == Category::variable) return;
  const ErrorKey key = conflictOf(symbol.category);
  if (key == ErrorKey::conflictsWithGlobal)
    messageBox(" Error in Category");
  else
    raiseError(key, symbol.name());
}

bool checkNewName(std::string_view name) {
  checkConflicts(name, false);
  const Symbol* symbol = interpreter().names.find(name);
  return !symbol || symbol->category == Category::none;
}

Symbol* makeGlobalMatrix(std::string_view name) {
  State& state = interpreter();
  Symbol* symbol = state.names.find(name);
  if (symbol && symbol->isGlobal()) {
    if (symbol->type == typeMatrix) return symbol;
    raiseError(ErrorKey::nameIsFloat, name);
    return nullptr;
  }
  if (!checkNewName(name)) return nullptr;
  symbol = state.names.registerName(name, typeMatrix, 0, Category::variable);
  symbol->state = stateOwnsMatrix;
  symbol->matrix = newMatrix(1, 1);
  return symbol;
}

Symbol* makeFloat(std::string_view name) {
  State& state = interpreter();
  Symbol* symbol = state.names.find(name);
  if (symbol && symbol->isGlobal()) {
    if (symbol->type == typeFloat) return symbol;
    raiseError(ErrorKey::conflictsWithMatrix, name);
    return nullptr;
  }
  if (!checkNewName(name)) return nullptr;
  return state.names.registerName(name, typeFloat, 0, Category::variable);
}

}  // namespace vexa
