#include "values/calculator.h"

#include "interp/program_text.h"
#include "interp/run.h"
#include "values/argument_readers.h"
#include "values/evaluator.h"
#include "values/text_string.h"

namespace vexa {

namespace {

using State = InterpreterState;

// A record of the evaluator's swap list: what a nested text borrows from the evaluation around it,
// given back when it ends or is unwound. Frames, locals and temporaries that it left are removed.
class SwapRecord {
 public:
  explicit SwapRecord(State& state)
      : m_state(state),
        m_scanner(state.scanner),
        m_evaluating(state.evaluating),
        m_busy(state.busy),
        m_initialising(state.initialising),
        m_blockInExpression(state.blockInExpression),
        m_returnPending(state.returnPending),
        m_mode(state.mode),
        m_nesting(state.nesting),
        m_currentFunction(state.currentFunction),
        m_callerFunction(state.callerFunction),
        m_contextText(state.contextText),
        m_traceIndent(state.traceIndent),
        m_returnValue(state.returnValue),
        m_returnMatrix(state.returnMatrix),
        m_currentBuiltin(state.currentBuiltin),
        m_builtinMode(state.builtinMode),
        m_sink(state.sink),
        m_depth(state.calls.depth()),
        m_locals(state.calls.localsCount()),
        m_dummies(state.calls.dummyCount()),
        m_matrices(state.tempMatrices.occupancy()),
        m_vectors(state.tempVectors.occupancy()) {}

  ~SwapRecord() {
    while (m_state.calls.depth() > m_depth) m_state.calls.popFrame();
    m_state.calls.popLocals(m_locals);
    m_state.calls.popDummies(m_dummies);
    m_state.tempMatrices.clearAllBut(m_matrices);
    m_state.tempVectors.clearAllBut(m_vectors);
    // The countdown to the next Esc test goes on.
    const int countdown = m_state.scanner.interruptCountdown;
    m_state.scanner = m_scanner;
    m_state.scanner.interruptCountdown = countdown;
    m_state.evaluating = m_evaluating;
    m_state.busy = m_busy;
    m_state.initialising = m_initialising;
    m_state.blockInExpression = m_blockInExpression;
    m_state.returnPending = m_returnPending;
    m_state.mode = m_mode;
    m_state.nesting = m_nesting;
    m_state.currentFunction = m_currentFunction;
    m_state.callerFunction = m_callerFunction;
    m_state.contextText = m_contextText;
    m_state.traceIndent = m_traceIndent;
    m_state.returnValue = m_returnValue;
    m_state.returnMatrix = m_returnMatrix;
    m_state.currentBuiltin = m_currentBuiltin;
    m_state.builtinMode = m_builtinMode;
    m_state.sink = m_sink;
    m_state.builtinResultMatrix = nullptr;
    m_state.currentMatrix = nullptr;
  }
  SwapRecord(const SwapRecord&) = delete;
  SwapRecord& operator=(const SwapRecord&) = delete;

 private:
  State& m_state;
  Scanner m_scanner;
  bool m_evaluating, m_busy, m_initialising, m_blockInExpression;
  char m_returnPending;
  char m_mode;
  int m_nesting;
  Symbol* m_currentFunction;
  Symbol* m_callerFunction;
  std::string_view m_contextText;
  int m_traceIndent;
  double m_returnValue;
  Matrix* m_returnMatrix;
  int m_currentBuiltin;
  char m_builtinMode;
  TextSink* m_sink;
  int m_depth;
  std::size_t m_locals;
  int m_dummies;
  std::uint32_t m_matrices, m_vectors;
};

void show(const Evaluation& result, const ShownValue& value) {
  if (result.show) result.show(value);
}

// A matrix name that stands alone is shown whole, a string as its text. True when it was.
bool showLoneName(const State& state, const Evaluation& result) {
  const Scanner& scanner = state.scanner;
  const bool named = scanner.tokenType == TOKEN_NAME && *skipBlanks(scanner.progCursor) == ';';
  const Matrix* matrix = named ? findMatrix(scanner.tokenText) : nullptr;
  if (!matrix) return false;
  ShownValue shown;
  if (matrix->isString()) {
    shown.kind = ShownValue::Kind::text;
    shown.text = loadText(*matrix);
  } else {
    shown.kind = ShownValue::Kind::matrix;
    shown.matrix = matrix;
  }
  show(result, shown);
  getToken();
  return true;
}

// One expression from the current token on, and its `;`.
void evaluateOne(State& state, Evaluation& result) {
  state.noEcho = false;
  if (state.scanner.tokenType == TOKEN_KEYWORD && state.scanner.tokenCode == classReturn)
    raiseError(ErrorKey::returnNotExecutable);
  if (showLoneName(state, result)) return;
  Value value;
  evalExpressionFromToken(value);
  if (state.scanner.tokenChar != ';') {
    rescanToken();
    expectChar(';');
  }
  result.value = numberOf(value);
  if (!state.noEcho) {
    ShownValue shown;
    shown.scalar = value.scalar;
    if (value.isMatrix()) {
      shown.kind = ShownValue::Kind::matrix;
      shown.matrix = value.matrix;
    }
    show(result, shown);
  }
  freeOperand(value);
}

void evaluateAll(State& state, Evaluation& result) {
  bool any = false;
  for (;;) {
    getToken();
    if (state.scanner.atEnd()) break;
    if (state.scanner.tokenChar == ';') continue;
    any = true;
    evaluateOne(state, result);
  }
  if (!any) raiseError(ErrorKey::noExpression);
}

}  // namespace

void evaluateTypedText(std::string_view text, Evaluation& result, bool faultsEndRun) {
  State& state = interpreter();
  result.fault = false;
  result.interrupted = false;
  const bool nested = state.running || state.evaluating;
  if (!nested) {
    updateProgram();
    state.runInterrupted = false;
    state.endReached = false;
  }
  const std::shared_ptr<const std::string> typed = prepareTypedText(text);
  const SwapRecord record(state);
  state.scanner.progCursor = typed->data();
  state.evaluating = true;
  state.mode = 0;
  state.initialising = false;
  state.blockInExpression = true;
  try {
    try {
      evaluateAll(state, result);
    } catch (const std::bad_alloc&) {
      raiseError(ErrorKey::allocationFailed);
    }
  } catch (const RunAbandoned&) {
    // What stops the evaluation without being a fault stops what opened it, too.
    const bool stopped = state.runInterrupted || state.endReached;
    if (faultsEndRun || (nested && stopped)) throw;
    result.interrupted = state.runInterrupted;
    result.fault = !state.endReached;
    if (result.fault) result.message = state.lastErrorMessage;
  }
  for (const Bar bar : {Bar::values, Bar::globals}) state.changed(bar);
}

}  // namespace vexa
