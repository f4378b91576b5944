#include "values/argument_readers.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "interp/declarations.h"
#include "interp/interpreter_state.h"
#include "interp/output.h"
#include "values/evaluator_parts.h"
#include "values/printing.h"
#include "values/text_string.h"

namespace vexa {

namespace {

// A call whose value an argument uses does not stand alone.
void valueUsed(InterpreterState& state) { state.noEcho = false; }

// Whether nothing but the end of the argument follows the name that is the current token.
bool nameEndsArgument() {
  const char next = nextCharacter();
  return next == '\0' || (next != '{' && endsArgument(static_cast<unsigned char>(next)));
}

// The matrix of the current token, or null.
Matrix* tokenMatrix(const Scanner& scanner) {
  return scanner.isWord() && scanner.symbol ? matrixOf(*scanner.symbol) : nullptr;
}

// What a reader gives where a fault did not unwind (outside of an evaluation), so that its caller
// has a matrix to go on with.
MatrixArgument standInMatrix() {
  static Matrix matrix;
  if (!matrix.reshape(1, 1)) throw std::bad_alloc();
  return MatrixArgument::variable(&matrix);
}

// An expression behind its mark, which is the current token. A variable that the expression hands
// over as it stands is copied: what is done to the argument must not reach it.
MatrixArgument readMarkedMatrix(char mark) {
  Value value;
  evalMatrixExpression(value, mark, true);
  rescanToken();
  valueUsed(interpreter());
  if (!value.matrix) return standInMatrix();
  if (value.tempMark) return MatrixArgument::owned(value.matrix);
  const MatrixPin pin(value.matrix);
  Matrix* copy = newTempMatrix(value.matrix->rows(), value.matrix->cols());
  if (!copy) return standInMatrix();
  std::ranges::copy(value.matrix->elements(), copy->elements().begin());
  return MatrixArgument::owned(copy);
}

// Raises what speaks against a name for a matrix; true when it is free or a matrix.
bool checkResultName(std::string_view name) {
  switch (lookUpName(name)) {
    case NameKind::local: {
      const InterpreterState& state = interpreter();
      if (state.calls.local(state.scanner.nameIndex).type == typeMatrix) return true;
      raiseError(ErrorKey::conflictsWithLocal, name);
      return false;
    }
    case NameKind::dummy:
      raiseError(ErrorKey::conflictsWithLocal, name);
      return false;
    case NameKind::variable:
      if (interpreter().scanner.symbol->type == typeMatrix) return true;
      raiseError(ErrorKey::nameIsFloat, name);
      return false;
    case NameKind::userFunction:
    case NameKind::builtin:
      reportCategory(*interpreter().scanner.symbol);
      return false;
    case NameKind::unknown:
      return true;
  }
  return true;
}

// Raises what speaks against a name for a float.
void checkScalarName(std::string_view name) {
  switch (lookUpName(name)) {
    case NameKind::local:
    case NameKind::variable:
      if (matrixOf(*interpreter().scanner.symbol)) raiseError(ErrorKey::conflictsWithMatrix, name);
      return;
    case NameKind::userFunction:
    case NameKind::builtin:
      reportCategory(*interpreter().scanner.symbol);
      return;
    case NameKind::dummy:
    case NameKind::unknown:
      return;
  }
}

// Whole matrices could make a text of any length, which nobody would read.
class BoundedText : public StringSink {
 public:
  void write(std::string_view text, char mode) override {
    if (StringSink::text().size() + text.size() > textListLimit)
      raiseError(ErrorKey::tooLong);
    else
      StringSink::write(text, mode);
  }
};

// One order of a sized name; the token after it is current then.
int readOrder() { return truncateIndex(readCondition(), ErrorKey::allocationFailed); }

void checkOrders(const SizedName& sized) {
  if (sized.rows < 0 || sized.cols < 0)
    raiseError(ErrorKey::indexNotPositive);
  else if (sized.rows == 0 || sized.cols == 0)
    raiseError(ErrorKey::allocationFailed);
}

}  // namespace

void raiseExpected(char c) {
  switch (c) {
    case '"':
      raiseError(ErrorKey::quoteExpected);
      return;
    case '(':
    case ')':
      raiseError(ErrorKey::parenthesisExpected);
      return;
    case ',':
      raiseError(ErrorKey::commaExpected);
      return;
    case ':':
      raiseError(ErrorKey::colonExpected);
      return;
    case ';':
      raiseError(ErrorKey::semicolonExpected);
      return;
    case '[':
    case ']':
      raiseError(ErrorKey::bracketExpected);
      return;
    case '{':
    case '}':
      raiseError(ErrorKey::braceExpected);
      return;
    default:
      raiseError(ErrorKey::invalidData);
  }
}

void expectChar(char c) {
  if (acceptLone(c)) [[likely]]
    return;
  getToken();
  const InterpreterState& state = interpreter();
  if (state.scanner.tokenChar == static_cast<unsigned char>(c)) [[likely]]
    return;
  if (!state.updatingDeclarations) raiseExpected(c);
}

bool acceptChar(char c) {
  getToken();
  if (interpreter().scanner.tokenChar == static_cast<unsigned char>(c)) return true;
  rescanToken();
  return false;
}

bool moreArguments(ErrorKey fault) {
  getToken();
  const unsigned char c = interpreter().scanner.tokenChar;
  if (c == ',') return true;
  if (c != ')') raiseError(fault);
  return false;
}

void expectNoArguments() {
  expectChar('(');
  expectChar(')');
}

double evalScalarArg() {
  InterpreterState& state = interpreter();
  const Scanner& scanner = state.scanner;
  getToken();
  if (scanner.tokenChar == ';') {
    rescanToken();
    return 0.0;
  }
  if (scanner.atEnd()) {
    raiseError(ErrorKey::noExpression);
    return 0.0;
  }
  const double x = evalCondition();
  valueUsed(state);
  if (!endsArgument(scanner.tokenChar)) raiseError(ErrorKey::invalidData);
  rescanToken();
  return x;
}

MatrixArgument::MatrixArgument(MatrixArgument&& other) noexcept
    : m_matrix(std::exchange(other.m_matrix, nullptr)), m_temporary(other.m_temporary) {}

MatrixArgument& MatrixArgument::operator=(MatrixArgument&& other) noexcept {
  if (this != &other) {
    reset();
    m_matrix = std::exchange(other.m_matrix, nullptr);
    m_temporary = other.m_temporary;
  }
  return *this;
}

void MatrixArgument::reset() {
  if (!m_matrix) return;
  if (m_temporary)
    freeTempMatrix(m_matrix);
  else
    m_matrix->unpin();
  m_matrix = nullptr;
}

MatrixArgument MatrixArgument::variable(Matrix* matrix) {
  MatrixArgument argument;
  argument.m_matrix = matrix;
  if (matrix) matrix->pin();
  return argument;
}

MatrixArgument MatrixArgument::owned(Matrix* temporaryMatrix) {
  MatrixArgument argument;
  argument.m_matrix = temporaryMatrix;
  argument.m_temporary = true;
  return argument;
}

MatrixArgument readMatrix(bool allowString) {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.isMark()) {
    const auto mark = static_cast<char>(scanner.tokenChar);
    const char* markStart = scanner.tokenStart;
    getToken();
    if (!tokenMatrix(scanner) || !nameEndsArgument()) {
      interpreter().scanner.progCursor = markStart;
      getToken();
      return readMarkedMatrix(mark);
    }
  }
  Matrix* matrix = tokenMatrix(scanner);
  if (!matrix || (matrix->isString() && !allowString)) {
    raiseError(ErrorKey::matrixNameExpected);
    return standInMatrix();
  }
  return MatrixArgument::variable(matrix);
}

