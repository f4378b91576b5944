#include "interp/output.h"

#include "interp/interpreter_state.h"
#include "interp/run.h"

namespace vexa {

void StringSink::write(std::string_view text, char mode) {
  const bool whole = mode != lineAppend;
  if (whole && !text.empty() && !m_text.empty() && m_text.back() != '\n') m_text += '\n';
  m_text += text;
  if (whole) m_text += '\n';
}

TextSink& outputSink() {
  InterpreterState& state = interpreter();
  if (state.sink) return *state.sink;
  if (!state.outputChosen) chooseOutputDocument(2);
  return *state.outputDocument;
}

}  // namespace vexa
