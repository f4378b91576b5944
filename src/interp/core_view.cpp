#include "interp/core_view.h"

#include <algorithm>
#include <array>

#include "graphics/plot/plot_target.h"
#include "interp/program_text.h"
#include "interp/run.h"
#include "values/builtin_help.h"
#include "values/calculator.h"
#include "values/character_class.h"
#include "values/number_format.h"
#include "values/printing.h"
#include "values/text_string.h"

namespace vexa {

namespace {

// The frames to show: those of what runs now, otherwise those that the last failed run left.
bool showsLiveCalls(const InterpreterState& state) {
  return state.running || state.calls.depth() > 0;
}

const CallStack& shownCalls() {
  const InterpreterState& state = interpreter();
  return showsLiveCalls(state) ? state.calls : state.faultCalls;
}

// The line of a position that a frame remembers. The text of a calculator line may be gone by now,
// so only positions inside the program are looked at.
int lineInProgram(const char* position) {
  const InterpreterState& state = interpreter();
  const auto& text = showsLiveCalls(state) ? state.programText : state.faultText;
  if (!text || !position) return -1;
  const std::less_equal<> notAfter;
  if (!notAfter(text->data(), position) || !notAfter(position, text->data() + text->size()))
    return -1;
  return lineOfPosition(position);
}

void describeMatrix(VariableRow& row, const Matrix& matrix) {
  row.kind = matrix.isString() ? VariableRow::Kind::string : VariableRow::Kind::matrix;
  row.rows = matrix.rows();
  row.cols = matrix.cols();
  if (matrix.isString()) row.text = loadText(matrix);
}

VariableRow describeLocal(const LocalRecord& record) {
  VariableRow row;
  row.name = record.name->name();
  if (record.type == typeMatrix && record.matrix) {
    describeMatrix(row, *record.matrix);
  } else {
    row.value = record.value;
    if (record.flags == flagWhole) row.kind = VariableRow::Kind::wholeNumber;
  }
  return row;
}

VariableRow describeGlobal(const Symbol& symbol) {
  VariableRow row;
  row.name = symbol.name();
  row.preset = symbol.number == presetNumber;
  if (symbol.type == typeMatrix && symbol.matrix) {
    describeMatrix(row, *symbol.matrix);
  } else {
    row.value = symbol.value;
    if (symbol.flags == flagWhole) row.kind = VariableRow::Kind::wholeNumber;
  }
  return row;
}

// The pivots that a factorisation keeps beside its matrix.
bool isInternal(const Symbol& symbol) { return symbol.name().starts_with('#'); }

// The indexes of a frame's locals, from `first` up to `end`; none for a depth that is not active.
struct LocalsRange {
  std::size_t first = 0, end = 0;
};

LocalsRange localsOf(const CallStack& calls, int depth) {
  if (depth < 1 || depth > calls.depth()) return {};
  return {calls.frame(depth - 1).localsMark,
          depth < calls.depth() ? calls.frame(depth).localsMark : calls.localsCount()};
}

// The newest local of the innermost frame that carries a name, or null.
const LocalRecord* findLocal(std::string_view name) {
  const CallStack& calls = shownCalls();
  const LocalsRange range = localsOf(calls, calls.depth());
  for (std::size_t i = range.end; i > range.first; --i) {
    const LocalRecord& record = calls.local(static_cast<int>(i - 1));
    if (record.name && record.name->name() == name) return &record;
  }
  return nullptr;
}

// "name(float x, mat m)" from the text behind a function's name, comments and line ends left out.
std::string signatureOf(const Symbol& function) {
  std::string signature(function.name());
  const char* at = function.position;
  if (!at) return signature;
  int depth = 0;
  while (*(at = skipBlanks(at)) != '\0') {
    const char* const end = at + 1;
    const char c = *at;
    if (depth == 0 && c != '(') break;
    if (isCharacter(c, charNamePart)) {
      if (isCharacter(signature.back(), charNamePart)) signature += ' ';
      while (isCharacter(*at, charNamePart)) signature += *at++;
      continue;
    }
    signature += c;
    if (c == ',') signature += ' ';
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) break;
    at = end;
  }
  return signature;
}

bool isName(std::string_view word) {
  return !word.empty() && word.size() <= maxNameLength && isCharacter(word[0], charLetter) &&
         std::all_of(word.begin(), word.end(), [](char c) { return isCharacter(c, charNamePart); });
}

// A matrix of the new order that holds the elements which both orders have; null without memory.
std::unique_ptr<Matrix> resized(const Matrix* old, int rows, int cols) {
  auto matrix = std::make_unique<Matrix>();
  if (!matrix->reshape(rows, cols)) return nullptr;
  if (!old || old->isString()) return matrix;
  const int commonRows = std::min(rows, old->rows());
  const int commonCols = std::min(cols, old->cols());
  for (int i = 1; i <= commonRows; ++i) std::copy_n(old->row(i), commonCols, matrix->row(i));
  return matrix;
}

}  // namespace

