#include "interp/run.h"

#include <new>
#include <utility>

#include "interp/data_files.h"
#include "interp/declarations.h"
#include "interp/functions.h"
#include "interp/message_box.h"
#include "interp/program_text.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"

namespace vexa {

namespace {

using State = InterpreterState;

constexpr unsigned allDisplays =
    refreshValues | refreshLocals | refreshCalls | refreshErrors | refreshFunctions;

// Takes the document's lines as the program text. False after a message, or when the document has
// no lines or is not loaded.
bool takeProgramText(State& state, TextDocument& program) {
  if (!program.loaded() || program.lineCount() == 0) return false;
  if (program.lineCount() > maxLineCount) {
    messageBox(" Program has more than 99999 lines");
    return false;
  }
  state.scanner.progCursor = nullptr;
  state.programText = prepareProgramText(program);
  state.functionsCurrent = false;
  if (!state.programText) messageBox(" Lack of memory to execute program");
  return state.programText != nullptr;
}

TextDocument& createOutputDocument(State& state) {
  TextDocument& document = state.shell->newOutputDocument();
  state.outputDocument = &document;
  state.defaultOutputDocument = &document;
  document.setRole(roleOutput);
  state.outputChosen = true;
  return document;
}

// The function that a run starts with, or null.
Symbol* findMain(const State& state) {
  Symbol* symbol = state.names.find("main");
  return symbol && symbol->category == Category::userFunction ? symbol : nullptr;
}

void registerFunction(State& state, std::string_view name, char mark, LineFinder& lines) {
  const Scanner& scanner = state.scanner;
  // A name that is too long has been reported; during an update the scan goes on behind it.
  if (name.size() > maxNameLength) return;
  Symbol* symbol = state.names.find(name);
  if (!symbol || symbol->category != Category::userFunction)
    symbol = state.names.registerName(name, typeNone, 0, Category::userFunction);
  symbol->number = lines.lineOf(scanner.progCursor);
  symbol->state = mark;
  symbol->position = scanner.progCursor;
  symbol->text = state.programText;
  state.functionSeen = true;
}

// What a failed run leaves is kept for the data views; the live stack is empty again.
void keepFaultedCalls(State& state) {
  state.calls.moveTo(state.faultCalls);
  state.faultText = state.programText;
  state.tempMatrices.moveAll(
      [&state](std::unique_ptr<Matrix> matrix) { state.faultCalls.keep(std::move(matrix)); });
}

void resetEvaluation(State& state) {
  state.mode = 0;
  state.nesting = 0;
  state.initialising = false;
  state.blockInExpression = false;
  state.sink = nullptr;
  state.returnValue = 0.0;
  state.returnMatrix = nullptr;
  state.currentMatrix = nullptr;
  state.builtinResultMatrix = nullptr;
  state.builtinResultOwner = nullptr;
  state.noEcho = false;
  state.faultContext.clear();
}

RunOutcome outcomeOfFault(const State& state) {
  if (state.runInterrupted) return RunOutcome::interrupted;
  return state.endReached ? RunOutcome::ended : RunOutcome::fault;
}

// Runs the program text; every fault ends here.
void runToItsEnd(State& state) {
  try {
    try {
      startRun();
      state.outcome = RunOutcome::normal;
    } catch (const std::bad_alloc&) {
      raiseError(ErrorKey::allocationFailed);
    }
  } catch (const RunAbandoned&) {
    state.outcome = outcomeOfFault(state);
  }
}

}  // namespace

bool takeProgram(TextDocument& program) {
  State& state = interpreter();
  if (!takeProgramText(state, program)) return false;
  state.programDocument = &program;
  program.setRole(roleExecuted);
  return true;
}

bool executeProgram(TextDocument& program) {
  State& state = interpreter();
  if (state.busy || state.running || state.evaluating) return false;
  if (program.role() == roleOutput) {
    messageBox(
        "This document has been used for output. Please click on a program document to execute");
    return false;
  }
  if (!takeProgram(program)) return false;
  if (state.outputDocument && state.outputDocument->role() != roleExecuted)
    state.shell->bringToFront(*state.outputDocument);
  else
    createOutputDocument(state);
  state.outputDocument->beginRun();

  state.running = true;
  state.busy = true;
  state.evaluating = false;
  closeAllDataFiles();
  state.endReached = false;
  state.runInterrupted = false;
  state.runStartTime = state.shell->clock();
  state.shell->runBegins();
  runToItsEnd(state);

  const bool stopped = state.outcome != RunOutcome::normal;
  state.running = false;
  state.busy = false;
  state.contextText = {};
  if (stopped) keepFaultedCalls(state);
  state.tempMatrices.clear();
  state.tempVectors.clear();
  resetEvaluation(state);
  for (const Bar bar : {Bar::locals, Bar::values, Bar::calls, Bar::globals}) state.changed(bar);
  state.shell->refresh(allDisplays);
  closeAllDataFiles();
  state.shell->runEnds(state.outcome == RunOutcome::fault);
  return true;
}

bool chooseOutputDocument(int mode) {
  State& state = interpreter();
  TextDocument* active = state.shell->activeTextDocument();
  if (mode == 1) {
    if (!active) {
      messageBox("Please open a new document or click on an existing document for output");
      return false;
    }
    state.outputDocument = active;
    state.outputChosen = false;
    return true;
  }
  state.outputChosen = true;
  if (state.outputDocument && state.outputDocument->role() != roleExecuted) {
    state.outputDocument->setRole(roleOutput);
  } else if (state.defaultOutputDocument) {
    state.outputDocument = state.defaultOutputDocument;
  } else if (active && active->role() != roleExecuted) {
    state.outputDocument = active;
    active->setRole(roleOutput);
  } else {
    createOutputDocument(state);
  }
  return true;
}

void resetInterpreterState() {
  State& state = interpreter();
  state.functionSeen = false;
  state.contextText = {};
  state.errorLine = -1;
  state.currentFunction = nullptr;
  state.callerFunction = nullptr;
  // Frames and locals borrow names and matrices, so they go before the tables.
  state.calls.clear();
  state.faultCalls.clear();
  state.faultText.reset();
  state.names.resetForRun();
  state.tempMatrices.clear();
  state.tempVectors.clear();
  state.errorList.clear();
  resetEvaluation(state);
  state.returnPending = 0;
  state.traceIndent = 0;
  state.matrixPrintLimit = 0;
  for (const Bar bar :
       {Bar::locals, Bar::values, Bar::calls, Bar::errors, Bar::functions, Bar::globals})
    state.changed(bar);
  state.shell->refresh(allDisplays | refreshRunStart);
}

bool startRun() {
  State& state = interpreter();
  state.scanner.progCursor = state.programText->data();
  resetInterpreterState();
  preScan();
  state.loopBudget = loopBudgetAtStart;
  state.currentFunction = nullptr;
  state.callerFunction = nullptr;
  Symbol* main = findMain(state);
  if (!main) {
    if (state.functionSeen) {
      messageBox("Functions are activated.");
      return true;
    }
    raiseError(ErrorKey::invalidData);
    return false;
  }
  state.evaluating = false;
  state.contextText = {};
  state.scanner.tokenText = main->name();
  callMain(*main);
  return true;
}

void preScan() {
  State& state = interpreter();
  Scanner& scanner = state.scanner;
  const char* start = scanner.progCursor;
  LineFinder lines;
  checkBalance();
  for (;;) {
    getToken();
    if (scanner.atEnd()) break;
    if (scanner.tokenType == TOKEN_KEYWORD && isTypeWord(scanner.tokenCode)) {
      rescanToken();
      executeGlobalDeclaration();
    } else if (scanner.tokenType == TOKEN_NAME) {
      const std::string_view name = scanner.tokenText;
      checkNewName(name);
      registerFunction(state, name, 0, lines);
      skipGroup('(');
      skipGroup('{');
    } else {
      raiseError(ErrorKey::functionNotDefined);
    }
  }
  state.functionsCurrent = true;
  scanner.progCursor = start;
  state.changed(Bar::functions);
  state.shell->refresh(refreshFunctions);
}

void checkBalance() {
  Scanner& scanner = interpreter().scanner;
  const char* start = scanner.progCursor;
  int braces = 0;
  int brackets = 0;
  int parentheses = 0;
  while (const char c = nextStructuralChar()) {
    braces += (c == '{') - (c == '}');
    brackets += (c == '[') - (c == ']');
    parentheses += (c == '(') - (c == ')');
  }
  if (braces != 0) messageBox("Unbalanced braces {{..}");
  if (brackets != 0) messageBox("Unbalanced square brackets [[..]");
  if (parentheses != 0) messageBox("Unbalanced parentheses ((..)");
  scanner.progCursor = start;
}

namespace {

// Past the `;` that ends a declaration at the top level; brackets may hold others.
void skipDeclaration() {
  int depth = 0;
  while (const char c = nextStructuralChar()) {
    depth += (c == '(' || c == '[' || c == '{') - (c == ')' || c == ']' || c == '}');
    if (c == ';' && depth <= 0) return;
  }
}

// Expected characters are not checked during an update, so it looks for the brackets itself.
void skipRequiredGroup(Scanner& scanner, char open, ErrorKey missing) {
  getToken();
  const bool present = scanner.tokenChar == static_cast<unsigned char>(open);
  if (present) {
    rescanToken();
    if (skipGroup(open)) return;
    // The closing bracket is missing: nothing behind it can be told apart.
    while (*scanner.progCursor != '\0') ++scanner.progCursor;
  }
  raiseError(missing);
  if (!present) rescanToken();
}

void updateDeclarations(State& state) {
  Scanner& scanner = state.scanner;
  scanner.progCursor = state.programText->data();
  LineFinder lines;
  checkBalance();
  while (state.faultCount - state.faultsBeforeUpdate < errorListLimit) {
    getToken();
    if (scanner.atEnd()) return;
    if (scanner.tokenType == TOKEN_KEYWORD && isTypeWord(scanner.tokenCode)) {
      skipDeclaration();
    } else if (scanner.tokenType == TOKEN_NAME && (scanner.nameKind == NameKind::userFunction ||
                                                   scanner.nameKind == NameKind::unknown)) {
      registerFunction(state, scanner.tokenText, stateUpdated, lines);
      skipRequiredGroup(scanner, '(', ErrorKey::parenthesisExpected);
      skipRequiredGroup(scanner, '{', ErrorKey::blockBraceExpected);
    } else {
      raiseError(ErrorKey::invalidData);
    }
  }
}

}  // namespace

bool updateProgram() {
  State& state = interpreter();
  if (state.running || !state.programText || !state.programDocument) return false;
  if (state.functionsCurrent) return true;
  if (!takeProgramText(state, *state.programDocument)) return false;
  const Scanner saved = state.scanner;
  const bool evaluating = std::exchange(state.evaluating, true);
  state.faultsBeforeUpdate = state.faultCount;
  state.updatingDeclarations = true;
  updateDeclarations(state);
  state.updatingDeclarations = false;
  state.evaluating = evaluating;
  if (state.faultCount != state.faultsBeforeUpdate)
    messageBox("Program Update: Error in function declaration");
  state.scanner = saved;
  state.changed(Bar::functions);
  state.shell->refresh(refreshFunctions);
  state.functionsCurrent = true;
  return true;
}

}  // namespace vexa
