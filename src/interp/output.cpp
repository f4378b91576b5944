#include "interp/output.h"

#include "interp/interpreter_state.h"
#include "interp/run.h"

namespace vexa {

void appendInMode(std::string& out, std::string_view text, char mode) {
  const bool whole = mode != lineAppend;
  if (whole && !text.empty() && !out.empty() && out.back() != '\n') out += '\n';
  out += text;
  if (whole) out += '\n';
}

void StringSink::write(std::string_view text, char mode) { appendInMode(m_text, text, mode); }

TextSink& outputSink() {
  InterpreterState& state = interpreter();
  if (state.sink) return *state.sink;
  if (!state.outputChosen) chooseOutputDocument(2);
  return *state.outputDocument;
}

}  // namespace vexa