ComplexArgument readComplex() {
  InterpreterState& state = interpreter();
  const Scanner& scanner = state.scanner;
  getToken();
  const bool marked = scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '@';
  if (!marked && state.builtinMode != '@') {
    raiseError(ErrorKey::complexPrefixRequired);
    return {};
  }
  Value value;
  evalComplexArgument(value, marked);
  rescanToken();
  valueUsed(state);
  if (!value.matrix) return {value.scalar, 0};
  const auto parts = value.matrix->elements();
  const ComplexArgument z{parts.front(), parts.back()};
  freeOperand(value);
  return z;
}

MatrixReference readMatrixReference() {
  const Scanner& scanner = interpreter().scanner;
  MatrixReference reference;
  getToken();
  if (scanner.operatorCode() == OP_OR) {
    reference.absolute = true;
    getToken();
  }
  Matrix* matrix = tokenMatrix(scanner);
  if (!matrix || matrix->isString() || nextCharacter() == '[') {
    raiseError(ErrorKey::invalidData);
    reference.matrix = standInMatrix();
    return reference;
  }
  reference.matrix = MatrixArgument::variable(matrix);
  getToken();
  const unsigned char open = scanner.tokenChar;
  if (open != '(' && open != '{') {
    rescanToken();
    return reference;
  }
  const bool row = open == '(';
  reference.part = row ? MatrixReference::Part::row : MatrixReference::Part::column;
  reference.index = truncateIndex(readCondition(), ErrorKey::indexOutOfRange);
  const unsigned char close = row ? ')' : '}';
  if (scanner.tokenChar != close) raiseError(ErrorKey::invalidData);
  valueUsed(interpreter());
  if (reference.index < 1 || reference.index > (row ? matrix->rows() : matrix->cols())) {
    raiseError(ErrorKey::indexOutOfRange);
    reference.index = 1;
  }
  return reference;
}

NameArgument readName(ErrorKey fault) {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.isWord()) return {std::string(scanner.tokenText), scanner.nameKind};
  raiseError(fault);
  return {};
}

Matrix* findMatrix(std::string_view name) {
  const Symbol* symbol = interpreter().names.find(name);
  return symbol ? matrixOf(*symbol) : nullptr;
}