void writeShownValue(const ShownValue& value, TextSink& sink) {
  switch (value.kind) {
    case ShownValue::Kind::scalar: {
      std::array<char, defaultNumberSize> text;
      sink.write({text.data(), formatDefault(text, value.scalar)}, lineWhole);
      break;
    }
    case ShownValue::Kind::matrix:
      printMatrix(sink, *value.matrix);
      break;
    case ShownValue::Kind::text:
      sink.write(value.text, lineWhole);
      break;
  }
}

bool CoreView::running() const {
  const InterpreterState& state = interpreter();
  return state.running || state.evaluating || state.busy;
}

RunOutcome CoreView::lastOutcome() const { return interpreter().outcome; }

std::vector<FrameRow> CoreView::frames() const {
  const InterpreterState& state = interpreter();
  const CallStack& calls = shownCalls();
  std::vector<FrameRow> rows;
  int line = &calls == &state.calls ? lineInProgram(state.scanner.progCursor) : state.errorLine;
  for (int depth = calls.depth(); depth > 0; --depth) {
    const Frame& frame = calls.frame(depth - 1);
    FrameRow& row = rows.emplace_back();
    if (frame.function) row.function = frame.function->name();
    row.line = line;
    row.depth = depth;
    row.arguments = frame.arguments;
    line = lineInProgram(frame.callPosition);
  }
  return rows;
}

std::vector<VariableRow> CoreView::locals(int depth) const {
  const CallStack& calls = shownCalls();
  const LocalsRange range = localsOf(calls, depth);
  std::vector<VariableRow> rows;
  for (std::size_t i = range.end; i > range.first; --i) {
    const LocalRecord& record = calls.local(static_cast<int>(i - 1));
    if (record.name) rows.push_back(describeLocal(record));
  }
  return rows;
}

std::vector<VariableRow> CoreView::globals() const {
  std::vector<VariableRow> rows, presets;
  for (const Symbol* symbol = interpreter().names.oldestGlobal(); symbol;
       symbol = symbol->newerGlobal) {
    if (isInternal(*symbol)) continue;
    VariableRow row = describeGlobal(*symbol);
    (row.preset ? presets : rows).push_back(std::move(row));
  }
  std::move(presets.begin(), presets.end(), std::back_inserter(rows));
  return rows;
}

std::optional<VariableRow> CoreView::variable(std::string_view name) const {
  if (const LocalRecord* record = findLocal(name)) return describeLocal(*record);
  const Symbol* symbol = interpreter().names.find(name);
  if (symbol && symbol->isGlobal()) return describeGlobal(*symbol);
  return std::nullopt;
}

std::span<const ListRow> CoreView::errorRows() const { return interpreter().errorList; }

std::vector<FunctionRow> CoreView::userFunctions() const {
  std::vector<FunctionRow> rows;
  for (const Symbol* function : interpreter().names.userFunctions())
    rows.push_back(
        {std::string(function->name()), signatureOf(*function), function->number, function->state});
  return rows;
}

std::vector<BuiltinRow> CoreView::builtins() const {
  std::vector<BuiltinRow> rows;
  for (const BuiltinHelp& help : builtinHelp())
    rows.push_back({help.name, help.group, help.signature, help.text});
  return rows;
}

const Matrix* CoreView::matrix(std::string_view name) const {
  if (const LocalRecord* record = findLocal(name))
    return record->type == typeMatrix ? record->matrix : nullptr;
  const Symbol* symbol = interpreter().names.find(name);
  return symbol && symbol->isGlobal() ? symbol->matrix.get() : nullptr;
}

