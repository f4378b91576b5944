#include "values/form_builtin.h"

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "interp/interpreter_state.h"
#include "values/argument_readers.h"
#include "values/calculator.h"
#include "values/number_format.h"
#include "values/text_string.h"

namespace vexa {

namespace {

constexpr int shownPrecision = 15;

// What an entry says its variable shall hold; `keep` leaves the variable as it is.
struct EntryValue {
  bool keep = true;
  double number = 0;
  std::string text;
  std::unique_ptr<Matrix> matrix;
};

std::string numberText(double x) {
  std::array<char, generalNumberSize(shownPrecision, 0)> text;
  return {text.data(), formatGeneral(text, x, shownPrecision, 0)};
}

// The elements as a data list without its braces.
std::string listText(const Matrix& matrix) {
  std::string text;
  for (int i = 1; i <= matrix.rows(); ++i)
    for (int j = 1; j <= matrix.cols(); ++j) {
      if (j > 1)
        text += ',';
      else if (i > 1)
        text += ';';
      text += numberText(matrix.at(i, j));
    }
  return text;
}

// The value of a float that a name stands for here.
double floatValue(NameKind kind, const std::string& name) {
  const InterpreterState& state = interpreter();
  lookUpName(name);
  switch (kind) {
    case NameKind::local:
      return state.calls.local(state.scanner.nameIndex).value;
    case NameKind::dummy:
      return interpreter().calls.dummy(state.scanner.nameIndex).value;
    default:
      return state.scanner.symbol->value;
  }
}

// The field of a variable whose name is the current token; key 58 for any other word.
FormField fieldOfVariable(std::string label) {
  const Scanner& scanner = interpreter().scanner;
  FormField field;
  const NameKind kind = scanner.nameKind;
  if (!scanner.isWord() || !isVariable(kind)) {
    raiseError(ErrorKey::undefinedVariable);
    return field;
  }
  field.name = scanner.tokenText;
  field.label = label.empty() ? field.name : std::move(label);
  const Matrix* matrix = findMatrix(field.name);
  if (!matrix) {
    field.initial = numberText(floatValue(kind, field.name));
  } else if (matrix->isString()) {
    field.kind = FormField::Kind::text;
    field.initial = loadText(*matrix);
  } else {
    field.kind = FormField::Kind::matrix;
    field.initial = listText(*matrix);
    field.rows = matrix->rows();
    field.cols = matrix->cols();
  }
  return field;
}

// "(" title {"," [prompt ","] name} ")"
FormRequest readForm() {
  const Scanner& scanner = interpreter().scanner;
  FormRequest request;
  expectChar('(');
  request.title = readText();
  expectChar(',');
  do {
    std::string prompt;
    getToken();
    if (scanner.tokenType == TOKEN_STRING) {
      prompt = scanner.tokenText;
      expectChar(',');
      getToken();
    }
    request.fields.push_back(fieldOfVariable(std::move(prompt)));
  } while (moreArguments());
  return request;
}

// A data list may be typed with its braces, with a mark before it, or bare.
std::string matrixExpression(const std::string& entry) {
  switch (entry[entry.find_first_not_of(" \t")]) {
    case '!':
      return entry;
    case '{':
      return '!' + entry;
    default:
      return "!{" + entry + '}';
  }
}

bool readMatrixEntry(const std::string& entry, EntryValue& value, Evaluation& evaluation) {
  evaluation.show = [&value](const ShownValue& shown) {
    if (shown.kind != ShownValue::Kind::matrix) return;
    value.matrix = newMatrix(shown.matrix->rows(), shown.matrix->cols());
    std::ranges::copy(shown.matrix->elements(), value.matrix->elements().begin());
  };
  evaluateTypedText(matrixExpression(entry), evaluation, false);
  return !evaluation.fault && value.matrix;
}

// False for an entry that cannot be used; `complaint` then tells why.
bool readEntry(const FormField& field, const std::string& entry, EntryValue& value,
               std::string& complaint) {
  const bool blank = entry.find_first_not_of(" \t") == std::string::npos;
  if (blank || entry == field.initial) return true;
  value.keep = false;
  if (field.kind == FormField::Kind::text) {
    if (entry.size() > stringLimit) raiseError(ErrorKey::tooLong);
    value.text = entry;
    return true;
  }
  Evaluation evaluation;
  bool usable = false;
  if (field.kind == FormField::Kind::matrix) {
    usable = readMatrixEntry(entry, value, evaluation);
  } else {
    evaluateTypedText(entry, evaluation, false);
    value.number = evaluation.value;
    usable = !evaluation.fault;
  }
  if (!usable) complaint = evaluation.message;
  return usable;
}

void storeEntry(const FormField& field, const EntryValue& value) {
  if (value.keep) return;
  switch (field.kind) {
    case FormField::Kind::text:
      assignText(field.name, value.text);
      break;
    case FormField::Kind::matrix:
      resultMatrix(field.name).swapContents(*value.matrix);
      break;
    default:
      storeScalar(field.name, value.number);
  }
}

// The index of the first entry that cannot be used, or -1.
int readEntries(const std::vector<FormField>& fields, const std::vector<std::string>& texts,
                std::vector<EntryValue>& values, std::string& complaint) {
  values.clear();
  values.resize(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (i < texts.size() && !readEntry(fields[i], texts[i], values[i], complaint))
      return static_cast<int>(i);
  return -1;
}

}  // namespace

double informBuiltin() {
  InterpreterState& state = interpreter();
  FormRequest request = readForm();
  const std::vector<FormField> fields = request.fields;
  std::vector<EntryValue> values;
  for (;;) {
    if (state.loopBudget <= 0) {
      raiseError(ErrorKey::interrupted);
      return 0.0;
    }
    --state.loopBudget;
    const FormReply reply = state.shell->form(request);
    if (!reply.accepted) return 0.0;
    request.badField = readEntries(fields, reply.texts, values, request.complaint);
    if (request.badField < 0) break;
    // The form comes back as it was left.
    for (std::size_t i = 0; i < fields.size() && i < reply.texts.size(); ++i)
      request.fields[i].initial = reply.texts[i];
  }
  for (std::size_t i = 0; i < fields.size(); ++i) storeEntry(fields[i], values[i]);
  state.noEcho = false;
  return 1.0;
}

}  // namespace vexa