Matrix& resultMatrix(std::string_view name) {
  if (Matrix* matrix = findMatrix(name)) return *matrix;
  if (!checkResultName(name)) return *standInMatrix();
  InterpreterState& state = interpreter();
  auto matrix = newMatrix(1, 1);
  Symbol* symbol = state.names.registerName(name, typeMatrix, 0, Category::variable);
  symbol->state = stateOwnsMatrix;
  symbol->matrix = std::move(matrix);
  state.changed(Bar::globals);
  return *symbol->matrix;
}

std::string readResultName() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '!') getToken();
  if (!scanner.isWord()) {
    raiseError(ErrorKey::nameIsKeyword);
    return {};
  }
  std::string name(scanner.tokenText);
  checkResultName(name);
  return name;
}

SizedName readSizedName() {
  const Scanner& scanner = interpreter().scanner;
  SizedName result;
  result.name = readResultName();
  result.position = scanner.tokenStart;
  if (nextCharacter() != '[') return result;
  getToken();
  result.sized = true;
  result.rows = 1;
  result.cols = readOrder();
  if (scanner.tokenChar == ',') {
    result.twoOrders = true;
    result.rows = result.cols;
    result.cols = readOrder();
  }
  if (scanner.tokenChar != ']') {
    rescanToken();
    expectChar(']');
  }
  valueUsed(interpreter());
  checkOrders(result);
  return result;
}

Matrix& makeSized(const SizedName& name) {
  Matrix& matrix = resultMatrix(name.name);
  redefineMatrix(matrix, name.rows, name.cols);
  return matrix;
}

double wholeNumber(double x, bool whole) { return whole ? std::trunc(x) : x; }

double storeScalar(std::string_view name, double x) {
  InterpreterState& state = interpreter();
  switch (lookUpName(name)) {
    case NameKind::local: {
      LocalRecord& record = state.calls.local(state.scanner.nameIndex);
      if (record.type == typeFloat) return record.value = wholeNumber(x, record.flags == flagWhole);
      raiseError(ErrorKey::conflictsWithMatrix, name);
      return x;
    }
    case NameKind::dummy:
      return state.calls.dummy(state.scanner.nameIndex).value = x;
    default:
      break;
  }
  Symbol* symbol = makeFloat(name);
  if (!symbol) return x;
  return symbol->value = wholeNumber(x, symbol->flags == flagWhole);
}

void ScalarTarget::store(double x) const { storeScalar(m_name, x); }

ScalarTarget readScalarName() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (!scanner.isWord()) {
    raiseError(scanner.tokenType == TOKEN_KEYWORD ? ErrorKey::nameIsKeyword
                                                  : ErrorKey::variableNameExpected);
    return ScalarTarget({});
  }
  std::string name(scanner.tokenText);
  checkScalarName(name);
  return ScalarTarget(std::move(name));
}

char readOption(std::string_view allowed, ErrorKey unknown) {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (!scanner.isWord() || scanner.tokenText.size() != 1) {
    raiseError(ErrorKey::invalidData);
    return 0;
  }
  const char letter = upperCase(scanner.tokenText[0]);
  if (allowed.find(letter) != std::string_view::npos) return letter;
  raiseError(unknown);
  return 0;
}

std::string readText() {
  const Scanner& scanner = interpreter().scanner;
  getToken();
  if (scanner.tokenType == TOKEN_STRING) return std::string(scanner.tokenText);
  if (scanner.tokenType == TOKEN_NAME && scanner.tokenChar == '%') getToken();
  const Matrix* matrix = tokenMatrix(scanner);
  if (matrix && matrix->isString()) return loadText(*matrix);
  raiseError(ErrorKey::stringExpected);
  return {};
}

std::string readLiteral() {
  if (getToken() == TOKEN_STRING) return std::string(interpreter().scanner.tokenText);
  raiseError(ErrorKey::stringExpected);
  return {};
}

std::string readTextList() {
  BoundedText sink;
  printItems(&sink);
  rescanToken();
  return sink.text();
}

void readDataItem(std::vector<double>& values) {
  getToken();
  appendListItem(values);
  valueUsed(interpreter());
  rescanToken();
}

std::vector<double> readDataList() {
  const Scanner& scanner = interpreter().scanner;
  std::vector<double> values;
  for (;;) {
    getToken();
    appendListItem(values);
    valueUsed(interpreter());
    if (scanner.tokenChar == ',') continue;
    if (scanner.tokenChar != ')') raiseError(ErrorKey::parenthesisExpected);
    rescanToken();
    return values;
  }
}

std::vector<double> readDataList(std::size_t least, std::size_t most) {
  const Scanner& scanner = interpreter().scanner;
  std::vector<double> values;
  getToken();
  bool more = scanner.tokenChar != ')';
  while (more) {
    appendListItem(values);
    valueUsed(interpreter());
    if (values.size() > most) {
      raiseError(ErrorKey::tooLong);
      values.resize(most);
    }
    more = scanner.tokenChar == ',';
    if (more)
      getToken();
    else if (scanner.tokenChar != ')')
      raiseError(ErrorKey::parenthesisExpected);
  }
  if (values.size() < least) {
    raiseError(ErrorKey::tooFewElements);
    values.resize(least);
  }
  rescanToken();
  return values;
}

}  // namespace vexa