std::uint64_t CoreView::generation(Bar bar) const {
  return interpreter().generations[static_cast<std::size_t>(bar)];
}

int CoreView::errorLine() const { return interpreter().errorLine; }

const std::string& CoreView::lastErrorMessage() const { return interpreter().lastErrorMessage; }

bool CoreCommands::execute(TextDocument& program) {
  return !CoreView().running() && executeProgram(program);
}

bool CoreCommands::updateFunctions() { return !CoreView().running() && updateProgram(); }

void CoreCommands::textChanged(const TextDocument& document) {
  if (interpreter().programDocument == &document) interpreter().functionsCurrent = false;
}

bool CoreCommands::setProgram(TextDocument& document) {
  return !CoreView().running() && takeProgram(document);
}

bool CoreCommands::evaluate(std::string_view text, Evaluation& result) {
  if (CoreView().running()) return false;
  evaluateTypedText(text, result);
  return true;
}

bool CoreCommands::evaluateInRun(std::string_view text, Evaluation& result) {
  if (!CoreView().running()) return false;
  evaluateTypedText(text, result);
  return true;
}

bool CoreCommands::defineMatrix(std::string_view name, int rows, int cols) {
  InterpreterState& state = interpreter();
  if (CoreView().running() || !isName(name) || rows < 1 || cols < 1) return false;
  Symbol* symbol = state.names.find(name);
  const bool known = symbol && symbol->category != Category::none;
  if (known && !(symbol->isGlobal() && symbol->type == typeMatrix)) return false;
  std::unique_ptr<Matrix> matrix = resized(known ? symbol->matrix.get() : nullptr, rows, cols);
  if (!matrix) return false;
  if (known) {
    // Frames of a failed run may still be bound to the object, so it stays.
    symbol->matrix->swapContents(*matrix);
  } else {
    symbol = state.names.registerName(name, typeMatrix, 0, Category::variable);
    symbol->matrix = std::move(matrix);
  }
  state.changed(Bar::globals);
  state.changed(Bar::values);
  return true;
}

bool CoreCommands::writeBlock(std::string_view name, int row, int col, int cols,
                              std::span<const double> values) {
  InterpreterState& state = interpreter();
  if (CoreView().running()) return false;
  Symbol* symbol = state.names.find(name);
  if (!symbol || !symbol->isGlobal() || !symbol->matrix || symbol->matrix->isString()) return false;
  Matrix& matrix = *symbol->matrix;
  const auto width = static_cast<std::size_t>(std::max(cols, 0));
  if (width == 0 || values.empty() || values.size() % width != 0) return false;
  const std::size_t height = values.size() / width;
  if (row < 1 || col < 1 || row > matrix.rows() || col > matrix.cols() ||
      height > static_cast<std::size_t>(matrix.rows() - row) + 1 ||
      width > static_cast<std::size_t>(matrix.cols() - col) + 1)
    return false;
  for (std::size_t i = 0; i < height; ++i)
    std::copy_n(values.data() + i * width, width, &matrix.at(row + static_cast<int>(i), col));
  matrix.setTag(0);
  state.changed(Bar::globals);
  state.changed(Bar::values);
  return true;
}

bool CoreCommands::chooseOutput(int mode) {
  return !CoreView().running() && chooseOutputDocument(mode);
}

bool CoreCommands::saveGlobals() {
  Evaluation result;
  return evaluate("saveglobalvars()", result) && !result.fault && result.value > 0.0;
}

bool CoreCommands::readGlobals() {
  Evaluation result;
  return evaluate("readglobalvars()", result) && !result.fault;
}

void CoreCommands::setTrace(bool on) {
  if (!CoreView().running()) interpreter().trace = on;
}

void CoreCommands::setDisplayValues(bool on) {
  if (!CoreView().running()) interpreter().displayValues = on;
}

void CoreCommands::documentClosed(const void* document) {
  InterpreterState& state = interpreter();
  for (TextDocument** reference :
       {&state.programDocument, &state.outputDocument, &state.defaultOutputDocument})
    if (*reference == document) *reference = nullptr;
  if (!state.outputDocument) state.outputChosen = false;
  forgetDrawing(document);
}

}  // namespace vexa
