// The value evaluator, which runs inside `!` (matrix mode) and `@` (complex mode).

#include <algorithm>
#include <utility>
#include <vector>

#include "interp/declarations.h"
#include "interp/functions.h"
#include "values/argument_readers.h"
#include "values/builtins.h"
#include "values/evaluator_parts.h"
#include "values/matrix_operators.h"

namespace vexa {

namespace {

using State = InterpreterState;

// Where a value stands in its expression: the outermost one must be a matrix or a pair, one inside
// parentheses may be a number.
enum class Place { outermost, inner };

void valueAssignment(State& state, Value& value, Place place);
void valuePrimary(State& state, Value& value);

class ModeScope {
 public:
  ModeScope(State& state, char mode) : m_state(state), m_saved(state.mode) { state.mode = mode; }
  ~ModeScope() { m_state.mode = m_saved; }
  ModeScope(const ModeScope&) = delete;
  ModeScope& operator=(const ModeScope&) = delete;

 private:
  State& m_state;
  char m_saved;
};

// ---- Parts of a matrix: m[i,j], m[i:k,j:l], m(i), m{j} ----

struct IndexRange {
  int from = 0, to = 0;
  bool given = false;
  bool isRange = false;
};

struct MatrixPart {
  enum class Kind { element, block, row, column } kind = Kind::element;
  IndexRange first, second;
};

IndexRange readRange(const Scanner& scanner) {
  IndexRange range;
  range.given = true;
  range.from = range.to = readIndex();
  if (scanner.tokenChar == ':') {
    range.isRange = true;
    range.to = readIndex();
  }
  return range;
}

// The bracket that opens the part is the current token; the cursor is behind the closing one then.
MatrixPart readPart(State& state) {
  const PlainMode plain;
  const NestingGuard guard;
  const Scanner& scanner = state.scanner;
  MatrixPart part;
  switch (scanner.tokenChar) {
    case '(':
      part.kind = MatrixPart::Kind::row;
      part.first.from = part.first.to = readIndex();
      expectCurrent(scanner, ')');
      return part;
    case '{':
      part.kind = MatrixPart::Kind::column;
      part.first.from = part.first.to = readIndex();
      expectCurrent(scanner, '}');
      return part;
    default:
      part.first = readRange(scanner);
      if (scanner.tokenChar == ',') part.second = readRange(scanner);
      if (part.first.isRange || part.second.isRange) part.kind = MatrixPart::Kind::block;
      expectCurrent(scanner, ']');
      return part;
  }
}

// A part as the rows and columns that it covers.
struct Region {
  int row = 1, col = 1, rows = 1, cols = 1;
};

bool withinOrder(const Region& region, const Matrix& matrix) {
  return region.row >= 1 && region.col >= 1 && region.rows >= 1 && region.cols >= 1 &&
         region.row <= matrix.rows() - region.rows + 1 &&
         region.col <= matrix.cols() - region.cols + 1;
}

Region locate(const MatrixPart& part, const Matrix& matrix) {
  Region region;
  switch (part.kind) {
    case MatrixPart::Kind::element: {
      const Indexes at =
          checkIndexes({part.first.from, part.second.from}, matrix.rows(), matrix.cols());
      return {at.i, at.j, 1, 1};
    }
    case MatrixPart::Kind::row:
      region = {part.first.from, 1, 1, matrix.cols()};
      break;
    case MatrixPart::Kind::column:
      region = {1, part.first.from, matrix.rows(), 1};
      break;
    case MatrixPart::Kind::block: {
      // A single part names columns of a row vector.
      const bool single = !part.second.given;
      if (single && matrix.rows() != 1) {
        raiseError(ErrorKey::indexOutOfRange);
        return {};
      }
      const IndexRange rows = single ? IndexRange{1, 1, true, false} : part.first;
      const IndexRange& cols = single ? part.first : part.second;
      if (rows.from > rows.to || cols.from > cols.to) {
        raiseError(ErrorKey::indexOutOfRange);
        return {};
      }
      region = {rows.from, cols.from, rows.to - rows.from + 1, cols.to - cols.from + 1};
      break;
    }
  }
  if (!withinOrder(region, matrix)) {
    raiseError(ErrorKey::indexOutOfRange);
    return {};
  }
  return region;
}

void copyRegion(const Matrix& source, const Region& region, Matrix& target) {
  for (int i = 0; i < region.rows; ++i)
    std::copy_n(source.row(region.row + i) + (region.col - 1), region.cols, target.row(i + 1));
}

void storeRegion(const Matrix& source, const Region& region, Matrix& target) {
  for (int i = 0; i < region.rows; ++i)
    std::copy_n(source.row(i + 1), region.cols, target.row(region.row + i) + (region.col - 1));
}

// ---- Operands ----

// In complex mode a matrix operand is a pair.
void checkOperand(const State& state, const Value& value) {
  if (state.mode == '@' && value.isMatrix() && value.matrix->size() != 2)
    raiseError(ErrorKey::complexPrefixRequired);
}

// A matrix variable, whole or in part, its name being the current token.
void matrixName(State& state, Value& value) {
  const char* name = state.scanner.tokenStart;
  Symbol* symbol = state.scanner.symbol;
  endPrimary();
  const unsigned char c = state.scanner.tokenChar;
  const bool hasPart = c == '[' || c == '(' || c == '{';
  MatrixPart part;
  if (hasPart) part = readPart(state);
  Matrix* matrix = matrixOf(*symbol);
  if (!matrix) {
    raiseError(ErrorKey::matrixNameExpected);
    return;
  }
  if (matrix->isString()) raiseAtName(ErrorKey::invalidData, name);
  if (!hasPart) {
    value.setNamed(matrix);
    return;
  }
  const Region region = locate(part, *matrix);
  if (part.kind == MatrixPart::Kind::element) {
    value.setScalar(matrix->at(region.row, region.col));
  } else {
    Matrix* copy = newTempMatrix(region.rows, region.cols);
    copyRegion(*matrix, region, *copy);
    value.setTemporary(copy);
  }
  endPrimary();
}

// {a, b; c, d}: the first row gives the number of columns.
void dataList(State& state, Value& value) {
  const PlainMode plain;
  const NestingGuard guard;
  const Scanner& scanner = state.scanner;
  std::vector<double> elements;
  std::size_t cols = 0;
  int rows = 0;
  std::size_t rowStart = 0;
  getToken();
  if (scanner.tokenChar == '}') raiseError(ErrorKey::tooFewElements);
  for (;;) {
    appendListItem(elements);
    if (rows > 0 && elements.size() - rowStart > cols) raiseError(ErrorKey::tooLong);
    const unsigned char c = scanner.tokenChar;
    if (c == ',') {
      getToken();
      continue;
    }
    if (c != ';' && c != '}') {
      raiseError(ErrorKey::invalidData);
      return;
    }
    if (rows == 0) cols = elements.size();
    if (elements.size() - rowStart < cols) raiseError(ErrorKey::tooFewElements);
    ++rows;
    rowStart = elements.size();
    if (c == '}') break;
    getToken();
  }
  Matrix* matrix = newTempMatrix(rows, static_cast<int>(cols));
  std::ranges::copy(elements, matrix->elements().begin());
  value.setTemporary(matrix);
  endPrimary();
}

void functionOperand(State& state, Value& value) {
  callUserFunction(*state.scanner.symbol);
  if (state.returnMatrix)
    value.setNamed(state.returnMatrix);
  else
    value.setScalar(state.returnValue);
  if (value.isMatrix() && value.matrix->isString()) raiseError(ErrorKey::invalidData);
  state.noEcho = false;
  endPrimary();
}

void builtinOperand(State& state, Value& value) {
  const unsigned char mark = state.scanner.tokenChar;
  if (mark == '!' || mark == '@') {
    // A further mark of the same kind changes nothing.
    if (mark != static_cast<unsigned char>(state.mode)) raiseError(ErrorKey::invalidData);
    const NestingGuard guard;
    getToken();
    valuePrimary(state, value);
    return;
  }
  if (mark == '%') {
    raiseError(ErrorKey::invalidData);
    return;
  }
  const double number = callBuiltin(state.scanner.symbol->number);
  Matrix* matrix = std::exchange(state.builtinResultMatrix, nullptr);
  if (!matrix)
    value.setScalar(number);
  else if (isTemporary(matrix))
    value.setTemporary(matrix);
  else
    value.setNamed(matrix);
  endPrimary();
}

bool namesMatrix(const State& state) {
  const Scanner& scanner = state.scanner;
  if (scanner.nameKind == NameKind::local)
    return state.calls.local(scanner.nameIndex).type == typeMatrix;
  return scanner.nameKind == NameKind::variable && scanner.symbol->type == typeMatrix;
}

void valuePrimary(State& state, Value& value) {
  const Scanner& scanner = state.scanner;
  if (scanner.tokenType == TOKEN_NAME) {
    if (namesMatrix(state))
      matrixName(state, value);
    else if (scanner.nameKind == NameKind::userFunction)
      functionOperand(state, value);
    else if (scanner.nameKind == NameKind::builtin)
      builtinOperand(state, value);
    else
      value.setScalar(conditionPrimary(state));
  } else if (scanner.tokenType == TOKEN_BLOCK && scanner.tokenChar == '{') {
    dataList(state, value);
  } else if (scanner.tokenType == TOKEN_DELIMITER && scanner.tokenChar == '(') {
    {
      const NestingGuard guard;
      getToken();
      valueAssignment(state, value, Place::inner);
      if (scanner.tokenChar != ')') raiseError(ErrorKey::parenthesisExpected);
    }
    endPrimary();
  } else {
    value.setScalar(conditionPrimary(state));
  }
  checkOperand(state, value);
}

// ---- Operators, from the highest precedence down ----

// Evaluates the right operand while the left one, when it is a variable, stays safe from `delete`.
template <class Level>
void rightOperand(State& state, const Value& left, Value& right, Level level) {
  const MatrixPin pin(left.tempMark ? nullptr : left.matrix);
  level(state, right);
}

// What follows `^`: `-1` after a matrix in matrix mode, otherwise a primary.
void valueExponent(State& state, Value& value) {
  const Scanner& scanner = state.scanner;
  nextOperand(state);
  if (value.isMatrix() && state.mode == '!' && scanner.tokenChar == '-') {
    getToken();
    if (scanner.tokenType != TOKEN_NUMBER || scanner.numberValue != 1.0)
      raiseError(ErrorKey::invalidData);
    applyInverse(value);
    endPrimary();
    return;
  }
  Value exponent;
  rightOperand(state, value, exponent, valuePrimary);
  applyPower(value, exponent, state.mode);
}

void valuePower(State& state, Value& value) {
  valuePrimary(state, value);
  for (;;) {
    switch (state.scanner.tokenChar) {
      case '^':
        valueExponent(state, value);
        break;
      case '~':
        applyTilde(value, state.mode);
        endPrimary();
        break;
      case OP_AMP_POW: {
        nextOperand(state);
        Value exponent;
        rightOperand(state, value, exponent, valuePrimary);
        applyElementPower(value, exponent);
        break;
      }
      default:
        return;
    }
  }
}

void valueUnary(State& state, Value& value) {
  const unsigned char sign = state.scanner.tokenChar;
  if (sign != '-' && sign != '+') {
    valuePower(state, value);
    return;
  }
  nextOperand(state);
  valuePower(state, value);
  if (sign == '-') applyNegation(value);
}

void valueProduct(State& state, Value& value) {
  valueUnary(state, value);
  for (;;) {
    BinaryOperator op;
    switch (state.scanner.tokenChar) {
      case '*':
        op = BinaryOperator::multiply;
        break;
      case '/':
        op = BinaryOperator::divide;
        break;
      case OP_AMP_MUL:
        op = BinaryOperator::elementMultiply;
        break;
      case OP_AMP_DIV:
        op = BinaryOperator::elementDivide;
        break;
      default:
        return;
    }
    nextOperand(state);
    Value right;
    rightOperand(state, value, right, valueUnary);
    applyBinary(value, op, right, state.mode);
  }
}

void valueSum(State& state, Value& value) {
  valueProduct(state, value);
  for (;;) {
    const unsigned char sign = state.scanner.tokenChar;
    if (sign != '+' && sign != '-' && sign != '?') return;
    nextOperand(state);
    Value right;
    rightOperand(state, value, right, valueProduct);
    if (sign == '?')
      applySignedMagnitude(value, right);
    else
      applyBinary(value, sign == '+' ? BinaryOperator::add : BinaryOperator::subtract, right,
                  state.mode);
  }
}

// ---- Assignment ----

// A number is no result of the whole expression; inside parentheses it may be assigned plainly.
void refuseOutermostNumber(const State& state, const Value& value, Place place) {
  if (place == Place::outermost && !value.isMatrix())
    raiseError(state.mode == '@' ? ErrorKey::complexPrefixRequired : ErrorKey::matrixNameExpected);
}

// The right side after a target; the `=` is the next token.
void readSource(State& state, Value& value, Place place) {
  const NestingGuard guard;
  getToken();
  getToken();
  valueAssignment(state, value, place);
  refuseOutermostNumber(state, value, place);
  if (state.mode == '@' && value.isMatrix()) makePair(value);
}

// Gives the target order and elements of the source: a temporary's block moves, a variable's is
// copied.
void storeWhole(Value& value, Matrix& target) {
  if (value.matrix == &target) {
    target.setTag(0);
    return;
  }
  if (value.tempMark) {
    target.swapContents(*value.matrix);
  } else {
    const Matrix& source = *value.matrix;
    if (target.rows() != source.rows() || target.cols() != source.cols())
      redefineMatrix(target, source.rows(), source.cols());
    std::ranges::copy(source.elements(), target.elements().begin());
  }
  target.setTag(0);
  target.setString(false);
  freeOperand(value);
}

void wholeAssignment(State& state, Value& value, Place place) {
  Symbol* symbol = state.scanner.symbol;
  const std::string_view name = state.scanner.tokenText;
  readSource(state, value, place);
  if (!value.isMatrix()) {
    value.setScalar(assignScalar(name, symbol, value.scalar));
    return;
  }
  if (state.initialising && state.names.find(name) == nullptr)
    raiseError(ErrorKey::undefinedVariable);
  const MatrixPin pin(value.tempMark ? nullptr : value.matrix);
  Matrix& target = resultMatrix(name);
  storeWhole(value, target);
  value.setNamed(&target);
}

// m[i,j] = block, m[i:k,j:l] = block, m(i) = row, m{j} = column.
void partAssignment(State& state, Value& value, Place place) {
  Symbol* symbol = state.scanner.symbol;
  getToken();
  const MatrixPart part = readPart(state);
  readSource(state, value, place);
  if (!value.isMatrix() && part.kind == MatrixPart::Kind::element) {
    value.setScalar(assignElement(symbol, {part.first.from, part.second.from}, value.scalar));
    return;
  }
  Matrix* target = symbol ? matrixOf(*symbol) : nullptr;
  if (!target || !value.isMatrix()) {
    raiseError(ErrorKey::matrixNameExpected);
    return;
  }
  if (target->isString()) raiseError(ErrorKey::invalidData);
  const Matrix& source = *value.matrix;
  Region region = locate(part, *target);
  if (part.kind == MatrixPart::Kind::element) {
    region.rows = source.rows();
    region.cols = source.cols();
    if (!withinOrder(region, *target)) raiseError(ErrorKey::indexOutOfRange);
  } else if (source.rows() != region.rows || source.cols() != region.cols) {
    raiseError(ErrorKey::ordersIncompatible);
  }
  // A source that is the target itself fits only where it already stands.
  if (&source != target) storeRegion(source, region, *target);
  target->setTag(0);
}

void valueAssignment(State& state, Value& value, Place place) {
  const Scanner& scanner = state.scanner;
  if (scanner.isWord()) {
    const char* after = skipBlanks(scanner.progCursor);
    const bool variable = scanner.nameKind <= NameKind::variable;
    if (isAssignmentSign(after)) {
      if (scanner.nameKind == NameKind::userFunction || scanner.nameKind == NameKind::builtin)
        reportCategory(*scanner.symbol);
      wholeAssignment(state, value, place);
      return;
    }
    if (variable && (*after == '[' || *after == '(' || *after == '{')) {
      const char* past = *after == '[' ? passGroup(after) : pastGroup(after);
      if (past && isAssignmentSign(past)) {
        partAssignment(state, value, place);
        return;
      }
    }
  }
  valueSum(state, value);
}

// A list of whole matrices can outgrow the machine. It is counted twice: growing moves it, and in
// the end a matrix is made from it.
void appendElements(std::vector<double>& values, const Matrix& matrix) {
  if (!matrixMemoryHolds(2 * (values.size() + matrix.size()))) {
    raiseError(ErrorKey::allocationFailed);
    return;
  }
  const auto elements = matrix.elements();
  values.insert(values.end(), elements.begin(), elements.end());
}

}  // namespace

void appendListItem(std::vector<double>& values) {
  State& state = interpreter();
  const Scanner& scanner = state.scanner;
  if (scanner.tokenType == TOKEN_NAME) {
    Value value;
    if (scanner.tokenChar == '!') {
      evalMatrixExpression(value, '!', true);
      appendElements(values, *value.matrix);
      freeOperand(value);
      return;
    }
    if (namesMatrix(state)) {
      const char next = nextCharacter();
      if (next == ',' || next == ';' || next == '}' || next == ')') {
        const Matrix* matrix = matrixOf(*scanner.symbol);
        if (matrix->isString()) raiseError(ErrorKey::invalidData);
        appendElements(values, *matrix);
        getToken();
        return;
      }
    }
  }
  values.push_back(evalCondition());
}

void evalMatrixExpression(Value& result, char mode, bool markRead) {
  State& state = interpreter();
  if (state.mode && state.mode != mode) raiseError(ErrorKey::invalidData);
  {
    const ModeScope scope(state, mode);
    if (markRead) getToken();
    valueAssignment(state, result, Place::outermost);
    refuseOutermostNumber(state, result, Place::outermost);
    if (mode == '@') makePair(result);
  }
  state.currentMatrix = result.matrix;
}

void evalComplexArgument(Value& result, bool markRead) {
  State& state = interpreter();
  const ModeScope scope(state, '@');
  if (markRead) getToken();
  valueAssignment(state, result, Place::inner);
  if (result.isMatrix()) makePair(result);
}

}  // namespace vexa
