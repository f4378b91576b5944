#include "values/text_string.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "interp/interpreter_state.h"
#include "values/argument_readers.h"

namespace vexa {

namespace {

constexpr std::size_t bytesPerElement = sizeof(double);
static_assert(bytesPerElement == charactersPerElement + 1);

}  // namespace

void storeText(Matrix& matrix, std::string_view text) {
  if (text.size() > stringLimit) {
    raiseError(ErrorKey::tooLong);
    return;
  }
  const std::size_t count =
      std::max<std::size_t>(1, (text.size() + charactersPerElement - 1) / charactersPerElement);
  if (!matrix.reshape(1, static_cast<int>(count))) {
    raiseError(ErrorKey::allocationFailed);
    return;
  }
  matrix.setString(true);
  for (double& element : matrix.elements()) {
    const std::string_view part = text.substr(0, charactersPerElement);
    text.remove_prefix(part.size());
    std::array<char, bytesPerElement> bytes;
    bytes.fill(' ');
    std::ranges::copy(part, bytes.begin());
    bytes[charactersPerElement] = stringMark;
    std::memcpy(&element, bytes.data(), bytesPerElement);
  }
}

std::string loadText(const Matrix& matrix) {
  std::string text;
  text.reserve(matrix.size() * charactersPerElement);
  for (const double& element : matrix.elements()) {
    std::array<char, bytesPerElement> bytes;
    std::memcpy(bytes.data(), &element, bytesPerElement);
    text.append(bytes.data(), charactersPerElement);
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

void assignText(std::string_view name, std::string_view text) {
  // A text that is too long leaves no new variable behind.
  if (text.size() > stringLimit) {
    raiseError(ErrorKey::tooLong);
    return;
  }
  storeText(resultMatrix(name), text);
}

std::string readAssignedText(const std::string& name) {
  const InterpreterState& state = interpreter();
  std::string text;
  if (acceptChar('?')) {
    TextRequest request;
    request.prompt = name + " =";
    text = state.shell->textEntry(request).value_or("");
  } else {
    text = readText();
  }
  getToken();
  return text;
}

void evalStringAssignment() {
  InterpreterState& state = interpreter();
  const std::string name = readResultName();
  expectChar('=');
  const std::string text = readAssignedText(name);
  if (!endsExpression(state.scanner.tokenChar)) raiseError(ErrorKey::invalidData);
  assignText(name, text);
  state.noEcho = true;
}

}  // namespace vexa
