#include "values/running_expressions.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "interp/functions.h"
#include "interp/interpreter_state.h"
#include "values/evaluator_parts.h"
#include "values/numeric_arguments.h"

namespace vexa {

TextReturn::TextReturn() : m_token(interpreter().scanner.tokenStart) {}

void TextReturn::go() const {
  interpreter().scanner.progCursor = m_token;
  getToken();
}

RunningVariable RunningVariable::read() {
  getToken();
  return RunningVariable(checkDummyName() ? interpreter().scanner.tokenText : std::string_view());
}

RunningVariable::RunningVariable(RunningVariable&& other) noexcept
    : m_name(std::move(other.m_name)),
      m_index(std::exchange(other.m_index, -1)),
      m_countBefore(other.m_countBefore) {}

RunningVariable::~RunningVariable() {
  if (m_index >= 0) interpreter().calls.popDummies(m_countBefore);
}

void RunningVariable::bind() {
  m_countBefore = interpreter().calls.dummyCount();
  m_index = declareDummy(m_name);
}

void RunningVariable::set(double value) const {
  if (m_index >= 0) interpreter().calls.dummy(m_index).value = value;
}

ExpressionText ExpressionText::here() { return ExpressionText(interpreter().scanner.progCursor); }

ExpressionText ExpressionText::read() {
  const ExpressionText text = here();
  evalScalarArg();
  return text;
}

double ExpressionText::evaluate() const {
  interpreter().scanner.progCursor = m_start;
  return evalScalarArg();
}

RunningExpression RunningExpression::here(const RunningVariable& variable) {
  return {variable, ExpressionText::here()};
}

RunningExpression RunningExpression::read(const RunningVariable& variable, double first) {
  variable.set(first);
  return {variable, ExpressionText::read()};
}

std::vector<ExpressionText> readExpressions() {
  std::vector<ExpressionText> expressions;
  do expressions.push_back(ExpressionText::read());
  while (moreBeforeWords());
  return expressions;
}

TrialRow TrialRow::read() {
  MatrixArgument argument = readMatrix();
  if (argument.temporary()) raiseError(ErrorKey::matrixNameExpected);
  return TrialRow(std::move(argument), interpreter().scanner.tokenText);
}

TrialRow::TrialRow(MatrixArgument argument, std::string_view name)
    : m_argument(std::move(argument)),
      m_name(name),
      m_rows(m_argument->rows()),
      m_cols(m_argument->cols()) {
  try {
    const auto elements = m_argument->elements();
    m_old.assign(elements.begin(), elements.end());
  } catch (const std::bad_alloc&) {
    m_kept = true;  // there is nothing to restore
    raiseError(ErrorKey::allocationFailed);
  }
}

TrialRow::~TrialRow() {
  Matrix* row = m_argument.get();
  if (!row || m_kept) return;
  if (!intact() && !row->reshape(m_rows, m_cols)) return;
  std::ranges::copy(m_old, row->elements().begin());
}

bool TrialRow::intact() const {
  const Matrix& row = *m_argument;
  return row.rows() == m_rows && row.cols() == m_cols && !row.isString();
}

bool TrialRow::requireRow() const {
  if (m_rows == 1) return true;
  raiseError(ErrorKey::ordersIncompatible);
  return false;
}

void TrialRow::check() const {
  if (!intact()) raiseError(ErrorKey::ordersIncompatible);
}

void TrialRow::write(std::span<const double> values) {
  check();
  std::ranges::copy(values, m_argument->elements().begin());
}

void TrialRow::keep(std::span<const double> values) {
  write(values);
  m_argument->setTag(0);
  m_kept = true;
}

RowFunctions RowFunctions::read(FunctionForm form, TrialRow& row, const RunningVariable* variable) {
  RowFunctions functions(form, row, variable);
  row.requireRow();
  Scanner& scanner = interpreter().scanner;
  getToken();
  const char next = nextCharacter();
  if (scanner.tokenType == TOKEN_NAME && scanner.nameKind == NameKind::userFunction &&
      (next == ',' || next == ')')) {
    functions.m_function = scanner.symbol;
    functions.m_callSite = scanner.progCursor;
    return functions;
  }
  rescanToken();
  do {
    functions.m_expressions.push_back(ExpressionText::read());
    row.check();
  } while (form == FunctionForm::several && moreBeforeWords());
  return functions;
}

int RowFunctions::count() const {
  if (!m_function) return static_cast<int>(m_expressions.size());
  return m_form == FunctionForm::single ? 1 : m_row->size();
}

void RowFunctions::place(double t, std::span<const double> at) {
  m_row->write(at);
  if (m_variable) m_variable->set(t);
}

double RowFunctions::call(double t) {
  std::array<CallArgument, 3> arguments;
  std::size_t count = 0;
  if (m_variable) arguments[count++].value = t;
  arguments[count++].matrix = m_row->matrix();
  if (m_form == FunctionForm::several) {
    if (!m_filled) m_filled = newTempMatrix(1, m_row->size());
    std::ranges::fill(m_filled->elements(), 0.0);
    arguments[count++].matrix = m_filled;
  }
  interpreter().scanner.progCursor = m_callSite;
  const double value = callUserFunction(*m_function, std::span(arguments).first(count));
  const bool filledAsMade =
      !m_filled || (m_filled->rows() == 1 && m_filled->cols() == m_row->size());
  if (!filledAsMade || !m_row->intact()) {
    getToken();  // what stands behind the name, for the message
    raiseError(ErrorKey::ordersIncompatible);
  }
  return value;
}

void RowFunctions::evaluate(double t, std::span<const double> at, std::span<double> values) {
  place(t, at);
  if (!m_function) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i] = m_expressions[i].evaluate();
    m_row->check();
    return;
  }
  const double value = call(t);
  if (m_filled)
    std::ranges::copy(m_filled->elements(), values.begin());
  else
    values[0] = value;
}

double RowFunctions::value(int which, double t, std::span<const double> at) {
  place(t, at);
  if (!m_function) {
    const double value = m_expressions[static_cast<std::size_t>(which)].evaluate();
    m_row->check();
    return value;
  }
  const double value = call(t);
  return m_filled ? m_filled->at(1, which + 1) : value;
}

void RowFunctions::finish() {
  freeTempMatrix(m_filled);
  m_filled = nullptr;
}

}  // namespace vexa
